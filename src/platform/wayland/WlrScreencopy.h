#pragma once

#include "ScreenPixels.h"
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

// The copy, its owner keeping the memory mapped.
using Pixels = ScreenPixels;

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
