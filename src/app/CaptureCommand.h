#pragma once

#include "app/CommandLine.h"

#include <QProcessEnvironment>
#include <QString>

#include <functional>

// `vistrel capture`: the whole screen, one display or a rectangle of it, read from the X server or the
// Wayland compositor and written as PNG in this process, through the application's own readers and
// encoder (pngencoder), with no overlay and no Qt GUI library: it is over before a GUI program has
// started.
//
// With -o the file is written exactly there ("-": standard output). Without it the capture is saved as
// captures are (the settings' folder, prefix and date), its path printed, and `copyToClipboard` asked
// to have the running instance serve it on the clipboard (the only thing that outlives this process).
namespace capturecommand {

// Puts the saved file on the clipboard; returns a note for standard error when it could not.
using CopyToClipboard = std::function<std::optional<QString>(const QString &path)>;

// The exit status. Failures are one line on standard error.
int run(const commandline::CaptureOptions &options, const QProcessEnvironment &environment,
        const CopyToClipboard &copyToClipboard);

} // namespace capturecommand
