#include "app/GnomeShortcutRules.h"

#include "settings/KeyTable.h"
#include "settings/ShortcutTriggers.h"

using namespace Qt::StringLiterals;

namespace gnomeshortcuts {

namespace {

using shortcutguidance::Command;

// The listed entry that runs this command; spacing typed by hand does not make it another command.
std::optional<Keybinding> entryRunning(const QList<Keybinding> &existing, Command command)
{
    const QString wanted = shortcutguidance::commandLine(command);
    for (const Keybinding &entry : existing) {
        if (entry.command.simplified() == wanted)
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

std::optional<Plan> plan(const QList<Keybinding> &existing, const ShortcutKeyCombo &select,
                         const ShortcutKeyCombo &repeat)
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
        result.entries.append({path, name, shortcutguidance::commandLine(command), *binding});
    }
    return result;
}

} // namespace gnomeshortcuts
