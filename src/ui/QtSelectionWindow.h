#pragma once

#include "platform/SelectionWindow.h"

#include <QPointer>
#include <QScreen>

class DisplayProvider;
class InputGrab;
class SelectionOverlayWidget;

// The capture core's handle on one overlay window. The widget itself belongs to the factory, which
// outlives the event loop only as long as the application object does; the core's pool may be torn
// down later, at exit, so every call tolerates a widget that is already gone. Main thread.
class QtSelectionWindow final : public SelectionWindow
{
public:
    // `fillsScreen`: shown full screen on the display its frame lies on, and its frame is the one given
    // (the compositor, not the window, knows where it ends up).
    QtSelectionWindow(SelectionOverlayWidget *widget, const DisplayProvider &displays, InputGrab &grab,
                      bool fillsScreen = false);
    ~QtSelectionWindow() override;

    Rect frame() const override;
    void setFrame(const Rect &frame) override;
    std::optional<DisplayInfo> screen() const override;
    Rect convertRectToScreen(const Rect &rect) const override;
    QPointF convertPointFromScreen(QPointF point) const override;

    void setContentView(SelectionView *view) override;
    void setPointerRouter(SelectionPointerRouter *router) override;
    void setNeedsDisplay() override;
    void setNeedsDisplayInRect(const Rect &rect) override;
    void displayIfNeeded() override;

    void makeKeyAndOrderFront() override;
    void orderFront() override;
    void orderOut() override;

private:
    QPointer<SelectionOverlayWidget> m_widget;
    const DisplayProvider &m_displays;
    InputGrab &m_grab;
    bool m_holdsGrab = false;
    bool m_fillsScreen = false;
    std::optional<Rect> m_frame;
    // The display the window was put on, and the watch that hides it when Qt moves it off that display.
    QPointer<QScreen> m_screen;
    QMetaObject::Connection m_screenWatch;
};
