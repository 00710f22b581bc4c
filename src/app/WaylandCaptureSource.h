#pragma once

#include "CapturedPixels.h"

#include "app/CommandLine.h"

// `vistrel capture` on a wlroots compositor, through wlr-screencopy; where the compositor has none, it is
// handed to KWinCaptureSource. Displays are the outputs in the order the compositor lists them, each at
// its native pixels. The whole layout and a region (in layout
// coordinates) come at the highest scale of the outputs they touch, as grim makes them, so a region
// within one output has exactly that output's pixels.
namespace waylandcapturesource {

CaptureRead read(const commandline::CaptureOptions &options);

} // namespace waylandcapturesource
