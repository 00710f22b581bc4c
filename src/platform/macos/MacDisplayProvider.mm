#include "MacDisplayProvider.h"

#include "MacConversions.h"

#import <AppKit/AppKit.h>

#include <limits>

using namespace macconversions;

namespace {

// The id is absent when the screen has no "NSScreenNumber" or one that is no 32-bit display id.
DisplayInfo displayInfo(NSScreen *screen)
{
    DisplayInfo info;
    id number = screen.deviceDescription[@"NSScreenNumber"];
    if ([number isKindOfClass:[NSNumber class]]) {
        const unsigned long long value = [number unsignedLongLongValue];
        if (value <= std::numeric_limits<quint32>::max())
            info.id = quint32(value);
    }
    info.frame = fromCGRect(screen.frame);
    info.visibleFrame = fromCGRect(screen.visibleFrame);
    info.backingScale = screen.backingScaleFactor;
    return info;
}

} // namespace

struct MacDisplayProvider::Observers
{
    NSMutableArray *tokens = [NSMutableArray array];
};

MacDisplayProvider::MacDisplayProvider() : m_observers(std::make_unique<Observers>()) {}

MacDisplayProvider::~MacDisplayProvider()
{
    for (id token in m_observers->tokens)
        [[NSNotificationCenter defaultCenter] removeObserver:token];
}

QList<DisplayInfo> MacDisplayProvider::screens() const
{
    QList<DisplayInfo> result;
    for (NSScreen *screen in [NSScreen screens])
        result.append(displayInfo(screen));
    return result;
}

std::optional<DisplayInfo> MacDisplayProvider::mainScreen() const
{
    NSScreen *screen = [NSScreen mainScreen];
    if (!screen)
        return std::nullopt;
    return displayInfo(screen);
}

void MacDisplayProvider::observeScreenParameters(std::function<void()> observer)
{
    id token = [[NSNotificationCenter defaultCenter] addObserverForName:NSApplicationDidChangeScreenParametersNotification
                                                                 object:nil
                                                                  queue:[NSOperationQueue mainQueue]
                                                             usingBlock:^(NSNotification *) {
                                                                 observer();
                                                             }];
    [m_observers->tokens addObject:token];
}
