#include "SwayIpc.h"

#include <QDeadlineTimer>

#include <cerrno>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr char magic[] = {'i', '3', '-', 'i', 'p', 'c'};
constexpr qsizetype headerSize = sizeof(magic) + 2 * sizeof(quint32);
// A whole tree is a few kilobytes per window; anything near this is not a reply.
constexpr quint32 largestReply = 64u << 20;

class Socket final
{
public:
    Socket() : m_fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {}
    ~Socket()
    {
        if (m_fd >= 0)
            close(m_fd);
    }
    Socket(const Socket &) = delete;
    Socket &operator=(const Socket &) = delete;
    int fd() const { return m_fd; }

private:
    int m_fd;
};

bool waitFor(int fd, short events, const QDeadlineTimer &deadline)
{
    pollfd descriptor{fd, events, 0};
    int ready = 0;
    do {
        ready = poll(&descriptor, 1, int(deadline.remainingTime()));
    } while (ready < 0 && errno == EINTR);
    return ready > 0 && !(descriptor.revents & (POLLERR | POLLNVAL));
}

bool sendAll(int fd, const QByteArray &bytes, const QDeadlineTimer &deadline)
{
    qsizetype sent = 0;
    while (sent < bytes.size()) {
        if (!waitFor(fd, POLLOUT, deadline))
            return false;
        const ssize_t n = send(fd, bytes.constData() + sent, size_t(bytes.size() - sent), MSG_NOSIGNAL);
        if (n < 0 && errno != EAGAIN && errno != EINTR)
            return false;
        sent += std::max<ssize_t>(n, 0);
    }
    return true;
}

bool receiveAll(int fd, char *into, qsizetype size, const QDeadlineTimer &deadline)
{
    qsizetype received = 0;
    while (received < size) {
        if (!waitFor(fd, POLLIN, deadline))
            return false;
        const ssize_t n = recv(fd, into + received, size_t(size - received), 0);
        if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR))
            return false;
        received += std::max<ssize_t>(n, 0);
    }
    return true;
}

} // namespace

namespace swayipc {

std::optional<QByteArray> request(const QString &socketPath, quint32 type, const QByteArray &payload, int timeoutMs)
{
    const QByteArray path = socketPath.toLocal8Bit();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || size_t(path.size()) >= sizeof(address.sun_path))
        return std::nullopt;
    std::memcpy(address.sun_path, path.constData(), size_t(path.size()));

    const QDeadlineTimer deadline(timeoutMs);
    Socket socket;
    if (socket.fd() < 0)
        return std::nullopt;
    if (connect(socket.fd(), reinterpret_cast<const sockaddr *>(&address), sizeof(address)) != 0
        && (errno != EINPROGRESS || !waitFor(socket.fd(), POLLOUT, deadline)))
        return std::nullopt;

    QByteArray message(magic, sizeof(magic));
    const quint32 header[2] = {quint32(payload.size()), type};
    message.append(reinterpret_cast<const char *>(header), sizeof(header));
    message.append(payload);
    if (!sendAll(socket.fd(), message, deadline))
        return std::nullopt;

    char replyHeader[headerSize];
    if (!receiveAll(socket.fd(), replyHeader, headerSize, deadline)
        || std::memcmp(replyHeader, magic, sizeof(magic)) != 0)
        return std::nullopt;
    quint32 replyHeaderFields[2];
    std::memcpy(replyHeaderFields, replyHeader + sizeof(magic), sizeof(replyHeaderFields));
    if (replyHeaderFields[1] != type || replyHeaderFields[0] > largestReply)
        return std::nullopt;
    QByteArray reply(qsizetype(replyHeaderFields[0]), Qt::Uninitialized);
    if (!receiveAll(socket.fd(), reply.data(), reply.size(), deadline))
        return std::nullopt;
    return reply;
}

} // namespace swayipc
