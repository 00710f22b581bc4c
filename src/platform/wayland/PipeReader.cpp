#include "PipeReader.h"

#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr qsizetype chunkSize = 1 << 20;

} // namespace

PipeReader::PipeReader(int fd, int timeoutMs, Completion completion, QObject *parent)
    : QObject(parent), m_fd(fd), m_completion(std::move(completion))
{
    fcntl(m_fd, F_SETFL, fcntl(m_fd, F_GETFL) | O_NONBLOCK);
    m_notifier = new QSocketNotifier(qintptr(m_fd), QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &PipeReader::readMore);
    m_timeout.setSingleShot(true);
    connect(&m_timeout, &QTimer::timeout, this, [this] { finish(std::nullopt); });
    m_timeout.start(timeoutMs);
}

PipeReader::~PipeReader()
{
    if (m_fd >= 0)
        close(m_fd);
}

void PipeReader::readMore()
{
    for (;;) {
        const qsizetype had = m_bytes.size();
        m_bytes.resize(had + chunkSize);
        const ssize_t n = read(m_fd, m_bytes.data() + had, size_t(chunkSize));
        m_bytes.resize(had + std::max<qsizetype>(n, 0));
        if (n > 0)
            continue;
        if (n == 0) {
            finish(std::move(m_bytes));
            return;
        }
        if (errno == EINTR)
            continue;
        if (errno != EAGAIN)
            finish(std::nullopt);
        return;
    }
}

void PipeReader::finish(std::optional<QByteArray> bytes)
{
    if (!m_completion)
        return;
    m_notifier->setEnabled(false);
    m_timeout.stop();
    close(m_fd);
    m_fd = -1;
    const Completion completion = std::exchange(m_completion, nullptr);
    completion(std::move(bytes));
    deleteLater();
}
