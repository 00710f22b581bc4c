#include "editor/StrokePoints.h"

#include <algorithm>
#include <utility>

StrokePoints::StrokePoints(std::initializer_list<QPointF> points) : StrokePoints(QList<QPointF>(points)) {}

StrokePoints::StrokePoints(QList<QPointF> points) : m_points(std::move(points))
{
    if (m_points.isEmpty())
        return;
    m_minX = m_maxX = m_points.first().x();
    m_minY = m_maxY = m_points.first().y();
    for (const QPointF &point : std::as_const(m_points))
        include(point);
}

void StrokePoints::append(QPointF point)
{
    if (m_points.isEmpty()) {
        m_minX = m_maxX = point.x();
        m_minY = m_maxY = point.y();
    }
    m_points.append(point);
    include(point);
}

void StrokePoints::include(QPointF point)
{
    m_minX = std::min(m_minX, point.x());
    m_maxX = std::max(m_maxX, point.x());
    m_minY = std::min(m_minY, point.y());
    m_maxY = std::max(m_maxY, point.y());
}

void StrokePoints::translate(QPointF offset)
{
    if (m_points.isEmpty())
        return;
    for (QPointF &point : m_points)
        point += offset;
    // Adding the same amount keeps the order of the coordinates, so the extremes stay the extremes.
    m_minX += offset.x();
    m_maxX += offset.x();
    m_minY += offset.y();
    m_maxY += offset.y();
}

StrokePoints StrokePoints::mid(qsizetype position) const
{
    return StrokePoints(m_points.mid(position));
}

Rect StrokePoints::bounds() const
{
    if (m_points.isEmpty())
        return Rect::null();
    return Rect(m_minX, m_minY, std::max(1.0, m_maxX - m_minX), std::max(1.0, m_maxY - m_minY));
}
