#pragma once

#include "editor/Overlay.h"

#include <QList>
#include <QPointF>
#include <QRectF>

#include <array>
#include <optional>

// The pure rules of the editor canvas: how a drag shapes a new overlay, how an overlay moves and
// resizes, where its corners and handles are. Overlay points are image points (y up); corners and
// handles are view points (y down).
namespace canvasrules {

// The box a text-tool press makes, below-right of the press on screen.
constexpr QPointF textBoxExtent{260, 72};
inline const QString newTextBoxText = QStringLiteral("テキスト");
// A freehand stroke takes a point only this far from the last one: while dragging, then at the end.
constexpr double freehandStepWhileDragging = 1.5;
constexpr double freehandStepAtEnd = 1.0;
// How far outside an unselected overlay a press still reaches it, in image points.
constexpr double shapeHitPadding = 8;
// A press this close to a corner of the pressed overlay resizes it (view points).
constexpr double dragCornerReach = 50;

constexpr double handleDiameter = 12;
constexpr double handleOutlineWidth = 2;

// 8 for rectangles, circles and freehand strokes, whose thin lines are hard to hit; 0 otherwise.
double hitPadding(EditorTool type);

// The freehand stroke grown by `point` when it is at least `step` from the last point; an empty
// stroke takes the point whatever the distance.
void extendFreehand(Overlay &overlay, QPointF point, double step);

// The overlay moved by (dx, dy), its freehand points included.
Overlay movedOverlay(const Overlay &overlay, double dx, double dy);
// The overlay with `corner` (0 top-left, 1 top-right, 2 bottom-right, 3 bottom-left on screen) at
// `point`: boxes keep the opposite corner and come out normalised; an arrow moves its nearer end
// (the end on a tie); a freehand stroke stays as it is.
Overlay resizedOverlay(const Overlay &overlay, int corner, QPointF point);

// Top-left, top-right, bottom-right, bottom-left of a view rectangle.
std::array<QPointF, 4> viewCorners(const QRectF &viewRect);
// Where the handles of a selected overlay go: bottom-left, bottom-right, top-right, top-left on screen.
std::array<QPointF, 4> handlePositions(const QRectF &viewRect);
bool hasHandles(EditorTool type);

} // namespace canvasrules
