#pragma once

#include "geometry/Rect.h"

#include <QList>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QString>

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
    static DesktopSpace current();
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
