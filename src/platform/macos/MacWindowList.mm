#include "MacWindowList.h"

#include "MacConversions.h"

#include <CoreGraphics/CoreGraphics.h>

using namespace macconversions;

namespace {

template<typename T>
T *entryOf(NSDictionary *info, CFStringRef key)
{
    id value = info[(__bridge NSString *)key];
    return [value isKindOfClass:[T class]] ? value : nil;
}

WindowList::Entry entryFor(NSDictionary *info)
{
    WindowList::Entry entry;
    CGRect bounds;
    if (NSDictionary *boundsDictionary = entryOf<NSDictionary>(info, kCGWindowBounds);
        boundsDictionary && CGRectMakeWithDictionaryRepresentation((__bridge CFDictionaryRef)boundsDictionary, &bounds))
        entry.bounds = fromCGRect(bounds);
    if (NSString *owner = entryOf<NSString>(info, kCGWindowOwnerName))
        entry.ownerName = fromNSString(owner);
    if (NSNumber *layer = entryOf<NSNumber>(info, kCGWindowLayer))
        entry.layer = qint64(layer.longLongValue);
    if (NSNumber *alpha = entryOf<NSNumber>(info, kCGWindowAlpha))
        entry.alpha = alpha.doubleValue;
    if (NSNumber *number = entryOf<NSNumber>(info, kCGWindowNumber))
        entry.number = qint64(number.longLongValue);
    return entry;
}

} // namespace

std::optional<QList<WindowList::Entry>> MacWindowList::onScreenWindows() const
{
    CFArrayRef list = CGWindowListCopyWindowInfo(kCGWindowListOptionOnScreenOnly | kCGWindowListExcludeDesktopElements,
                                                 kCGNullWindowID);
    if (!list)
        return std::nullopt;
    NSArray *windows = CFBridgingRelease(list);
    QList<Entry> entries;
    for (id info in windows) {
        if ([info isKindOfClass:[NSDictionary class]])
            entries.append(entryFor(info));
    }
    return entries;
}
