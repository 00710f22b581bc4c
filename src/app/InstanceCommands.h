#pragma once

#include <QString>
#include <QStringList>

class AppDelegate;

// What the running instance does with the command of a start: its own, and those later starts hand
// over through the instance channel. Main thread.
namespace instancecommands {

// "edit FILE" (or "edit" alone: the empty editor), "settings", "select", "repeat", "quit", "copy FILE"
// (a command-line capture to put on the clipboard); anything else, such as a second plain start, is
// only noted in the diagnostics log.
void perform(AppDelegate &delegate, const QString &command, const QStringList &arguments);

} // namespace instancecommands
