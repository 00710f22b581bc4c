#include "app/ShortcutGuidanceRules.h"

#include "settings/KeyTable.h"
#include "settings/ShortcutTriggers.h"

#include <QStringList>

#include <optional>

using namespace Qt::StringLiterals;

namespace shortcutguidance {

namespace {

using Binder = HotKeyRegistrar::Binder;

std::optional<QString> swayCombination(const ShortcutKeyCombo &combo)
{
    const std::optional<quint32> code = keytable::keyCode(combo.normalizedKey());
    if (!code)
        return std::nullopt;
    return shortcuttriggers::swayCombination(*code, keytable::carbonModifierFlags(combo));
}

std::optional<QString> readableCombination(const ShortcutKeyCombo &combo)
{
    const std::optional<quint32> code = keytable::keyCode(combo.normalizedKey());
    if (!code)
        return std::nullopt;
    return shortcuttriggers::readableCombination(*code, keytable::carbonModifierFlags(combo));
}

// Where the desktop keeps custom shortcuts, as its settings name the way there.
QString settingsPlace(Desktop desktop)
{
    switch (desktop) {
    case Desktop::Gnome: return u"GNOME の設定 → キーボード → カスタムショートカット"_s;
    case Desktop::Kde: return u"KDE のシステム設定 → ショートカット → カスタムショートカット"_s;
    case Desktop::Sway:
    case Desktop::Other: break;
    }
    return u"デスクトップのショートカット設定"_s;
}

QString bindsym(Command command, const QString &combination)
{
    return u"bindsym "_s % combination % u" exec "_s % commandLine(command);
}

// "「vistrel select」(Ctrl+Shift+4)", or the command alone for a key outside the table.
QString commandWithKeys(Command command, const ShortcutKeyCombo &combo)
{
    const QString quoted = u"「"_s % commandLine(command) % u"」"_s;
    const std::optional<QString> keys = readableCombination(combo);
    return keys ? quoted % u'(' % *keys % u')' : quoted;
}

} // namespace

Desktop desktopFrom(const QString &currentDesktop, bool hasSwaySocket)
{
    const QStringList names = currentDesktop.toLower().split(u':', Qt::SkipEmptyParts);
    if (names.contains(u"sway"_s) || (names.isEmpty() && hasSwaySocket))
        return Desktop::Sway;
    if (names.contains(u"gnome"_s))
        return Desktop::Gnome;
    if (names.contains(u"kde"_s))
        return Desktop::Kde;
    return Desktop::Other;
}

bool needsGuidance(Binder binder)
{
    return binder == Binder::Nobody;
}

QString commandLine(Command command)
{
    return command == Command::Select ? u"vistrel select"_s : u"vistrel repeat"_s;
}

QString bindingText(Binder binder, Desktop desktop, Command command, const ShortcutKeyCombo &combo)
{
    switch (binder) {
    case Binder::System: return {};
    case Binder::XServer: return u"X サーバー"_s;
    case Binder::Portal: return u"デスクトップのポータル"_s;
    case Binder::Pending: return u"ポータルの応答待ち"_s;
    case Binder::Nobody: break;
    }
    if (desktop == Desktop::Sway) {
        if (const std::optional<QString> combination = swayCombination(combo))
            return u"未登録: sway の設定に「"_s % bindsym(command, *combination) % u"」を追加してください"_s;
    }
    return u"未登録: "_s % settingsPlace(desktop) % u"で"_s % commandWithKeys(command, combo)
        % u"を割り当ててください"_s;
}

Notice notice(Desktop desktop, const ShortcutKeyCombo &capture, const ShortcutKeyCombo &repeat)
{
    const QString title = u"Vistrel: ショートカットが使えません"_s;
    // On GNOME the settings bind both commands there in one click.
    const QString settingsHint = desktop == Desktop::Gnome ? u"クリックして開く設定の「GNOME に登録」でも登録できます。"_s
                                                           : u"クリックすると設定を開きます。"_s;
    const std::optional<QString> selectKeys = swayCombination(capture);
    const std::optional<QString> repeatKeys = swayCombination(repeat);
    if (desktop == Desktop::Sway && selectKeys && repeatKeys) {
        return {title, u"sway の設定に追加してください:\n"_s % bindsym(Command::Select, *selectKeys) % u'\n'
                           % bindsym(Command::Repeat, *repeatKeys) % u'\n' % settingsHint};
    }
    return {title, settingsPlace(desktop) % u"で"_s % commandWithKeys(Command::Select, capture) % u"と"_s
                       % commandWithKeys(Command::Repeat, repeat) % u"を追加してください。\n"_s % settingsHint};
}

Notice traylessNotice(Binder binder, const ShortcutKeyCombo &capture, const ShortcutKeyCombo &repeat)
{
    const std::optional<QString> selectKeys = readableCombination(capture);
    const std::optional<QString> repeatKeys = readableCombination(repeat);
    const bool keysWork = binder != Binder::Nobody && binder != Binder::Pending && selectKeys && repeatKeys;
    // Latin keys stand apart from the Japanese by a space; quoted commands need none.
    const auto reach = [keysWork](const std::optional<QString> &keys, Command command) -> QString {
        if (keysWork)
            return u' ' + *keys;
        return u"「"_s % commandLine(command) % u"」"_s;
    };
    const QString select = reach(selectKeys, Command::Select);
    const QString again = reach(repeatKeys, Command::Repeat);
    return {u"Vistrel: トレイにアイコンを表示できません"_s,
            u"撮影は"_s % select % u"、繰り返し撮影は"_s % again % u"。\n設定は「vistrel settings」か、"_s
                % u"アプリ一覧の Vistrel を右クリックして「設定」から開けます。"_s};
}

} // namespace shortcutguidance
