#include "MacApplicationControl.h"

#import <AppKit/AppKit.h>

#include <QGuiApplication>

void MacApplicationControl::setAccessoryActivationPolicy()
{
    QGuiApplication::setQuitOnLastWindowClosed(false);
    [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

void MacApplicationControl::activate()
{
    // Deprecated from macOS 14 in favour of -activate, which may decline to come forward; an agent
    // opening its window on the user's request must come forward, as this call guarantees.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    [NSApp activateIgnoringOtherApps:YES];
#pragma clang diagnostic pop
}

void MacApplicationControl::terminate()
{
    QCoreApplication::quit();
}
