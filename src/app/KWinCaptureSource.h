#pragma once

#include "CapturedPixels.h"

#include "app/CommandLine.h"

class WaylandConnection;

// `vistrel capture` on KDE Plasma, where KWin has no wlr-screencopy but answers through its ScreenShot2,
// as long as a desktop entry grants this executable the interface. A display is CaptureScreen of that
// output at its native pixels; a region (layout coordinates) is CaptureArea and the whole layout
// CaptureWorkspace, both of which KWin draws at the highest scale of the outputs they touch, as the
// screen-copy source makes them. Runs its own event loop on the command line's only thread until KWin's
// reply and pixels are in.
namespace kwincapturesource {

// The outputs are `connection`'s, in the order the compositor announced them.
CaptureRead read(const commandline::CaptureOptions &options, const WaylandConnection &connection);

} // namespace kwincapturesource
