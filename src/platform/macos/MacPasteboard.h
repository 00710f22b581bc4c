#pragma once

#include "QtPasteboard.h"

#include "platform/Pasteboard.h"

// The general pasteboard on macOS. Images are written as an NSImage whose size is the image's size in
// points, so a capture of a Retina display pastes at its on-screen size. Reads go through Qt's
// clipboard, which already turns the pasteboard's types into MIME types. Main thread.
class MacPasteboard final : public Pasteboard
{
public:
    void clearContents() override;
    bool writeImage(const QImage &image) override;
    // The pasteboard server holds what was written; this process keeps no image to let go.
    bool replaceImageWithPng(const QByteArray &) override { return false; }

    std::optional<QImage> readImage() const override { return m_reads.readImage(); }
    QStringList availableTypes() const override { return m_reads.availableTypes(); }
    std::optional<QByteArray> readData(const QString &mimeType) const override { return m_reads.readData(mimeType); }

private:
    QtPasteboard m_reads;
};
