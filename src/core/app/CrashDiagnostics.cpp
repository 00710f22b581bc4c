#include "app/CrashDiagnostics.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryFile>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <cxxabi.h>
#include <exception>
#include <execinfo.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

int vistrelDiagnosticsFD = -1;

namespace {

// Fixed byte strings: the signal handler may not format or allocate.
constexpr char kSIGABRT[] = "Vistrel fatal signal: SIGABRT\n";
constexpr char kSIGILL[] = "Vistrel fatal signal: SIGILL\n";
constexpr char kSIGSEGV[] = "Vistrel fatal signal: SIGSEGV\n";
constexpr char kSIGBUS[] = "Vistrel fatal signal: SIGBUS\n";
constexpr char kSIGTRAP[] = "Vistrel fatal signal: SIGTRAP\n";
constexpr char kSIGFPE[] = "Vistrel fatal signal: SIGFPE\n";
constexpr char kSIGPIPE[] = "Vistrel fatal signal: SIGPIPE\n";
constexpr char kUNKNOWN[] = "Vistrel fatal signal: UNKNOWN\n";

// In installation order. Numbers differ between systems (SIGBUS is 7 on Linux, 10 on macOS).
constexpr int kFatalSignals[] = {SIGABRT, SIGILL, SIGSEGV, SIGBUS, SIGTRAP, SIGFPE, SIGPIPE};

CrashDiagnostics *installedDiagnostics = nullptr;

// True when every byte went out.
bool writeAll(int fd, const char *bytes, size_t length)
{
    while (length > 0) {
        const ssize_t written = ::write(fd, bytes, length);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes += written;
        length -= size_t(written);
    }
    return true;
}

QString currentExceptionTypeName()
{
    const std::type_info *type = abi::__cxa_current_exception_type();
    if (!type)
        return QStringLiteral("unknown");
    int status = 0;
    char *demangled = abi::__cxa_demangle(type->name(), nullptr, nullptr, &status);
    const QString name = QString::fromUtf8(status == 0 && demangled ? demangled : type->name());
    std::free(demangled);
    return name;
}

QStringList currentStack()
{
    void *frames[64];
    const int count = backtrace(frames, 64);
    char **symbols = backtrace_symbols(frames, count);
    if (!symbols)
        return {};
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines << QString::fromUtf8(symbols[i]);
    std::free(symbols);
    return lines;
}

// Records an exception that nothing caught, then lets the default terminate path abort the process
// (which the SIGABRT handler records as well).
[[noreturn]] void terminateHandler()
{
    QString name = QStringLiteral("unknown");
    std::optional<QString> reason;
    if (const std::exception_ptr exception = std::current_exception()) {
        name = currentExceptionTypeName();
        try {
            std::rethrow_exception(exception);
        } catch (const std::exception &e) {
            if (e.what() && *e.what())
                reason = QString::fromUtf8(e.what());
        } catch (...) {
        }
    }
    if (installedDiagnostics)
        installedDiagnostics->write(
            CrashDiagnostics::uncaughtExceptionRecord(QStringLiteral("C++ exception"), name, reason, currentStack()));
    std::abort();
}

// Writes `bytes` beside `path` and renames the result over it, whatever the old file's permissions.
// Failures are dropped: standard error still gets the line.
void replaceWhole(const QString &path, const QByteArray &bytes)
{
    QTemporaryFile file(path + QStringLiteral(".XXXXXX"));
    if (!file.open())
        return;
    const int fd = file.handle();
    const bool isWritten = ::fchmod(fd, 0644) == 0 && writeAll(fd, bytes.constData(), size_t(bytes.size()))
        && ::fsync(fd) == 0;
    if (isWritten
        && ::rename(QFile::encodeName(file.fileName()).constData(), QFile::encodeName(path).constData()) == 0)
        file.setAutoRemove(false);
}

} // namespace

extern "C" void vistrelSignalHandler(int signal)
{
    const char *message = kUNKNOWN;
    size_t length = sizeof kUNKNOWN - 1;
    auto pick = [&](const char *text, size_t size) { message = text; length = size - 1; };
    switch (signal) {
    case SIGABRT: pick(kSIGABRT, sizeof kSIGABRT); break;
    case SIGILL: pick(kSIGILL, sizeof kSIGILL); break;
    case SIGSEGV: pick(kSIGSEGV, sizeof kSIGSEGV); break;
    case SIGBUS: pick(kSIGBUS, sizeof kSIGBUS); break;
    case SIGTRAP: pick(kSIGTRAP, sizeof kSIGTRAP); break;
    case SIGFPE: pick(kSIGFPE, sizeof kSIGFPE); break;
    case SIGPIPE: pick(kSIGPIPE, sizeof kSIGPIPE); break;
    default: break;
    }
    writeAll(STDERR_FILENO, message, length);
    if (vistrelDiagnosticsFD >= 0) {
        writeAll(vistrelDiagnosticsFD, message, length);
        ::fsync(vistrelDiagnosticsFD);
    }
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

CrashDiagnostics::CrashDiagnostics(const QString &logFolder,
                                   PlatformExceptionHandlerInstaller installPlatformExceptionHandler)
    : m_logPath(QDir(logFolder).filePath(QStringLiteral("diagnostics.log"))),
      m_installPlatformExceptionHandler(std::move(installPlatformExceptionHandler))
{
    QDir().mkpath(logFolder);
}

QString CrashDiagnostics::uncaughtExceptionRecord(const QString &kind, const QString &name,
                                                  const std::optional<QString> &reason, const QStringList &callStack)
{
    return u"Uncaught " % kind % u": " % name % u" reason=" % reason.value_or(QStringLiteral("nil")) % u'\n'
        % callStack.join(u'\n');
}

void CrashDiagnostics::write(const QString &message)
{
    const QByteArray line = (u'[' % QDateTime::currentDateTimeUtc().toString(Qt::ISODate) % u"] "
                             % message % u'\n').toUtf8();
    const QByteArray path = QFile::encodeName(m_logPath);

    // Appending is one write() on a descriptor of its own, so lines from two threads never mix.
    const int fd = ::open(path.constData(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (fd >= 0) {
        writeAll(fd, line.constData(), size_t(line.size()));
        ::close(fd);
    } else {
        // The first line creates the file whole, so a reader never sees it half-written. A file that
        // exists but takes no appending (read-only, not a plain file) is replaced the same way: the
        // line counts for more than what came before it.
        replaceWhole(m_logPath, line);
    }
    std::fputs(line.constData(), stderr);
}

void CrashDiagnostics::install()
{
    openSignalLogFileIfNeeded();
    installedDiagnostics = this;
    std::set_terminate(terminateHandler);
    if (m_installPlatformExceptionHandler)
        m_installPlatformExceptionHandler();
    for (const int signal : kFatalSignals)
        ::signal(signal, vistrelSignalHandler);
    write(u"Crash diagnostics installed. log=" % m_logPath);
}

void CrashDiagnostics::openSignalLogFileIfNeeded()
{
    if (vistrelDiagnosticsFD >= 0)
        return;
    vistrelDiagnosticsFD = ::open(QFile::encodeName(m_logPath).constData(),
                                  O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
}
