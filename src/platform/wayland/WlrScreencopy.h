#pragma once

#include "WaylandConnection.h"

#include <QRect>
#include <QString>

#include <memory>
#include <optional>
#include <variant>
#include <vector>

// Copies of outputs through wlr-screencopy, into shared memory of our own, at each output's native pixels.
// Every requested output is copied in the same compositor frame: all requests go out before the first
// answer is awaited. Blocks the calling thread for about one frame. Not thread-safe (as the connection).
namespace wlrscreencopy {

// 32 bits per pixel, 0xffRRGGBB in the machine's byte order (QImage::Format_RGB32), top row first;
// `owner` keeps the memory mapped for as long as any copy of it lives.
struct Pixels
{
    std::shared_ptr<const void> owner;
    const uchar *data = nullptr;
    int width = 0;
    int height = 0;
    qsizetype bytesPerLine = 0;
};

struct Request
{
    const WaylandConnection::Output *output = nullptr;
    // In the output's own layout coordinates (points from its top-left corner); the whole output when
    // absent.
    std::optional<QRect> region;
};

// One result per request, in order: the pixels, or why there are none.
using Result = std::variant<Pixels, QString>;
std::vector<Result> copy(WaylandConnection &connection, const std::vector<Request> &requests);

} // namespace wlrscreencopy
