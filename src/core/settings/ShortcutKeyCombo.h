#pragma once

#include <QString>

// One global shortcut: a key named by text plus a set of modifier flags, compared by value.
//
// The modifier set uses the macOS modifier-flag bits, on every system, because they are what the
// settings store keeps. Only the four named flags carry meaning; any other bit is kept and stored but
// ignored.
struct ShortcutKeyCombo
{
    enum Modifier : quint64 {
        Shift = 0x20000,
        Control = 0x40000,
        Option = 0x80000,
        Command = 0x100000,
    };

    QString key;
    quint64 modifiers = 0;

    bool has(Modifier modifier) const { return (modifiers & modifier) != 0; }
    void set(Modifier modifier, bool on);

    // The key with white space trimmed at both ends, upper-cased.
    QString normalizedKey() const;
    // "⌃⌥⇧⌘" (those present, in that order) followed by the normalized key; "未設定" when both are empty.
    QString displayText() const;

    bool operator==(const ShortcutKeyCombo &other) const = default;
};
