#pragma once

#include <QByteArray>
#include <QObject>

class QSocketNotifier;

// Writes one buffer into a file descriptor that a clipboard reader gave us, a piece whenever the
// descriptor takes more, so a slow reader never holds up the main thread. Owns the descriptor and
// closes it when everything is written, when the reader goes away, or when it is destroyed; then it
// deletes itself. Made and run on the main thread by WaylandClipboard.
class PipeWriter final : public QObject
{
    Q_OBJECT

public:
    // Takes `fd` over; the bytes are shared, not copied.
    PipeWriter(int fd, QByteArray bytes, QObject *parent);
    ~PipeWriter() override;

private:
    void writeMore();
    void finish();

    int m_fd;
    QByteArray m_bytes;
    qsizetype m_written = 0;
    QSocketNotifier *m_notifier = nullptr;
};
