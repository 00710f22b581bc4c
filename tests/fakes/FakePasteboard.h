#pragma once

#include "platform/Pasteboard.h"

#include <QList>
#include <QStringList>

class FakePasteboard final : public Pasteboard
{
public:
    explicit FakePasteboard(QStringList *journal = nullptr) : m_journal(journal) {}

    void clearContents() override
    {
        contents.clear();
        if (m_journal)
            m_journal->append(QStringLiteral("pasteboard.clearContents"));
    }
    bool writeImage(const QImage &image) override
    {
        contents.append(image);
        ++writeCount;
        if (m_journal)
            m_journal->append(QStringLiteral("pasteboard.writeImage"));
        return true;
    }

    QList<QImage> contents;
    int writeCount = 0;

private:
    QStringList *m_journal;
};
