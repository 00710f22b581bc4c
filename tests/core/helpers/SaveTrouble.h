#pragma once

#include <QDir>
#include <QFile>
#include <QImage>
#include <QMetaType>
#include <QString>

#include <csignal>
#include <sys/mount.h>
#include <sys/resource.h>

// A real reason for saving into a folder to fail midway, made under `root` (an empty folder) and lifted
// again by lift() or at the end: a file size limit (EFBIG), or a small tmpfs that fills up (ENOSPC;
// mounting needs root, so elsewhere skipReason says why not).
class SaveTrouble
{
public:
    enum class Kind { FileSizeLimit, DiskFull };

    SaveTrouble(Kind kind, const QString &root) : m_kind(kind)
    {
        switch (kind) {
        case Kind::FileSizeLimit:
            folder = root + QStringLiteral("/shots");
            QDir().mkpath(folder);
            getrlimit(RLIMIT_FSIZE, &m_limit);
            m_oldHandler = std::signal(SIGXFSZ, SIG_IGN);
            setFileSizeLimit(8192);
            break;
        case Kind::DiskFull:
            folder = root + QStringLiteral("/small");
            QDir().mkpath(folder);
            if (::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, "size=16k") != 0)
                skipReason = QStringLiteral("a small tmpfs needs root");
            else
                m_isMounted = true;
            break;
        }
    }
    ~SaveTrouble()
    {
        lift();
        if (m_isMounted)
            ::umount2(QFile::encodeName(folder).constData(), MNT_DETACH);
    }

    // Room again, the limit gone.
    void lift()
    {
        switch (m_kind) {
        case Kind::FileSizeLimit:
            if (m_oldHandler != SIG_ERR) {
                setrlimit(RLIMIT_FSIZE, &m_limit);
                std::signal(SIGXFSZ, m_oldHandler);
                m_oldHandler = SIG_ERR;
            }
            break;
        case Kind::DiskFull:
            if (m_isMounted)
                ::mount(nullptr, QFile::encodeName(folder).constData(), nullptr, MS_REMOUNT, "size=8m");
            break;
        }
    }

    // A picture whose PNG is far larger than the room either limit leaves.
    static QImage incompressible(int width = 200, int height = 150)
    {
        QImage image(width, height, QImage::Format_RGB32);
        quint32 state = 1;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                image.setPixel(x, y, 0xff000000u | ((state = state * 1664525u + 1013904223u) >> 8));
        return image;
    }

    QString folder;
    QString skipReason;

private:
    void setFileSizeLimit(rlim_t bytes)
    {
        rlimit limit = m_limit;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    Kind m_kind;
    rlimit m_limit{};
    void (*m_oldHandler)(int) = SIG_ERR;
    bool m_isMounted = false;
};

Q_DECLARE_METATYPE(SaveTrouble::Kind)
