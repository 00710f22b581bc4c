#pragma once

#include <QRect>
#include <QString>
#include <QStringList>

#include <optional>

// What one start of the program asks for, read from its arguments (without the program name):
//
//   vistrel [capture [--display N | --region X,Y,W,H] [-o FILE] | select | repeat | edit [FILE] |
//            settings | quit]
//   vistrel --help | --version
//
// Pure: no file, display or instance is looked at here.
namespace commandline {

enum class Command {
    // A plain start: run in the tray, or leave it to the instance that already runs.
    Activate,
    Capture,
    Select,
    Repeat,
    Edit,
    Settings,
    Quit,
    Help,
    Version,
};

// What a capture from the command line takes.
struct CaptureOptions
{
    // The display's number as `xrandr --listmonitors` shows it on X11; the output's place in the
    // compositor's list on Wayland.
    std::optional<int> display;
    // A rectangle in pixels of the whole screen (the root window) on X11, in layout coordinates on
    // Wayland; top-left origin.
    std::optional<QRect> region;
    // The file to write, "-" for standard output; without it the capture is saved as captures are.
    std::optional<QString> output;
};

struct Invocation
{
    Command command = Command::Activate;
    CaptureOptions capture;
    // The file of `edit`, as given; empty for the empty editor.
    QString file;
};

struct Parsed
{
    Invocation invocation;
    // Set when the arguments are wrong: one line saying why, and nothing is to be done.
    std::optional<QString> error;
};

Parsed parse(const QStringList &arguments);
// The text of --help.
QString usage();
// "vistrel 0.1.0".
QString versionText();

// Exit statuses.
constexpr int exitSuccess = 0;
constexpr int exitFailure = 1;
constexpr int exitWrongArguments = 2;

} // namespace commandline
