#include "settings/KeyTable.h"

namespace keytable {

const QList<Entry> &entries()
{
    static const QList<Entry> table = {
        {QStringLiteral("A"), 0},   {QStringLiteral("B"), 11},  {QStringLiteral("C"), 8},
        {QStringLiteral("D"), 2},   {QStringLiteral("E"), 14},  {QStringLiteral("F"), 3},
        {QStringLiteral("G"), 5},   {QStringLiteral("H"), 4},   {QStringLiteral("I"), 34},
        {QStringLiteral("J"), 38},  {QStringLiteral("K"), 40},  {QStringLiteral("L"), 37},
        {QStringLiteral("M"), 46},  {QStringLiteral("N"), 45},  {QStringLiteral("O"), 31},
        {QStringLiteral("P"), 35},  {QStringLiteral("Q"), 12},  {QStringLiteral("R"), 15},
        {QStringLiteral("S"), 1},   {QStringLiteral("T"), 17},  {QStringLiteral("U"), 32},
        {QStringLiteral("V"), 9},   {QStringLiteral("W"), 13},  {QStringLiteral("X"), 7},
        {QStringLiteral("Y"), 16},  {QStringLiteral("Z"), 6},
        {QStringLiteral("0"), 29},  {QStringLiteral("1"), 18},  {QStringLiteral("2"), 19},
        {QStringLiteral("3"), 20},  {QStringLiteral("4"), 21},  {QStringLiteral("5"), 23},
        {QStringLiteral("6"), 22},  {QStringLiteral("7"), 26},  {QStringLiteral("8"), 28},
        {QStringLiteral("9"), 25},
        {QStringLiteral("-"), 27},  {QStringLiteral("="), 24},  {QStringLiteral("["), 33},
        {QStringLiteral("]"), 30},  {QStringLiteral("\\"), 42}, {QStringLiteral(";"), 41},
        {QStringLiteral("'"), 39},  {QStringLiteral(","), 43},  {QStringLiteral("."), 47},
        {QStringLiteral("/"), 44},
        {QStringLiteral("SPACE"), 49},
        // Both names stand for the main Return key; the keypad's Enter is not reachable.
        {QStringLiteral("ENTER"), 36}, {QStringLiteral("RETURN"), 36},
        {QStringLiteral("TAB"), 48},
    };
    return table;
}

std::optional<quint32> keyCode(const QString &name)
{
    for (const Entry &entry : entries()) {
        if (entry.name == name)
            return entry.code;
    }
    return std::nullopt;
}

quint32 carbonModifierFlags(const ShortcutKeyCombo &combo)
{
    quint32 flags = 0;
    if (combo.has(ShortcutKeyCombo::Control))
        flags |= CarbonControl;
    if (combo.has(ShortcutKeyCombo::Option))
        flags |= CarbonOption;
    if (combo.has(ShortcutKeyCombo::Shift))
        flags |= CarbonShift;
    if (combo.has(ShortcutKeyCombo::Command))
        flags |= CarbonCommand;
    return flags;
}

} // namespace keytable
