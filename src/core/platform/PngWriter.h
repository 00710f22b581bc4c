#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class QImage;

// Encodes images as PNG: every capture and every edited image is written through here. The encoder
// is ours (fast deflate), outside the core because it links a compression library. Thread-safe: saving
// runs on a worker thread.
class PngWriter
{
public:
    struct Failure
    {
        // The destination could not be created (folder missing or not writable, name taken by a folder).
        enum class Kind { CannotCreateDestination, CannotWrite } kind;
        QString description;
    };

    virtual ~PngWriter() = default;

    // The whole file in memory; empty when the image cannot be encoded.
    virtual QByteArray encode(const QImage &image) const = 0;
    // Writes the file at `path`, replacing any file of that name. No metadata is written: the PNG has
    // the image's pixel size and nothing else.
    virtual std::optional<Failure> writeFile(const QImage &image, const QString &path) const = 0;
};
