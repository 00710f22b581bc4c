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

// Where a display's logical points land in a target space: its origin there and the target's units
// per point.
struct Target
{
    QPointF origin;
    double perPoint;
};

Target nativeOf(const DesktopScreen &s)
{
    return {QPointF(s.native.topLeft()), s.scale};
}

QPointF onScreen(QPointF logical, const DesktopScreen &s, const Target &target)
{
    return target.origin + (logical - QPointF(s.logical.topLeft())) * target.perPoint;
}

// Each corner by its own display, rounded outward to whole units.
template<typename TargetOf>
QRect logicalTo(const QRectF &logical, const QList<DesktopScreen> &screens, TargetOf targetOf)
{
    const DesktopScreen *first = screenAtLogical(logical.topLeft(), screens);
    const DesktopScreen *last = screenAtLogical(logical.bottomRight() - QPointF(1e-6, 1e-6), screens);
    const QPointF topLeft = first ? onScreen(logical.topLeft(), *first, targetOf(*first)) : logical.topLeft();
    const QPointF bottomRight = last ? onScreen(logical.bottomRight(), *last, targetOf(*last)) : logical.bottomRight();
    const int left = int(std::floor(topLeft.x() + 1e-9));
    const int top = int(std::floor(topLeft.y() + 1e-9));
    const int right = int(std::ceil(bottomRight.x() - 1e-9));
    const int bottom = int(std::ceil(bottomRight.y() - 1e-9));
    return QRect(QPoint(left, top), QSize(right - left, bottom - top));
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
    return s ? onScreen(logical, *s, nativeOf(*s)) : logical;
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
    return logicalTo(logical, screens, [](const DesktopScreen &s) { return nativeOf(s); });
}

QRect logicalToLayout(const QRectF &logical, const QList<DesktopScreen> &screens, double perUnit)
{
    return logicalTo(logical, screens, [perUnit](const DesktopScreen &s) {
        const QRect layout = s.layoutRect();
        const double perPoint = s.logical.width() > 0 ? double(layout.width()) / s.logical.width() : 1;
        return Target{QPointF(layout.topLeft()) * perUnit, perPoint * perUnit};
    });
}

QList<DesktopScreen> withCompositorLayout(QList<DesktopScreen> screens, const QList<CompositorOutput> &outputs)
{
    for (DesktopScreen &screen : screens) {
        for (const CompositorOutput &output : outputs) {
            if (output.name != screen.name || output.scale <= 0 || output.pixels.isEmpty())
                continue;
            const QSize points(qRound(output.pixels.width() / output.scale), qRound(output.pixels.height() / output.scale));
            screen.logical = QRect(output.layout.topLeft(), points);
            // Qt's work area is in the same mixed units; the compositor does not say, so the whole display.
            screen.availableLogical = screen.logical;
            screen.native = QRect(output.layout.topLeft(), output.pixels);
            screen.scale = output.scale;
            screen.layout = output.layout;
        }
    }
    return screens;
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

namespace {
DesktopSpace::CompositorLayout &compositorLayout()
{
    static DesktopSpace::CompositorLayout layout;
    return layout;
}
} // namespace

void DesktopSpace::setCompositorLayout(CompositorLayout layout)
{
    compositorLayout() = std::move(layout);
}

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
    if (const CompositorLayout &layout = compositorLayout()) {
        if (const std::optional<QList<CompositorOutput>> outputs = layout(screens))
            screens = desktopspace::withCompositorLayout(std::move(screens), *outputs);
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
