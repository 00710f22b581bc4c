#include "FakeCommands.h"
#include "FakeDiagnosticsLog.h"
#include "FakeHotKeyRegistrar.h"
#include "FakeKeyValueStore.h"
#include "FakeLoginItemService.h"
#include "FakeSystemLog.h"

#include "app/CaptureHotKeys.h"
#include "app/GnomeShortcutRules.h"
#include "settings/AppSettings.h"
#include "settings/KeyTable.h"
#include "settings/ShortcutTriggers.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

FakeKeyValueStore storeWithKeys(const QString &captureKey, const QString &repeatKey)
{
    FakeKeyValueStore store;
    store.values.insert(u"VistrelHotKeyKey"_s, captureKey);
    store.values.insert(u"VistrelRepeatHotKeyKey"_s, repeatKey);
    return store;
}

struct Fixture
{
    explicit Fixture(const QString &captureKey = u"S"_s, const QString &repeatKey = u"R"_s)
        : store(storeWithKeys(captureKey, repeatKey))
    {
    }

    FakeKeyValueStore store;
    FakeLoginItemService loginItem;
    FakeSystemLog systemLog;
    AppSettings settings{store, loginItem, systemLog};
    FakeHotKeyRegistrar registrar;
    FakeCommands commands;
    FakeDiagnosticsLog diagnostics;
    CaptureHotKeys hotKeys{registrar, settings, commands, diagnostics, systemLog};
};

constexpr quint32 vstl = 0x5653544C;
constexpr quint64 controlShift = ShortcutKeyCombo::Control | ShortcutKeyCombo::Shift;
constexpr quint64 shiftCommand = ShortcutKeyCombo::Shift | ShortcutKeyCombo::Command;

} // namespace

class CaptureHotKeysTest : public QObject
{
    Q_OBJECT

private slots:
    void registersBothFromSettings();
    void registrationOutcomes_data();
    void registrationOutcomes();
    void pressesAreDispatchedById_data();
    void pressesAreDispatchedById();
    void desktopTriggers_data();
    void desktopTriggers();
};

void CaptureHotKeysTest::registersBothFromSettings()
{
    Fixture f;
    f.settings.setRepeatHotKeyCombo({u"space"_s, ShortcutKeyCombo::Control | ShortcutKeyCombo::Option});
    f.hotKeys.registerHotKey();
    QCOMPARE(f.registrar.handlers.size(), 1);
    const auto capture = f.registrar.registrationsFor(1);
    const auto repeat = f.registrar.registrationsFor(2);
    QCOMPARE(capture.size(), 1);
    QCOMPARE(repeat.size(), 1);
    QCOMPARE(capture.first().keyCode, quint32(1));
    QCOMPARE(capture.first().modifiers, quint32(0x300));
    QCOMPARE(capture.first().identifier.signature, vstl);
    QCOMPARE(repeat.first().keyCode, quint32(49));
    QCOMPARE(repeat.first().modifiers, quint32(0x1800));
    QCOMPARE(repeat.first().identifier.signature, vstl);
    QVERIFY(f.systemLog.messages().isEmpty());
}

void CaptureHotKeysTest::registrationOutcomes_data()
{
    QTest::addColumn<QString>("captureKey");
    QTest::addColumn<QString>("repeatKey");
    QTest::addColumn<int>("installStatus");
    QTest::addColumn<int>("repeatStatus");
    QTest::addColumn<bool>("hasHandler");
    QTest::addColumn<bool>("hasCapture");
    QTest::addColumn<bool>("hasRepeat");
    QTest::addColumn<QStringList>("messages");

    QTest::newRow("capture key outside the table disables both")
        << u"F1"_s << u"R"_s << 0 << 0 << false << false << false
        << QStringList{u"Vistrel: 無効なホットキーが設定されています。"_s};
    QTest::newRow("invalid repeat key keeps capture")
        << u"S"_s << u"ESC"_s << 0 << 0 << true << true << false
        << QStringList{u"Vistrel: 無効な繰り返し撮影ホットキーが設定されています。"_s};
    QTest::newRow("handler installation fails")
        << u"S"_s << u"R"_s << -50 << 0 << false << false << false
        << QStringList{u"Vistrel: イベントハンドラの登録に失敗しました: -50"_s};
    // The capture shortcut held by another client, the repeat one still registered, the end-to-end test shows.
    QTest::newRow("repeat taken by another application")
        << u"S"_s << u"R"_s << 0 << 10 << true << true << false
        << QStringList{u"Vistrel: 繰り返し撮影ホットキーの登録に失敗しました: 10"_s};
}

void CaptureHotKeysTest::registrationOutcomes()
{
    QFETCH(QString, captureKey);
    QFETCH(QString, repeatKey);
    QFETCH(int, installStatus);
    QFETCH(int, repeatStatus);
    QFETCH(bool, hasHandler);
    QFETCH(bool, hasCapture);
    QFETCH(bool, hasRepeat);
    QFETCH(QStringList, messages);

    Fixture f(captureKey, repeatKey);
    f.registrar.installStatus = installStatus;
    if (repeatStatus)
        f.registrar.failingStatusForId.insert(2, repeatStatus);
    f.hotKeys.registerHotKey();

    QCOMPARE(!f.registrar.handlers.isEmpty(), hasHandler);
    QCOMPARE(f.registrar.registrationsFor(1).size(), hasCapture ? 1 : 0);
    QCOMPARE(f.registrar.registrationsFor(2).size(), hasRepeat ? 1 : 0);
    QCOMPARE(f.systemLog.messages(), messages);
}

void CaptureHotKeysTest::pressesAreDispatchedById_data()
{
    QTest::addColumn<bool>("readable");
    QTest::addColumn<quint32>("signature");
    QTest::addColumn<quint32>("id");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("calls");
    QTest::newRow("capture") << true << vstl << 1u << u"hotkey captured kind=selection"_s << QStringList{u"startSelection"_s};
    QTest::newRow("repeat") << true << vstl << 2u << u"hotkey captured kind=repeat"_s << QStringList{u"captureLastSelection"_s};
    QTest::newRow("unknown id") << true << vstl << 7u << u"hotkey captured kind=unknown id=7"_s << QStringList{};
    QTest::newRow("signature is not compared") << true << 0x41424344u << 1u << u"hotkey captured kind=selection"_s
                                               << QStringList{u"startSelection"_s};
    QTest::newRow("unreadable identifier") << false << 0u << 0u << u"hotkey captured kind=unknown id=0"_s << QStringList{};
}

void CaptureHotKeysTest::pressesAreDispatchedById()
{
    QFETCH(bool, readable);
    QFETCH(quint32, signature);
    QFETCH(quint32, id);
    QFETCH(QString, line);
    QFETCH(QStringList, calls);
    Fixture f;
    f.hotKeys.registerHotKey();
    const auto identifier = readable ? std::optional(HotKeyRegistrar::Identifier{signature, id}) : std::nullopt;
    QCOMPARE(f.hotKeys.hotKeyEventHandler(identifier), HotKeyRegistrar::noErr);
    QCOMPARE(f.diagnostics.lines(), QStringList{line});
    QCOMPARE(f.commands.calls, calls);
}

void CaptureHotKeysTest::desktopTriggers_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<quint64>("modifiers");
    QTest::addColumn<QString>("xdg");
    QTest::addColumn<QString>("sway");
    QTest::addColumn<QString>("readable");
    QTest::addColumn<QString>("gnome");
    QTest::newRow("letter with the default modifiers")
        << u"S"_s << shiftCommand << u"SHIFT+LOGO+s"_s << u"Shift+Mod4+s"_s << u"Shift+Super+S"_s << u"<Shift><Super>s"_s;
    QTest::newRow("all four, in the order of ⌃⌥⇧⌘; GTK's order for GNOME")
        << u"4"_s << quint64(0x1e0000) << u"CTRL+ALT+SHIFT+LOGO+4"_s << u"Ctrl+Alt+Shift+Mod4+4"_s
        << u"Ctrl+Alt+Shift+Super+4"_s << u"<Shift><Control><Alt><Super>4"_s;
    QTest::newRow("punctuation by keysym name")
        << u"-"_s << quint64(ShortcutKeyCombo::Control) << u"CTRL+minus"_s << u"Ctrl+minus"_s << u"Ctrl+minus"_s
        << u"<Control>minus"_s;
    QTest::newRow("ENTER is the Return key")
        << u"ENTER"_s << quint64(ShortcutKeyCombo::Option) << u"ALT+Return"_s << u"Alt+Return"_s << u"Alt+Return"_s
        << u"<Alt>Return"_s;
    QTest::newRow("no modifier, other bits ignored")
        << u"SPACE"_s << quint64(0x1) << u"space"_s << u"space"_s << u"space"_s << u"space"_s;
}

void CaptureHotKeysTest::desktopTriggers()
{
    QFETCH(QString, key);
    QFETCH(quint64, modifiers);
    QFETCH(QString, xdg);
    QFETCH(QString, sway);
    QFETCH(QString, readable);
    QFETCH(QString, gnome);
    QCOMPARE(gnomeshortcuts::accelerator({key, modifiers}), gnome);
    QCOMPARE(gnomeshortcuts::accelerator({u"F1"_s, modifiers}), std::nullopt);
    const quint32 code = *keytable::keyCode(key);
    const quint32 carbon = keytable::carbonModifierFlags({key, modifiers});
    QCOMPARE(shortcuttriggers::xdgTrigger(code, carbon), xdg);
    QCOMPARE(shortcuttriggers::swayCombination(code, carbon), sway);
    QCOMPARE(shortcuttriggers::readableCombination(code, carbon), readable);
    QCOMPARE(shortcuttriggers::xdgTrigger(200, carbon), std::nullopt);
    // Every key a shortcut may use has a name the desktops read.
    for (const keytable::Entry &entry : keytable::entries())
        QVERIFY2(shortcuttriggers::keysymName(entry.code), qPrintable(entry.name));
}

QTEST_GUILESS_MAIN(CaptureHotKeysTest)
#include "tst_capturehotkeys.moc"
