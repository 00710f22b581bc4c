#include "FakeCommands.h"
#include "FakeDiagnosticsLog.h"
#include "FakeHotKeyRegistrar.h"
#include "FakeKeyValueStore.h"
#include "FakeLoginItemService.h"
#include "FakeSystemLog.h"

#include "app/CaptureHotKeys.h"
#include "settings/AppSettings.h"

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

QTEST_GUILESS_MAIN(CaptureHotKeysTest)
#include "tst_capturehotkeys.moc"
