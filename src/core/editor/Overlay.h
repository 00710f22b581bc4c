#pragma once

#include "editor/EditorTool.h"
#include "editor/StrokePoints.h"
#include "geometry/Rect.h"

#include <QColor>
#include <QList>
#include <QPointF>
#include <QString>
#include <QUuid>

// One annotation of the editor, a plain value: copies are independent, which is what makes the
// snapshots of the undo history safe. Points are image pixels, origin at the image's bottom-left, y up.
// Start and end are kept as drawn (an arrow points from start to end); rect() is their normalised box.
struct Overlay
{
    static inline const QString defaultFontFamily = QStringLiteral("Helvetica");
    static constexpr double defaultFontSize = 20;

    QUuid id;
    EditorTool type = EditorTool::Rectangle;
    QPointF startPoint;
    QPointF endPoint;
    // Stroke colour of shapes, arrows and freehand lines; text colour of text boxes.
    QColor color;
    QString text;
    // Background of a text box, alpha included.
    QColor textFillColor;
    QString fontFamily = defaultFontFamily;
    double fontSize = defaultFontSize;
    // The stroke of a freehand overlay; empty for the other tools.
    StrokePoints points;

    Overlay() = default;
    // A new overlay with a fresh id. The caller supplies the text fill colour (new overlays take the
    // saved one, see ImageEditorModel::makeOverlay).
    Overlay(EditorTool type, QPointF startPoint, QPointF endPoint, const QColor &color, const QString &text,
            const QColor &textFillColor);

    // The box of start and end in either order; for a freehand stroke, the box of its points, at least
    // 1 × 1. A click without a drag gives an empty box for the other tools.
    Rect rect() const;
    // Inside rect() grown by `padding` on every side: minimum edges inclusive, maximum edges exclusive.
    bool contains(QPointF point, double padding) const;

    bool operator==(const Overlay &other) const = default;
};
