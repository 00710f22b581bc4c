#pragma once

#include "platform/HotKeyRegistrar.h"
#include "settings/ShortcutKeyCombo.h"

#include <QString>

// Where nothing binds the global shortcuts (a Wayland desktop without a GlobalShortcuts portal, or one
// that refused), the user binds the commands `vistrel select` and `vistrel repeat` in the desktop's own
// settings. These rules say when to tell them and with which words, for the keys they configured.
// Pure.
namespace shortcutguidance {

enum class Desktop { Sway, Gnome, Kde, Other };
enum class Command { Select, Repeat };

// From XDG_CURRENT_DESKTOP (a colon-separated list, any case) and whether SWAYSOCK is set: sway sets
// only the latter for its children.
Desktop desktopFrom(const QString &currentDesktop, bool hasSwaySocket);

bool needsGuidance(HotKeyRegistrar::Binder binder);

// "vistrel select".
QString commandLine(Command command);

// What the shortcut's row in the settings says it is bound to; empty where the system binds it
// (macOS), which needs no word.
QString bindingText(HotKeyRegistrar::Binder binder, Desktop desktop, Command command, const ShortcutKeyCombo &combo);

struct Notice
{
    QString title;
    QString body;
};
// The one notification that tells how to bind both commands.
Notice notice(Desktop desktop, const ShortcutKeyCombo &capture, const ShortcutKeyCombo &repeat);

// The one notification that tells, where no tray shows the status item, how to reach Vistrel: the keys
// (the commands, where nothing binds the keys), `vistrel settings`, and the launcher entry's settings
// action.
Notice traylessNotice(HotKeyRegistrar::Binder binder, const ShortcutKeyCombo &capture, const ShortcutKeyCombo &repeat);

} // namespace shortcutguidance
