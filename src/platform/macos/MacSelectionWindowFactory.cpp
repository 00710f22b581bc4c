#include "MacSelectionWindowFactory.h"

#include "MacSelectionWindow.h"

#include "InputGrab.h"
#include "QtSelectionWindowFactory.h"
#include "SelectionOverlayWidget.h"

namespace {

class NoInputGrab final : public InputGrab
{
public:
    void grab(QWindow &) override {}
    void release() override {}
};

} // namespace

MacSelectionWindowFactory::MacSelectionWindowFactory(const DisplayProvider &displays)
    : m_noGrab(std::make_unique<NoInputGrab>()),
      m_qtWindows(std::make_unique<QtSelectionWindowFactory>(displays, *m_noGrab))
{
}

MacSelectionWindowFactory::~MacSelectionWindowFactory() = default;

std::unique_ptr<SelectionWindow> MacSelectionWindowFactory::makeSelectionWindow()
{
    std::unique_ptr<SelectionWindow> qtWindow = m_qtWindows->makeSelectionWindow();
    SelectionOverlayWidget &widget = *m_qtWindows->widgets().back();
    return std::make_unique<MacSelectionWindow>(std::move(qtWindow), widget);
}
