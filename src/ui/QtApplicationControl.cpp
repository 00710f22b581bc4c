#include "QtApplicationControl.h"

#include <QApplication>
#include <QWidget>

void QtApplicationControl::setAccessoryActivationPolicy()
{
    QApplication::setQuitOnLastWindowClosed(false);
}

void QtApplicationControl::activate()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (!widget->isVisible() || widget->windowType() == Qt::Popup || widget->windowType() == Qt::ToolTip)
            continue;
        widget->raise();
        widget->activateWindow();
    }
}

void QtApplicationControl::terminate()
{
    QCoreApplication::quit();
}
