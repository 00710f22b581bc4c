#pragma once

#include "geometry/Rect.h"

#include <QList>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QString>

#include <functional>
#include <optional>

class QScreen;

// One display as Qt lays it out. Qt's device-independent ("logical") space has its origin at the
// top-left of the root window, y downwards; each display keeps its device-pixel top-left as its
// logical top-left and divides only its size by its scale, so displays of different scales leave
// gaps in the logical space and never overlap there.
struct DesktopScreen
{
    QString name;
    QRect logical;
    QRect availableLogical;
    // In device pixels of the root window.
    QRect native;
    double scale = 1;
    // Where the compositor's whole-desktop pictures show the display, in their layout units; empty
    // where that is `logical`.
    QRect layout;

    QRect layoutRect() const { return layout.isEmpty() ? logical : layout; }
};

// One output as the compositor lays it out, for desktops whose own word must correct Qt's: Qt 6.4 on
// GNOME gives a scaled monitor its layout position but its size in pixels. `layout` is in the units the
// compositor's layout (and its screenshots) use: pixels or logical points, as the desktop chose.
struct CompositorOutput
{
    QString name;
    QRect layout;
    double scale = 1;
    QSize pixels;
};

// The conversions between the three spaces the desktop is seen in: device pixels of the root window
// (X requests and replies), Qt's logical space (widgets, the pointer), and the global bottom-left
// space of the capture rules (origin at the primary display's bottom-left corner, y upwards, points).
// Every adapter converts through here, so the spaces agree everywhere.
namespace desktopspace {

// Without displays whose rectangle holds another whole display and overlaps it in the logical space
// (the X server's automatic monitor that spans a screen split into user-defined monitors), and
// without repeats of an earlier display's rectangle. Order kept.
QList<DesktopScreen> withoutCoveringScreens(const QList<DesktopScreen> &screens);

// Qt's screens with each one the compositor reports taken from its report: its size in points is its
// pixels over its scale, from its layout position. Screens it does not report stay as Qt has them.
QList<DesktopScreen> withCompositorLayout(QList<DesktopScreen> screens, const QList<CompositorOutput> &outputs);

// The display holding the point, else the nearest one; null for an empty list.
const DesktopScreen *screenAtNative(QPointF native, const QList<DesktopScreen> &screens);
const DesktopScreen *screenAtLogical(QPointF logical, const QList<DesktopScreen> &screens);

// Each point by the scale of its own display; a rectangle by its two corners, so the part of a
// rectangle on each display lands where that display shows it.
QPointF nativeToLogical(QPointF native, const QList<DesktopScreen> &screens);
QPointF logicalToNative(QPointF logical, const QList<DesktopScreen> &screens);
QRectF nativeToLogical(const QRectF &native, const QList<DesktopScreen> &screens);
// Rounded outward to whole pixels.
QRect logicalToNative(const QRectF &logical, const QList<DesktopScreen> &screens);
// The same into the compositor's layout units, at `perUnit` pixels of a picture of the layout per unit.
QRect logicalToLayout(const QRectF &logical, const QList<DesktopScreen> &screens, double perUnit);

// Between Qt's logical space and the global bottom-left space; `primary` is the primary display's
// logical rectangle.
Rect toGlobal(const QRectF &logical, const QRect &primary);
QRectF fromGlobal(const Rect &global, const QRect &primary);
QPointF pointToGlobal(QPointF logical, const QRect &primary);
QPointF pointFromGlobal(QPointF global, const QRect &primary);
// Qt's logical space moved to the primary display's top-left corner: the top-left global space.
Rect toTopLeftGlobal(const QRectF &logical, const QRect &primary);
QRectF fromTopLeftGlobal(const Rect &topLeftGlobal, const QRect &primary);

} // namespace desktopspace

// The displays Qt knows now, primary first, with the conversions bound to them. Cheap to make; make a
// new one whenever the layout may have changed. Main thread.
class DesktopSpace final
{
public:
    // The compositor's outputs for the screens Qt lists, or nothing where it cannot say.
    using CompositorLayout = std::function<std::optional<QList<CompositorOutput>>(const QList<DesktopScreen> &qt)>;

    static DesktopSpace current();
    // Installed once at start-up by the session, on desktops where Qt's screens need correcting.
    static void setCompositorLayout(CompositorLayout layout);
    explicit DesktopSpace(QList<DesktopScreen> screens);

    const QList<DesktopScreen> &screens() const { return m_screens; }
    QRect primary() const;
    // Qt's screen of that name, for placing windows; null when it is gone.
    static QScreen *qscreen(const QString &name);

    Rect toGlobal(const QRectF &logical) const { return desktopspace::toGlobal(logical, primary()); }
    QRectF fromGlobal(const Rect &global) const { return desktopspace::fromGlobal(global, primary()); }
    QPointF pointToGlobal(QPointF logical) const { return desktopspace::pointToGlobal(logical, primary()); }
    Rect nativeToTopLeftGlobal(const QRectF &native) const;
    QRect topLeftGlobalToNative(const Rect &topLeftGlobal) const;

private:
    QList<DesktopScreen> m_screens;
};
