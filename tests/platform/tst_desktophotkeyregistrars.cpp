// The desktops' own shortcut services, each on a private session bus: the GlobalShortcuts portal client
// against a fake portal (what it asks the portal to bind, how the portal's answers reach the caller, and
// which presses reach the handlers; no desktop here binds a portal shortcut end to end), the kglobalaccel
// client against KDE's own kglobalaccel5 (what System Settings › Shortcuts lists, and presses through the
// component), and the portal-first choice between two registrars.
#include "DBusSession.h"
#include "FakeGlobalShortcutsPortal.h"
#include "FakeHotKeyRegistrar.h"
#include "FakeSystemLog.h"
#include "FallbackHotKeyRegistrar.h"
#include "KGlobalAccelHotKeyRegistrar.h"
#include "PortalHotKeyRegistrar.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QTemporaryDir>
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
constexpr HotKeyRegistrar::Status unimpErr = -4;

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

QDBusMessage kglobalaccel(const QString &path, const QString &interface, const QString &method)
{
    return QDBusMessage::createMethodCall(u"org.kde.kglobalaccel"_s, path, interface, method);
}

QList<int> shortcutOf(const QDBusConnection &bus, const QString &component, const QString &action)
{
    const QDBusMessage reply = bus.call(kglobalaccel(u"/kglobalaccel"_s, u"org.kde.KGlobalAccel"_s, u"shortcut"_s)
                                        << QStringList{component, action, QString(), QString()});
    return reply.arguments().isEmpty() ? QList<int>{-1} : qdbus_cast<QList<int>>(reply.arguments().constFirst());
}
QList<quint32> pressedIds(const PortalSession &s)
{
    QList<quint32> ids;
    for (const std::optional<Identifier> &press : s.presses)
        ids.append(press ? press->id : 0);
    return ids;
}
} // namespace

class DesktopHotKeyRegistrarsTest : public QObject
{
    Q_OBJECT

private slots:
    void portalAnswers_data();
    void portalAnswers();
    void missingPortalOrKeyFailsAtOnce_data();
    void missingPortalOrKeyFailsAtOnce();
    void activationsOfTheCurrentSessionReachTheHandler();
    void registersWithKGlobalAccel();
    void portalFirst_data();
    void portalFirst();
};

void DesktopHotKeyRegistrarsTest::portalAnswers_data()
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

void DesktopHotKeyRegistrarsTest::portalAnswers()
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

void DesktopHotKeyRegistrarsTest::missingPortalOrKeyFailsAtOnce_data()
{
    QTest::addColumn<bool>("withPortal");
    QTest::addColumn<bool>("hasInterface");
    QTest::addColumn<quint32>("keyCode");
    QTest::addColumn<HotKeyRegistrar::Status>("status");
    QTest::addColumn<QList<Binder>>("binders");

    QTest::newRow("no portal on the bus")
        << false << false << keyS << unimpErr << QList<Binder>{Binder::Nobody};
    QTest::newRow("portal without GlobalShortcuts")
        << true << false << keyS << unimpErr << QList<Binder>{Binder::Nobody};
    QTest::newRow("key outside the table")
        << true << true << 200u << PortalHotKeyRegistrar::paramErr << QList<Binder>{};
}

void DesktopHotKeyRegistrarsTest::missingPortalOrKeyFailsAtOnce()
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

void DesktopHotKeyRegistrarsTest::activationsOfTheCurrentSessionReachTheHandler()
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

void DesktopHotKeyRegistrarsTest::registersWithKGlobalAccel()
{
    QVERIFY(ChildProcess::exists(u"kglobalaccel5"_s));
    qDBusRegisterMetaType<QList<int>>();
    DBusSession session;
    QVERIFY(session.isRunning());
    QDBusConnection bus = QDBusConnection::connectToBus(session.address(), u"kglobalaccel-client"_s);
    FakeSystemLog log;

    // Nobody answers yet.
    {
        KGlobalAccelHotKeyRegistrar absent(bus, log);
        QCOMPARE(absent.registerHotKey(keyS, shiftCommand, {vstl, 1}).status, unimpErr);
        QCOMPARE(absent.binder(), Binder::Nobody);
    }

    QTemporaryDir config;
    ChildProcess service;
    QVERIFY(service.start(u"kglobalaccel5"_s, {},
                          {session.environmentEntry(), u"XDG_CONFIG_HOME="_s + config.path(),
                           u"QT_QPA_PLATFORM=offscreen"_s}));
    QTRY_VERIFY(bus.interface()->isServiceRegistered(u"org.kde.kglobalaccel"_s).value());
    // Another application holds ⌃⌥4 (Ctrl+Alt+4) already.
    const QStringList other{u"other"_s, u"grab"_s, u"Other"_s, u"Grab"_s};
    bus.call(kglobalaccel(u"/kglobalaccel"_s, u"org.kde.KGlobalAccel"_s, u"doRegister"_s) << other);
    bus.call(kglobalaccel(u"/kglobalaccel"_s, u"org.kde.KGlobalAccel"_s, u"setShortcut"_s)
             << other << QVariant::fromValue(QList<int>{int(Qt::CTRL | Qt::ALT | Qt::Key_4)}) << 2u);

    auto registrar = std::make_unique<KGlobalAccelHotKeyRegistrar>(bus, log);
    QList<quint32> presses;
    registrar->installHandler([&](std::optional<Identifier> identifier) { presses.append(identifier ? identifier->id : 0); });
    const HotKeyRegistrar::Result select = registrar->registerHotKey(keyS, shiftCommand, {vstl, 1});
    QCOMPARE(select.status, HotKeyRegistrar::noErr);
    QCOMPARE(registrar->binder(), Binder::System);
    QCOMPARE(registrar->registerHotKey(key4, controlOption, {vstl, 2}).status,
             KGlobalAccelHotKeyRegistrar::eventHotKeyExistsErr);
    QCOMPARE(registrar->registerHotKey(200, shiftCommand, {vstl, 2}).status, KGlobalAccelHotKeyRegistrar::paramErr);
    QCOMPARE(registrar->registerHotKey(key4, shiftCommand, {vstl, 1}).status,
             KGlobalAccelHotKeyRegistrar::eventHotKeyExistsErr);
    const HotKeyRegistrar::Result repeat = registrar->registerHotKey(key4, shiftCommand | controlOption, {vstl, 2});
    QCOMPARE(repeat.status, HotKeyRegistrar::noErr);
    // ⌘ is Meta (Super) to KDE, as the X11 grabs take it.
    QCOMPARE(shortcutOf(bus, u"vistrel"_s, u"select"_s), QList<int>{int(Qt::META | Qt::SHIFT | Qt::Key_S)});
    QCOMPARE(shortcutOf(bus, u"vistrel"_s, u"repeat"_s),
             QList<int>{int(Qt::CTRL | Qt::ALT | Qt::SHIFT | Qt::META | Qt::Key_4)});

    // A press of each, as System Settings or the keyboard triggers it; the other application's is not ours.
    for (const QString &action : {u"repeat"_s, u"select"_s})
        bus.call(kglobalaccel(u"/component/vistrel"_s, u"org.kde.kglobalaccel.Component"_s, u"invokeShortcut"_s) << action);
    bus.call(kglobalaccel(u"/component/other"_s, u"org.kde.kglobalaccel.Component"_s, u"invokeShortcut"_s) << u"grab"_s);
    QTRY_COMPARE(presses, (QList<quint32>{2, 1}));

    // Unregistered, the actions stay listed but inactive, as an application that quit leaves them.
    registrar->unregisterHotKey(select.handle);
    registrar->unregisterHotKey(repeat.handle);
    const QDBusMessage active = bus.call(kglobalaccel(u"/component/vistrel"_s, u"org.kde.kglobalaccel.Component"_s, u"isActive"_s));
    QCOMPARE(active.arguments().value(0), QVariant(false));
    QCOMPARE(shortcutOf(bus, u"vistrel"_s, u"select"_s), QList<int>{int(Qt::META | Qt::SHIFT | Qt::Key_S)});
    registrar.reset();
    bus = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(u"kglobalaccel-client"_s);
}

void DesktopHotKeyRegistrarsTest::portalFirst_data()
{
    QTest::addColumn<HotKeyRegistrar::Status>("portalStatus");
    QTest::addColumn<std::optional<Binder>>("portalAnswer");
    QTest::addColumn<int>("portalKeys");
    QTest::addColumn<int>("desktopKeys");
    QTest::addColumn<Binder>("binder");

    QTest::newRow("the portal binds: it keeps the keys")
        << HotKeyRegistrar::noErr << std::optional(Binder::Portal) << 2 << 0 << Binder::Portal;
    QTest::newRow("no portal: the desktop's service takes them at once")
        << unimpErr << std::optional<Binder>() << 0 << 2 << Binder::System;
    QTest::newRow("the portal binds nothing, as KDE 5.27's: they move to the desktop's service")
        << HotKeyRegistrar::noErr << std::optional(Binder::Nobody) << 0 << 2 << Binder::System;
}

void DesktopHotKeyRegistrarsTest::portalFirst()
{
    QFETCH(HotKeyRegistrar::Status, portalStatus);
    QFETCH(std::optional<Binder>, portalAnswer);
    auto ownedPortal = std::make_unique<FakeHotKeyRegistrar>();
    auto ownedDesktop = std::make_unique<FakeHotKeyRegistrar>();
    FakeHotKeyRegistrar &portal = *ownedPortal;
    FakeHotKeyRegistrar &desktop = *ownedDesktop;
    portal.currentBinder = Binder::Pending;
    portal.failingStatusForId = {{1, portalStatus}, {2, portalStatus}};
    FallbackHotKeyRegistrar registrar(std::move(ownedPortal), std::move(ownedDesktop));
    QList<Binder> observed;
    registrar.setBinderObserver([&](Binder binder) { observed.append(binder); });
    QList<quint32> presses;
    registrar.installHandler([&](std::optional<Identifier> identifier) { presses.append(identifier ? identifier->id : 0); });

    const HotKeyRegistrar::Result select = registrar.registerHotKey(keyS, shiftCommand, {vstl, 1});
    QCOMPARE(registrar.registerHotKey(key4, controlOption, {vstl, 2}).status, HotKeyRegistrar::noErr);
    QCOMPARE(select.status, HotKeyRegistrar::noErr);
    if (portalAnswer)
        portal.reportBinder(*portalAnswer);
    QTEST(int(portal.registrations.size()), "portalKeys");
    QTEST(int(desktop.registrations.size()), "desktopKeys");
    QTEST(registrar.binder(), "binder");
    if (portalAnswer)
        QCOMPARE(observed, QList<Binder>{registrar.binder()});

    // Presses come from whichever binds; unregistering reaches it.
    (desktop.registrations.isEmpty() ? portal : desktop).press(Identifier{vstl, 2});
    QCOMPARE(presses, QList<quint32>{2});
    registrar.unregisterHotKey(select.handle);
    QCOMPARE(portal.registrations.size() + desktop.registrations.size(), 1);
}

QTEST_GUILESS_MAIN(DesktopHotKeyRegistrarsTest)
#include "tst_desktophotkeyregistrars.moc"
