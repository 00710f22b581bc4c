#pragma once

#include <QtGlobal>

#include <optional>

// The shortcut keys in X terms: the macOS virtual key codes of the key table as X keysyms, and the
// Carbon modifier word as an X modifier mask. Pure tables, so they are tested without a display.
namespace x11keys {

// X core modifier bits.
enum ModifierMask : quint16 {
    ShiftMask = 0x0001,
    LockMask = 0x0002,
    ControlMask = 0x0004,
    Mod1Mask = 0x0008, // Alt
    Mod4Mask = 0x0040, // Super
};

// The keysym that the key of this macOS virtual key code (US ANSI layout) produces unshifted: letters
// are lower case, because Shift is a modifier of the same key. Nothing for a code outside the table.
std::optional<quint32> keysymForMacKeyCode(quint32 keyCode);

// ⌘ → Super (Mod4), ⌥ → Alt (Mod1), ⌃ → Control, ⇧ → Shift; other bits add nothing.
quint16 modifierMask(quint32 carbonModifiers);

} // namespace x11keys
