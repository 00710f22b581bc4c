#include "app/CommandLine.h"

#include <QTest>

using namespace Qt::StringLiterals;
using commandline::Command;

Q_DECLARE_METATYPE(commandline::Command)

class CommandLineTest : public QObject
{
    Q_OBJECT

private slots:
    void commands_data();
    void commands();
    void captureOptions_data();
    void captureOptions();
    void wrongArguments_data();
    void wrongArguments();
};

void CommandLineTest::commands_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<Command>("command");
    QTest::addColumn<QString>("file");
    QTest::newRow("plain start") << QStringList() << Command::Activate << QString();
    QTest::newRow("activate as an older start sends it") << QStringList{u"activate"_s} << Command::Activate
                                                         << QString();
    // select, quit, settings and edit without a file the end-to-end tests give a running Vistrel.
    QTest::newRow("repeat") << QStringList{u"repeat"_s} << Command::Repeat << QString();
    QTest::newRow("edit keeps the file as given") << QStringList{u"edit"_s, u"../スクリーン ショット.png"_s}
                                                  << Command::Edit << u"../スクリーン ショット.png"_s;
    QTest::newRow("help") << QStringList{u"--help"_s} << Command::Help << QString();
    QTest::newRow("short help") << QStringList{u"-h"_s} << Command::Help << QString();
    QTest::newRow("help after a command") << QStringList{u"capture"_s, u"--help"_s} << Command::Help << QString();
    QTest::newRow("help wins over wrong arguments") << QStringList{u"frobnicate"_s, u"--help"_s} << Command::Help
                                                    << QString();
    QTest::newRow("version") << QStringList{u"--version"_s} << Command::Version << QString();
}

void CommandLineTest::commands()
{
    QFETCH(QStringList, arguments);
    QFETCH(Command, command);
    QFETCH(QString, file);
    const commandline::Parsed parsed = commandline::parse(arguments);
    QVERIFY2(!parsed.error, qPrintable(parsed.error.value_or(QString())));
    QCOMPARE(parsed.invocation.command, command);
    QCOMPARE(parsed.invocation.file, file);
}

void CommandLineTest::captureOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("display");
    QTest::addColumn<QRect>("region");
    QTest::addColumn<QString>("output");
    const QStringList capture{u"capture"_s};
    QTest::newRow("whole screen, saved as captures are") << capture << -1 << QRect() << QString();
    QTest::newRow("display and file") << capture + QStringList{u"--display"_s, u"1"_s, u"-o"_s, u"a.png"_s} << 1
                                      << QRect() << u"a.png"_s;
    QTest::newRow("display 0 is the first") << capture + QStringList{u"--display=0"_s} << 0 << QRect() << QString();
    QTest::newRow("region then output") << capture + QStringList{u"--region"_s, u"10,20,1280,720"_s, u"-o"_s, u"-"_s}
                                        << -1 << QRect(10, 20, 1280, 720) << u"-"_s;
    QTest::newRow("output first, long forms") << capture + QStringList{u"--output=b.png"_s, u"--region=0,0,1,1"_s}
                                              << -1 << QRect(0, 0, 1, 1) << u"b.png"_s;
    QTest::newRow("a file name that looks like an option")
        << capture + QStringList{u"-o"_s, u"--display"_s} << -1 << QRect() << u"--display"_s;
}

void CommandLineTest::captureOptions()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, display);
    QFETCH(QRect, region);
    QFETCH(QString, output);
    const commandline::Parsed parsed = commandline::parse(arguments);
    QVERIFY2(!parsed.error, qPrintable(parsed.error.value_or(QString())));
    QCOMPARE(parsed.invocation.command, Command::Capture);
    const commandline::CaptureOptions &options = parsed.invocation.capture;
    QCOMPARE(options.display.value_or(-1), display);
    QCOMPARE(options.region.value_or(QRect()), region);
    QCOMPARE(options.output.value_or(QString()), output);
}

void CommandLineTest::wrongArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const QStringList capture{u"capture"_s};
    const QString hint = u" (see vistrel --help)"_s;
    QTest::newRow("unknown command") << QStringList{u"shoot"_s} << u"unknown command 'shoot'"_s + hint;
    QTest::newRow("unknown capture option") << capture + QStringList{u"--all"_s}
                                            << u"capture does not know '--all'"_s + hint;
    QTest::newRow("a stray argument") << capture + QStringList{u"a.png"_s} << u"capture does not know 'a.png'"_s + hint;
    QTest::newRow("option without its value") << capture + QStringList{u"-o"_s} << u"-o needs a value"_s + hint;
    QTest::newRow("empty file name") << capture + QStringList{u"--output="_s} << u"-o needs a file name"_s + hint;
    QTest::newRow("display and region together")
        << capture + QStringList{u"--display"_s, u"0"_s, u"--region"_s, u"0,0,5,5"_s}
        << u"--display and --region cannot be combined"_s + hint;
    QTest::newRow("two displays") << capture + QStringList{u"--display"_s, u"0"_s, u"--display"_s, u"1"_s}
                                  << u"--display is given twice"_s + hint;
    QTest::newRow("two outputs") << capture + QStringList{u"-o"_s, u"a"_s, u"-o"_s, u"b"_s}
                                 << u"-o is given twice"_s + hint;
    const QString displayError = u"--display takes a display number from 0, as xrandr --listmonitors or the compositor lists them"_s
        + hint;
    QTest::newRow("display by name") << capture + QStringList{u"--display"_s, u"HDMI-1"_s} << displayError;
    QTest::newRow("negative display") << capture + QStringList{u"--display=-1"_s} << displayError;
    const auto badRegion = [&hint](const QString &value) -> QString {
        return u"bad region '%1': --region takes X,Y,W,H in screen pixels, W and H above 0"_s.arg(value) + hint;
    };
    QTest::newRow("region of zero width") << capture + QStringList{u"--region"_s, u"0,0,0,10"_s}
                                          << badRegion(u"0,0,0,10"_s);
    QTest::newRow("region left of the screen") << capture + QStringList{u"--region=-5,0,10,10"_s}
                                               << badRegion(u"-5,0,10,10"_s);
    QTest::newRow("region in another form") << capture + QStringList{u"--region"_s, u"100x100+0+0"_s}
                                            << badRegion(u"100x100+0+0"_s);
    QTest::newRow("select with an argument") << QStringList{u"select"_s, u"now"_s}
                                             << u"select takes no arguments"_s + hint;
    QTest::newRow("edit with two files") << QStringList{u"edit"_s, u"a.png"_s, u"b.png"_s}
                                         << u"edit takes at most one FILE"_s + hint;
    QTest::newRow("edit with an empty file name") << QStringList{u"edit"_s, u""_s}
                                                  << u"edit takes at most one FILE"_s + hint;
}

void CommandLineTest::wrongArguments()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    QCOMPARE(commandline::parse(arguments).error, std::optional<QString>(error));
}

QTEST_APPLESS_MAIN(CommandLineTest)
#include "tst_commandline.moc"
