#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

// A shortcut of the key table (macOS virtual key code plus Carbon modifier word) written the ways the
// Linux desktops read it: xkbcommon keysym names for the key, and the modifiers in the order
// Ctrl, Alt, Shift, Super (the order of ⌃⌥⇧⌘), with ⌘ → Super, ⌥ → Alt, as the X11 grabs map them.
// Each is absent for a key code outside the table. Pure.
namespace shortcuttriggers {

// The xkbcommon name of the keysym the key produces unshifted: "s", "4", "minus", "Return".
std::optional<QString> keysymName(quint32 keyCode);

// The trigger text the GlobalShortcuts portal takes (the XDG shortcut format): "CTRL+SHIFT+4", "LOGO+SHIFT+s".
std::optional<QString> xdgTrigger(quint32 keyCode, quint32 carbonModifiers);
// The form of a sway bindsym: "Ctrl+Shift+4", "Shift+Mod4+s".
std::optional<QString> swayCombination(quint32 keyCode, quint32 carbonModifiers);
// The form desktops show in their shortcut settings: "Ctrl+Shift+4", "Shift+Super+S".
std::optional<QString> readableCombination(quint32 keyCode, quint32 carbonModifiers);

} // namespace shortcuttriggers
