#pragma once

#include "ChildProcess.h"

#include <QSize>
#include <QString>

// A private X server for one test program, on a display number Xvfb picks itself, so test programs
// of several builds can run side by side. -noreset keeps it (and its state) alive between clients.
class XvfbServer
{
public:
    explicit XvfbServer(QSize size = QSize(1280, 800));

    bool isRunning() const { return !m_display.isEmpty(); }
    // ":N"
    const QString &display() const { return m_display; }

private:
    ChildProcess m_process;
    QString m_display;
};
