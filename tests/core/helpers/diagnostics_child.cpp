// Started by the diagnostics test: installs the crash diagnostics in a given folder, then does one thing
// that ends (or does not end) the process.
//
//   diagnostics_child FOLDER signal NAME      raise SIGSEGV, SIGABRT, … after install
//   diagnostics_child FOLDER handler NUMBER   call the handler directly with a signal it does not know
//   diagnostics_child FOLDER throw [TEXT]     leave a C++ exception uncaught
//   diagnostics_child FOLDER write TEXT...    write lines without installing anything
//   diagnostics_child FOLDER platform         install with a platform exception handler, then exit 0
#include "app/CrashDiagnostics.h"

#include <QString>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

int signalNamed(const char *name)
{
    const struct { const char *name; int number; } table[] = {
        {"SIGABRT", SIGABRT}, {"SIGILL", SIGILL}, {"SIGSEGV", SIGSEGV}, {"SIGBUS", SIGBUS},
        {"SIGTRAP", SIGTRAP}, {"SIGFPE", SIGFPE}, {"SIGPIPE", SIGPIPE},
    };
    for (const auto &entry : table) {
        if (std::strcmp(entry.name, name) == 0)
            return entry.number;
    }
    return -1;
}

struct CustomFailure
{
};

} // namespace

int main(int argc, char **argv)
{
    if (argc < 3)
        return 2;
    const char *action = argv[2];
    CrashDiagnostics *self = nullptr;
    CrashDiagnostics::PlatformExceptionHandlerInstaller installer;
    if (std::strcmp(action, "platform") == 0)
        installer = [&self] { self->write(QStringLiteral("platform exception handler installed")); };
    CrashDiagnostics diagnostics(QString::fromLocal8Bit(argv[1]), installer);
    self = &diagnostics;

    if (std::strcmp(action, "write") == 0) {
        for (int i = 3; i < argc; ++i)
            diagnostics.write(QString::fromUtf8(argv[i]));
        return 0;
    }
    diagnostics.install();
    if (std::strcmp(action, "signal") == 0 && argc > 3) {
        std::raise(signalNamed(argv[3]));
    } else if (std::strcmp(action, "handler") == 0 && argc > 3) {
        vistrelSignalHandler(std::atoi(argv[3]));
    } else if (std::strcmp(action, "throw") == 0) {
        if (argc > 3 && std::strcmp(argv[3], "custom") == 0)
            throw CustomFailure();
        throw std::runtime_error(argc > 3 ? argv[3] : "");
    } else if (std::strcmp(action, "platform") == 0) {
        return 0;
    }
    return 3; // should not get here
}
