#pragma once

#include "editor/Overlay.h"

#include <QList>
#include <QRegion>

#include <optional>

class EditorViewport;

// Remembers what the canvas last showed (the document's overlays, the overlay being drawn, the
// selection) and tells, from what it shows now, where the canvas must be repainted. Repaints stay
// as small as the change: a growing stroke its new segments, a moved or committed overlay its old
// and new places, a new selection its handles. ImageEditorView asks once per announced change of
// the canvas. Main thread only.
class CanvasRepaintTracker final
{
public:
    explicit CanvasRepaintTracker(const EditorViewport &viewport);

    // The next repaint is the whole canvas: its mapping or the picture changed.
    void invalidate() { m_isInvalid = true; }

    // Where the canvas changed since the last call, in canvas view points: absent for all of it,
    // empty for nothing. What is given is taken as shown from then on.
    std::optional<QRegion> takeDamage(const QList<Overlay> &overlays, const std::optional<Overlay> &activeOverlay,
                                      const std::optional<Overlay> &selectedOverlay);

private:
    // The overlays painted then against now, the one being drawn on top; absent when the stacking
    // order of the overlays that stayed changed.
    std::optional<QRegion> layersDamage(const QList<Overlay> &overlays, const std::optional<Overlay> &activeOverlay) const;
    // Where turning `before` into `after` repaints.
    QRegion changeRegion(const Overlay &before, const Overlay &after) const;
    QRegion handlesRegion(const std::optional<Overlay> &selectedOverlay) const;

    const EditorViewport &m_viewport;
    // Nothing is shown yet when the tracker starts.
    bool m_isInvalid = true;
    QList<Overlay> m_overlays;
    std::optional<Overlay> m_activeOverlay;
    std::optional<Overlay> m_selectedOverlay;
};
