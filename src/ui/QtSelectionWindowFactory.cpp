#include "QtSelectionWindowFactory.h"

#include "InputGrab.h"
#include "QtSelectionWindow.h"
#include "SelectionOverlayWidget.h"

QtSelectionWindowFactory::QtSelectionWindowFactory(const DisplayProvider &displays, InputGrab &grab,
                                                   Placement placement)
    : m_displays(displays), m_grab(grab), m_placement(placement)
{
}

QtSelectionWindowFactory::~QtSelectionWindowFactory()
{
    m_grab.release();
}

std::unique_ptr<SelectionWindow> QtSelectionWindowFactory::makeSelectionWindow()
{
    m_widgets.push_back(std::make_unique<SelectionOverlayWidget>());
    SelectionOverlayWidget *widget = m_widgets.back().get();
    widget->setWindowTitle(QStringLiteral("Vistrel"));
    return std::make_unique<QtSelectionWindow>(widget, m_displays, m_grab,
                                               m_placement == Placement::FillScreen);
}
