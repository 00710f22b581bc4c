#pragma once

#include <QProcessEnvironment>
#include <QString>

#include <optional>

// Whether Vistrel can run here: it needs an X11 display (global key grabs, screen grabs and window
// lists have no Wayland equivalent it could use). main() prints the message and exits with status 1.
namespace x11session {

// From DISPLAY, WAYLAND_DISPLAY and XDG_SESSION_TYPE: what is missing, in plain English, or nothing
// when an X display is named.
std::optional<QString> missingDisplayMessage(const QProcessEnvironment &environment);

// Connects to the display once: the message when it cannot be reached, or nothing.
std::optional<QString> unreachableDisplayMessage(const QString &display);
// The message itself, for callers that connect on their own.
QString unreachableDisplayText(const QString &display);

} // namespace x11session
