#pragma once

#include "platform/SelectionWindowFactory.h"

#include <memory>
#include <vector>

class DirectWindowPainter;
class DisplayProvider;
class InputGrab;
class SelectionOverlayWidget;

// Makes the overlay windows as Qt widgets and owns them, so they are gone before the application
// object is. Main thread.
class QtSelectionWindowFactory final : public SelectionWindowFactory
{
public:
    // Where an overlay window goes: at its frame (X11, where it bypasses the window manager), or full
    // screen on the display under its frame (Wayland, where only the compositor places windows).
    enum class Placement { Frame, FillScreen };

    // `painter`, when given, paints the windows without Qt's backing store.
    QtSelectionWindowFactory(const DisplayProvider &displays, InputGrab &grab, Placement placement = Placement::Frame,
                             DirectWindowPainter *painter = nullptr);
    ~QtSelectionWindowFactory() override;

    std::unique_ptr<SelectionWindow> makeSelectionWindow() override;
    // Makes one hidden window per display now, with its native window and pixel buffer,
    // so that the first selection only shows them. Shows nothing and takes no input.
    void prepare();

    const std::vector<std::unique_ptr<SelectionOverlayWidget>> &widgets() const { return m_widgets; }

private:
    const DisplayProvider &m_displays;
    InputGrab &m_grab;
    Placement m_placement;
    DirectWindowPainter *m_painter;
    std::vector<std::unique_ptr<SelectionOverlayWidget>> m_widgets;
    // Made by prepare() and not handed out yet, in display order.
    std::vector<std::unique_ptr<SelectionOverlayWidget>> m_prepared;
};
