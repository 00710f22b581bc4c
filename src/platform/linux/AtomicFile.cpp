#include "AtomicFile.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace atomicfile {

namespace {
QString systemError(const char *step)
{
    return QString::fromLatin1(step) + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(errno));
}
} // namespace

std::optional<QString> write(const QString &path, const QByteArray &contents)
{
    const QByteArray target = QFile::encodeName(path);
    const QByteArray temporary = target + ".saving";
    const int fd = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        return systemError("open");
    const char *data = contents.constData();
    qsizetype remaining = contents.size();
    while (remaining > 0) {
        const ssize_t written = ::write(fd, data, size_t(remaining));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            const QString error = systemError("write");
            ::close(fd);
            ::unlink(temporary.constData());
            return error;
        }
        data += written;
        remaining -= written;
    }
    if (::fsync(fd) != 0) {
        const QString error = systemError("fsync");
        ::close(fd);
        ::unlink(temporary.constData());
        return error;
    }
    ::close(fd);
    if (::rename(temporary.constData(), target.constData()) != 0) {
        const QString error = systemError("rename");
        ::unlink(temporary.constData());
        return error;
    }
    return std::nullopt;
}

} // namespace atomicfile
