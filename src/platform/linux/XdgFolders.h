#pragma once

#include <QProcessEnvironment>
#include <QString>

// Where Vistrel keeps its files on Linux, after the XDG base directories: a variable holding an
// absolute path wins, otherwise the default under HOME.
namespace xdgfolders {

// $XDG_STATE_HOME/Vistrel, by default ~/.local/state/Vistrel.
QString diagnosticsLogFolder(const QProcessEnvironment &environment);
// $XDG_CONFIG_HOME/Vistrel/settings.json, by default under ~/.config.
QString settingsPath(const QProcessEnvironment &environment);
// $XDG_CONFIG_HOME/autostart.
QString autostartFolder(const QProcessEnvironment &environment);

} // namespace xdgfolders
