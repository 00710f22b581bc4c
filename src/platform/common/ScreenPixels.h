#pragma once

#include <QtGlobal>

#include <memory>

class QImage;

// Pixels read from the screen (the X server, a Wayland compositor): 32 bits each, 0xffRRGGBB in the
// machine's byte order, top row first, in memory that `owner` keeps alive: a shared segment, which
// stays out of reuse while any copy is held, a mapped buffer the compositor copied into, or a buffer of
// their own.
struct ScreenPixels
{
    std::shared_ptr<const void> owner;
    const uchar *data = nullptr;
    int width = 0;
    int height = 0;
    qsizetype bytesPerLine = 0;

    bool isNull() const { return !data; }
    // A QImage (Format_RGB32) over the same memory, which it keeps for as long as any copy of it lives.
    QImage image() const;
};
