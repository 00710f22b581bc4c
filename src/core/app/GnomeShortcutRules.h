#pragma once

#include "app/ShortcutGuidanceRules.h"
#include "platform/CustomKeybindingStore.h"
#include "settings/ShortcutKeyCombo.h"

#include <QString>

#include <optional>

// GNOME keeps custom shortcuts as relocatable entries under one folder of the media-keys settings,
// listed by path. These rules turn the user's keys into GNOME's accelerators and say which entries to
// write so that `vistrel select` and `vistrel repeat` are bound once each, beside the user's own. Pure.
namespace gnomeshortcuts {

using Keybinding = CustomKeybindingStore::Keybinding;

// Where GNOME Settings puts the entries it makes ("custom0/", "custom1/", ...).
inline const QString entryFolder = QStringLiteral("/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/");

// GNOME's accelerator syntax, modifiers in the order GTK writes them: "<Shift><Super>s",
// "<Control><Alt>minus". Absent for a key outside the table.
std::optional<QString> accelerator(const ShortcutKeyCombo &combo);

// The name the entry shows in GNOME's keyboard settings.
QString entryName(shortcutguidance::Command command);

struct Plan
{
    // Our two entries, select first.
    QList<Keybinding> entries;
    // Every path listed before, in its order, then the new ones.
    QStringList paths;
};
// How a shortcut starts this Vistrel: "vistrel" where that name on PATH (`onPath`, empty when none) is
// this executable, else the executable's path, so a build run from its tree is bound as well.
QString program(const QString &executable, const QString &onPath);

// An entry that already runs one of our commands (by name or by path) is rewritten in place, so binding
// again adds nothing; otherwise the entry goes to the first "customN/" folder no listed path uses. The
// commands start `program`. Absent when a key has no accelerator.
std::optional<Plan> plan(const QList<Keybinding> &existing, const ShortcutKeyCombo &select,
                         const ShortcutKeyCombo &repeat, const QString &program = QStringLiteral("vistrel"));

} // namespace gnomeshortcuts
