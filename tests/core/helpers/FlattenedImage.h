#pragma once

// Flattening as the user gets it, for pixel tests: rendered, written by our PNG writer, decoded by Qt.

#include "FastPngWriter.h"
#include "editor/EditorRenderer.h"
#include "editor/Overlay.h"
#include "editor/OverlayGeometry.h"

#include <QImage>
#include <QTemporaryDir>

namespace flattening {

using namespace Qt::StringLiterals;

inline const QRgb white = qRgb(255, 255, 255);
inline const QRgb black = qRgb(0, 0, 0);

struct Flattened
{
    QImage image;
    Rect bounds;

    // The pixel whose bottom-left corner is the image point (x, y).
    QRgb at(int x, int y) const
    {
        return image.pixel(x - int(bounds.minX()), int(bounds.maxY()) - y - 1);
    }
    // The canvas box of pixels that differ from `background`, in image coordinates (y up); only those
    // inside `area` (image coordinates) when one is given.
    QRect ink(QRgb background, const QRect &area = QRect()) const
    {
        QRect box;
        for (int row = 0; row < image.height(); ++row)
            for (int column = 0; column < image.width(); ++column) {
                const QPoint point(column + int(bounds.minX()), int(bounds.maxY()) - row - 1);
                if (image.pixel(column, row) != background && (area.isNull() || area.contains(point)))
                    box |= QRect(point, QSize(1, 1));
            }
        return box;
    }
};

inline Flattened flatten(const QImage &source, const QList<Overlay> &overlays)
{
    const QImage rendered = editorrender::renderEditedImage(source, overlays);
    QTemporaryDir folder;
    const QString path = folder.filePath(u"edited.png"_s);
    if (FastPngWriter().writeFile(rendered, path))
        return {};
    return {QImage(path).convertToFormat(QImage::Format_RGB32),
            overlaygeometry::renderContentBounds(overlays, QSizeF(source.size()))};
}

inline QImage filled(int width, int height, QRgb colour)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

// Every pixel different from its neighbours, so any misplaced block shows.
inline QImage noise(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    quint32 state = 12345;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            state = state * 1664525u + 1013904223u;
            image.setPixel(x, y, 0xff000000u | (state >> 8));
        }
    return image;
}

inline Overlay make(EditorTool type, QPointF start, QPointF end, QColor colour = Qt::black)
{
    return Overlay(type, start, end, colour, QString(), QColor(0, 0, 0, 0));
}

inline Overlay textBox(const QString &text, QPointF start, QPointF end, double size, const QString &family = u"NoSuch"_s)
{
    Overlay overlay(EditorTool::Text, start, end, Qt::black, text, QColor(0, 0, 0, 0));
    overlay.fontSize = size;
    overlay.fontFamily = family;
    return overlay;
}

// Coverage of a black stroke on white, summed along one row of pixels.
inline double inkAlongRow(const Flattened &result, int y, int fromX, int toX)
{
    double sum = 0;
    for (int x = fromX; x < toX; ++x)
        sum += (255 - qRed(result.at(x, y))) / 255.0;
    return sum;
}

} // namespace flattening
