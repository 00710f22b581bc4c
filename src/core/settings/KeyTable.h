#pragma once

#include "settings/ShortcutKeyCombo.h"

#include <QList>
#include <QString>

#include <optional>

// The keys a global shortcut may use, with the macOS virtual key code of each (US ANSI layout), and the
// Carbon modifier word of a combination. Platform adapters translate the codes to their own keys.
namespace keytable {

struct Entry
{
    QString name;
    quint32 code;
};

// The 50 names, in a fixed order.
const QList<Entry> &entries();

// Exact and case-sensitive: callers pass ShortcutKeyCombo::normalizedKey().
std::optional<quint32> keyCode(const QString &name);

enum CarbonModifier : quint32 {
    CarbonCommand = 0x100,
    CarbonShift = 0x200,
    CarbonOption = 0x800,
    CarbonControl = 0x1000,
};

quint32 carbonModifierFlags(const ShortcutKeyCombo &combo);

} // namespace keytable
