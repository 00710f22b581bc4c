#pragma once

#include "platform/KeyEventMonitor.h"

#include <QMap>
#include <QObject>

// Local key monitors as an application-wide event filter: every key press on its way to one of our
// windows reaches the monitors first, as its macOS key code. Main thread.
class QtKeyEventMonitor final : public QObject, public KeyEventMonitor
{
public:
    QtKeyEventMonitor();
    ~QtKeyEventMonitor() override;

    Handle addLocalKeyDownMonitor(Handler handler) override;
    void removeMonitor(Handle monitor) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QMap<Handle, Handler> m_handlers;
    Handle m_nextHandle = 1;
};
