#include "PointerTracker.h"

#include <QCoreApplication>
#include <QEnterEvent>
#include <QMouseEvent>
#include <QWindow>

PointerTracker::PointerTracker()
{
    QCoreApplication::instance()->installEventFilter(this);
}

PointerTracker::~PointerTracker()
{
    if (QCoreApplication *application = QCoreApplication::instance())
        application->removeEventFilter(this);
}

bool PointerTracker::eventFilter(QObject *watched, QEvent *event)
{
    // The window's delivery only: the widgets it forwards to see the same event again.
    if (!qobject_cast<QWindow *>(watched))
        return false;
    switch (event->type()) {
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
        m_position = static_cast<QMouseEvent *>(event)->globalPosition();
        break;
    case QEvent::Enter:
        m_position = static_cast<QEnterEvent *>(event)->globalPosition();
        break;
    default:
        break;
    }
    return false;
}
