#include "QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

void QtPasteboard::clearContents()
{
    QGuiApplication::clipboard()->clear(QClipboard::Clipboard);
}

bool QtPasteboard::writeImage(const QImage &image)
{
    if (image.isNull())
        return false;
    // Qt reports no failure of its own; the image is served from here on request.
    QGuiApplication::clipboard()->setImage(image, QClipboard::Clipboard);
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
