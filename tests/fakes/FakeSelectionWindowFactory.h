#pragma once

#include "FakeSelectionWindow.h"

#include "platform/SelectionWindowFactory.h"

class FakeSelectionWindowFactory final : public SelectionWindowFactory
{
public:
    explicit FakeSelectionWindowFactory(const FakeDisplayProvider &displays, QStringList *journal = nullptr)
        : m_displays(displays), m_journal(journal)
    {
    }

    std::unique_ptr<SelectionWindow> makeSelectionWindow() override
    {
        auto window = std::make_unique<FakeSelectionWindow>(m_displays, int(windows.size()), m_journal);
        windows.append(window.get());
        return window;
    }

    // Every window made, in order; owned by the pool.
    QList<FakeSelectionWindow *> windows;

private:
    const FakeDisplayProvider &m_displays;
    QStringList *m_journal;
};
