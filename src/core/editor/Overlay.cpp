#include "editor/Overlay.h"

Overlay::Overlay(EditorTool type, QPointF startPoint, QPointF endPoint, const QColor &color, const QString &text,
                 const QColor &textFillColor)
    : id(QUuid::createUuid())
    , type(type)
    , startPoint(startPoint)
    , endPoint(endPoint)
    , color(color)
    , text(text)
    , textFillColor(textFillColor)
{
}

Rect Overlay::rect() const
{
    if (type == EditorTool::Freehand && !points.isEmpty())
        return points.bounds();
    return Rect::fromCorners(startPoint, endPoint);
}

bool Overlay::contains(QPointF point, double padding) const
{
    return rect().insetBy(-padding, -padding).contains(point);
}
