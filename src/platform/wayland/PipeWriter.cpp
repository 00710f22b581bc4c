#include "PipeWriter.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <ctime>

#include <fcntl.h>
#include <unistd.h>

namespace {

// write() on a pipe whose reader has gone raises SIGPIPE, which would end the application. The signal
// is held back for the call and a pending one taken away, so only EPIPE is left to see.
ssize_t writeWithoutSigpipe(int fd, const char *data, size_t size)
{
    sigset_t pipeOnly;
    sigset_t previous;
    sigemptyset(&pipeOnly);
    sigaddset(&pipeOnly, SIGPIPE);
    sigset_t pendingBefore;
    sigpending(&pendingBefore);
    const bool wasPending = sigismember(&pendingBefore, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeOnly, &previous);
    const ssize_t written = write(fd, data, size);
    const int error = errno;
    if (written < 0 && error == EPIPE && !wasPending) {
        const timespec noWait{0, 0};
        while (sigtimedwait(&pipeOnly, nullptr, &noWait) < 0 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    errno = error;
    return written;
}

} // namespace

PipeWriter::PipeWriter(int fd, QByteArray bytes, QObject *parent)
    : QObject(parent), m_fd(fd), m_bytes(std::move(bytes))
{
    fcntl(m_fd, F_SETFL, fcntl(m_fd, F_GETFL) | O_NONBLOCK);
    m_notifier = new QSocketNotifier(qintptr(m_fd), QSocketNotifier::Write, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &PipeWriter::writeMore);
}

PipeWriter::~PipeWriter()
{
    if (m_fd >= 0)
        close(m_fd);
}

void PipeWriter::writeMore()
{
    while (m_written < m_bytes.size()) {
        const ssize_t n =
            writeWithoutSigpipe(m_fd, m_bytes.constData() + m_written, size_t(m_bytes.size() - m_written));
        if (n > 0) {
            m_written += n;
        } else if (n < 0 && errno == EINTR) {
            continue;
        } else if (n < 0 && errno == EAGAIN) {
            return;
        } else {
            break;
        }
    }
    finish();
}

void PipeWriter::finish()
{
    m_notifier->setEnabled(false);
    close(m_fd);
    m_fd = -1;
    deleteLater();
}
