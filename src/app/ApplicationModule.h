#pragma once

#include "ApplicationEntry.h"

#include <QString>
#include <QStringList>

#include <optional>

// Loads the application module: beside the program in the build tree, or in the program's library
// folder once installed. Used by the command line, which loads it at most once.
namespace applicationmodule {

struct Entries
{
    applicationentry::MainFunction main = nullptr;
    applicationentry::ForwardFunction forward = nullptr;
};

// The module's entry points, or nothing after writing why to `error`.
std::optional<Entries> load(QString &error);

// Runs Entries::main with `arguments` after the program's own name.
int runApplication(const Entries &entries, const char *programName, const QStringList &arguments);
// Hands a command to the running instance through Entries::forward.
applicationentry::ForwardResult forward(const Entries &entries, const QString &command,
                                        const QStringList &arguments);

} // namespace applicationmodule
