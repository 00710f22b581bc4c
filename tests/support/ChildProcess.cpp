#include "ChildProcess.h"

#include <QStandardPaths>

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace {

// pipe2() is Linux's; pipe() and fcntl() work everywhere. Test helpers start their children one at a
// time, so no other thread can inherit the descriptors in between.
bool openCloseOnExecPipe(int fds[2])
{
    if (::pipe(fds) != 0)
        return false;
    for (int i = 0; i < 2; ++i)
        ::fcntl(fds[i], F_SETFD, FD_CLOEXEC);
    return true;
}

} // namespace

ChildProcess::~ChildProcess()
{
    stop();
}

bool ChildProcess::exists(const QString &program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

bool ChildProcess::start(const QString &program, const QStringList &arguments, const QStringList &extraEnvironment,
                         QByteArray *firstLine)
{
    const QString path = QStandardPaths::findExecutable(program);
    if (path.isEmpty())
        return false;

    const bool readFirstLine = firstLine != nullptr;
    int pipeFds[2] = {-1, -1};
    if (readFirstLine && !openCloseOnExecPipe(pipeFds))
        return false;

    QList<QByteArray> argStorage{path.toLocal8Bit()};
    for (const QString &argument : arguments)
        argStorage.append(argument.toLocal8Bit());
    QList<char *> argv;
    for (QByteArray &a : argStorage)
        argv.append(a.data());
    argv.append(nullptr);

    QList<QByteArray> envStorage;
    for (char **e = environ; *e; ++e) {
        const QByteArray entry(*e);
        const QByteArray name = entry.left(entry.indexOf('=') + 1);
        bool replaced = false;
        for (const QString &extra : extraEnvironment)
            replaced = replaced || extra.toLocal8Bit().startsWith(name);
        if (!replaced)
            envStorage.append(entry);
    }
    for (const QString &extra : extraEnvironment)
        envStorage.append(extra.toLocal8Bit());
    QList<char *> envp;
    for (QByteArray &e : envStorage)
        envp.append(e.data());
    envp.append(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (readFirstLine)
        posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
    // Helpers are started in their own process group, so stop() ends them with whatever they started.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setpgroup(&attributes, 0);
    const int spawned = posix_spawn(&m_pid, argStorage.first().constData(), &actions, &attributes, argv.data(),
                                    envp.data());
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (readFirstLine)
        ::close(pipeFds[1]);
    if (spawned != 0) {
        m_pid = -1;
        if (readFirstLine)
            ::close(pipeFds[0]);
        return false;
    }
    if (!readFirstLine)
        return true;

    QByteArray line;
    bool complete = false;
    while (!complete) {
        pollfd readable{pipeFds[0], POLLIN, 0};
        if (::poll(&readable, 1, 10000) <= 0)
            break;
        char c = 0;
        if (::read(pipeFds[0], &c, 1) != 1)
            break;
        if (c == '\n')
            complete = true;
        else
            line.append(c);
    }
    // Kept open while the child runs: a later write to a closed pipe would kill it.
    m_lineFd = pipeFds[0];
    *firstLine = line;
    if (!complete)
        stop();
    return complete;
}

void ChildProcess::stop()
{
    if (m_lineFd >= 0) {
        ::close(m_lineFd);
        m_lineFd = -1;
    }
    if (m_pid <= 0)
        return;
    ::kill(-m_pid, SIGTERM);
    for (int i = 0; i < 100; ++i) {
        int status = 0;
        if (::waitpid(m_pid, &status, WNOHANG) == m_pid) {
            m_pid = -1;
            return;
        }
        ::usleep(20000);
    }
    ::kill(-m_pid, SIGKILL);
    ::waitpid(m_pid, nullptr, 0);
    m_pid = -1;
}
