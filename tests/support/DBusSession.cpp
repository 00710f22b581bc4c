#include "DBusSession.h"

#include <QFile>

using namespace Qt::StringLiterals;

DBusSession::DBusSession()
{
    const QString config = m_folder.filePath(u"session.conf"_s);
    QFile file(config);
    if (!m_folder.isValid() || !file.open(QIODevice::WriteOnly))
        return;
    file.write("<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
               " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
               "<busconfig>\n"
               "  <type>session</type>\n"
               "  <listen>unix:dir=" + m_folder.path().toLocal8Bit() + "</listen>\n"
               "  <auth>EXTERNAL</auth>\n"
               "  <policy context=\"default\">\n"
               "    <allow send_destination=\"*\" eavesdrop=\"true\"/>\n"
               "    <allow eavesdrop=\"true\"/>\n"
               "    <allow own=\"*\"/>\n"
               "  </policy>\n"
               "</busconfig>\n");
    file.close();
    QByteArray address;
    if (m_process.start(u"dbus-daemon"_s, {u"--config-file="_s + config, u"--nofork"_s, u"--print-address=1"_s}, {},
                        &address)) {
        m_address = QString::fromLocal8Bit(address.trimmed());
    }
}

QString DBusSession::environmentEntry() const
{
    return u"DBUS_SESSION_BUS_ADDRESS="_s + m_address;
}
