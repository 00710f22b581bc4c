#pragma once

#include "capture/EditorHandOff.h"

#include <QList>
#include <QStringList>

class FakeEditorHandOff final : public EditorHandOff
{
public:
    explicit FakeEditorHandOff(QStringList *journal = nullptr) : m_journal(journal) {}

    void scheduleEditNotification(const QImage &image, const QUrl &sourceURL) override
    {
        images.append(image);
        urls.append(sourceURL);
        if (m_journal)
            m_journal->append(QStringLiteral("editor.scheduleEditNotification ") + sourceURL.toLocalFile());
    }

    QList<QImage> images;
    QList<QUrl> urls;

private:
    QStringList *m_journal;
};
