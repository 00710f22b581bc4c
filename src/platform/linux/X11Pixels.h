#pragma once

#include <QtGlobal>

#include <memory>

// Pixels read from the X server: 32 bits each, 0xffRRGGBB in the machine's byte order (the root
// window's format is checked before anything is read), in memory that `owner` keeps alive: a shared
// segment, which stays out of reuse while any copy is held, or a buffer of their own.
struct X11Pixels
{
    std::shared_ptr<const void> owner;
    const uchar *data = nullptr;
    int width = 0;
    int height = 0;
    qsizetype bytesPerLine = 0;

    bool isNull() const { return !data; }
};
