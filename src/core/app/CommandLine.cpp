#include "app/CommandLine.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace commandline {

namespace {

Parsed failed(const QString &reason)
{
    return {{}, reason % u" (see vistrel --help)"_s};
}

std::optional<int> displayNumber(const QString &text)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < 0 || text.startsWith(u'+'))
        return std::nullopt;
    return number;
}

std::optional<QRect> regionRect(const QString &text)
{
    static const QRegularExpression pattern(u"^(\\d{1,5}),(\\d{1,5}),(\\d{1,5}),(\\d{1,5})$"_s);
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QRect rect(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt(),
                     match.captured(4).toInt());
    if (rect.width() <= 0 || rect.height() <= 0)
        return std::nullopt;
    return rect;
}

// The options after "capture". An option's value follows it or comes after "=".
Parsed parseCapture(const QStringList &arguments)
{
    Parsed parsed;
    parsed.invocation.command = Command::Capture;
    CaptureOptions &options = parsed.invocation.capture;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        QString option = arguments.at(i);
        std::optional<QString> value;
        if (const qsizetype equals = option.indexOf(u'='); option.startsWith(u"--"_s) && equals > 0) {
            value = option.mid(equals + 1);
            option.truncate(equals);
        }
        const bool takesValue = option == u"--display"_s || option == u"--region"_s || option == u"-o"_s
            || option == u"--output"_s;
        if (!takesValue)
            return failed(u"capture does not know '%1'"_s.arg(arguments.at(i)));
        if (!value) {
            if (i + 1 >= arguments.size())
                return failed(option % u" needs a value"_s);
            value = arguments.at(++i);
        }
        if (option == u"--display"_s) {
            if (options.display)
                return failed(u"--display is given twice"_s);
            options.display = displayNumber(*value);
            if (!options.display)
                return failed(u"--display takes a display number from 0, as xrandr --listmonitors or the compositor lists them"_s);
        } else if (option == u"--region"_s) {
            if (options.region)
                return failed(u"--region is given twice"_s);
            options.region = regionRect(*value);
            if (!options.region)
                return failed(u"bad region '%1': --region takes X,Y,W,H in screen pixels, W and H above 0"_s
                                  .arg(*value));
        } else {
            if (options.output)
                return failed(u"-o is given twice"_s);
            if (value->isEmpty())
                return failed(u"-o needs a file name"_s);
            options.output = *value;
        }
    }
    if (options.display && options.region)
        return failed(u"--display and --region cannot be combined"_s);
    return parsed;
}

} // namespace

Parsed parse(const QStringList &arguments)
{
    if (arguments.contains(u"--help"_s) || arguments.contains(u"-h"_s))
        return {{Command::Help, {}, {}}, std::nullopt};
    if (arguments.contains(u"--version"_s))
        return {{Command::Version, {}, {}}, std::nullopt};
    if (arguments.isEmpty())
        return {};
    const QString &command = arguments.first();
    const QStringList rest = arguments.mid(1);
    if (command == u"capture"_s)
        return parseCapture(rest);
    if (command == u"edit"_s) {
        if (rest.size() > 1 || (rest.size() == 1 && rest.first().isEmpty()))
            return failed(u"edit takes at most one FILE"_s);
        return {{Command::Edit, {}, rest.value(0)}, std::nullopt};
    }
    const struct
    {
        QString name;
        Command command;
    } plain[] = {{u"activate"_s, Command::Activate}, {u"select"_s, Command::Select},
                 {u"repeat"_s, Command::Repeat}, {u"settings"_s, Command::Settings},
                 {u"quit"_s, Command::Quit}};
    for (const auto &entry : plain) {
        if (command != entry.name)
            continue;
        if (!rest.isEmpty())
            return failed(command % u" takes no arguments"_s);
        return {{entry.command, {}, {}}, std::nullopt};
    }
    return failed(u"unknown command '%1'"_s.arg(command));
}

QString usage()
{
    return uR"(Usage: vistrel [COMMAND]
A screenshot tool with an annotation editor, in the tray of an X11 or Wayland desktop.

Commands:
  (none)            start Vistrel in the tray; nothing happens when it already runs
  capture [--display N | --region X,Y,W,H] [-o FILE]
                    capture the whole screen, one display (N from 0: as xrandr
                    --listmonitors numbers them on X11, in the compositor's order of
                    outputs on Wayland, at their own pixels) or a rectangle (screen
                    pixels on X11, layout coordinates on Wayland), without the
                    overlay. With -o, write exactly FILE as PNG ("-" for standard
                    output); without it, save the capture as captures are saved
                    (folder, prefix and date from the settings), print its path, and
                    have the running Vistrel put it on the clipboard
  select            start a selection in the running Vistrel
  repeat            capture the last selected region again, in the running Vistrel
  edit [FILE]       open FILE in the editor, or the empty editor, starting Vistrel if
                    it does not run
  settings          show the settings, starting Vistrel if it does not run
  quit              quit the running Vistrel
  --help            show this help
  --version         show the version

Exit status: 0 on success, 1 when it failed (the reason is printed), 2 for wrong arguments.
)"_s;
}

QString versionText()
{
    return u"vistrel "_s % QStringLiteral(VISTREL_VERSION);
}

} // namespace commandline
