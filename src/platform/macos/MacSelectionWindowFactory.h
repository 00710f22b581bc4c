#pragma once

#include "platform/SelectionWindowFactory.h"

#include <memory>

class DisplayProvider;
class InputGrab;
class QtSelectionWindowFactory;

// Makes the overlay windows on macOS: the shared Qt overlay windows, each wrapped with its native
// settings. The key window gets the keys on macOS, so no input grab is taken. Main thread.
class MacSelectionWindowFactory final : public SelectionWindowFactory
{
public:
    explicit MacSelectionWindowFactory(const DisplayProvider &displays);
    ~MacSelectionWindowFactory() override;

    std::unique_ptr<SelectionWindow> makeSelectionWindow() override;

private:
    std::unique_ptr<InputGrab> m_noGrab;
    std::unique_ptr<QtSelectionWindowFactory> m_qtWindows;
};
