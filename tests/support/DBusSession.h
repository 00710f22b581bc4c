#pragma once

#include "ChildProcess.h"

#include <QString>
#include <QTemporaryDir>

// A private session bus for one test: no service can be activated on it, so a notification server
// exists exactly when the test started one.
class DBusSession
{
public:
    DBusSession();

    bool isRunning() const { return !m_address.isEmpty(); }
    const QString &address() const { return m_address; }
    // "DBUS_SESSION_BUS_ADDRESS=…", for helpers started on this bus.
    QString environmentEntry() const;

private:
    QTemporaryDir m_folder;
    ChildProcess m_process;
    QString m_address;
};
