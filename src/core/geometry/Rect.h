#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

// A rectangle of doubles with the semantics the capture and editor rules are written in.
//
// Rectangles live in whichever space their caller says (bottom-left y-up points for displays, image
// pixels for the editor); the type itself has no notion of axis direction. Width and height may be
// negative until standardized. The null rectangle (the result of an intersection that found nothing)
// is distinct from an empty one: it has no position at all, and uniting with it changes nothing.
class Rect final
{
public:
    constexpr Rect() = default;
    constexpr Rect(double x, double y, double width, double height)
        : m_x(x), m_y(y), m_width(width), m_height(height) {}
    Rect(QPointF origin, QSizeF size) : Rect(origin.x(), origin.y(), size.width(), size.height()) {}

    static Rect null();
    // The rectangle spanned by two corners, in either order.
    static Rect fromCorners(QPointF a, QPointF b);
    static Rect fromQRectF(const QRectF &r) { return Rect(r.x(), r.y(), r.width(), r.height()); }

    double x() const { return m_x; }
    double y() const { return m_y; }
    double width() const { return m_width; }
    double height() const { return m_height; }
    QPointF origin() const { return {m_x, m_y}; }
    QSizeF size() const { return {m_width, m_height}; }

    double minX() const;
    double minY() const;
    double maxX() const;
    double maxY() const;
    double midX() const { return (minX() + maxX()) / 2; }
    double midY() const { return (minY() + maxY()) / 2; }

    bool isNull() const;
    // True for the null rectangle and for any rectangle without area.
    bool isEmpty() const;
    bool isFinite() const;

    Rect standardized() const;
    // The smallest rectangle with whole-number edges that contains this one.
    Rect integral() const;
    // Grown by dx on the left and right and dy at the bottom and top (shrunk when negative).
    Rect insetBy(double dx, double dy) const;
    Rect translated(double dx, double dy) const;
    // Null when the two do not overlap; rectangles that only touch give an empty, non-null result.
    Rect intersected(const Rect &other) const;
    Rect united(const Rect &other) const;

    // Inclusive at the minimum edges, exclusive at the maximum edges.
    bool contains(QPointF p) const;
    bool intersects(const Rect &other) const { return !intersected(other).isEmpty(); }

    // Same coordinates in Qt's type; no axis flip happens here.
    QRectF toQRectF() const;

    bool operator==(const Rect &other) const = default;

private:
    double m_x = 0;
    double m_y = 0;
    double m_width = 0;
    double m_height = 0;
};
