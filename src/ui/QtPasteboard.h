#pragma once

#include "platform/Pasteboard.h"

// The clipboard through QClipboard. On X11 the application serves the image itself for as long as it
// runs (image/png and Qt's other image targets, encoded when a client asks). Main thread.
class QtPasteboard final : public Pasteboard
{
public:
    void clearContents() override;
    bool writeImage(const QImage &image) override;
    std::optional<QImage> readImage() const override;
    QStringList availableTypes() const override;
    std::optional<QByteArray> readData(const QString &mimeType) const override;
};
