#pragma once

#include "platform/SelectionWindow.h"

#include <memory>

// Makes the overlay windows; called only when the pool of windows has to grow.
class SelectionWindowFactory
{
public:
    virtual ~SelectionWindowFactory() = default;
    virtual std::unique_ptr<SelectionWindow> makeSelectionWindow() = 0;
};
