#pragma once

#include "geometry/Rect.h"

#include <QList>
#include <QPointF>

#include <initializer_list>

// The points of a freehand stroke, a plain value like the overlay that holds it, with their box kept
// up to date as points are added or the stroke moves, so that no caller walks a long stroke to
// place it. Image points. Main thread, like the overlays.
class StrokePoints final
{
public:
    StrokePoints() = default;
    StrokePoints(std::initializer_list<QPointF> points);
    StrokePoints(QList<QPointF> points);

    const QList<QPointF> &list() const { return m_points; }
    bool isEmpty() const { return m_points.isEmpty(); }
    qsizetype size() const { return m_points.size(); }
    const QPointF &at(qsizetype index) const { return m_points.at(index); }
    const QPointF &first() const { return m_points.first(); }
    const QPointF &last() const { return m_points.last(); }
    QList<QPointF>::const_iterator begin() const { return m_points.cbegin(); }
    QList<QPointF>::const_iterator end() const { return m_points.cend(); }

    void append(QPointF point);
    // Every point moved by `offset`.
    void translate(QPointF offset);
    // The points from `position` on.
    StrokePoints mid(qsizetype position) const;

    // The box of the points, at least 1 × 1; null for no points.
    Rect bounds() const;

    bool operator==(const StrokePoints &other) const { return m_points == other.m_points; }

private:
    void include(QPointF point);

    QList<QPointF> m_points;
    double m_minX = 0;
    double m_maxX = 0;
    double m_minY = 0;
    double m_maxY = 0;
};
