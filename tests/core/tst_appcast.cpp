#include "update/Appcast.h"

#include <QTest>

using namespace Qt::StringLiterals;

class AppcastTest : public QObject
{
    Q_OBJECT

private slots:
    void compareVersions_data();
    void compareVersions();
    void readsItemsInBothPlacesOfTheVersion();
    void refusesWhatIsNoFeed_data();
    void refusesWhatIsNoFeed();
    void newestItemByVersionNotByOrder();
};

void AppcastTest::compareVersions_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("order");
    QTest::newRow("equal") << u"1.2.3"_s << u"1.2.3"_s << 0;
    QTest::newRow("numbers compare as numbers, not text") << u"1.10"_s << u"1.9"_s << 1;
    QTest::newRow("leading zeros do not count") << u"1.010"_s << u"1.10"_s << 0;
    QTest::newRow("more numbers is newer") << u"1.0.1"_s << u"1.0"_s << 1;
    QTest::newRow("a pre-release suffix is older") << u"1.0b1"_s << u"1.0"_s << -1;
    QTest::newRow("beta before release candidate") << u"1.0b2"_s << u"1.0rc1"_s << -1;
    QTest::newRow("number beats text at the same place") << u"1.1"_s << u"1.a"_s << 1;
    QTest::newRow("number beats a period") << u"12"_s << u"1.2"_s << 1;
    QTest::newRow("builds of any length") << u"20240501123456789012"_s << u"20240501123456789011"_s << 1;
    QTest::newRow("empty is older than anything") << u""_s << u"0"_s << -1;
}

void AppcastTest::compareVersions()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(int, order);
    QCOMPARE(appcast::compareVersions(a, b), order);
    QCOMPARE(appcast::compareVersions(b, a), -order);
}

void AppcastTest::readsItemsInBothPlacesOfTheVersion()
{
    const QByteArray xml = R"(<?xml version="1.0" encoding="utf-8"?>
<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">
  <channel>
    <title>Vistrel</title>
    <item>
      <title>Vistrel 1.1</title>
      <link>https://example.org/vistrel/1.1</link>
      <sparkle:version>110</sparkle:version>
      <sparkle:shortVersionString>1.1</sparkle:shortVersionString>
      <enclosure url="https://example.org/vistrel-1.1.tar.gz" length="10" type="application/gzip"/>
    </item>
    <item>
      <title>Vistrel 1.2</title>
      <enclosure url="https://example.org/vistrel-1.2.tar.gz" sparkle:version="120" sparkle:shortVersionString="1.2"/>
    </item>
    <item>
      <title>Only a short version</title>
      <sparkle:shortVersionString>0.9</sparkle:shortVersionString>
      <link>file:///etc/passwd</link>
    </item>
    <item><title>No version at all</title></item>
  </channel>
</rss>)";
    const std::optional<appcast::Feed> feed = appcast::parse(xml);
    QVERIFY(feed);
    QCOMPARE(feed->items.size(), 3);
    const appcast::Item &first = feed->items.at(0);
    QCOMPARE(first.title, u"Vistrel 1.1"_s);
    QCOMPARE(first.version, u"110"_s);
    QCOMPARE(first.displayVersion, u"1.1"_s);
    // The release page rather than the download.
    QCOMPARE(first.downloadPage, QUrl(u"https://example.org/vistrel/1.1"_s));
    const appcast::Item &second = feed->items.at(1);
    QCOMPARE(second.version, u"120"_s);
    QCOMPARE(second.displayVersion, u"1.2"_s);
    QCOMPARE(second.downloadPage, QUrl(u"https://example.org/vistrel-1.2.tar.gz"_s));
    const appcast::Item &third = feed->items.at(2);
    QCOMPARE(third.version, u"0.9"_s);
    // Never a local file.
    QVERIFY(third.downloadPage.isEmpty());
}

void AppcastTest::refusesWhatIsNoFeed_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("HTML error page") << QByteArray("<html><body>Not found</body></html>");
    QTest::newRow("cut off") << QByteArray("<rss><channel><item><title>Vistrel");
    QTest::newRow("binary") << QByteArray("\x89PNG\r\n\x1a\n\0\0", 10);
}

void AppcastTest::refusesWhatIsNoFeed()
{
    QFETCH(QByteArray, xml);
    QVERIFY(!appcast::parse(xml));
}

void AppcastTest::newestItemByVersionNotByOrder()
{
    appcast::Feed feed;
    feed.items = {{u"a"_s, u"1.9"_s, u"1.9"_s, {}}, {u"b"_s, u"1.10"_s, u"1.10"_s, {}}, {u"c"_s, u"1.2"_s, u"1.2"_s, {}}};
    QCOMPARE(appcast::newestItem(feed)->title, u"b"_s);
    QVERIFY(!appcast::newestItem(appcast::Feed{}));
}

QTEST_GUILESS_MAIN(AppcastTest)
#include "tst_appcast.moc"
