#include "MacPasteboard.h"

#include "MacImages.h"

#import <AppKit/AppKit.h>

void MacPasteboard::clearContents()
{
    [[NSPasteboard generalPasteboard] clearContents];
}

bool MacPasteboard::writeImage(const QImage &image)
{
    CGImageRef pixels = macimages::createCGImage(image);
    if (!pixels)
        return false;
    const double ratio = image.devicePixelRatio() > 0 ? image.devicePixelRatio() : 1.0;
    NSImage *shown = [[NSImage alloc] initWithCGImage:pixels
                                                 size:NSMakeSize(image.width() / ratio, image.height() / ratio)];
    CGImageRelease(pixels);
    return [[NSPasteboard generalPasteboard] writeObjects:@[shown]];
}
