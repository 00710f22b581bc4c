#include "MacSelectionWindow.h"

#include "MacScreens.h"

#include "capture/CaptureGeometry.h"
#include "platform/DisplayProvider.h"

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

MacSelectionWindow::MacSelectionWindow(std::unique_ptr<SelectionWindow> qtWindow, QWidget &widget,
                                       const DisplayProvider &displays)
    : m_qtWindow(std::move(qtWindow)), m_widget(&widget), m_displays(displays)
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

double MacSelectionWindow::desktopTopY() const
{
    return capturegeometry::desktopTopY(m_displays.screens(), m_displays.mainScreen());
}

Rect MacSelectionWindow::frame() const
{
    if (!m_widget)
        return Rect();
    return capturegeometry::cgGlobalRect(Rect::fromQRectF(QRectF(m_widget->geometry())), desktopTopY());
}

void MacSelectionWindow::setFrame(const Rect &frame)
{
    if (!m_widget)
        return;
    m_widget->setGeometry(capturegeometry::cgGlobalRect(frame, desktopTopY()).toQRectF().toAlignedRect());
    m_qtWindow->displayIfNeeded();
}

std::optional<DisplayInfo> MacSelectionWindow::screen() const
{
    NSScreen *screen = nativeWindow(m_widget).screen;
    if (!screen)
        return std::nullopt;
    return macscreens::displayInfo(screen);
}

Rect MacSelectionWindow::convertRectToScreen(const Rect &rect) const
{
    const Rect own = frame();
    return rect.translated(own.minX(), own.minY());
}

QPointF MacSelectionWindow::convertPointFromScreen(QPointF point) const
{
    const Rect own = frame();
    return point - QPointF(own.minX(), own.minY());
}

void MacSelectionWindow::setContentView(SelectionView *view)
{
    m_qtWindow->setContentView(view);
}

void MacSelectionWindow::setNeedsDisplay()
{
    m_qtWindow->setNeedsDisplay();
}

void MacSelectionWindow::displayIfNeeded()
{
    m_qtWindow->displayIfNeeded();
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

void MacSelectionWindow::orderOut()
{
    m_qtWindow->orderOut();
}
