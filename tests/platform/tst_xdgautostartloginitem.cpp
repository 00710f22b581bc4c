#include "XdgAutostartLoginItem.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
} // namespace

class XdgAutostartLoginItemTest : public QObject
{
    Q_OBJECT

private slots:
    void registerWritesTheEntryAndUnregisterRemovesIt();
    void folderThatCannotBeMadeIsAnError();
    void execValueQuotesReservedCharacters_data();
    void execValueQuotesReservedCharacters();
    void entriesPassTheDesktopEntryValidator_data();
    void entriesPassTheDesktopEntryValidator();
};

void XdgAutostartLoginItemTest::registerWritesTheEntryAndUnregisterRemovesIt()
{
    QTemporaryDir home;
    const QString folder = home.filePath(u".config/autostart"_s);
    XdgAutostartLoginItem item(folder, u"/opt/Vistrel/bin/vistrel"_s);
    QCOMPARE(item.status(), LoginItemService::Status::NotRegistered);
    // An entry the user hid counts as none, and registering replaces it.
    QVERIFY(QDir().mkpath(folder));
    QFile hidden(item.entryPath());
    QVERIFY(hidden.open(QIODevice::WriteOnly));
    hidden.write("[Desktop Entry]\nType=Application\nName=Vistrel\nExec=vistrel\nHidden=true\n");
    hidden.close();
    QCOMPARE(item.status(), LoginItemService::Status::NotRegistered);

    QCOMPARE(item.registerApp(), std::nullopt);
    QCOMPARE(item.status(), LoginItemService::Status::Enabled);
    QCOMPARE(readAll(folder + u"/vistrel.desktop"_s),
             QByteArray("[Desktop Entry]\nType=Application\nName=Vistrel\nExec=/opt/Vistrel/bin/vistrel\n"
                        "Icon=vistrel\nTerminal=false\nX-GNOME-Autostart-enabled=true\n"));
    // Registering again is harmless.
    QCOMPARE(item.registerApp(), std::nullopt);

    QCOMPARE(item.unregisterApp(), std::nullopt);
    QVERIFY(!QFile::exists(folder + u"/vistrel.desktop"_s));
    QCOMPARE(item.status(), LoginItemService::Status::NotRegistered);
    QCOMPARE(item.unregisterApp(), std::nullopt);
}

void XdgAutostartLoginItemTest::folderThatCannotBeMadeIsAnError()
{
    QTemporaryDir home;
    // A file stands where the folder .config would go.
    QFile blocker(home.filePath(u".config"_s));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    XdgAutostartLoginItem item(home.filePath(u".config/autostart"_s), u"/usr/bin/vistrel"_s);

    const std::optional<QString> error = item.registerApp();
    QVERIFY(error);
    QVERIFY2(error->contains(home.filePath(u".config/autostart"_s)), qPrintable(*error));
    QCOMPARE(item.status(), LoginItemService::Status::NotRegistered);
}

void XdgAutostartLoginItemTest::execValueQuotesReservedCharacters_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("value");
    QTest::newRow("plain path stays as it is") << u"/usr/bin/vistrel"_s << u"/usr/bin/vistrel"_s;
    QTest::newRow("space is quoted") << u"/opt/my apps/vistrel"_s << u"\"/opt/my apps/vistrel\""_s;
    QTest::newRow("dollar is escaped inside quotes, then the backslash itself")
        << u"/opt/a$b/vistrel"_s << u"\"/opt/a\\\\$b/vistrel\""_s;
    QTest::newRow("double quote") << u"/opt/a\"b/vistrel"_s << u"\"/opt/a\\\\\"b/vistrel\""_s;
    QTest::newRow("backslash") << u"/opt/a\\b/vistrel"_s << u"\"/opt/a\\\\\\\\b/vistrel\""_s;
    QTest::newRow("non-ASCII needs no quotes") << u"/home/山田/bin/vistrel"_s << u"/home/山田/bin/vistrel"_s;
}

void XdgAutostartLoginItemTest::execValueQuotesReservedCharacters()
{
    QFETCH(QString, program);
    QTEST(xdgautostart::execValue(program), "value");
}

void XdgAutostartLoginItemTest::entriesPassTheDesktopEntryValidator_data()
{
    QTest::addColumn<QString>("executable");
    QTest::newRow("plain path") << u"/usr/bin/vistrel"_s;
    QTest::newRow("path that needs quoting") << u"/opt/my $apps/vistrel"_s;
}

void XdgAutostartLoginItemTest::entriesPassTheDesktopEntryValidator()
{
    QFETCH(QString, executable);
    QVERIFY2(!QStandardPaths::findExecutable(u"desktop-file-validate"_s).isEmpty(),
             "desktop-file-validate is missing (scripts/setup.sh test installs it)");
    QTemporaryDir folder;
    XdgAutostartLoginItem item(folder.path(), executable);
    QCOMPARE(item.registerApp(), std::nullopt);
    for (const QString &entry : {item.entryPath(), QStringLiteral(LAUNCHER_ENTRY)}) {
        QProcess validator;
        validator.setProcessChannelMode(QProcess::MergedChannels);
        validator.start(u"desktop-file-validate"_s, {entry});
        QVERIFY(validator.waitForFinished());
        const QByteArray output = validator.readAll();
        QVERIFY2(validator.exitCode() == 0 && output.isEmpty(), output.constData());
    }
}

QTEST_GUILESS_MAIN(XdgAutostartLoginItemTest)
#include "tst_xdgautostartloginitem.moc"
