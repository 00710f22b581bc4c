#pragma once

#include "PngPixels.h"

#include <QString>

#include <memory>
#include <variant>

// What the command-line capture read from the screen: the pixels, and what keeps their memory (a shared
// segment, a mapped copy of the compositor's, a buffer of its own) alive while they are written.
struct CapturedPixels
{
    std::shared_ptr<const void> owner;
    PngPixels pixels;
};

// The pixels, or one line saying why there are none.
using CaptureRead = std::variant<CapturedPixels, QString>;
