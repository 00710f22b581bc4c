// Where the Linux set puts its files. That the services work in those places, the end-to-end tests show
// (they read the diagnostics log, the settings file and the autostart entry where these say).
#include "LinuxPlatform.h"

#include <QTest>

using namespace Qt::StringLiterals;

class LinuxPlatformTest : public QObject
{
    Q_OBJECT

private slots:
    void foldersFollowTheXdgVariables_data();
    void foldersFollowTheXdgVariables();
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

QTEST_APPLESS_MAIN(LinuxPlatformTest)
#include "tst_linuxplatform.moc"
