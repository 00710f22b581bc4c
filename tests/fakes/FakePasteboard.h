#pragma once

#include "platform/Pasteboard.h"

#include <QList>
#include <QStringList>

#include <utility>

class FakePasteboard final : public Pasteboard
{
public:
    explicit FakePasteboard(QStringList *journal = nullptr) : m_journal(journal) {}

    void clearContents() override
    {
        contents.clear();
        png.clear();
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

    bool replaceImageWithPng(const QByteArray &bytes) override
    {
        if (bytes.isEmpty() || contents.isEmpty() || !png.isEmpty())
            return false;
        contents.clear();
        png = bytes;
        return true;
    }

    std::optional<QImage> readImage() const override { return image; }
    QStringList availableTypes() const override
    {
        QStringList types;
        for (const auto &[type, bytes] : data)
            types.append(type);
        return types;
    }
    std::optional<QByteArray> readData(const QString &mimeType) const override
    {
        for (const auto &[type, bytes] : data) {
            if (type == mimeType)
                return bytes;
        }
        return std::nullopt;
    }

    QList<QImage> contents;
    // What replaced the image offered last.
    QByteArray png;
    // What the clipboard offers to readers: an image the system decodes, and raw data by type.
    std::optional<QImage> image;
    QList<std::pair<QString, QByteArray>> data;
    int writeCount = 0;

private:
    QStringList *m_journal;
};
