#include "ScreenPixels.h"

#include <QImage>

QImage ScreenPixels::image() const
{
    if (isNull())
        return QImage();
    auto *hold = new std::shared_ptr<const void>(owner);
    return QImage(data, width, height, bytesPerLine, QImage::Format_RGB32,
                  [](void *info) { delete static_cast<std::shared_ptr<const void> *>(info); }, hold);
}
