#include "MacSelectionWindow.h"

#import <AppKit/AppKit.h>

#include <QWidget>

namespace {

NSWindow *nativeWindow(QWidget *widget)
{
    if (!widget)
        return nil;
    // A Qt widget's window id on macOS is its NSView.
    NSView *view = (__bridge NSView *)reinterpret_cast<void *>(widget->winId());
    return view.window;
}

} // namespace

MacSelectionWindow::MacSelectionWindow(std::unique_ptr<SelectionWindow> qtWindow, QWidget &widget)
    : m_qtWindow(std::move(qtWindow)), m_widget(&widget)
{
    // Before the native window exists: Qt makes an NSPanel for a tool window, and keeps a tool window
    // shown while Vistrel is not the active application.
    widget.setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint);
    widget.setAttribute(Qt::WA_MacAlwaysShowToolWindow);
    applyNativeSettings();
}

MacSelectionWindow::~MacSelectionWindow() = default;

void MacSelectionWindow::applyNativeSettings()
{
    NSWindow *window = nativeWindow(m_widget);
    if (!window)
        return;
    // Non-activating is a panel's style; Qt gives tool windows NSPanel (unverified for every Qt version,
    // hence the check).
    if ([window isKindOfClass:[NSPanel class]]) {
        NSPanel *panel = (NSPanel *)window;
        panel.styleMask = NSWindowStyleMaskBorderless | NSWindowStyleMaskNonactivatingPanel;
        panel.becomesKeyOnlyIfNeeded = NO;
        panel.hidesOnDeactivate = NO;
    }
    window.level = NSStatusWindowLevel;
    window.animationBehavior = NSWindowAnimationBehaviorNone;
    window.backgroundColor = [NSColor clearColor];
    window.opaque = NO;
    window.hasShadow = NO;
    window.ignoresMouseEvents = NO;
    window.collectionBehavior = NSWindowCollectionBehaviorCanJoinAllSpaces
                                | NSWindowCollectionBehaviorFullScreenAuxiliary
                                | NSWindowCollectionBehaviorTransient;
}

void MacSelectionWindow::makeKeyAndOrderFront()
{
    m_qtWindow->makeKeyAndOrderFront();
    applyNativeSettings();
    // The panel becomes the key window without activating Vistrel, so Escape and Space reach it while
    // another application stays in front.
    [nativeWindow(m_widget) makeKeyAndOrderFront:nil];
}

void MacSelectionWindow::orderFront()
{
    m_qtWindow->orderFront();
    applyNativeSettings();
}
