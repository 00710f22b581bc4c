// The GlobalShortcuts portal client against a fake portal on a private session bus: what it asks the
// portal to bind, how the portal's answers reach the caller, and which presses reach the handlers. No
// desktop here binds a portal shortcut end to end.
#include "DBusSession.h"
#include "FakeGlobalShortcutsPortal.h"
#include "FakeSystemLog.h"
#include "PortalHotKeyRegistrar.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using Binder = HotKeyRegistrar::Binder;
using Identifier = HotKeyRegistrar::Identifier;

Q_DECLARE_METATYPE(HotKeyRegistrar::Binder)

namespace {
constexpr quint32 vstl = 0x5653544C;
// S with ⇧⌘, and 4 with ⌃⌥, in Carbon terms.
constexpr quint32 keyS = 1, key4 = 21, shiftCommand = 0x300, controlOption = 0x1800;

// A private bus, the fake portal on it unless told otherwise, and the registrar on a connection of its
// own, with everything it reports collected.
struct PortalSession
{
    PortalSession() : PortalSession(FakeGlobalShortcutsPortal::Script()) {}
    explicit PortalSession(std::optional<FakeGlobalShortcutsPortal::Script> script)
    {
        if (script)
            portal = std::make_unique<FakeGlobalShortcutsPortal>(session.address(), *script);
        static int connections = 0;
        bus = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(session.address(), u"portal-client-%1"_s.arg(++connections)));
        registrar = std::make_unique<PortalHotKeyRegistrar>(*bus, log);
        registrar->setBinderObserver([this](Binder binder) { binders.append(binder); });
        registrar->installHandler([this](std::optional<Identifier> identifier) { presses.append(identifier); });
    }
    ~PortalSession()
    {
        registrar.reset();
        const QString name = bus->name();
        bus.reset();
        QDBusConnection::disconnectFromBus(name);
    }

    // As the capture shortcuts register: the old registrations go, then the capture key and the repeat
    // key come, in one go.
    QList<HotKeyRegistrar::Result> registerBoth(quint32 captureModifiers = shiftCommand)
    {
        for (const HotKeyRegistrar::Result &result : std::as_const(registered))
            registrar->unregisterHotKey(result.handle);
        registered = {registrar->registerHotKey(keyS, captureModifiers, {vstl, 1}),
                      registrar->registerHotKey(key4, controlOption, {vstl, 2})};
        return registered;
    }

    DBusSession session;
    std::unique_ptr<FakeGlobalShortcutsPortal> portal;
    std::unique_ptr<QDBusConnection> bus;
    FakeSystemLog log;
    std::unique_ptr<PortalHotKeyRegistrar> registrar;
    QList<Binder> binders;
    QList<std::optional<Identifier>> presses;
    QList<HotKeyRegistrar::Result> registered;
};

QList<quint32> pressedIds(const PortalSession &s)
{
    QList<quint32> ids;
    for (const std::optional<Identifier> &press : s.presses)
        ids.append(press ? press->id : 0);
    return ids;
}
} // namespace

class PortalHotKeyRegistrarTest : public QObject
{
    Q_OBJECT

private slots:
    void portalAnswers_data();
    void portalAnswers();
    void missingPortalOrKeyFailsAtOnce_data();
    void missingPortalOrKeyFailsAtOnce();
    void activationsOfTheCurrentSessionReachTheHandler();
};

void PortalHotKeyRegistrarTest::portalAnswers_data()
{
    QTest::addColumn<uint>("createResponse");
    QTest::addColumn<uint>("bindResponse");
    QTest::addColumn<std::optional<QStringList>>("boundIds");
    QTest::addColumn<Binder>("binder");
    QTest::addColumn<QStringList>("logged");

    QTest::newRow("both bound") << 0u << 0u << std::optional<QStringList>() << Binder::Portal << QStringList{};
    QTest::newRow("one bound: the other is logged")
        << 0u << 0u << std::optional<QStringList>(QStringList{u"select"_s}) << Binder::Portal
        << QStringList{u"Vistrel: ポータルが登録しなかったショートカット: repeat"_s};
    QTest::newRow("none bound, as KDE 5.27 answers")
        << 0u << 0u << std::optional<QStringList>(QStringList{}) << Binder::Nobody
        << QStringList{u"Vistrel: ポータルが登録しなかったショートカット: select, repeat"_s};
    QTest::newRow("user cancels the dialog")
        << 0u << 1u << std::optional<QStringList>() << Binder::Nobody
        << QStringList{u"Vistrel: ポータルがショートカットの登録を拒否しました: 1"_s};
    QTest::newRow("session refused, nothing bound")
        << 2u << 0u << std::optional<QStringList>() << Binder::Nobody
        << QStringList{u"Vistrel: ポータルがショートカットの登録を拒否しました: 2"_s};
}

void PortalHotKeyRegistrarTest::portalAnswers()
{
    QFETCH(uint, createResponse);
    QFETCH(uint, bindResponse);
    QFETCH(std::optional<QStringList>, boundIds);
    QFETCH(Binder, binder);
    QFETCH(QStringList, logged);
    PortalSession s(FakeGlobalShortcutsPortal::Script{true, createResponse, bindResponse, boundIds});
    QVERIFY(s.portal && s.portal->isServing);

    // Accepted before the portal has answered.
    for (const HotKeyRegistrar::Result &result : s.registerBoth())
        QCOMPARE(result.status, HotKeyRegistrar::noErr);
    QCOMPARE(s.registrar->binder(), Binder::Pending);

    QTRY_COMPARE(s.binders, QList<Binder>{binder});
    QCOMPARE(s.log.messages(), logged);
    const FakeGlobalShortcutsPortal::Record record = s.portal->record();
    QCOMPARE(record.sessions.size(), 1);
    if (createResponse != 0) {
        QVERIFY(record.binds.isEmpty());
        return;
    }
    // Both in one bind, in the session just made, each named after its command.
    QCOMPARE(record.binds.size(), 1);
    const FakeGlobalShortcutsPortal::Bind &bind = record.binds.first();
    QCOMPARE(bind.session, record.sessions.first());
    QCOMPARE(bind.shortcuts.size(), 2);
    QCOMPARE(bind.shortcuts[0].id, u"select"_s);
    QCOMPARE(bind.shortcuts[0].properties[u"preferred_trigger"_s].toString(), u"SHIFT+LOGO+s"_s);
    QCOMPARE(bind.shortcuts[0].properties[u"description"_s].toString(), u"スクリーンショットを撮る"_s);
    QCOMPARE(bind.shortcuts[1].id, u"repeat"_s);
    QCOMPARE(bind.shortcuts[1].properties[u"preferred_trigger"_s].toString(), u"CTRL+ALT+4"_s);
    QCOMPARE(bind.shortcuts[1].properties[u"description"_s].toString(), u"繰り返し撮影"_s);
}

void PortalHotKeyRegistrarTest::missingPortalOrKeyFailsAtOnce_data()
{
    QTest::addColumn<bool>("withPortal");
    QTest::addColumn<bool>("hasInterface");
    QTest::addColumn<quint32>("keyCode");
    QTest::addColumn<HotKeyRegistrar::Status>("status");
    QTest::addColumn<QList<Binder>>("binders");

    QTest::newRow("no portal on the bus")
        << false << false << keyS << PortalHotKeyRegistrar::unimpErr << QList<Binder>{Binder::Nobody};
    QTest::newRow("portal without GlobalShortcuts")
        << true << false << keyS << PortalHotKeyRegistrar::unimpErr << QList<Binder>{Binder::Nobody};
    QTest::newRow("key outside the table")
        << true << true << 200u << PortalHotKeyRegistrar::paramErr << QList<Binder>{};
}

void PortalHotKeyRegistrarTest::missingPortalOrKeyFailsAtOnce()
{
    QFETCH(bool, withPortal);
    QFETCH(bool, hasInterface);
    QFETCH(quint32, keyCode);
    QFETCH(HotKeyRegistrar::Status, status);
    QFETCH(QList<Binder>, binders);
    PortalSession s(withPortal ? std::optional(FakeGlobalShortcutsPortal::Script{hasInterface}) : std::nullopt);

    QCOMPARE(s.registrar->registerHotKey(keyCode, shiftCommand, {vstl, 1}).status, status);
    QTest::qWait(100);
    QCOMPARE(s.binders, binders);
    QCOMPARE(s.log.messages().size(), binders.size());
    if (s.portal)
        QVERIFY(s.portal->record().sessions.isEmpty());
}

void PortalHotKeyRegistrarTest::activationsOfTheCurrentSessionReachTheHandler()
{
    PortalSession s;
    QVERIFY(s.portal && s.portal->isServing);
    s.registerBoth();
    QTRY_COMPARE(s.binders, QList<Binder>{Binder::Portal});
    const QString firstSession = s.portal->record().sessions.first();

    s.portal->activate(firstSession, u"repeat"_s);
    s.portal->activate(firstSession, u"hotkey-9"_s);
    s.portal->activate(firstSession + u"x"_s, u"select"_s);
    s.portal->activate(firstSession, u"select"_s);
    QTRY_COMPARE(pressedIds(s), (QList<quint32>{2, 1}));
    QCOMPARE(s.presses.first()->signature, vstl);

    // Every settings save registers again: the same keys keep their session, and the portal is not
    // asked again. Changed keys are bound in a new session; the old one is closed and its presses no
    // longer count.
    s.registerBoth();
    QTest::qWait(100);
    QCOMPARE(s.portal->record().sessions.size(), 1);
    s.registerBoth(controlOption | shiftCommand);
    QTRY_COMPARE(s.portal->record().binds.size(), 2);
    const FakeGlobalShortcutsPortal::Record record = s.portal->record();
    QCOMPARE(record.sessions.size(), 2);
    QCOMPARE(record.binds.last().session, record.sessions.last());
    QCOMPARE(record.closedSessions, QStringList{firstSession});
    s.presses.clear();
    s.portal->activate(firstSession, u"select"_s);
    s.portal->activate(record.sessions.last(), u"repeat"_s);
    QTRY_COMPARE(pressedIds(s), QList<quint32>{2});
}

QTEST_GUILESS_MAIN(PortalHotKeyRegistrarTest)
#include "tst_portalhotkeyregistrar.moc"
