#include "DesktopSpace.h"

#include <QGuiApplication>
#include <QScreen>

#include <cmath>
#include <limits>

namespace desktopspace {

namespace {

double distanceSquared(QPointF p, const QRect &r)
{
    const double dx = std::max({double(r.left()) - p.x(), 0.0, p.x() - (double(r.left()) + r.width())});
    const double dy = std::max({double(r.top()) - p.y(), 0.0, p.y() - (double(r.top()) + r.height())});
    return dx * dx + dy * dy;
}

template<typename RectOf>
const DesktopScreen *screenAt(QPointF p, const QList<DesktopScreen> &screens, RectOf rectOf)
{
    const DesktopScreen *nearest = nullptr;
    double best = std::numeric_limits<double>::infinity();
    for (const DesktopScreen &screen : screens) {
        const double d = distanceSquared(p, rectOf(screen));
        if (d < best) {
            best = d;
            nearest = &screen;
        }
    }
    return nearest;
}

// Inclusive at the left and top edges, exclusive at the right and bottom: a point on the boundary
// between two displays belongs to the one on its right or below.
bool holds(const QRect &outer, const QRect &inner)
{
    return outer != inner && outer.contains(inner);
}

} // namespace

QList<DesktopScreen> withoutCoveringScreens(const QList<DesktopScreen> &screens)
{
    QList<DesktopScreen> kept;
    for (qsizetype i = 0; i < screens.size(); ++i) {
        const DesktopScreen &candidate = screens.at(i);
        // A covering monitor shares the logical space with the monitors it holds. Displays that only
        // seem to hold one another in pixels (a Retina display beside a 1x one, on macOS, where Qt's
        // logical space is the real layout in points) lie side by side there. Of monitors with the same
        // rectangle (a user-defined one over the automatic one, mirrored outputs) the first, which is
        // the primary one when either is, stands for all.
        bool covers = false;
        for (qsizetype j = 0; j < screens.size(); ++j) {
            const DesktopScreen &other = screens.at(j);
            const bool repeats = j < i && candidate.native == other.native;
            covers = covers
                || ((holds(candidate.native, other.native) || repeats) && candidate.logical.intersects(other.logical));
        }
        if (!covers)
            kept.append(candidate);
    }
    return kept;
}

const DesktopScreen *screenAtNative(QPointF native, const QList<DesktopScreen> &screens)
{
    return screenAt(native, screens, [](const DesktopScreen &s) { return s.native; });
}

const DesktopScreen *screenAtLogical(QPointF logical, const QList<DesktopScreen> &screens)
{
    return screenAt(logical, screens, [](const DesktopScreen &s) { return s.logical; });
}

QPointF nativeToLogical(QPointF native, const QList<DesktopScreen> &screens)
{
    const DesktopScreen *s = screenAtNative(native, screens);
    if (!s)
        return native;
    const QPointF origin = s->native.topLeft();
    return s->logical.topLeft() + (native - origin) / s->scale;
}

QPointF logicalToNative(QPointF logical, const QList<DesktopScreen> &screens)
{
    const DesktopScreen *s = screenAtLogical(logical, screens);
    if (!s)
        return logical;
    const QPointF origin = s->logical.topLeft();
    return s->native.topLeft() + (logical - origin) * s->scale;
}

QRectF nativeToLogical(const QRectF &native, const QList<DesktopScreen> &screens)
{
    // The far corner is the last pixel's far edge; it is looked up by the last pixel itself, so a
    // rectangle ending exactly at a display's edge stays on that display.
    const QPointF topLeft = nativeToLogical(native.topLeft(), screens);
    const DesktopScreen *s = screenAtNative(native.bottomRight() - QPointF(0.5, 0.5), screens);
    const QPointF bottomRight = s ? s->logical.topLeft() + (native.bottomRight() - QPointF(s->native.topLeft())) / s->scale
                                  : native.bottomRight();
    return QRectF(topLeft, bottomRight);
}

QRect logicalToNative(const QRectF &logical, const QList<DesktopScreen> &screens)
{
    const QPointF topLeft = logicalToNative(logical.topLeft(), screens);
    const DesktopScreen *s = screenAtLogical(logical.bottomRight() - QPointF(1e-6, 1e-6), screens);
    const QPointF bottomRight = s ? s->native.topLeft() + (logical.bottomRight() - QPointF(s->logical.topLeft())) * s->scale
                                  : logical.bottomRight();
    const int left = int(std::floor(topLeft.x() + 1e-9));
    const int top = int(std::floor(topLeft.y() + 1e-9));
    const int right = int(std::ceil(bottomRight.x() - 1e-9));
    const int bottom = int(std::ceil(bottomRight.y() - 1e-9));
    return QRect(QPoint(left, top), QSize(right - left, bottom - top));
}

Rect toGlobal(const QRectF &logical, const QRect &primary)
{
    const double top = primary.top() + primary.height();
    return Rect(logical.x() - primary.left(), top - (logical.y() + logical.height()), logical.width(),
                logical.height());
}

QRectF fromGlobal(const Rect &global, const QRect &primary)
{
    const double top = primary.top() + primary.height();
    return QRectF(global.minX() + primary.left(), top - global.maxY(), global.width(), global.height());
}

QPointF pointToGlobal(QPointF logical, const QRect &primary)
{
    return QPointF(logical.x() - primary.left(), primary.top() + primary.height() - logical.y());
}

QPointF pointFromGlobal(QPointF global, const QRect &primary)
{
    return QPointF(global.x() + primary.left(), primary.top() + primary.height() - global.y());
}

Rect toTopLeftGlobal(const QRectF &logical, const QRect &primary)
{
    return Rect(logical.x() - primary.left(), logical.y() - primary.top(), logical.width(), logical.height());
}

QRectF fromTopLeftGlobal(const Rect &topLeftGlobal, const QRect &primary)
{
    return QRectF(topLeftGlobal.minX() + primary.left(), topLeftGlobal.minY() + primary.top(),
                  topLeftGlobal.width(), topLeftGlobal.height());
}

} // namespace desktopspace

DesktopSpace DesktopSpace::current()
{
    QList<DesktopScreen> screens;
    // Qt lists the primary display first.
    for (QScreen *screen : QGuiApplication::screens()) {
        const QRect logical = screen->geometry();
        const double scale = screen->devicePixelRatio();
        const QSize nativeSize(qRound(logical.width() * scale), qRound(logical.height() * scale));
        screens.append({screen->name(), logical, screen->availableGeometry(), QRect(logical.topLeft(), nativeSize),
                        scale});
    }
    return DesktopSpace(desktopspace::withoutCoveringScreens(screens));
}

DesktopSpace::DesktopSpace(QList<DesktopScreen> screens) : m_screens(std::move(screens)) {}

QRect DesktopSpace::primary() const
{
    return m_screens.isEmpty() ? QRect() : m_screens.first().logical;
}

QScreen *DesktopSpace::qscreen(const QString &name)
{
    for (QScreen *screen : QGuiApplication::screens()) {
        if (screen->name() == name)
            return screen;
    }
    return nullptr;
}

Rect DesktopSpace::nativeToTopLeftGlobal(const QRectF &native) const
{
    return desktopspace::toTopLeftGlobal(desktopspace::nativeToLogical(native, m_screens), primary());
}

QRect DesktopSpace::topLeftGlobalToNative(const Rect &topLeftGlobal) const
{
    return desktopspace::logicalToNative(desktopspace::fromTopLeftGlobal(topLeftGlobal, primary()), m_screens);
}
