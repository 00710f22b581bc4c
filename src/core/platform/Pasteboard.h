#pragma once

#include <QByteArray>
#include <QImage>
#include <QStringList>

#include <optional>

// The general clipboard (NSPasteboard.general; QClipboard on X11).
class Pasteboard
{
public:
    virtual ~Pasteboard() = default;

    virtual void clearContents() = 0;
    // Offers the image. Its device pixel ratio gives its size in points, so a 2x capture pastes at its
    // on-screen size where the receiving application honours that. False when the clipboard refused it.
    virtual bool writeImage(const QImage &image) = 0;
    // Once the image offered last is saved: offers that file's PNG bytes as "image/png" in its place and
    // lets the decoded image go, so no frame stays in memory for the clipboard. Does nothing, and says
    // false, when another owner took the clipboard since, or the clipboard keeps no image of ours.
    virtual bool replaceImageWithPng(const QByteArray &png) = 0;

    // The clipboard's content as an image, decoded by the system; nothing when it holds none.
    virtual std::optional<QImage> readImage() const = 0;
    // The MIME types of what the clipboard holds, in the order its owner offers them.
    virtual QStringList availableTypes() const = 0;
    // The raw bytes offered under `mimeType`; nothing when that type is not offered.
    virtual std::optional<QByteArray> readData(const QString &mimeType) const = 0;
};
