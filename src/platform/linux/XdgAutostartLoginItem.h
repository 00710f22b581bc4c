#pragma once

#include "platform/LoginItemService.h"

#include <QString>

// The login item on Linux: an XDG autostart entry, "vistrel.desktop" in the user's autostart folder
// (~/.config/autostart). Registered means the entry is there and not hidden; desktops that follow the
// autostart convention start the program it names at login.
class XdgAutostartLoginItem final : public LoginItemService
{
public:
    // `executable` is the absolute path the entry starts.
    XdgAutostartLoginItem(const QString &autostartFolder, const QString &executable);

    Status status() const override;
    std::optional<QString> registerApp() override;
    std::optional<QString> unregisterApp() override;

    // What the settings window says under its login toggle, in the desktop's words for login items.
    static QString settingsCaption();

    QString entryPath() const;
    // The entry's contents: what registerApp() writes.
    QByteArray entry() const;

private:
    QString m_folder;
    QString m_executable;
};

namespace xdgautostart {
// The program as the Exec key of a desktop entry wants it: quoted when it holds a reserved character,
// with the escapes of both the Exec quoting and the string value.
QString execValue(const QString &program);
} // namespace xdgautostart
