#include "QtKeyEventMonitor.h"

#include "MacKeyCodes.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QWindow>

QtKeyEventMonitor::QtKeyEventMonitor()
{
    QCoreApplication::instance()->installEventFilter(this);
}

QtKeyEventMonitor::~QtKeyEventMonitor()
{
    QCoreApplication::instance()->removeEventFilter(this);
}

KeyEventMonitor::Handle QtKeyEventMonitor::addLocalKeyDownMonitor(Handler handler)
{
    const Handle handle = m_nextHandle++;
    m_handlers.insert(handle, std::move(handler));
    return handle;
}

void QtKeyEventMonitor::removeMonitor(Handle monitor)
{
    m_handlers.remove(monitor);
}

bool QtKeyEventMonitor::eventFilter(QObject *watched, QEvent *event)
{
    // A key press passes the filter once for its window and again for each widget it is sent to;
    // only the window's delivery counts.
    if (event->type() != QEvent::KeyPress || !qobject_cast<QWindow *>(watched) || m_handlers.isEmpty())
        return false;
    const std::optional<int> code = mackeycodes::fromQtKey(static_cast<QKeyEvent *>(event)->key());
    if (!code)
        return false;
    // A handler may remove itself (or others) while it runs.
    const QList<Handler> handlers = m_handlers.values();
    for (const Handler &handler : handlers) {
        if (handler(*code))
            return true;
    }
    return false;
}
