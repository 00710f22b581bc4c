#include "AtomicFile.h"

#include <QFile>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace atomicfile {

namespace {

Failure systemError(const char *step, bool isCreating = false)
{
    return {isCreating,
            QString::fromLatin1(step) + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(errno))};
}

QByteArray folderOf(const QByteArray &target)
{
    const qsizetype slash = target.lastIndexOf('/');
    return slash < 0 ? QByteArray(".") : slash == 0 ? QByteArray("/") : target.left(slash);
}

QByteArray temporaryName(const QByteArray &target)
{
    return target + '.' + QByteArray::number(QRandomGenerator::system()->generate64(), 36) + ".saving";
}

// A file without a name in `folder`, or −1 where the system or the file system has none.
int openUnnamed(const QByteArray &folder)
{
#ifdef O_TMPFILE
    return ::open(folder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0644);
#else
    Q_UNUSED(folder);
    errno = EOPNOTSUPP;
    return -1;
#endif
}

// Gives the unnamed file `fd` the name `temporary`.
bool nameUnnamed(int fd, const QByteArray &temporary)
{
    char link[64];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    return ::linkat(AT_FDCWD, link, AT_FDCWD, temporary.constData(), AT_SYMLINK_FOLLOW) == 0;
}

bool writeAll(int fd, const QByteArray &contents)
{
    const char *data = contents.constData();
    qsizetype remaining = contents.size();
    while (remaining > 0) {
        const ssize_t written = ::write(fd, data, size_t(remaining));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            if (written == 0)
                errno = ENOSPC;
            return false;
        }
        data += written;
        remaining -= written;
    }
    return true;
}

// Failing to flush the folder loses nothing that is already there, so it is not reported.
void syncFolder(const QByteArray &folder)
{
    const int fd = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
}

} // namespace

std::optional<Failure> replace(const QString &path, const QByteArray &contents)
{
    const QByteArray target = QFile::encodeName(path);
    const QByteArray folder = folderOf(target);
    // A folder of that name would only be found at the rename, after the whole write.
    struct stat existing;
    if (::stat(target.constData(), &existing) == 0 && S_ISDIR(existing.st_mode)) {
        errno = EISDIR;
        return systemError("open", true);
    }
    const QByteArray temporary = temporaryName(target);
    int fd = openUnnamed(folder);
    const bool isUnnamed = fd >= 0;
    if (!isUnnamed)
        fd = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0)
        return systemError("open", true);

    const auto fail = [&](const char *step) {
        const Failure failure = systemError(step);
        ::close(fd);
        ::unlink(temporary.constData());
        return failure;
    };
    if (!writeAll(fd, contents))
        return fail("write");
    if (::fsync(fd) != 0)
        return fail("fsync");
    if (isUnnamed && !nameUnnamed(fd, temporary))
        return fail("link");
    if (::close(fd) != 0) {
        fd = -1;
        return fail("close");
    }
    if (::rename(temporary.constData(), target.constData()) != 0) {
        const Failure failure = systemError("rename");
        ::unlink(temporary.constData());
        return failure;
    }
    syncFolder(folder);
    return std::nullopt;
}

std::optional<QString> write(const QString &path, const QByteArray &contents)
{
    if (const std::optional<Failure> failure = replace(path, contents))
        return failure->description;
    return std::nullopt;
}

} // namespace atomicfile
