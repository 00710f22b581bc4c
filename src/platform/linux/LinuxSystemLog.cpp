#include "LinuxSystemLog.h"

#include <QByteArray>

#include <cstdio>
#include <syslog.h>

LinuxSystemLog::LinuxSystemLog()
{
    openlog("vistrel", LOG_PID, LOG_USER);
}

LinuxSystemLog::~LinuxSystemLog()
{
    closelog();
}

void LinuxSystemLog::log(const QString &message)
{
    const QByteArray utf8 = message.toUtf8();
    // One write per line, so lines from two threads never interleave.
    const QByteArray line = utf8 + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
    std::fflush(stderr);
    syslog(LOG_NOTICE, "%s", utf8.constData());
}
