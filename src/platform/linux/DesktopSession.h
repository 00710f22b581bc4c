#pragma once

#include <QProcessEnvironment>
#include <QString>

#include <optional>
#include <variant>

// Which desktop Vistrel runs on, from the environment it was started in. A Wayland session gets the
// Wayland adapters, never X11 grabs through Xwayland: those see only X clients, neither the screen nor
// the keyboard. VISTREL_SESSION=x11 or =wayland forces a choice. main() prints the message and exits
// with status 1.
namespace desktopsession {

enum class Kind { X11, Wayland };

// Wayland when WAYLAND_DISPLAY is set or XDG_SESSION_TYPE=wayland, else X11 when DISPLAY is set; the
// message, in plain English, when neither is there or the forced session is not.
std::variant<Kind, QString> choose(const QProcessEnvironment &environment);

// Connects to the X display once: the message when it cannot be reached, or nothing.
std::optional<QString> unreachableDisplayMessage(const QString &display);
// The message itself, for callers that connect on their own.
QString unreachableDisplayText(const QString &display);

} // namespace desktopsession
