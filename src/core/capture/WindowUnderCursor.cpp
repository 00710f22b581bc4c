#include "capture/WindowUnderCursor.h"

#include "platform/DiagnosticsLog.h"
#include "capture/CaptureGeometry.h"
#include "capture/CaptureServices.h"
#include "capture/CaptureState.h"
#include "geometry/TraceFormat.h"
#include "platform/Cursor.h"
#include "platform/DisplayProvider.h"
#include "platform/SelectionWindow.h"

using namespace Qt::StringLiterals;

std::optional<WindowUnderCursor::WindowInfo>
WindowUnderCursor::frontmostWindowAt(const QList<WindowList::Entry> &windows, QPointF point, double desktopTopY)
{
    for (const WindowList::Entry &entry : windows) {
        if (!entry.bounds)
            continue;
        const Rect bounds = capturegeometry::cgGlobalRect(*entry.bounds, desktopTopY);
        if (bounds.width() < 2 || bounds.height() < 2)
            continue;
        if (!bounds.contains(point))
            continue;
        const QString ownerName = entry.ownerName.value_or(QString());
        if (ownerName == ownApplicationName)
            continue;
        if (entry.layer.value_or(0) != 0)
            continue;
        if (!(entry.alpha.value_or(1) > 0))
            continue;
        return WindowInfo{bounds, entry.number.value_or(0), ownerName};
    }
    return std::nullopt;
}

std::optional<WindowUnderCursor::WindowInfo> WindowUnderCursor::windowInfoUnderCursor(QPointF point) const
{
    const std::optional<QList<WindowList::Entry>> windows = m_services.windowList.onScreenWindows();
    if (!windows)
        return std::nullopt;
    const double top = capturegeometry::desktopTopY(m_services.displays.screens(), m_services.displays.mainScreen());
    return frontmostWindowAt(*windows, point, top);
}

std::optional<CursorWindowSelection> WindowUnderCursor::makeWindowSelectionUnderCursor() const
{
    const QPointF mouse = m_services.cursor.location();
    SelectionWindow *overlay = m_state.selectionWindows.firstWindowContaining(mouse);
    if (!overlay)
        return std::nullopt;
    const std::optional<WindowInfo> info = windowInfoUnderCursor(mouse);
    if (!info)
        return std::nullopt;
    const Rect clipped = info->bounds.intersected(overlay->frame());
    if (clipped.isEmpty())
        return std::nullopt;
    const Rect localRect(overlay->convertPointFromScreen(clipped.origin()), clipped.size());
    if (localRect.isEmpty())
        return std::nullopt;
    m_services.diagnostics.write(u"window selection resolved owner="_s % info->ownerName % u" id="_s
                                 % QString::number(info->id) % u" localRect="_s % trace::rect(localRect));
    return CursorWindowSelection{overlay, localRect};
}
