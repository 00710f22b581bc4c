#pragma once

#include "SessionAdapters.h"

#include <QString>

#include <variant>

class SystemLog;

// The adapters of a Wayland session: Qt's own Wayland connection for windows, and a second connection of
// ours for screen copies; sway's IPC for window rectangles; the desktop portal for global shortcuts.
namespace waylandsession {

// The adapters, or why Vistrel cannot run on this compositor.
std::variant<SessionAdapters, QString> adapters(SystemLog &log);

} // namespace waylandsession
