#include "XdgAutostartLoginItem.h"

#include "AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace xdgautostart {

QString execValue(const QString &program)
{
    static const QString reserved = u" \t\n\"'\\><~|&;$*?#()`"_s;
    bool needsQuotes = false;
    for (const QChar c : program)
        needsQuotes = needsQuotes || reserved.contains(c);
    QString value = program;
    if (needsQuotes) {
        QString quoted;
        for (const QChar c : program) {
            if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
                quoted += u'\\';
            quoted += c;
        }
        value = u'"' + quoted + u'"';
    }
    // The string-value escape applies on top of the quoting rules.
    return value.replace(u"\\"_s, u"\\\\"_s);
}

} // namespace xdgautostart

XdgAutostartLoginItem::XdgAutostartLoginItem(const QString &autostartFolder, const QString &executable)
    : m_folder(autostartFolder), m_executable(executable)
{
}

QString XdgAutostartLoginItem::settingsCaption()
{
    // "Autostart applications" is what GNOME, KDE and Xfce call these entries.
    return u"自動起動アプリケーションとして登録し、ログイン時にVistrelを起動します。"_s;
}

QString XdgAutostartLoginItem::entryPath() const
{
    return m_folder + u"/vistrel.desktop"_s;
}

QByteArray XdgAutostartLoginItem::entry() const
{
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Vistrel\n"
           "Exec=" + xdgautostart::execValue(m_executable).toUtf8() + "\n"
           "Icon=vistrel\n"
           "Terminal=false\n"
           "X-GNOME-Autostart-enabled=true\n";
}

LoginItemService::Status XdgAutostartLoginItem::status() const
{
    if (!QFile::exists(entryPath()))
        return Status::NotRegistered;
    // An entry the user switched off in the desktop's settings stays, marked hidden.
    QSettings desktopEntry(entryPath(), QSettings::IniFormat);
    const bool hidden = desktopEntry.value(u"Desktop Entry/Hidden"_s).toString() == u"true"_s;
    return hidden ? Status::NotRegistered : Status::Enabled;
}

std::optional<QString> XdgAutostartLoginItem::registerApp()
{
    if (!QDir().mkpath(m_folder))
        return u"cannot create the folder %1"_s.arg(m_folder);
    if (const std::optional<QString> error = atomicfile::write(entryPath(), entry()))
        return u"cannot write %1: %2"_s.arg(entryPath(), *error);
    return std::nullopt;
}

std::optional<QString> XdgAutostartLoginItem::unregisterApp()
{
    QFile file(entryPath());
    if (!file.exists() || file.remove())
        return std::nullopt;
    return u"cannot remove %1: %2"_s.arg(entryPath(), file.errorString());
}
