#include "settings/ShortcutKeyCombo.h"

void ShortcutKeyCombo::set(Modifier modifier, bool on)
{
    modifiers = on ? (modifiers | modifier) : (modifiers & ~quint64(modifier));
}

QString ShortcutKeyCombo::normalizedKey() const
{
    return key.trimmed().toUpper();
}

QString ShortcutKeyCombo::displayText() const
{
    QString text;
    if (has(Control))
        text += u'⌃';
    if (has(Option))
        text += u'⌥';
    if (has(Shift))
        text += u'⇧';
    if (has(Command))
        text += u'⌘';
    const QString normalized = normalizedKey();
    if (normalized.isEmpty())
        return text.isEmpty() ? QStringLiteral("未設定") : text;
    return text + normalized;
}
