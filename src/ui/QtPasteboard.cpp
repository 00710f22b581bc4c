#include "QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

using namespace Qt::StringLiterals;

void QtPasteboard::clearContents()
{
    QGuiApplication::clipboard()->clear(QClipboard::Clipboard);
}

bool QtPasteboard::writeImage(const QImage &image)
{
    if (image.isNull())
        return false;
    // Qt reports no failure of its own; the image is served from here on request.
    auto *data = new QMimeData;
    data->setImageData(image);
    QGuiApplication::clipboard()->setMimeData(data, QClipboard::Clipboard);
    m_offeredImage = data;
    return true;
}

bool QtPasteboard::replaceImageWithPng(const QByteArray &png)
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    // Another owner's content, or none, is no longer what was offered.
    if (png.isEmpty() || !m_offeredImage || clipboard->mimeData(QClipboard::Clipboard) != m_offeredImage)
        return false;
    // The offer stays the same one, its content changed in place: offering anew would need the
    // keyboard focus on GNOME, which took the first offer while the overlay had it, and ours is gone.
    m_offeredImage->removeFormat(u"application/x-qt-image"_s);
    m_offeredImage->setData(u"image/png"_s, png);
    m_offeredImage.clear();
    return true;
}

std::optional<QImage> QtPasteboard::readImage() const
{
    const QImage image = QGuiApplication::clipboard()->image(QClipboard::Clipboard);
    if (image.isNull())
        return std::nullopt;
    return image;
}

QStringList QtPasteboard::availableTypes() const
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData(QClipboard::Clipboard);
    return data ? data->formats() : QStringList();
}

std::optional<QByteArray> QtPasteboard::readData(const QString &mimeType) const
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData(QClipboard::Clipboard);
    if (!data || !data->hasFormat(mimeType))
        return std::nullopt;
    return data->data(mimeType);
}
