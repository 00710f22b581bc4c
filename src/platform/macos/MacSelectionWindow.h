#pragma once

#include "platform/SelectionWindow.h"

#include <QPointer>

#include <memory>

class DisplayProvider;
class QWidget;

// One overlay window on macOS: the shared Qt overlay window (which paints the selection view and routes
// its input), made a Qt tool window so that Cocoa gives it an NSPanel, with the native settings of a
// selection overlay applied to that panel: borderless and non-activating (it takes the keys without
// bringing Vistrel to the front), status-window level 25, no animation, clear background, not opaque,
// no shadow, accepting mouse events, on every Space and beside full-screen windows, kept out of
// Mission Control. Qt may reapply its own level and style when it shows a window, so the settings are
// applied again each time the window comes to the front.
//
// Frames are read and set through Qt's geometry, which on macOS is the top-left global space of
// CoreGraphics, flipped around the primary display's top edge. Main thread.
class MacSelectionWindow final : public SelectionWindow
{
public:
    // `qtWindow` drives `widget`, which the factory owns.
    MacSelectionWindow(std::unique_ptr<SelectionWindow> qtWindow, QWidget &widget, const DisplayProvider &displays);
    ~MacSelectionWindow() override;

    Rect frame() const override;
    void setFrame(const Rect &frame) override;
    // The display of the window's NSScreen.
    std::optional<DisplayInfo> screen() const override;
    Rect convertRectToScreen(const Rect &rect) const override;
    QPointF convertPointFromScreen(QPointF point) const override;

    void setContentView(SelectionView *view) override;
    void setNeedsDisplay() override;
    void displayIfNeeded() override;

    void makeKeyAndOrderFront() override;
    void orderFront() override;
    void orderOut() override;

private:
    double desktopTopY() const;
    void applyNativeSettings();

    std::unique_ptr<SelectionWindow> m_qtWindow;
    QPointer<QWidget> m_widget;
    const DisplayProvider &m_displays;
};
