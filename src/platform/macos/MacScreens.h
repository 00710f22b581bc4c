#pragma once

// One NSScreen as the core describes a display. Objective-C++: included by the .mm files of this
// folder only.

#import <AppKit/AppKit.h>

#include "platform/DisplayProvider.h"

namespace macscreens {

// The id is absent when the screen has no "NSScreenNumber" or one that is no 32-bit display id.
DisplayInfo displayInfo(NSScreen *screen);

} // namespace macscreens
