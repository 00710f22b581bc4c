#include "geometry/Rect.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
constexpr double kInfinity = std::numeric_limits<double>::infinity();
}

Rect Rect::null()
{
    return Rect(kInfinity, kInfinity, 0, 0);
}

Rect Rect::fromCorners(QPointF a, QPointF b)
{
    return Rect(std::min(a.x(), b.x()), std::min(a.y(), b.y()), std::abs(b.x() - a.x()),
                std::abs(b.y() - a.y()));
}

double Rect::minX() const { return m_width < 0 ? m_x + m_width : m_x; }
double Rect::minY() const { return m_height < 0 ? m_y + m_height : m_y; }
double Rect::maxX() const { return m_width < 0 ? m_x : m_x + m_width; }
double Rect::maxY() const { return m_height < 0 ? m_y : m_y + m_height; }

bool Rect::isNull() const
{
    return std::isinf(m_x) || std::isinf(m_y);
}

bool Rect::isEmpty() const
{
    return isNull() || m_width == 0 || m_height == 0;
}

bool Rect::isFinite() const
{
    return std::isfinite(m_x) && std::isfinite(m_y) && std::isfinite(m_width) && std::isfinite(m_height);
}

Rect Rect::standardized() const
{
    if (isNull())
        return *this;
    return Rect(minX(), minY(), std::abs(m_width), std::abs(m_height));
}

Rect Rect::integral() const
{
    if (isNull())
        return *this;
    const double left = std::floor(minX());
    const double bottom = std::floor(minY());
    return Rect(left, bottom, std::ceil(maxX()) - left, std::ceil(maxY()) - bottom);
}

Rect Rect::insetBy(double dx, double dy) const
{
    if (isNull())
        return *this;
    const Rect s = standardized();
    const double width = s.m_width - 2 * dx;
    const double height = s.m_height - 2 * dy;
    if (width < 0 || height < 0)
        return null();
    return Rect(s.m_x + dx, s.m_y + dy, width, height);
}

Rect Rect::translated(double dx, double dy) const
{
    if (isNull())
        return *this;
    return Rect(m_x + dx, m_y + dy, m_width, m_height);
}

Rect Rect::intersected(const Rect &other) const
{
    if (isNull() || other.isNull())
        return null();
    const double left = std::max(minX(), other.minX());
    const double bottom = std::max(minY(), other.minY());
    const double right = std::min(maxX(), other.maxX());
    const double top = std::min(maxY(), other.maxY());
    if (right < left || top < bottom)
        return null();
    return Rect(left, bottom, right - left, top - bottom);
}

Rect Rect::united(const Rect &other) const
{
    if (isNull())
        return other.standardized();
    if (other.isNull())
        return standardized();
    const double left = std::min(minX(), other.minX());
    const double bottom = std::min(minY(), other.minY());
    return Rect(left, bottom, std::max(maxX(), other.maxX()) - left,
                std::max(maxY(), other.maxY()) - bottom);
}

bool Rect::contains(QPointF p) const
{
    if (isEmpty())
        return false;
    return p.x() >= minX() && p.x() < maxX() && p.y() >= minY() && p.y() < maxY();
}

QRectF Rect::toQRectF() const
{
    if (isNull())
        return QRectF();
    const Rect s = standardized();
    return QRectF(s.m_x, s.m_y, s.m_width, s.m_height);
}
