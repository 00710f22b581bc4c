#pragma once

#include <QByteArray>
#include <QObject>
#include <QTimer>

#include <functional>
#include <optional>

class QSocketNotifier;

// Reads a pipe that another process writes into until it is closed, a piece whenever there is more, so a
// slow or stuck writer never holds up the main thread. Owns the descriptor. Completes once: with all the
// bytes at end of file, or with nothing on a read error or when the writer has not finished in time; then
// it deletes itself. Made and run on the main thread by kwinscreenshot::take. No Q_OBJECT: its meta-object
// would bring every other one of this library, and Qt's GUI with them, into the command line's capture.
class PipeReader final : public QObject
{
public:
    using Completion = std::function<void(std::optional<QByteArray> bytes)>;

    // Takes `fd` over.
    PipeReader(int fd, int timeoutMs, Completion completion, QObject *parent);
    ~PipeReader() override;

private:
    void readMore();
    void finish(std::optional<QByteArray> bytes);

    int m_fd;
    QByteArray m_bytes;
    Completion m_completion;
    QSocketNotifier *m_notifier = nullptr;
    QTimer m_timeout;
};
