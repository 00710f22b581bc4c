#include "app/GnomeShortcutRules.h"

#include "settings/KeyTable.h"
#include "settings/ShortcutTriggers.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace gnomeshortcuts {

namespace {

using shortcutguidance::Command;

// The listed entry that runs this command of a Vistrel, by name or by path; spacing typed by hand does
// not make it another command.
std::optional<Keybinding> entryRunning(const QList<Keybinding> &existing, Command command)
{
    const QString argument = shortcutguidance::commandLine(command).section(u' ', 1);
    for (const Keybinding &entry : existing) {
        const QStringList words = entry.command.simplified().split(u' ');
        if (words.size() == 2 && QFileInfo(words.first()).fileName() == u"vistrel"_s && words.last() == argument)
            return entry;
    }
    return std::nullopt;
}

QString freePath(const QStringList &taken)
{
    for (int n = 0;; ++n) {
        const QString path = entryFolder % u"custom"_s % QString::number(n) % u'/';
        if (!taken.contains(path))
            return path;
    }
}

} // namespace

std::optional<QString> accelerator(const ShortcutKeyCombo &combo)
{
    const std::optional<quint32> code = keytable::keyCode(combo.normalizedKey());
    const std::optional<QString> key = code ? shortcuttriggers::keysymName(*code) : std::nullopt;
    if (!key)
        return std::nullopt;
    const quint32 modifiers = keytable::carbonModifierFlags(combo);
    QString text;
    if (modifiers & keytable::CarbonShift)
        text += u"<Shift>"_s;
    if (modifiers & keytable::CarbonControl)
        text += u"<Control>"_s;
    if (modifiers & keytable::CarbonOption)
        text += u"<Alt>"_s;
    if (modifiers & keytable::CarbonCommand)
        text += u"<Super>"_s;
    return text + *key;
}

QString entryName(Command command)
{
    return command == Command::Select ? u"Vistrel: スクリーンショットを撮る"_s : u"Vistrel: 繰り返し撮影"_s;
}

QString program(const QString &executable, const QString &onPath)
{
    if (!onPath.isEmpty() && QFileInfo(onPath).canonicalFilePath() == QFileInfo(executable).canonicalFilePath())
        return u"vistrel"_s;
    return executable.contains(u' ') ? u'\'' + executable + u'\'' : executable;
}

std::optional<Plan> plan(const QList<Keybinding> &existing, const ShortcutKeyCombo &select,
                         const ShortcutKeyCombo &repeat, const QString &program)
{
    Plan result;
    for (const Keybinding &entry : existing)
        result.paths.append(entry.path);
    const std::pair<Command, ShortcutKeyCombo> wanted[] = {{Command::Select, select}, {Command::Repeat, repeat}};
    for (const auto &[command, combo] : wanted) {
        const std::optional<QString> binding = accelerator(combo);
        if (!binding)
            return std::nullopt;
        const std::optional<Keybinding> current = entryRunning(existing, command);
        const QString path = current ? current->path : freePath(result.paths);
        if (!current)
            result.paths.append(path);
        // A name the user gave their own entry stays.
        const QString name = current && !current->name.isEmpty() ? current->name : entryName(command);
        const QString argument = shortcutguidance::commandLine(command).section(u' ', 1);
        result.entries.append({path, name, program + u' ' + argument, *binding});
    }
    return result;
}

} // namespace gnomeshortcuts
