// Runs the diagnostics in real child processes that die, and checks what they left behind.
#include "app/CrashDiagnostics.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace {

struct ChildResult
{
    bool exited = false;
    int exitCode = -1;
    int signal = 0;
    QByteArray standardError;
};

// posix_spawn + waitpid, because QProcess does not say which signal ended a child.
ChildResult runChild(const QStringList &arguments)
{
    int pipeFds[2];
    if (::pipe(pipeFds) != 0)
        return {};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDERR_FILENO);
    posix_spawn_file_actions_addclose(&actions, pipeFds[0]);

    QList<QByteArray> storage{QByteArrayLiteral(DIAGNOSTICS_CHILD)};
    for (const QString &argument : arguments)
        storage.append(argument.toUtf8());
    QList<char *> argv;
    for (QByteArray &a : storage)
        argv.append(a.data());
    argv.append(nullptr);

    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, DIAGNOSTICS_CHILD, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipeFds[1]);
    ChildResult result;
    if (spawned != 0) {
        ::close(pipeFds[0]);
        return result;
    }
    char buffer[4096];
    ssize_t n = 0;
    while ((n = ::read(pipeFds[0], buffer, sizeof buffer)) > 0)
        result.standardError.append(buffer, n);
    ::close(pipeFds[0]);
    int status = 0;
    ::waitpid(pid, &status, 0);
    result.exited = WIFEXITED(status);
    result.exitCode = result.exited ? WEXITSTATUS(status) : -1;
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return result;
}

QByteArray readLog(const QString &folder)
{
    QFile file(folder + QStringLiteral("/diagnostics.log"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

const QRegularExpression timeStampedLine(QStringLiteral(R"(^\[\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ\] (.*)$)"));

} // namespace

class CrashDiagnosticsTest : public QObject
{
    Q_OBJECT

private slots:
    void fatalSignalIsRecordedAndReraised_data();
    void fatalSignalIsRecordedAndReraised();
    void unknownSignalWritesUnknownAndReraisesIt();
    void unwritableFolderStillReportsAndDies();
    void firstWriteCreatesThenAppends();
    void emptyMessageStillMakesALine();
    void uncaughtExceptionIsRecorded_data();
    void uncaughtExceptionIsRecorded();
    void logFileModeIs0644();
    void platformExceptionHandlerIsInstalledOnceBeforeTheInstallLine();
    void exceptionRecordHasHeadThenOneSymbolPerLine_data();
    void exceptionRecordHasHeadThenOneSymbolPerLine();
};

void CrashDiagnosticsTest::fatalSignalIsRecordedAndReraised_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("number");
    QTest::newRow("SIGABRT") << QStringLiteral("SIGABRT") << SIGABRT;
    QTest::newRow("SIGILL") << QStringLiteral("SIGILL") << SIGILL;
    QTest::newRow("SIGSEGV") << QStringLiteral("SIGSEGV") << SIGSEGV;
    QTest::newRow("SIGBUS") << QStringLiteral("SIGBUS") << SIGBUS;
    QTest::newRow("SIGTRAP") << QStringLiteral("SIGTRAP") << SIGTRAP;
    QTest::newRow("SIGFPE") << QStringLiteral("SIGFPE") << SIGFPE;
    QTest::newRow("SIGPIPE") << QStringLiteral("SIGPIPE") << SIGPIPE;
}

void CrashDiagnosticsTest::fatalSignalIsRecordedAndReraised()
{
    QFETCH(QString, name);
    QFETCH(int, number);
    QTemporaryDir dir;
    const QString folder = dir.filePath(QStringLiteral("Logs/Vistrel"));

    const ChildResult child = runChild({folder, QStringLiteral("signal"), name});

    QCOMPARE(child.signal, number);
    const QByteArray expected = "Vistrel fatal signal: " + name.toLatin1() + '\n';
    QVERIFY2(child.standardError.endsWith(expected), child.standardError.constData());
    const QList<QByteArray> lines = readLog(folder).split('\n');
    QCOMPARE(lines.size(), 3); // the install line, the signal line, and the end after the last new-line
    const auto match = timeStampedLine.match(QString::fromUtf8(lines[0]));
    QVERIFY(match.hasMatch());
    QCOMPARE(match.captured(1), u"Crash diagnostics installed. log=" + folder + u"/diagnostics.log");
    QCOMPARE(lines[1] + '\n', expected);
}

void CrashDiagnosticsTest::unknownSignalWritesUnknownAndReraisesIt()
{
    QTemporaryDir dir;
    const ChildResult child = runChild({dir.path(), QStringLiteral("handler"), QString::number(SIGUSR2)});
    QCOMPARE(child.signal, SIGUSR2);
    QVERIFY(child.standardError.endsWith("Vistrel fatal signal: UNKNOWN\n"));
    QVERIFY(readLog(dir.path()).endsWith("Vistrel fatal signal: UNKNOWN\n"));
}

void CrashDiagnosticsTest::unwritableFolderStillReportsAndDies()
{
    QTemporaryDir dir;
    // A folder below a regular file can be neither made nor opened, even by root.
    QFile blocker(dir.filePath(QStringLiteral("file")));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    const QString folder = dir.filePath(QStringLiteral("file/Logs"));

    const ChildResult child = runChild({folder, QStringLiteral("signal"), QStringLiteral("SIGSEGV")});

    QCOMPARE(child.signal, SIGSEGV);
    QVERIFY(child.standardError.contains("] Crash diagnostics installed. log="));
    QVERIFY(child.standardError.endsWith("Vistrel fatal signal: SIGSEGV\n"));
}

void CrashDiagnosticsTest::firstWriteCreatesThenAppends()
{
    QTemporaryDir dir;
    const QString folder = dir.filePath(QStringLiteral("fresh/account/Vistrel"));
    ChildResult child = runChild({folder, QStringLiteral("write"), QStringLiteral("first")});
    QCOMPARE(child.exitCode, 0);
    child = runChild({folder, QStringLiteral("write"), QStringLiteral("second"), QStringLiteral("日本語 third")});
    QCOMPARE(child.exitCode, 0);

    const QStringList lines = QString::fromUtf8(readLog(folder)).split(u'\n', Qt::SkipEmptyParts);
    QStringList messages;
    for (const QString &line : lines) {
        const auto match = timeStampedLine.match(line);
        QVERIFY2(match.hasMatch(), qPrintable(line));
        messages << match.captured(1);
    }
    QCOMPARE(messages, (QStringList{QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("日本語 third")}));
    QVERIFY(child.standardError.contains("] 日本語 third\n"));
}

void CrashDiagnosticsTest::emptyMessageStillMakesALine()
{
    QTemporaryDir dir;
    QCOMPARE(runChild({dir.path(), QStringLiteral("write"), QString()}).exitCode, 0);
    const QByteArray log = readLog(dir.path());
    QVERIFY(QRegularExpression(QStringLiteral(R"(^\[[^\]]+Z\] \n$)")).match(QString::fromUtf8(log)).hasMatch());
}

void CrashDiagnosticsTest::uncaughtExceptionIsRecorded_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("expectedHead");
    QTest::newRow("with reason") << QStringLiteral("disk on fire")
                                 << QStringLiteral("Uncaught C++ exception: std::runtime_error reason=disk on fire");
    QTest::newRow("empty reason is nil") << QString()
                                         << QStringLiteral("Uncaught C++ exception: std::runtime_error reason=nil");
    QTest::newRow("not a std::exception") << QStringLiteral("custom")
                                          << QStringLiteral("Uncaught C++ exception: (anonymous namespace)::CustomFailure reason=nil");
}

void CrashDiagnosticsTest::uncaughtExceptionIsRecorded()
{
    QFETCH(QString, argument);
    QFETCH(QString, expectedHead);
    QTemporaryDir dir;
    const ChildResult child = runChild({dir.path(), QStringLiteral("throw"), argument});
    QCOMPARE(child.signal, SIGABRT);
    const QString log = QString::fromUtf8(readLog(dir.path()));
    QVERIFY2(log.contains(u"] " + expectedHead + u'\n'), qPrintable(log));
    // A stack follows the head line, and the abort that ends the process is recorded last.
    QVERIFY(log.endsWith(QStringLiteral("Vistrel fatal signal: SIGABRT\n")));
    const qsizetype head = log.indexOf(expectedHead);
    QVERIFY(log.mid(head).count(u'\n') > 3);
}

void CrashDiagnosticsTest::logFileModeIs0644()
{
    QTemporaryDir dir;
    const mode_t previous = ::umask(022);
    runChild({dir.path(), QStringLiteral("signal"), QStringLiteral("SIGTRAP")});
    ::umask(previous);
    struct stat info {};
    QCOMPARE(::stat(QFile::encodeName(dir.filePath(QStringLiteral("diagnostics.log"))).constData(), &info), 0);
    // install() creates the file through the raw descriptor, with mode 0644.
    QCOMPARE(info.st_mode & 0777, mode_t(0644));
}

void CrashDiagnosticsTest::platformExceptionHandlerIsInstalledOnceBeforeTheInstallLine()
{
    QTemporaryDir dir;
    QCOMPARE(runChild({dir.path(), QStringLiteral("platform")}).exitCode, 0);
    QStringList messages;
    for (const QString &line : QString::fromUtf8(readLog(dir.path())).split(u'\n', Qt::SkipEmptyParts))
        messages << timeStampedLine.match(line).captured(1);
    QCOMPARE(messages, (QStringList{QStringLiteral("platform exception handler installed"),
                                    u"Crash diagnostics installed. log=" + dir.path() + u"/diagnostics.log"}));
}

void CrashDiagnosticsTest::exceptionRecordHasHeadThenOneSymbolPerLine_data()
{
    QTest::addColumn<QString>("reason");
    QTest::addColumn<bool>("hasReason");
    QTest::addColumn<QStringList>("stack");
    QTest::addColumn<QString>("expected");
    const QStringList stack{QStringLiteral("0   CoreFoundation  __exceptionPreprocess + 176"),
                            QStringLiteral("1   libobjc.A.dylib  objc_exception_throw + 60")};
    QTest::newRow("reason and stack")
        << QStringLiteral("index 3 beyond bounds") << true << stack
        << QStringLiteral("Uncaught NSException: NSRangeException reason=index 3 beyond bounds\n"
                          "0   CoreFoundation  __exceptionPreprocess + 176\n"
                          "1   libobjc.A.dylib  objc_exception_throw + 60");
    QTest::newRow("no reason reads nil") << QString() << false << stack.mid(0, 1)
        << QStringLiteral("Uncaught NSException: NSRangeException reason=nil\n"
                          "0   CoreFoundation  __exceptionPreprocess + 176");
    QTest::newRow("an empty reason stays empty") << QString() << true << QStringList()
        << QStringLiteral("Uncaught NSException: NSRangeException reason=\n");
}

void CrashDiagnosticsTest::exceptionRecordHasHeadThenOneSymbolPerLine()
{
    QFETCH(QString, reason);
    QFETCH(bool, hasReason);
    QFETCH(QStringList, stack);
    QFETCH(QString, expected);
    const std::optional<QString> given = hasReason ? std::optional(reason) : std::nullopt;
    QCOMPARE(CrashDiagnostics::uncaughtExceptionRecord(QStringLiteral("NSException"),
                                                       QStringLiteral("NSRangeException"), given, stack),
             expected);
}

QTEST_GUILESS_MAIN(CrashDiagnosticsTest)
#include "tst_crashdiagnostics.moc"
