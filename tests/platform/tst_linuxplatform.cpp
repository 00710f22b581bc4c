#include "LinuxPlatform.h"
#include "TestMain.h"

#include "platform/HotKeyRegistrar.h"
#include "platform/KeyValueStore.h"
#include "platform/LoginItemService.h"
#include "platform/ScreenCapturePermission.h"
#include "platform/SoftwareUpdater.h"

#include <QApplication>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

class LinuxPlatformTest : public QObject
{
    Q_OBJECT

private slots:
    void foldersFollowTheXdgVariables_data();
    void foldersFollowTheXdgVariables();
    void setListsEveryServiceItBuilt();
};

void LinuxPlatformTest::foldersFollowTheXdgVariables_data()
{
    QTest::addColumn<QString>("stateHome");
    QTest::addColumn<QString>("configHome");
    QTest::addColumn<QString>("logFolder");
    QTest::addColumn<QString>("settings");
    QTest::addColumn<QString>("autostart");
    QTest::newRow("defaults under HOME") << QString() << QString() << u"/home/u/.local/state/Vistrel"_s
                                         << u"/home/u/.config/Vistrel/settings.json"_s << u"/home/u/.config/autostart"_s;
    QTest::newRow("variables set") << u"/var/st"_s << u"/cfg/"_s << u"/var/st/Vistrel"_s
                                   << u"/cfg/Vistrel/settings.json"_s << u"/cfg/autostart"_s;
    // The base-directory convention ignores relative paths.
    QTest::newRow("relative variables are ignored") << u"state"_s << u"cfg"_s << u"/home/u/.local/state/Vistrel"_s
                                                    << u"/home/u/.config/Vistrel/settings.json"_s
                                                    << u"/home/u/.config/autostart"_s;
}

void LinuxPlatformTest::foldersFollowTheXdgVariables()
{
    QFETCH(QString, stateHome);
    QFETCH(QString, configHome);
    QProcessEnvironment environment;
    environment.insert(u"HOME"_s, u"/home/u"_s);
    if (!stateHome.isEmpty())
        environment.insert(u"XDG_STATE_HOME"_s, stateHome);
    if (!configHome.isEmpty())
        environment.insert(u"XDG_CONFIG_HOME"_s, configHome);
    QTEST(LinuxPlatform::diagnosticsLogFolder(environment), "logFolder");
    QTEST(LinuxPlatform::settingsPath(environment), "settings");
    QTEST(LinuxPlatform::autostartFolder(environment), "autostart");
}

void LinuxPlatformTest::setListsEveryServiceItBuilt()
{
    VISTREL_REQUIRE_X();
    QTemporaryDir home;
    QProcessEnvironment environment;
    environment.insert(u"HOME"_s, home.path());
    LinuxPlatform platform(qApp->nativeInterface<QNativeInterface::QX11Application>()->connection(), environment);
    const PlatformServices services = platform.services();
    QCOMPARE(services.diagnosticsLogFolder, home.path() + u"/.local/state/Vistrel"_s);
    QVERIFY(services.application && services.clock && services.hotKeys && services.store && services.loginItem
            && services.scheduler && services.statusItem && services.systemLog && services.notifier);
    QVERIFY(services.cursor && services.displays && services.keyMonitor && services.pasteboard && services.pngWriter
            && services.screenCapturePermission && services.screenCapturer && services.selectionWindows
            && services.sounds && services.updater && services.windowList && services.workspace && services.alerts
            && services.editorWindows && services.openPanel);
    QVERIFY(services.screenCapturePermission->preflight());
    // Built without an update feed, as tests are.
    QVERIFY(services.updater->unavailableReason());
    QVERIFY(!services.legacyPreferences);

    // The services work where the set put them.
    services.store->setValue(u"VistrelFilenamePrefix"_s, u"Shot"_s);
    QVERIFY(services.store->sync());
    QVERIFY(QFile::exists(home.path() + u"/.config/Vistrel/settings.json"_s));
    QCOMPARE(services.loginItem->registerApp(), std::nullopt);
    QVERIFY(QFile::exists(home.path() + u"/.config/autostart/vistrel.desktop"_s));
    QCOMPARE(services.hotKeys->registerHotKey(1, 0x300, {0, 1}).status, HotKeyRegistrar::noErr);
}

VISTREL_TEST_MAIN_ON_XVFB(LinuxPlatformTest, QApplication)
#include "tst_linuxplatform.moc"
