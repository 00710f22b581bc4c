#include "QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>

void QtPasteboard::clearContents()
{
    QGuiApplication::clipboard()->clear(QClipboard::Clipboard);
}

bool QtPasteboard::writeImage(const QImage &image)
{
    if (image.isNull())
        return false;
    QClipboard *clipboard = QGuiApplication::clipboard();
    clipboard->setImage(image, QClipboard::Clipboard);
    return clipboard->ownsClipboard() || !clipboard->supportsSelection();
}
