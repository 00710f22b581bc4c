#pragma once

#include "platform/PngWriter.h"

#include <QImage>
#include <QMutex>
#include <QStringList>

// Writes nothing; records the paths it was given and fails when told to.
class FakePngWriter final : public PngWriter
{
public:
    QByteArray encode(const QImage &) const override { return {}; }
    std::optional<Failure> writeFile(const QImage &image, const QString &path) const override
    {
        QMutexLocker lock(&m_mutex);
        paths.append(path);
        images.append(image);
        return failure;
    }

    std::optional<Failure> failure;
    mutable QStringList paths;
    mutable QList<QImage> images;

private:
    mutable QMutex m_mutex;
};
