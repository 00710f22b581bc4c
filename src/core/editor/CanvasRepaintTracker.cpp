#include "editor/CanvasRepaintTracker.h"

#include "editor/CanvasRules.h"
#include "editor/EditorCanvasPainter.h"
#include "editor/EditorViewport.h"

#include <QHash>

#include <algorithm>

namespace {

// What the canvas paints in stacking order: the document's overlays, then the one being drawn.
struct Layers
{
    const QList<Overlay> &document;
    const std::optional<Overlay> &drawing;

    qsizetype size() const { return document.size() + (drawing ? 1 : 0); }
    const Overlay &at(qsizetype index) const { return index < document.size() ? document.at(index) : *drawing; }
    // A text box being drawn shows its text; once in the document its field shows it instead.
    bool showsText(qsizetype index) const { return index >= document.size() && at(index).type == EditorTool::Text; }
};

// A stroke that only grew at its end: its pixels are the union of its segments', so what changed lies
// around the new segments.
std::optional<Overlay> grownSegments(const Overlay &before, const Overlay &after)
{
    if (before.type != EditorTool::Freehand || after.type != EditorTool::Freehand || before.color != after.color
        || before.points.isEmpty() || after.points.size() < before.points.size()
        || after.points.first() != before.points.first()
        || after.points.at(before.points.size() - 1) != before.points.last())
        return std::nullopt;
    Overlay segments = after;
    segments.points = after.points.mid(before.points.size() - 1);
    return segments;
}

} // namespace

CanvasRepaintTracker::CanvasRepaintTracker(const EditorViewport &viewport) : m_viewport(viewport) {}

std::optional<QRegion> CanvasRepaintTracker::takeDamage(const QList<Overlay> &overlays,
                                                        const std::optional<Overlay> &activeOverlay,
                                                        const std::optional<Overlay> &selectedOverlay)
{
    std::optional<QRegion> damage;
    if (!m_isInvalid)
        damage = layersDamage(overlays, activeOverlay);
    if (damage && m_selectedOverlay != selectedOverlay)
        *damage += handlesRegion(m_selectedOverlay) + handlesRegion(selectedOverlay);
    m_isInvalid = false;
    m_overlays = overlays;
    m_activeOverlay = activeOverlay;
    m_selectedOverlay = selectedOverlay;
    return damage;
}

QRegion CanvasRepaintTracker::changeRegion(const Overlay &before, const Overlay &after) const
{
    if (before == after)
        return QRegion();
    if (const std::optional<Overlay> segments = grownSegments(before, after)) {
        if (segments->points.size() == 1)
            return QRegion();
        return editorcanvas::overlayPaintRegion(m_viewport, *segments);
    }
    return editorcanvas::overlayChangeRegion(m_viewport, before, after);
}

std::optional<QRegion> CanvasRepaintTracker::layersDamage(const QList<Overlay> &overlays,
                                                          const std::optional<Overlay> &activeOverlay) const
{
    const Layers before{m_overlays, m_activeOverlay};
    const Layers after{overlays, activeOverlay};
    QRegion area;
    auto compare = [&](qsizetype old, qsizetype now) {
        if (before.showsText(old) != after.showsText(now))
            area += editorcanvas::overlayPaintRegion(m_viewport, before.at(old))
                + editorcanvas::overlayPaintRegion(m_viewport, after.at(now));
        else
            area += changeRegion(before.at(old), after.at(now));
    };
    // An edit touches one place of the stack, so most layers are passed at either end by id alone; a
    // document left as it was is passed at once.
    qsizetype first = 0;
    if (m_overlays.isSharedWith(overlays))
        first = overlays.size();
    const qsizetype common = std::min(before.size(), after.size());
    for (; first < common && before.at(first).id == after.at(first).id; ++first)
        compare(first, first);
    qsizetype beforeEnd = before.size();
    qsizetype end = after.size();
    for (; beforeEnd > first && end > first && before.at(beforeEnd - 1).id == after.at(end - 1).id; --beforeEnd, --end)
        compare(beforeEnd - 1, end - 1);

    // In between, overlays came and went (an undo may swap several).
    QHash<QUuid, qsizetype> gone;
    for (qsizetype i = first; i < beforeEnd; ++i) {
        if (gone.contains(before.at(i).id))
            return std::nullopt;
        gone.insert(before.at(i).id, i);
    }
    qsizetype lastKept = -1;
    for (qsizetype i = first; i < end; ++i) {
        const auto kept = gone.constFind(after.at(i).id);
        if (kept == gone.cend()) {
            area += editorcanvas::overlayPaintRegion(m_viewport, after.at(i));
            continue;
        }
        // One that stayed now lies under one it lay over: the stacking changed.
        if (*kept < lastKept)
            return std::nullopt;
        lastKept = *kept;
        compare(*kept, i);
        gone.erase(kept);
    }
    for (const qsizetype index : std::as_const(gone))
        area += editorcanvas::overlayPaintRegion(m_viewport, before.at(index));
    return area;
}

QRegion CanvasRepaintTracker::handlesRegion(const std::optional<Overlay> &selectedOverlay) const
{
    QRegion area;
    if (!selectedOverlay || !canvasrules::hasHandles(selectedOverlay->type))
        return area;
    // The ring's outer edge and its smoothing.
    const double reach = canvasrules::handleDiameter / 2 + canvasrules::handleOutlineWidth / 2 + 2;
    for (QPointF center : canvasrules::handlePositions(m_viewport.overlayRectInView(*selectedOverlay)))
        area += QRectF(center - QPointF(reach, reach), QSizeF(2 * reach, 2 * reach)).toAlignedRect();
    return area;
}
