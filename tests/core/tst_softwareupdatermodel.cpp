#include "FakeApplicationControl.h"
#include "FakeSoftwareUpdater.h"

#include "update/SoftwareUpdateSettingsSection.h"
#include "update/SoftwareUpdaterModel.h"

#include <QTest>

using namespace Qt::StringLiterals;

class SoftwareUpdaterModelTest : public QObject
{
    Q_OBJECT

private slots:
    void previewsDoNotStartTheUpdater_data();
    void previewsDoNotStartTheUpdater();
    void startsOnlyWhenAsked();
    void automaticChecksWriteThroughOnlyWhenDifferent();
    void versionDescription_data();
    void versionDescription();
    void lastCheckDescription();
};

void SoftwareUpdaterModelTest::previewsDoNotStartTheUpdater_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("starts");
    QTest::newRow("unset") << QByteArray() << true;
    QTest::newRow("preview") << QByteArray("1") << false;
    QTest::newRow("yes is not 1") << QByteArray("YES") << true;
}

void SoftwareUpdaterModelTest::previewsDoNotStartTheUpdater()
{
    QFETCH(QByteArray, value);
    QFETCH(bool, starts);
    if (value.isNull())
        qunsetenv("XCODE_RUNNING_FOR_PREVIEWS");
    else
        qputenv("XCODE_RUNNING_FOR_PREVIEWS", value);
    QCOMPARE(SoftwareUpdaterModel::startsUpdaterInThisProcess(), starts);
    qunsetenv("XCODE_RUNNING_FOR_PREVIEWS");
}

void SoftwareUpdaterModelTest::startsOnlyWhenAsked()
{
    QStringList journal;
    FakeSoftwareUpdater updater(&journal);
    FakeApplicationControl application(&journal);
    SoftwareUpdaterModel notStarted(updater, application, false);
    QVERIFY(journal.isEmpty());
    SoftwareUpdaterModel model(updater, application, true);
    model.checkForUpdates();
    QCOMPARE(journal, (QStringList{u"updater.start"_s, u"application.activate"_s, u"updater.checkForUpdates"_s}));
}

void SoftwareUpdaterModelTest::automaticChecksWriteThroughOnlyWhenDifferent()
{
    FakeSoftwareUpdater updater;
    updater.automatic = false;
    FakeApplicationControl application;
    SoftwareUpdaterModel model(updater, application, true);
    QVERIFY(!model.automaticallyChecksForUpdates());
    model.setAutomaticallyChecksForUpdates(false);
    QCOMPARE(updater.automaticWrites, 0);
    model.setAutomaticallyChecksForUpdates(true);
    QCOMPARE(updater.automaticWrites, 1);
    QVERIFY(updater.automatic);
}

void SoftwareUpdaterModelTest::versionDescription_data()
{
    QTest::addColumn<QString>("shortVersion");
    QTest::addColumn<QString>("build");
    QTest::addColumn<QString>("expected");
    QTest::newRow("both") << u"1.4.0"_s << u"212"_s << u"1.4.0 (212)"_s;
    QTest::newRow("none") << QString() << QString() << u"不明 (不明)"_s;
}

void SoftwareUpdaterModelTest::versionDescription()
{
    QFETCH(QString, shortVersion);
    QFETCH(QString, build);
    QFETCH(QString, expected);
    auto optional = [](const QString &s) { return s.isNull() ? std::nullopt : std::optional<QString>(s); };
    QCOMPARE(updatesection::versionDescription(optional(shortVersion), optional(build)), expected);
}

void SoftwareUpdaterModelTest::lastCheckDescription()
{
    const QDateTime when(QDate(2026, 11, 21), QTime(9, 5));
    const QString text = updatesection::lastCheckDescription(when, QLocale(QLocale::English, QLocale::UnitedStates));
    QVERIFY2(text.contains(u"11/21/26"_s) && text.contains(u"9:05"_s), qPrintable(text));
}

QTEST_GUILESS_MAIN(SoftwareUpdaterModelTest)
#include "tst_softwareupdatermodel.moc"
