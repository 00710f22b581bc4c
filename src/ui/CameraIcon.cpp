#include "CameraIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace cameraicon {

QImage render(int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    // Drawn on a 64 × 64 grid.
    painter.scale(size / 64.0, size / 64.0);

    QPainterPath body;
    body.moveTo(22, 14);
    body.lineTo(26, 8);
    body.lineTo(38, 8);
    body.lineTo(42, 14);
    body.lineTo(54, 14);
    body.arcTo(48, 14, 12, 12, 90, -90);
    body.lineTo(60, 48);
    body.arcTo(48, 42, 12, 12, 0, -90);
    body.lineTo(10, 54);
    body.arcTo(4, 42, 12, 12, 270, -90);
    body.lineTo(4, 20);
    body.arcTo(4, 14, 12, 12, 180, -90);
    body.closeSubpath();
    painter.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(QColor(0x2f, 0x3a, 0x4a));
    painter.drawPath(body);

    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(32, 33), 14, 14);
    painter.setBrush(QColor(0x3b, 0x82, 0xc4));
    painter.drawEllipse(QPointF(32, 33), 10, 10);
    painter.setBrush(QColor(0xcf, 0xe5, 0xf7));
    painter.drawEllipse(QPointF(28, 29), 3, 3);
    painter.setBrush(QColor(0xf2, 0xb6, 0x30));
    painter.drawRoundedRect(QRectF(47, 19, 7, 4), 1, 1);
    return image;
}

QIcon icon()
{
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256})
        icon.addPixmap(QPixmap::fromImage(render(size)));
    return icon;
}

} // namespace cameraicon
