#include "AppcastSoftwareUpdater.h"

#include "FakeClock.h"
#include "FakeKeyValueStore.h"
#include "FakeScheduler.h"
#include "FakeSystemLog.h"
#include "FakeUpdateUserDriver.h"
#include "FakeWorkspace.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// An HTTP server on the loopback address that answers every request with one scripted response.
class LocalHttpServer final : public QObject
{
public:
    LocalHttpServer()
    {
        m_server.listen(QHostAddress::LocalHost);
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection())
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answer(socket); });
        });
    }

    QUrl url(const QString &path = u"/appcast.xml"_s) const
    {
        return QUrl(u"http://127.0.0.1:%1%2"_s.arg(m_server.serverPort()).arg(path));
    }

    QByteArray status = "200 OK";
    QByteArray body;
    QList<QByteArray> requests;

private:
    void answer(QTcpSocket *socket)
    {
        m_pending[socket] += socket->readAll();
        if (!m_pending[socket].contains("\r\n\r\n"))
            return;
        requests.append(m_pending.take(socket));
        socket->write("HTTP/1.1 " + status + "\r\nContent-Type: application/rss+xml\r\nContent-Length: "
                      + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
        socket->disconnectFromHost();
    }

    QTcpServer m_server;
    QHash<QTcpSocket *, QByteArray> m_pending;
};

QByteArray feedWith(const QString &version, const QString &shortVersion)
{
    const QString xml = u"<?xml version=\"1.0\"?>"
                        u"<rss version=\"2.0\" xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">"
                        u"<channel><item><title>Vistrel %2</title><link>https://example.org/vistrel/%2</link>"
                        u"<enclosure url=\"https://example.org/vistrel-%2.tar.gz\" sparkle:version=\"%1\""
                        u" sparkle:shortVersionString=\"%2\"/></item></channel></rss>"_s;
    return xml.arg(version, shortVersion).toUtf8();
}

struct Fixture
{
    explicit Fixture(const QUrl &feed)
        : updater({feed, u"100"_s, u"1.0"_s}, {store, scheduler, clock, workspace, dialogs, systemLog})
    {
        updater.observeCanCheckForUpdates([this](bool canCheck) { canCheckChanges.append(canCheck); });
    }

    FakeKeyValueStore store;
    FakeScheduler scheduler;
    FakeClock clock;
    FakeWorkspace workspace;
    FakeUpdateUserDriver dialogs;
    FakeSystemLog systemLog;
    AppcastSoftwareUpdater updater;
    QList<bool> canCheckChanges;
};

} // namespace

class AppcastSoftwareUpdaterTest : public QObject
{
    Q_OBJECT

private slots:
    void withoutFeedNothingCanBeChecked();
    void userCheckOffersANewerReleaseOrSaysThereIsNone();
    void failuresAreMessages_data();
    void failuresAreMessages();
    void automaticChecksRunAtMostDaily();
    void automaticCheckSpeaksOnlyOfNewReleases();
    void automaticChecksOffScheduleNothing();
};

void AppcastSoftwareUpdaterTest::withoutFeedNothingCanBeChecked()
{
    Fixture f{QUrl()};
    const QString reason = u"このビルドにはアップデートの配信元が設定されていないため、アップデートを確認できません。"_s;
    QCOMPARE(f.updater.unavailableReason(), reason);
    QVERIFY(!f.updater.canCheckForUpdates());
    QVERIFY(!f.updater.automaticallyChecksForUpdates());
    f.updater.start();
    QCOMPARE(f.scheduler.requestedDelays().size(), 0);
    f.updater.checkForUpdates();
    QCOMPARE(f.systemLog.messages(), QStringList{u"Vistrel: アップデートを確認できません: "_s + reason});
    QCOMPARE(f.dialogs.notices, (QList<QStringList>{{u"アップデートを確認できません"_s, reason}}));
}

void AppcastSoftwareUpdaterTest::userCheckOffersANewerReleaseOrSaysThereIsNone()
{
    LocalHttpServer server;
    server.body = feedWith(u"101"_s, u"1.0.1"_s);
    Fixture f{server.url()};
    QVERIFY(f.updater.canCheckForUpdates());
    QCOMPARE(f.updater.lastUpdateCheckDate(), std::nullopt);

    f.updater.checkForUpdates();
    QVERIFY(!f.updater.canCheckForUpdates());
    // A second request while the first runs changes nothing.
    f.updater.checkForUpdates();
    QTRY_COMPARE(f.dialogs.offers.size(), 1);
    QCOMPARE(server.requests.size(), 1);
    QVERIFY(server.requests.first().startsWith("GET /appcast.xml HTTP/1.1\r\n"));
    QCOMPARE(f.dialogs.offers.first(),
             (QStringList{u"新しいバージョンのVistrelがあります"_s,
                          u"Vistrel 1.0.1 を入手できます（現在のバージョンは 1.0）。ダウンロードページを開きますか？"_s,
                          u"ダウンロードページを開く"_s, u"あとで"_s}));
    QCOMPARE(f.workspace.opened, QList<QUrl>{QUrl(u"https://example.org/vistrel/1.0.1"_s)});
    QCOMPARE(f.canCheckChanges, (QList<bool>{false, true}));
    QCOMPARE(f.updater.lastUpdateCheckDate(), f.clock.current);
    QCOMPARE(f.store.synced.value(AppcastSoftwareUpdater::lastCheckTimeKey),
             QVariant(f.clock.current.toUTC().toString(Qt::ISODateWithMs)));

    f.dialogs.acceptsOffers = false;
    f.updater.checkForUpdates();
    QTRY_COMPARE(f.dialogs.offers.size(), 2);
    QCOMPARE(f.workspace.opened.size(), 1);

    // The display version is newer, the build is not: builds decide.
    server.body = feedWith(u"100"_s, u"9.9"_s);
    f.updater.checkForUpdates();
    QTRY_COMPARE(f.dialogs.notices.size(), 1);
    QCOMPARE(f.dialogs.notices.first(),
             (QStringList{u"最新のバージョンです"_s, u"Vistrel 1.0 は入手できる最新のバージョンです。"_s}));
    QCOMPARE(f.dialogs.offers.size(), 2);
}

void AppcastSoftwareUpdaterTest::failuresAreMessages_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("serverRuns");
    QTest::addColumn<QString>("logged");
    QTest::addColumn<QString>("informative");
    const QString network = u"アップデート情報を読み込めませんでした。ネットワーク接続を確認してから、もう一度お試しください。"_s;
    QTest::newRow("not found") << QByteArray("404 Not Found") << QByteArray("gone") << true
                               << u"Vistrel: アップデートの確認に失敗しました: "_s << network;
    QTest::newRow("not an appcast") << QByteArray("200 OK") << QByteArray("<html>captive portal</html>") << true
                                    << u"Vistrel: アップデートの確認に失敗しました: the feed is not an appcast"_s
                                    << u"アップデート情報を読み取れませんでした。"_s;
    QTest::newRow("nobody listens") << QByteArray() << QByteArray() << false
                                    << u"Vistrel: アップデートの確認に失敗しました: "_s << network;
}

void AppcastSoftwareUpdaterTest::failuresAreMessages()
{
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, body);
    QFETCH(bool, serverRuns);
    QFETCH(QString, logged);
    QFETCH(QString, informative);
    QUrl feed;
    {
        LocalHttpServer closed;
        feed = closed.url();
    }
    LocalHttpServer server;
    server.status = status;
    server.body = body;
    Fixture f{serverRuns ? server.url() : feed};
    f.updater.checkForUpdates();
    QTRY_COMPARE(f.dialogs.notices.size(), 1);
    QCOMPARE(f.dialogs.notices.first(), (QStringList{u"アップデートを確認できませんでした"_s, informative}));
    QCOMPARE(f.systemLog.messages().size(), 1);
    QVERIFY2(f.systemLog.messages().first().startsWith(logged), qPrintable(f.systemLog.messages().first()));
    // A failed check is no check: the next automatic one is not put off.
    QCOMPARE(f.updater.lastUpdateCheckDate(), std::nullopt);
    QVERIFY(f.updater.canCheckForUpdates());
}

void AppcastSoftwareUpdaterTest::automaticChecksRunAtMostDaily()
{
    LocalHttpServer server;
    server.body = feedWith(u"100"_s, u"1.0"_s);
    Fixture f{server.url()};
    QVERIFY(f.updater.automaticallyChecksForUpdates());
    // Two hours since the last check: the next one is due in twenty-two.
    f.store.values.insert(AppcastSoftwareUpdater::lastCheckTimeKey,
                          f.clock.current.addSecs(-2 * 3600).toUTC().toString(Qt::ISODateWithMs));
    f.updater.start();
    QCOMPARE(f.scheduler.requestedDelays(), QList<double>{22 * 3600.0});
    f.scheduler.advance(22 * 3600 - 1);
    QVERIFY(!f.updater.isChecking());
    f.clock.current = f.clock.current.addSecs(22 * 3600);
    f.scheduler.advance(1);
    QVERIFY(f.updater.isChecking());
    QTRY_VERIFY(!f.updater.isChecking());
    QCOMPARE(server.requests.size(), 1);
    QCOMPARE(f.updater.lastUpdateCheckDate(), f.clock.current);
    // Nothing new, and nobody asked: no dialog. The next check is a day later.
    QVERIFY(f.dialogs.notices.isEmpty());
    QCOMPARE(f.scheduler.requestedDelays().last(), 24 * 3600.0);
}

void AppcastSoftwareUpdaterTest::automaticCheckSpeaksOnlyOfNewReleases()
{
    LocalHttpServer server;
    server.body = feedWith(u"200"_s, u"2.0"_s);
    Fixture f{server.url()};
    f.updater.start();
    // Never checked: soon after start.
    QCOMPARE(f.scheduler.requestedDelays(), QList<double>{AppcastSoftwareUpdater::launchCheckDelay});
    f.scheduler.advance(AppcastSoftwareUpdater::launchCheckDelay);
    QTRY_COMPARE(f.dialogs.offers.size(), 1);
    QCOMPARE(f.dialogs.offers.first().at(1),
             u"Vistrel 2.0 を入手できます（現在のバージョンは 1.0）。ダウンロードページを開きますか？"_s);

    server.status = "500 Internal Server Error";
    f.clock.current = f.clock.current.addDays(1);
    f.scheduler.advance(24 * 3600);
    QTRY_COMPARE(f.systemLog.messages().size(), 1);
    QVERIFY(f.dialogs.notices.isEmpty());
}

void AppcastSoftwareUpdaterTest::automaticChecksOffScheduleNothing()
{
    LocalHttpServer server;
    Fixture f{server.url()};
    f.updater.setAutomaticallyChecksForUpdates(false);
    QCOMPARE(f.store.synced.value(AppcastSoftwareUpdater::automaticChecksKey), QVariant(false));
    QVERIFY(!f.updater.automaticallyChecksForUpdates());
    f.updater.start();
    f.scheduler.advance(7 * 24 * 3600);
    QVERIFY(!f.updater.isChecking());
    // Switched on again: a check follows shortly, and one scheduled before switching off stays void.
    f.updater.setAutomaticallyChecksForUpdates(true);
    f.scheduler.advance(AppcastSoftwareUpdater::launchCheckDelay);
    QVERIFY(f.updater.isChecking());
}

QTEST_GUILESS_MAIN(AppcastSoftwareUpdaterTest)
#include "tst_appcastsoftwareupdater.moc"
