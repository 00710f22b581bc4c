// Runs the diagnostics in real child processes that die, and checks what they left behind.
#include "UnprivilegedUser.h"
#include "app/CrashDiagnostics.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <utility>

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

using namespace Qt::StringLiterals;

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
    QFile file(folder + u"/diagnostics.log"_s);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

const QRegularExpression timeStampedLine(QStringLiteral(R"(^\[\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ\] (.*)$)"));

QStringList loggedMessages(const QString &folder)
{
    QStringList messages;
    for (const QString &line : QString::fromUtf8(readLog(folder)).split(u'\n', Qt::SkipEmptyParts)) {
        const auto match = timeStampedLine.match(line);
        messages << (match.hasMatch() ? match.captured(1) : u"unstamped: "_s + line);
    }
    return messages;
}

} // namespace

class CrashDiagnosticsTest : public QObject
{
    Q_OBJECT

private slots:
    void fatalSignalIsRecordedAndReraised_data();
    void fatalSignalIsRecordedAndReraised();
    void unwritableFolderStillReportsAndDies();
    void firstWriteCreatesThenAppends();
    void readOnlyLogIsReplacedWhole();
    void uncaughtExceptionIsRecorded_data();
    void uncaughtExceptionIsRecorded();
    void platformExceptionHandlerIsInstalledOnceBeforeTheInstallLine();
    void exceptionRecordHasHeadThenOneSymbolPerLine_data();
    void exceptionRecordHasHeadThenOneSymbolPerLine();
};

void CrashDiagnosticsTest::fatalSignalIsRecordedAndReraised_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("argument");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("name");
    for (const auto &[name, number] : {std::pair{"SIGABRT", SIGABRT}, {"SIGILL", SIGILL}, {"SIGSEGV", SIGSEGV},
                                       {"SIGBUS", SIGBUS}, {"SIGTRAP", SIGTRAP}, {"SIGFPE", SIGFPE}, {"SIGPIPE", SIGPIPE}})
        QTest::newRow(name) << u"signal"_s << QString::fromLatin1(name) << number << QString::fromLatin1(name);
    QTest::newRow("a signal the handler does not know is UNKNOWN, and re-raised")
        << u"handler"_s << QString::number(SIGUSR2) << int(SIGUSR2) << u"UNKNOWN"_s;
}

void CrashDiagnosticsTest::fatalSignalIsRecordedAndReraised()
{
    QFETCH(QString, action);
    QFETCH(QString, argument);
    QFETCH(int, number);
    QFETCH(QString, name);
    QTemporaryDir dir;
    const QString folder = dir.filePath(u"Logs/Vistrel"_s);
    const mode_t previousMask = ::umask(022);
    const ChildResult child = runChild({folder, action, argument});
    ::umask(previousMask);

    QCOMPARE(child.signal, number);
    const QString expected = u"Vistrel fatal signal: "_s + name;
    QVERIFY2(child.standardError.endsWith((expected + u'\n').toUtf8()), child.standardError.constData());
    QCOMPARE(loggedMessages(folder), (QStringList{u"Crash diagnostics installed. log=" + folder + u"/diagnostics.log",
                                                  u"unstamped: "_s + expected}));
    // install() creates the file through the raw descriptor, with mode 0644 whatever the process mask.
    struct stat info {};
    QCOMPARE(::stat(QFile::encodeName(folder + u"/diagnostics.log"_s).constData(), &info), 0);
    QCOMPARE(info.st_mode & 0777, mode_t(0644));
}

void CrashDiagnosticsTest::unwritableFolderStillReportsAndDies()
{
    QTemporaryDir dir;
    // A folder below a regular file can be neither made nor opened, even by root.
    QFile blocker(dir.filePath(u"file"_s));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    const ChildResult child = runChild({dir.filePath(u"file/Logs"_s), u"signal"_s, u"SIGSEGV"_s});
    QCOMPARE(child.signal, SIGSEGV);
    QVERIFY(child.standardError.contains("] Crash diagnostics installed. log="));
    QVERIFY(child.standardError.endsWith("Vistrel fatal signal: SIGSEGV\n"));
}

void CrashDiagnosticsTest::firstWriteCreatesThenAppends()
{
    QTemporaryDir dir;
    const QString folder = dir.filePath(u"fresh/account/Vistrel"_s);
    QCOMPARE(runChild({folder, u"write"_s, u"first"_s}).exitCode, 0);
    const ChildResult child = runChild({folder, u"write"_s, u"second"_s, QString(), u"日本語 third"_s});
    QCOMPARE(child.exitCode, 0);
    // An empty message still makes a line of its own.
    QVERIFY(readLog(folder).contains("Z] \n"));
    QCOMPARE(loggedMessages(folder), (QStringList{u"first"_s, u"second"_s, QString(), u"日本語 third"_s}));
    QVERIFY(child.standardError.contains("] 日本語 third\n"));
}

void CrashDiagnosticsTest::readOnlyLogIsReplacedWhole()
{
    QTemporaryDir dir;
    QVERIFY(UnprivilegedUser::openFolder(dir.path()));
    {
        QFile log(dir.filePath(u"diagnostics.log"_s));
        QVERIFY(log.open(QIODevice::WriteOnly));
        log.write("[2026-11-15T21:05:00Z] before\n");
    }
    QVERIFY(QFile::setPermissions(dir.filePath(u"diagnostics.log"_s), QFile::ReadOwner | QFile::ReadOther));
    {
        UnprivilegedUser user;
        QVERIFY(user.isEffective());
        CrashDiagnostics(dir.path()).write(u"after"_s);
    }
    // The line replaces what was there, in a file the user can append to again.
    QCOMPARE(loggedMessages(dir.path()), QStringList{u"after"_s});
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{u"diagnostics.log"_s});
    QCOMPARE(QFile::permissions(dir.filePath(u"diagnostics.log"_s)) & QFile::WriteOwner, QFile::WriteOwner);
}

void CrashDiagnosticsTest::uncaughtExceptionIsRecorded_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("expectedHead");
    QTest::newRow("with reason") << u"disk on fire"_s
                                 << u"Uncaught C++ exception: std::runtime_error reason=disk on fire"_s;
    QTest::newRow("empty reason is nil") << QString() << u"Uncaught C++ exception: std::runtime_error reason=nil"_s;
    QTest::newRow("not a std::exception")
        << u"custom"_s << u"Uncaught C++ exception: (anonymous namespace)::CustomFailure reason=nil"_s;
}

void CrashDiagnosticsTest::uncaughtExceptionIsRecorded()
{
    QFETCH(QString, argument);
    QFETCH(QString, expectedHead);
    QTemporaryDir dir;
    const ChildResult child = runChild({dir.path(), u"throw"_s, argument});
    QCOMPARE(child.signal, SIGABRT);
    const QString log = QString::fromUtf8(readLog(dir.path()));
    QVERIFY2(log.contains(u"] " + expectedHead + u'\n'), qPrintable(log));
    // A stack follows the head line, and the abort that ends the process is recorded last.
    QVERIFY(log.endsWith(u"Vistrel fatal signal: SIGABRT\n"_s));
    QVERIFY(log.mid(log.indexOf(expectedHead)).count(u'\n') > 3);
}

void CrashDiagnosticsTest::platformExceptionHandlerIsInstalledOnceBeforeTheInstallLine()
{
    QTemporaryDir dir;
    QCOMPARE(runChild({dir.path(), u"platform"_s}).exitCode, 0);
    QCOMPARE(loggedMessages(dir.path()), (QStringList{u"platform exception handler installed"_s,
                                                      u"Crash diagnostics installed. log=" + dir.path()
                                                          + u"/diagnostics.log"}));
}

void CrashDiagnosticsTest::exceptionRecordHasHeadThenOneSymbolPerLine_data()
{
    QTest::addColumn<std::optional<QString>>("reason");
    QTest::addColumn<QStringList>("stack");
    QTest::addColumn<QString>("expected");
    const QStringList stack{u"0   CoreFoundation  __exceptionPreprocess + 176"_s,
                            u"1   libobjc.A.dylib  objc_exception_throw + 60"_s};
    QTest::newRow("reason and stack") << std::optional<QString>(u"index 3 beyond bounds"_s) << stack
        << u"Uncaught NSException: NSRangeException reason=index 3 beyond bounds\n" + stack.join(u'\n');
    QTest::newRow("no reason reads nil") << std::optional<QString>() << stack.mid(0, 1)
        << u"Uncaught NSException: NSRangeException reason=nil\n" + stack.first();
    QTest::newRow("an empty reason stays empty") << std::optional<QString>(QString()) << QStringList()
        << u"Uncaught NSException: NSRangeException reason=\n"_s;
}

void CrashDiagnosticsTest::exceptionRecordHasHeadThenOneSymbolPerLine()
{
    QFETCH(std::optional<QString>, reason);
    QFETCH(QStringList, stack);
    QFETCH(QString, expected);
    QCOMPARE(CrashDiagnostics::uncaughtExceptionRecord(u"NSException"_s, u"NSRangeException"_s, reason, stack),
             expected);
}

QTEST_GUILESS_MAIN(CrashDiagnosticsTest)
#include "tst_crashdiagnostics.moc"
