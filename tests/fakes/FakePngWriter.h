#pragma once

#include "platform/PngWriter.h"

#include <QImage>
#include <QMutex>
#include <QStringList>

// Records the paths it was given and fails when told to; writes nothing unless given a real writer
// to pass the images on to, or told to write with Qt's own encoder.
class FakePngWriter final : public PngWriter
{
public:
    QByteArray encode(const QImage &) const override { return {}; }
    std::optional<Failure> writeFile(const QImage &image, const QString &path) const override
    {
        QMutexLocker lock(&m_mutex);
        paths.append(path);
        images.append(image);
        if (!failure && writer)
            return writer->writeFile(image, path);
        if (!failure && writesWithQt)
            image.save(path, "PNG");
        return failure;
    }

    std::optional<Failure> failure;
    const PngWriter *writer = nullptr;
    bool writesWithQt = false;
    mutable QStringList paths;
    mutable QList<QImage> images;

private:
    mutable QMutex m_mutex;
};
