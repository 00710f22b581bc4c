// What Vistrel tells the user where the desktop leaves them on their own: how to bind the commands
// (sway, GNOME, KDE), GNOME's one-click binding, the missing tray and GNOME's screenshot dialog.
#include "FakeCustomKeybindingStore.h"
#include "FakeHotKeyRegistrar.h"
#include "FakeKeyValueStore.h"
#include "FakeLoginItemService.h"
#include "FakeScreenCapturePermission.h"
#include "FakeStatusItem.h"
#include "FakeSystemLog.h"
#include "FakeUserNotifier.h"

#include "app/GnomeShortcutBinding.h"
#include "app/GnomeShortcutRules.h"
#include "app/ScreenshotPermissionNotice.h"
#include "app/ShortcutGuidance.h"
#include "app/TraylessGuidance.h"
#include "settings/AppSettings.h"

#include <QTest>

using namespace Qt::StringLiterals;
using Binder = HotKeyRegistrar::Binder;
using shortcutguidance::Command;
using shortcutguidance::Desktop;
using Keybinding = CustomKeybindingStore::Keybinding;
using BindingState = GnomeShortcutBinding::State;

Q_DECLARE_METATYPE(HotKeyRegistrar::Binder)
Q_DECLARE_METATYPE(shortcutguidance::Command)
Q_DECLARE_METATYPE(shortcutguidance::Desktop)
Q_DECLARE_METATYPE(ShortcutKeyCombo)
Q_DECLARE_METATYPE(GnomeShortcutBinding::State)

// The notices Vistrel shows once ever.
enum class Notice { Shortcuts, Trayless, ScreenshotDialog };
Q_DECLARE_METATYPE(Notice)

namespace {

struct Fixture
{
    Fixture()
    {
        store.values.insert(u"VistrelHotKeyKey"_s, u"S"_s);
        store.values.insert(u"VistrelRepeatHotKeyKey"_s, u"R"_s);
    }

    FakeKeyValueStore store;
    FakeLoginItemService loginItem;
    FakeSystemLog systemLog;
    AppSettings settings{store, loginItem, systemLog};
    FakeHotKeyRegistrar registrar;
};

constexpr quint64 controlShift = ShortcutKeyCombo::Control | ShortcutKeyCombo::Shift;
constexpr quint64 shiftCommand = ShortcutKeyCombo::Shift | ShortcutKeyCombo::Command;

struct NoticeFacts
{
    QString key, category, title;
};

NoticeFacts factsOf(Notice notice)
{
    switch (notice) {
    case Notice::Shortcuts:
        return {u"VistrelShortcutGuidanceShown"_s, u"VistrelShortcutGuidanceCategory"_s,
                u"Vistrel: ショートカットが使えません"_s};
    case Notice::Trayless:
        return {u"VistrelTraylessGuidanceShown"_s, u"VistrelTraylessGuidanceCategory"_s,
                u"Vistrel: トレイにアイコンを表示できません"_s};
    case Notice::ScreenshotDialog:
        break;
    }
    return {u"VistrelScreenshotPermissionNoticeShown"_s, u"VistrelScreenshotPermissionCategory"_s,
            u"Vistrel: 画面の撮影の確認"_s};
}

QString gnomeEntry(int n)
{
    return gnomeshortcuts::entryFolder + u"custom"_s + QString::number(n) + u'/';
}

} // namespace

class ShortcutGuidanceTest : public QObject
{
    Q_OBJECT

private slots:
    void desktopFromEnvironment_data();
    void desktopFromEnvironment();
    void bindingTexts_data();
    void bindingTexts();
    void tellsOnce_data();
    void tellsOnce();
    void gnomePlans_data();
    void gnomePlans();
    void gnomeBindingOnClick_data();
    void gnomeBindingOnClick();
};

void ShortcutGuidanceTest::desktopFromEnvironment_data()
{
    QTest::addColumn<QString>("currentDesktop");
    QTest::addColumn<bool>("swaySocket");
    QTest::addColumn<Desktop>("desktop");
    QTest::newRow("sway named") << u"sway"_s << false << Desktop::Sway;
    QTest::newRow("sway sets only its socket") << QString() << true << Desktop::Sway;
    QTest::newRow("a desktop named wins over the socket") << u"KDE"_s << true << Desktop::Kde;
    QTest::newRow("GNOME among others, any case") << u"ubuntu:gnome"_s << false << Desktop::Gnome;
    QTest::newRow("unknown") << u"Hyprland"_s << false << Desktop::Other;
    QTest::newRow("nothing") << QString() << false << Desktop::Other;
}

void ShortcutGuidanceTest::desktopFromEnvironment()
{
    QFETCH(QString, currentDesktop);
    QFETCH(bool, swaySocket);
    QFETCH(Desktop, desktop);
    QCOMPARE(shortcutguidance::desktopFrom(currentDesktop, swaySocket), desktop);
}

void ShortcutGuidanceTest::bindingTexts_data()
{
    QTest::addColumn<Binder>("binder");
    QTest::addColumn<Desktop>("desktop");
    QTest::addColumn<Command>("command");
    QTest::addColumn<ShortcutKeyCombo>("combo");
    QTest::addColumn<QString>("text");
    const ShortcutKeyCombo ctrlShift4{u"4"_s, controlShift};
    const ShortcutKeyCombo defaultRepeat{u"r"_s, shiftCommand};
    QTest::newRow("macOS binds: no word") << Binder::System << Desktop::Other << Command::Select << ctrlShift4 << QString();
    QTest::newRow("X server") << Binder::XServer << Desktop::Gnome << Command::Select << ctrlShift4 << u"X サーバー"_s;
    QTest::newRow("portal") << Binder::Portal << Desktop::Kde << Command::Select << ctrlShift4 << u"デスクトップのポータル"_s;
    QTest::newRow("portal still asking") << Binder::Pending << Desktop::Sway << Command::Select << ctrlShift4
                                         << u"ポータルの応答待ち"_s;
    QTest::newRow("sway: a bindsym with the user's keys")
        << Binder::Nobody << Desktop::Sway << Command::Select << ctrlShift4
        << u"未登録: sway の設定に「bindsym Ctrl+Shift+4 exec vistrel select」を追加してください"_s;
    QTest::newRow("GNOME: the repeat command and its keys")
        << Binder::Nobody << Desktop::Gnome << Command::Repeat << defaultRepeat
        << u"未登録: GNOME の設定 → キーボード → カスタムショートカットで「vistrel repeat」(Shift+Super+R)を割り当ててください"_s;
    QTest::newRow("KDE") << Binder::Nobody << Desktop::Kde << Command::Select << ctrlShift4
                         << u"未登録: KDE のシステム設定 → ショートカット → カスタムショートカットで「vistrel select」(Ctrl+Shift+4)を割り当ててください"_s;
    QTest::newRow("sway with a key outside the table: the command alone")
        << Binder::Nobody << Desktop::Sway << Command::Select << ShortcutKeyCombo{u"F1"_s, controlShift}
        << u"未登録: デスクトップのショートカット設定で「vistrel select」を割り当ててください"_s;
}

void ShortcutGuidanceTest::bindingTexts()
{
    QFETCH(Binder, binder);
    QFETCH(Desktop, desktop);
    QFETCH(Command, command);
    QFETCH(ShortcutKeyCombo, combo);
    QFETCH(QString, text);
    QCOMPARE(shortcutguidance::bindingText(binder, desktop, command, combo), text);
}

void ShortcutGuidanceTest::tellsOnce_data()
{
    QTest::addColumn<Notice>("notice");
    QTest::addColumn<Desktop>("desktop");
    // Each a moment the notice may be due: an answer of the registrar, or a capture.
    QTest::addColumn<QList<Binder>>("binders");
    // A tray shows the icon; the portal may take screenshots without asking.
    QTest::addColumn<bool>("needless");
    QTest::addColumn<QVariant>("stored");
    // Empty for no notice.
    QTest::addColumn<QString>("body");
    const QString sway = u"sway の設定に追加してください:\n"
                         "bindsym Shift+Mod4+s exec vistrel select\n"
                         "bindsym Ctrl+Shift+4 exec vistrel repeat\n"
                         "クリックすると設定を開きます。"_s;
    const QList<Binder> nobodyTwice{Binder::Nobody, Binder::Pending, Binder::Nobody};
    const auto row = [](const char *name, Notice notice, const QList<Binder> &binders, const QString &body,
                        const QVariant &stored = {}, Desktop desktop = Desktop::Sway, bool needless = false) {
        QTest::newRow(name) << notice << desktop << binders << needless << stored << body;
    };
    row("shortcuts: nobody binds, one notice however often", Notice::Shortcuts, nobodyTwice, sway);
    row("shortcuts: GNOME, the place and the button in the settings", Notice::Shortcuts,
        {Binder::Pending, Binder::Nobody},
        u"GNOME の設定 → キーボード → カスタムショートカットで「vistrel select」(Shift+Super+S)と"
        "「vistrel repeat」(Ctrl+Shift+4)を追加してください。\nクリックして開く設定の「GNOME に登録」でも登録できます。"_s,
        {}, Desktop::Gnome);
    row("shortcuts: the portal binds", Notice::Shortcuts, {Binder::Pending, Binder::Portal}, {});
    row("shortcuts: told at an earlier start", Notice::Shortcuts, nobodyTwice, {}, true);

    const QString settings = u"\n設定は「vistrel settings」か、アプリ一覧の Vistrel を右クリックして「設定」から開けます。"_s;
    const QString keys = u"撮影は Shift+Super+S、繰り返し撮影は Ctrl+Shift+4。"_s + settings;
    const QString commands = u"撮影は「vistrel select」、繰り返し撮影は「vistrel repeat」。"_s + settings;
    row("no tray: the X server binds, the keys at once", Notice::Trayless, {Binder::XServer, Binder::XServer}, keys);
    row("no tray: told once, after the portal answered", Notice::Trayless,
        {Binder::Pending, Binder::Portal, Binder::Nobody}, keys);
    row("no tray: nothing binds, the commands", Notice::Trayless, {Binder::Pending, Binder::Nobody}, commands);
    row("no tray: a key outside the table, the commands", Notice::Trayless, {Binder::XServer}, commands, {},
        Desktop::Other);
    row("a tray shows the icon", Notice::Trayless, {Binder::XServer}, {}, {}, Desktop::Sway, true);
    row("no tray: told at an earlier start", Notice::Trayless, {Binder::Portal}, {}, true);
    // Stored by hand or by another version: read as the preferences read booleans.
    row("no tray: stored as the text YES, told", Notice::Trayless, {Binder::Portal}, {}, u" YES"_s);
    row("no tray: stored as the text no, not told yet", Notice::Trayless, {Binder::Portal}, keys, u"no"_s);
    row("no tray: stored as a list, not told yet", Notice::Trayless, {Binder::Portal}, keys, QStringList{u"1"_s});

    const QString dialog = u"続いて GNOME が、スクリーンショットの撮影を許可するか尋ねます。"
                           "「許可」を選ぶと Vistrel が画面を撮影できます。確認は最初の一度だけです。"_s;
    row("screenshot dialog: told before the first request", Notice::ScreenshotDialog, nobodyTwice, dialog);
    row("screenshot dialog: told at an earlier start", Notice::ScreenshotDialog, nobodyTwice, {}, true);
    row("screenshot permitted without asking", Notice::ScreenshotDialog, nobodyTwice, {}, {}, Desktop::Sway, true);
}

void ShortcutGuidanceTest::tellsOnce()
{
    QFETCH(Notice, notice);
    QFETCH(Desktop, desktop);
    QFETCH(QList<Binder>, binders);
    QFETCH(bool, needless);
    QFETCH(QVariant, stored);
    QFETCH(QString, body);
    const NoticeFacts facts = factsOf(notice);
    Fixture f;
    // The desktop without a row of its own stands for a repeat key no desktop can name.
    f.settings.setRepeatHotKeyCombo({desktop == Desktop::Other ? u"F1"_s : u"4"_s, controlShift});
    if (stored.isValid())
        f.store.values.insert(facts.key, stored);
    FakeUserNotifier notifier;
    ShortcutGuidance shortcuts(f.registrar, f.settings, notifier, desktop);
    FakeStatusItem statusItem;
    statusItem.shownToUser = needless;
    TraylessGuidance trayless(statusItem, f.registrar, f.settings, notifier);
    FakeScreenCapturePermission portal;
    portal.preflightResult = needless;
    ScreenshotPermissionNotice permission(portal, f.store, notifier);
    int changes = 0;
    connect(&shortcuts, &ShortcutGuidance::binderChanged, this, [&changes] { ++changes; });
    if (notice == Notice::Shortcuts)
        shortcuts.start();
    for (qsizetype due = 0; due < binders.size(); ++due) {
        if (notice == Notice::Shortcuts)
            f.registrar.reportBinder(binders.at(due));
        if (notice == Notice::Trayless) {
            f.registrar.currentBinder = binders.at(due);
            trayless.consider();
        }
        // As the capture's permission gate asks: the notice comes before the portal's dialog, whose
        // answer is the portal's.
        if (notice == Notice::ScreenshotDialog && !permission.preflight()) {
            QCOMPARE(notifier.requests.size(), body.isEmpty() ? 0 : 1);
            portal.requestResult = due % 2 == 0;
            QCOMPARE(permission.request(), due % 2 == 0);
        }
    }

    if (notice == Notice::Shortcuts) {
        QCOMPARE(changes, binders.size());
        QCOMPARE(shortcuts.bindingText(Command::Repeat), shortcutguidance::bindingText(binders.last(), desktop,
                                                                                       Command::Repeat, f.settings.repeatHotKeyCombo()));
    }
    QCOMPARE(notifier.requests.size(), body.isEmpty() ? 0 : 1);
    QCOMPARE(f.store.synced.value(facts.key).toBool(), !body.isEmpty());
    if (body.isEmpty())
        return;
    const UserNotifier::Request &request = notifier.requests.first();
    QCOMPARE(request.identifier, facts.key);
    QCOMPARE(request.categoryIdentifier, facts.category);
    QCOMPARE(request.title, facts.title);
    QCOMPARE(request.body, body);
}

void ShortcutGuidanceTest::gnomePlans_data()
{
    QTest::addColumn<QList<Keybinding>>("existing");
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QList<Keybinding>>("entries");
    const QString select = u"vistrel select"_s;
    const QString repeat = u"vistrel repeat"_s;
    const QString selectName = u"Vistrel: スクリーンショットを撮る"_s;
    const QString repeatName = u"Vistrel: 繰り返し撮影"_s;
    const Keybinding terminal{gnomeEntry(0), u"Terminal"_s, u"kgx"_s, u"<Super>t"_s};
    const Keybinding other{u"/org/example/own/"_s, u"Mine"_s, u"mine"_s, u"<Super>m"_s};
    QTest::newRow("nothing listed: custom0 and custom1")
        << QList<Keybinding>{} << QStringList{gnomeEntry(0), gnomeEntry(1)}
        << QList<Keybinding>{{gnomeEntry(0), selectName, select, u"<Shift><Super>s"_s},
                             {gnomeEntry(1), repeatName, repeat, u"<Control>4"_s}};
    QTest::newRow("the user's entries stay first; free folders are filled")
        << QList<Keybinding>{terminal, {gnomeEntry(2)}, other}
        << QStringList{gnomeEntry(0), gnomeEntry(2), other.path, gnomeEntry(1), gnomeEntry(3)}
        << QList<Keybinding>{{gnomeEntry(1), selectName, select, u"<Shift><Super>s"_s},
                             {gnomeEntry(3), repeatName, repeat, u"<Control>4"_s}};
    QTest::newRow("a command already bound is rebound in place under the user's name")
        << QList<Keybinding>{terminal, {gnomeEntry(1), u"Shot"_s, u" vistrel  select "_s, u"<Super>p"_s}}
        << QStringList{gnomeEntry(0), gnomeEntry(1), gnomeEntry(2)}
        << QList<Keybinding>{{gnomeEntry(1), u"Shot"_s, select, u"<Shift><Super>s"_s},
                             {gnomeEntry(2), repeatName, repeat, u"<Control>4"_s}};
    QTest::newRow("an entry starting Vistrel by a path is ours too, and gets the program of now")
        << QList<Keybinding>{{gnomeEntry(4), QString(), u"/old/build/vistrel repeat"_s, u"<Super>r"_s}}
        << QStringList{gnomeEntry(4), gnomeEntry(0)}
        << QList<Keybinding>{{gnomeEntry(0), selectName, select, u"<Shift><Super>s"_s},
                             {gnomeEntry(4), repeatName, repeat, u"<Control>4"_s}};
    QTest::newRow("binding again adds nothing")
        << QList<Keybinding>{{gnomeEntry(5), repeatName, repeat, u"<Super>r"_s}, {gnomeEntry(3), QString(), select}}
        << QStringList{gnomeEntry(5), gnomeEntry(3)}
        << QList<Keybinding>{{gnomeEntry(3), selectName, select, u"<Shift><Super>s"_s},
                             {gnomeEntry(5), repeatName, repeat, u"<Control>4"_s}};
}

void ShortcutGuidanceTest::gnomePlans()
{
    QFETCH(QList<Keybinding>, existing);
    QFETCH(QStringList, paths);
    QFETCH(QList<Keybinding>, entries);
    const ShortcutKeyCombo capture{u"S"_s, shiftCommand};
    const ShortcutKeyCombo ctrl4{u"4"_s, quint64(ShortcutKeyCombo::Control)};
    const std::optional<gnomeshortcuts::Plan> plan = gnomeshortcuts::plan(existing, capture, ctrl4);
    QVERIFY(plan);
    QCOMPARE(plan->paths, paths);
    QCOMPARE(plan->entries, entries);
    // A key GNOME has no name for makes no plan at all.
    QCOMPARE(gnomeshortcuts::plan(existing, capture, {u"F1"_s, controlShift}).has_value(), false);

    // A Vistrel not on PATH (run from its build tree) is started by its path, quoted where it has spaces.
    const QString self = QCoreApplication::applicationFilePath();
    QCOMPARE(gnomeshortcuts::program(self, self), u"vistrel"_s);
    QCOMPARE(gnomeshortcuts::program(self, QString()), self);
    QCOMPARE(gnomeshortcuts::program(self, u"/bin/sh"_s), self);
    QCOMPARE(gnomeshortcuts::program(u"/tmp/my builds/vistrel"_s, QString()), u"'/tmp/my builds/vistrel'"_s);
    const std::optional<gnomeshortcuts::Plan> built =
        gnomeshortcuts::plan(existing, capture, ctrl4, u"/work/build/vistrel"_s);
    QVERIFY(built);
    QCOMPARE(built->entries.first().command, u"/work/build/vistrel select"_s);
}

void ShortcutGuidanceTest::gnomeBindingOnClick_data()
{
    QTest::addColumn<Desktop>("desktop");
    QTest::addColumn<Binder>("binder");
    QTest::addColumn<QString>("readError");
    QTest::addColumn<QString>("writeError");
    QTest::addColumn<bool>("offered");
    QTest::addColumn<BindingState>("state");
    QTest::addColumn<QString>("status");
    QTest::newRow("GNOME without a binder: bound")
        << Desktop::Gnome << Binder::Nobody << QString() << QString() << true << BindingState::Bound
        << u"GNOME のカスタムショートカットに登録しました。"_s;
    QTest::newRow("the list cannot be read: nothing written")
        << Desktop::Gnome << Binder::Nobody << u"gsettings: No such schema"_s << QString() << true
        << BindingState::Failed << u"GNOME に登録できませんでした: gsettings: No such schema"_s;
    QTest::newRow("writing fails") << Desktop::Gnome << Binder::Nobody << QString() << u"gsettings: denied"_s << true
                                   << BindingState::Failed << u"GNOME に登録できませんでした: gsettings: denied"_s;
    QTest::newRow("the portal binds: not offered")
        << Desktop::Gnome << Binder::Portal << QString() << QString() << false << BindingState::Unbound << QString();
    QTest::newRow("sway: not offered")
        << Desktop::Sway << Binder::Nobody << QString() << QString() << false << BindingState::Unbound << QString();
}

void ShortcutGuidanceTest::gnomeBindingOnClick()
{
    QFETCH(Desktop, desktop);
    QFETCH(Binder, binder);
    QFETCH(QString, readError);
    QFETCH(QString, writeError);
    QFETCH(bool, offered);
    QFETCH(BindingState, state);
    QFETCH(QString, status);
    Fixture f;
    FakeUserNotifier notifier;
    FakeCustomKeybindingStore store;
    if (!readError.isEmpty())
        store.readError = readError;
    if (!writeError.isEmpty())
        store.writeError = writeError;
    f.registrar.currentBinder = binder;
    ShortcutGuidance guidance(f.registrar, f.settings, notifier, desktop, &store);
    QCOMPARE(guidance.desktopBinding() != nullptr, offered);
    if (!offered)
        return;
    const QString unbound = guidance.bindingText(Command::Select);
    int changes = 0;
    connect(&guidance, &ShortcutGuidance::binderChanged, this, [&changes] { ++changes; });
    guidance.desktopBinding()->bind();

    QCOMPARE(guidance.desktopBinding()->state(), state);
    QCOMPARE(guidance.desktopBinding()->statusText(), status);
    QCOMPARE(changes, 2);
    QCOMPARE(store.writes, readError.isEmpty() ? 1 : 0);
    if (state != BindingState::Bound) {
        QCOMPARE(guidance.bindingText(Command::Select), unbound);
        return;
    }
    QCOMPARE(store.writtenEntries.value(1).binding, u"<Shift><Super>r"_s);
    QCOMPARE(guidance.bindingText(Command::Select), u"GNOME のカスタムショートカット"_s);
    // New keys are not what GNOME has: the rows ask again.
    f.settings.setHotKeyCombo({u"4"_s, controlShift});
    QCOMPARE(guidance.desktopBinding()->state(), BindingState::Unbound);
    QVERIFY(guidance.bindingText(Command::Select).startsWith(u"未登録: GNOME"_s));
}

QTEST_GUILESS_MAIN(ShortcutGuidanceTest)
#include "tst_shortcutguidance.moc"
