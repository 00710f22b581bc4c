#pragma once

#include "platform/SelectionWindow.h"

#include <QPointer>

#include <memory>

class QWidget;

// One overlay window on macOS: the shared Qt overlay window (which paints the selection view, hands its
// input to the core and converts its frames), made a Qt tool window so that Cocoa gives it an NSPanel,
// with the native settings of a selection overlay applied to that panel: borderless and non-activating
// (it takes the keys without bringing Vistrel to the front), status-window level 25, no animation, clear
// background, not opaque, no shadow, accepting mouse events, on every Space and beside full-screen
// windows, kept out of Mission Control. Qt may reapply its own level and style when it shows a window,
// so the settings are applied again each time the window comes to the front. Main thread.
class MacSelectionWindow final : public SelectionWindow
{
public:
    // `qtWindow` drives `widget`, which its factory owns.
    MacSelectionWindow(std::unique_ptr<SelectionWindow> qtWindow, QWidget &widget);
    ~MacSelectionWindow() override;

    Rect frame() const override { return m_qtWindow->frame(); }
    void setFrame(const Rect &frame) override { m_qtWindow->setFrame(frame); }
    std::optional<DisplayInfo> screen() const override { return m_qtWindow->screen(); }
    Rect convertRectToScreen(const Rect &rect) const override { return m_qtWindow->convertRectToScreen(rect); }
    QPointF convertPointFromScreen(QPointF point) const override { return m_qtWindow->convertPointFromScreen(point); }

    void setContentView(SelectionView *view) override { m_qtWindow->setContentView(view); }
    void setPointerRouter(SelectionPointerRouter *router) override { m_qtWindow->setPointerRouter(router); }
    void setNeedsDisplay() override { m_qtWindow->setNeedsDisplay(); }
    void setNeedsDisplayInRect(const Rect &rect) override { m_qtWindow->setNeedsDisplayInRect(rect); }
    void displayIfNeeded() override { m_qtWindow->displayIfNeeded(); }

    void makeKeyAndOrderFront() override;
    void orderFront() override;
    void orderOut() override { m_qtWindow->orderOut(); }

private:
    void applyNativeSettings();

    std::unique_ptr<SelectionWindow> m_qtWindow;
    QPointer<QWidget> m_widget;
};
