#pragma once

#include <QImage>

// The general clipboard (NSPasteboard.general; QClipboard on X11).
class Pasteboard
{
public:
    virtual ~Pasteboard() = default;

    virtual void clearContents() = 0;
    // Offers the image. Its device pixel ratio gives its size in points, so a 2x capture pastes at its
    // on-screen size where the receiving application honours that. False when the clipboard refused it.
    virtual bool writeImage(const QImage &image) = 0;
};
