#include "QtCursor.h"

#include "DesktopSpace.h"
#include "QtScreensDisplayProvider.h"

#include <QCursor>
#include <QGuiApplication>

QtCursor::QtCursor(const QtScreensDisplayProvider &displays) : m_displays(displays) {}

QtCursor::~QtCursor()
{
    while (m_hideCount > 0)
        unhide();
}

QPointF QtCursor::location() const
{
    return DesktopSpace::current().pointToGlobal(m_displays.pointerPosition().value_or(QPointF(QCursor::pos())));
}

void QtCursor::hide()
{
    ++m_hideCount;
    QGuiApplication::setOverrideCursor(Qt::BlankCursor);
}

void QtCursor::unhide()
{
    if (m_hideCount == 0)
        return;
    --m_hideCount;
    QGuiApplication::restoreOverrideCursor();
}
