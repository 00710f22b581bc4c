// Sends notifications to a real notification server (dunst) on a private session bus and Xvfb, and
// answers them from a fake server that sends what a server would. That a click on a real one opens the
// editor, the end-to-end tests show.
#include "DBusSession.h"
#include "DBusUserNotifier.h"
#include "FakeNotificationServer.h"
#include "FakeScheduler.h"
#include "TestMain.h"

#include "platform/QtScheduler.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
UserNotifier::Request editRequest(double delay = 0)
{
    return {u"a-uuid"_s, u"Vistrel: 編集できます"_s, u"通知をクリックして編集画面を開きます。"_s,
            u"VistrelEditCategory"_s, true, delay};
}

// A bus of its own, with dunst serving it when asked, for one test. How the notifier fails without a
// server or without a bus, the end-to-end tests show in the system log.
struct NotificationSession
{
    explicit NotificationSession(bool withServer)
    {
        static int connections = 0;
        bus = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(session.address(), u"notifier-test-%1"_s.arg(++connections)));
        if (withServer) {
            dunst.start(u"dunst"_s, {},
                        {session.environmentEntry(), u"DISPLAY="_s + testsupport::xvfb()->display()});
            isServing = QTest::qWaitFor(
                [&] { return bus->interface()->isServiceRegistered(DBusUserNotifier::service).value(); }, 10000);
        }
    }
    ~NotificationSession()
    {
        const QString name = bus->name();
        bus.reset();
        QDBusConnection::disconnectFromBus(name);
    }

    // dunstctl's output on this bus.
    QByteArray dunstctl(const QStringList &arguments) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, session.address());
        process.setProcessEnvironment(environment);
        process.start(u"dunstctl"_s, arguments);
        process.waitForFinished();
        return process.readAllStandardOutput().trimmed();
    }
    int displayed() const { return dunstctl({u"count"_s, u"displayed"_s}).toInt(); }

    DBusSession session;
    ChildProcess dunst;
    bool isServing = false;
    std::unique_ptr<QDBusConnection> bus;
};

// The notifier against the fake server, which reports `capabilities`.
struct FakeServerSession
{
    explicit FakeServerSession(const QStringList &capabilities)
        : server(session.session.address(), capabilities), notifier(*session.bus, scheduler)
    {
    }

    NotificationSession session{false};
    FakeNotificationServer server;
    QtScheduler scheduler;
    DBusUserNotifier notifier;
};
} // namespace

class DBusUserNotifierTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void notificationWaitsForItsDelayAndCarriesTheTexts();
    void broadcastSignalsAboutOtherNotificationsAreIgnored();
    void serverThatCannotReportClicksFailsTheRequest();
    void requestWithoutSoundAsksForSilence();
};

void DBusUserNotifierTest::init()
{
    VISTREL_REQUIRE_X();
    QVERIFY(ChildProcess::exists(u"dunst"_s) && ChildProcess::exists(u"dunstctl"_s));
}

void DBusUserNotifierTest::notificationWaitsForItsDelayAndCarriesTheTexts()
{
    NotificationSession session(true);
    QVERIFY(session.isServing);
    FakeScheduler scheduler;
    DBusUserNotifier notifier(*session.bus, scheduler);
    std::optional<std::optional<QString>> added;
    notifier.add(editRequest(0.8), [&](std::optional<QString> error) { added = error; });

    QCOMPARE(scheduler.requestedDelays(), QList<double>{0.8});
    scheduler.advance(0.79);
    QTest::qWait(200);
    QVERIFY(!added);
    QCOMPARE(session.displayed(), 0);

    scheduler.advance(0.01);
    QTRY_VERIFY(added);
    QCOMPARE(*added, std::nullopt);
    QTRY_COMPARE(session.displayed(), 1);

    // Closed notifications go to dunst's history, which shows what it was given.
    session.dunstctl({u"close"_s});
    const QJsonObject shown = QJsonDocument::fromJson(session.dunstctl({u"history"_s}))
                                  .object()[u"data"_s].toArray()[0].toArray()[0].toObject();
    QCOMPARE(shown[u"appname"_s][u"data"_s].toString(), u"Vistrel"_s);
    QCOMPARE(shown[u"summary"_s][u"data"_s].toString(), u"Vistrel: 編集できます"_s);
    QCOMPARE(shown[u"body"_s][u"data"_s].toString(), u"通知をクリックして編集画面を開きます。"_s);
    QCOMPARE(shown[u"default_action_name"_s][u"data"_s].toString(), u"default"_s);
}

void DBusUserNotifierTest::broadcastSignalsAboutOtherNotificationsAreIgnored()
{
    FakeServerSession fake({u"actions"_s, u"body"_s});
    QVERIFY(fake.server.isServing);
    QStringList responses;
    fake.notifier.setResponseHandler([&](const QString &category) { responses.append(category); });
    bool added = false;
    fake.notifier.add(editRequest(), [&](std::optional<QString> error) { added = !error; });
    QTRY_VERIFY(added);
    const uint ours = 101;

    fake.server.emitSignal(u"ActionInvoked"_s, {uint(7), u"default"_s});
    fake.server.emitSignal(u"NotificationClosed"_s, {uint(8), uint(2)});
    fake.server.emitSignal(u"ActionInvoked"_s, {ours, u"default"_s});
    fake.server.emitSignal(u"ActionInvoked"_s, {ours, u"default"_s});
    QTRY_COMPARE(responses, QStringList{u"VistrelEditCategory"_s});
    // Messages arrive in order: once a later reply has come, the repeated click has been ignored.
    const auto settle = [&] {
        bool probed = false;
        fake.notifier.add(editRequest(), [&](std::optional<QString>) { probed = true; });
        return QTest::qWaitFor([&] { return probed; });
    };
    QVERIFY(settle());
    QCOMPARE(responses.size(), 1);

    // A notification the server closed (expired, dismissed) gives no response when clicked later.
    fake.server.emitSignal(u"NotificationClosed"_s, {uint(102), uint(1)});
    fake.server.emitSignal(u"ActionInvoked"_s, {uint(102), u"default"_s});
    QVERIFY(settle());
    QCOMPARE(responses.size(), 1);
}

void DBusUserNotifierTest::serverThatCannotReportClicksFailsTheRequest()
{
    FakeServerSession fake({u"body"_s});
    QVERIFY(fake.server.isServing);
    std::optional<std::optional<QString>> added;
    fake.notifier.add(editRequest(), [&](std::optional<QString> error) { added = error; });
    QTRY_VERIFY(added);
    QCOMPARE(*added, std::optional<QString>(u"the notification server cannot report clicks (no \"actions\" capability)"_s));
    QVERIFY(fake.server.received.isEmpty());
}

void DBusUserNotifierTest::requestWithoutSoundAsksForSilence()
{
    FakeServerSession fake({u"actions"_s});
    QVERIFY(fake.server.isServing);
    UserNotifier::Request silent = editRequest();
    silent.playsDefaultSound = false;
    int added = 0;
    fake.notifier.add(editRequest(), [&](std::optional<QString>) { ++added; });
    fake.notifier.add(silent, [&](std::optional<QString>) { ++added; });
    QTRY_COMPARE(added, 2);
    QCOMPARE(fake.server.received.size(), 2);
    QCOMPARE(fake.server.received[0].hints.value(u"sound-name"_s).toString(), u"message-new-instant"_s);
    QVERIFY(!fake.server.received[0].hints.contains(u"suppress-sound"_s));
    QVERIFY(!fake.server.received[1].hints.contains(u"sound-name"_s));
    QCOMPARE(fake.server.received[1].hints.value(u"suppress-sound"_s).toBool(), true);
    QCOMPARE(fake.server.received[1].actions, (QStringList{u"default"_s, u"編集"_s}));
}

VISTREL_TEST_MAIN_ON_XVFB(DBusUserNotifierTest, QCoreApplication)
#include "tst_dbususernotifier.moc"
