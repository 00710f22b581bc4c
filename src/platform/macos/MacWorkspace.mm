#include "MacWorkspace.h"

#include "MacConversions.h"

#import <AppKit/AppKit.h>

bool MacWorkspace::openURL(const QUrl &url)
{
    NSURL *target = macconversions::toNSURL(url);
    return target && [[NSWorkspace sharedWorkspace] openURL:target];
}
