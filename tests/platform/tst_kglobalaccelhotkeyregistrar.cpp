// The hot keys on KDE Plasma: the kglobalaccel client against KDE's own kglobalaccel5 on a private
// session bus (what System Settings › Shortcuts lists, and presses through the component), and the
// portal-first choice between two registrars.
#include "DBusSession.h"
#include "FakeHotKeyRegistrar.h"
#include "FakeSystemLog.h"
#include "FallbackHotKeyRegistrar.h"
#include "KGlobalAccelHotKeyRegistrar.h"

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
} // namespace

class KGlobalAccelHotKeyRegistrarTest : public QObject
{
    Q_OBJECT

private slots:
    void registersWithKGlobalAccel();
    void portalFirst_data();
    void portalFirst();
};

void KGlobalAccelHotKeyRegistrarTest::registersWithKGlobalAccel()
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

void KGlobalAccelHotKeyRegistrarTest::portalFirst_data()
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

void KGlobalAccelHotKeyRegistrarTest::portalFirst()
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

QTEST_GUILESS_MAIN(KGlobalAccelHotKeyRegistrarTest)
#include "tst_kglobalaccelhotkeyregistrar.moc"
