#pragma once

#include "CapturedPixels.h"

#include "app/CommandLine.h"

#include <QProcessEnvironment>

// `vistrel capture` on X11: the whole root window, one RandR monitor, or a rectangle of the root
// window, read once through the application's own reader.
namespace x11capturesource {

CaptureRead read(const commandline::CaptureOptions &options, const QProcessEnvironment &environment);

} // namespace x11capturesource
