#pragma once

#include "platform/Pasteboard.h"

#include <QPointer>

class QMimeData;

// The clipboard through QClipboard. On X11 the application serves the content itself for as long as it
// runs: an image as image/png and Qt's other image targets, encoded when a client asks, until its saved
// PNG's bytes take its place. Main thread.
class QtPasteboard final : public Pasteboard
{
public:
    void clearContents() override;
    bool writeImage(const QImage &image) override;
    bool replaceImageWithPng(const QByteArray &png) override;
    std::optional<QImage> readImage() const override;
    QStringList availableTypes() const override;
    std::optional<QByteArray> readData(const QString &mimeType) const override;

private:
    // The image offered last, while the clipboard holds it; Qt owns it and deletes it when replaced.
    QPointer<QMimeData> m_offeredImage;
};
