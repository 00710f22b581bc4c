// The tray icon as a StatusNotifierItem, registered with a watcher that reports a host; the test
// plays the host and calls the item's methods the way panels do for a left and a right click.
#include "TestMain.h"
#include "TrayStatusItem.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusPendingCall>

using namespace Qt::StringLiterals;

class TrayStatusItemSniTest : public QObject
{
    Q_OBJECT

private slots:
    void hostCallsArriveAsLeftAndRightClicks();
};

void TrayStatusItemSniTest::hostCallsArriveAsLeftAndRightClicks()
{
    VISTREL_REQUIRE_X();
    ChildProcess watcher;
    QByteArray ready;
    QVERIFY(watcher.start(u"/usr/bin/python3"_s, {QStringLiteral(FAKE_SNI_WATCHER)}, {}, &ready));
    QCOMPARE(ready, QByteArray("ready"));

    TrayStatusItem item;
    QList<std::optional<StatusItem::ClickEvent>> clicks;
    item.show({u"camera"_s, u"Vistrel"_s, true},
              [&](std::optional<StatusItem::ClickEvent> click) { clicks.append(click); });

    // The host's side: its own connection, asynchronous calls (the item answers on this thread).
    QDBusConnection host = QDBusConnection::connectToBus(QString::fromLocal8Bit(qgetenv("DBUS_SESSION_BUS_ADDRESS")),
                                                         u"tray-host"_s);
    QDBusInterface registry(u"org.kde.StatusNotifierWatcher"_s, u"/StatusNotifierWatcher"_s,
                            u"org.kde.StatusNotifierWatcher"_s, host);
    QStringList items;
    QTRY_VERIFY_WITH_TIMEOUT(
        !(items = registry.property("RegisteredStatusNotifierItems").toStringList()).isEmpty(), 10000);
    const QString service = items.first().section(u'/', 0, 0);
    const auto call = [&](const QString &method) {
        QDBusMessage message = QDBusMessage::createMethodCall(service, u"/StatusNotifierItem"_s,
                                                              u"org.kde.StatusNotifierItem"_s, method);
        message << 10 << 10;
        host.asyncCall(message);
    };

    call(u"Activate"_s);
    QTRY_COMPARE(clicks.size(), 1);
    QCOMPARE(clicks[0]->type, StatusItem::ClickEvent::Type::LeftMouseUp);
    call(u"ContextMenu"_s);
    QTRY_COMPARE(clicks.size(), 2);
    QCOMPARE(clicks[1]->type, StatusItem::ClickEvent::Type::RightMouseUp);
    QDBusConnection::disconnectFromBus(u"tray-host"_s);
}

VISTREL_TEST_MAIN_ON_XVFB(TrayStatusItemSniTest, QApplication)
#include "tst_traystatusitem_sni.moc"
