#pragma once

#include <QByteArray>
#include <QStringList>

#include <sys/types.h>

// A helper program the tests start (Xvfb, dbus-daemon, dunst, trayer…), usable before any
// QCoreApplication exists. It is stopped (SIGTERM, then SIGKILL) when the object goes.
class ChildProcess
{
public:
    ChildProcess() = default;
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;
    ~ChildProcess();

    // Starts `program` (looked up in PATH) with the current environment plus `extraEnvironment`
    // ("NAME=value" entries). With `firstLine`, the child's standard output is a pipe and start() waits
    // up to ten seconds for its first line, returned there.
    bool start(const QString &program, const QStringList &arguments, const QStringList &extraEnvironment = {},
               QByteArray *firstLine = nullptr);
    void stop();

    // True when `program` is found in PATH.
    static bool exists(const QString &program);

private:
    pid_t m_pid = -1;
    int m_lineFd = -1;
};
