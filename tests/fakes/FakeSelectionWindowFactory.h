#pragma once

#include "FakeSelectionWindow.h"

#include "platform/SelectionWindowFactory.h"

class FakeSelectionWindowFactory final : public SelectionWindowFactory
{
public:
    explicit FakeSelectionWindowFactory(const FakeDisplayProvider &displays) : m_displays(displays) {}

    std::unique_ptr<SelectionWindow> makeSelectionWindow() override
    {
        auto window = std::make_unique<FakeSelectionWindow>(m_displays);
        windows.append(window.get());
        return window;
    }

    // Every window made, in order; owned by the pool.
    QList<FakeSelectionWindow *> windows;

private:
    const FakeDisplayProvider &m_displays;
};
