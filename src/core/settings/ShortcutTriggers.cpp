#include "settings/ShortcutTriggers.h"

#include "settings/KeyTable.h"

#include <QStringList>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace shortcuttriggers {

namespace {

// The keys whose keysym name is not the key table's name in lower case.
const std::array<std::pair<quint32, QStringView>, 13> namedKeys{{
    {27, u"minus"}, {24, u"equal"}, {33, u"bracketleft"}, {30, u"bracketright"}, {42, u"backslash"},
    {41, u"semicolon"}, {39, u"apostrophe"}, {43, u"comma"}, {47, u"period"}, {44, u"slash"},
    {49, u"space"}, {36, u"Return"}, {48, u"Tab"},
}};

struct ModifierNames
{
    QString control, option, shift, command;
};

std::optional<QString> combination(quint32 keyCode, quint32 carbonModifiers, const ModifierNames &names,
                                   bool upperCaseKey)
{
    std::optional<QString> key = keysymName(keyCode);
    if (!key)
        return std::nullopt;
    QStringList parts;
    if (carbonModifiers & keytable::CarbonControl)
        parts.append(names.control);
    if (carbonModifiers & keytable::CarbonOption)
        parts.append(names.option);
    if (carbonModifiers & keytable::CarbonShift)
        parts.append(names.shift);
    if (carbonModifiers & keytable::CarbonCommand)
        parts.append(names.command);
    // Letters only: "Return" and "minus" read the same in every form.
    parts.append(upperCaseKey && key->size() == 1 ? key->toUpper() : *key);
    return parts.join(u'+');
}

} // namespace

std::optional<QString> keysymName(quint32 keyCode)
{
    for (const auto &[code, name] : namedKeys) {
        if (code == keyCode)
            return name.toString();
    }
    for (const keytable::Entry &entry : keytable::entries()) {
        if (entry.code == keyCode && entry.name.size() == 1 && entry.name.at(0).isLetterOrNumber())
            return entry.name.toLower();
    }
    return std::nullopt;
}

std::optional<QString> xdgTrigger(quint32 keyCode, quint32 carbonModifiers)
{
    return combination(keyCode, carbonModifiers, {u"CTRL"_s, u"ALT"_s, u"SHIFT"_s, u"LOGO"_s}, false);
}

std::optional<QString> swayCombination(quint32 keyCode, quint32 carbonModifiers)
{
    return combination(keyCode, carbonModifiers, {u"Ctrl"_s, u"Alt"_s, u"Shift"_s, u"Mod4"_s}, false);
}

std::optional<QString> readableCombination(quint32 keyCode, quint32 carbonModifiers)
{
    return combination(keyCode, carbonModifiers, {u"Ctrl"_s, u"Alt"_s, u"Shift"_s, u"Super"_s}, true);
}

} // namespace shortcuttriggers
