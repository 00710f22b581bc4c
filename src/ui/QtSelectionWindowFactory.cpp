#include "QtSelectionWindowFactory.h"

#include "InputGrab.h"
#include "QtSelectionWindow.h"
#include "SelectionOverlayWidget.h"

#include "platform/DisplayProvider.h"

QtSelectionWindowFactory::QtSelectionWindowFactory(const DisplayProvider &displays, InputGrab &grab,
                                                   Placement placement, DirectWindowPainter *painter)
    : m_displays(displays), m_grab(grab), m_placement(placement), m_painter(painter)
{
}

QtSelectionWindowFactory::~QtSelectionWindowFactory()
{
    m_grab.release();
}

std::unique_ptr<SelectionWindow> QtSelectionWindowFactory::makeSelectionWindow()
{
    if (m_prepared.empty()) {
        m_widgets.push_back(std::make_unique<SelectionOverlayWidget>(m_painter));
        m_widgets.back()->setWindowTitle(QStringLiteral("Vistrel"));
    } else {
        m_widgets.push_back(std::move(m_prepared.front()));
        m_prepared.erase(m_prepared.begin());
    }
    return std::make_unique<QtSelectionWindow>(m_widgets.back().get(), m_displays, m_grab,
                                               m_placement == Placement::FillScreen);
}

void QtSelectionWindowFactory::prepare()
{
    const QList<DisplayInfo> displays = m_displays.screens();
    while (m_prepared.size() < size_t(displays.size())) {
        auto widget = std::make_unique<SelectionOverlayWidget>(m_painter);
        widget->setWindowTitle(QStringLiteral("Vistrel"));
        // Placed as a selection would place it, so showing it later neither moves nor resizes it.
        QtSelectionWindow(widget.get(), m_displays, m_grab, m_placement == Placement::FillScreen)
            .setFrame(displays.at(qsizetype(m_prepared.size())).frame);
        widget->prepareHidden();
        m_prepared.push_back(std::move(widget));
    }
}
