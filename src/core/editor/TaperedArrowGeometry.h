#pragma once

#include <QPointF>

#include <array>

// The outline of a filled arrow that is thin at its tail and widens towards the head: a trapezoid
// shaft from the tail to the neck, then a triangular head. The fields are in tracing order.
struct TaperedArrowGeometry
{
    QPointF tailLeft;
    QPointF neckLeft;
    QPointF headLeft;
    QPointF tip;
    QPointF headRight;
    QPointF neckRight;
    QPointF tailRight;

    std::array<QPointF, 7> outline() const
    {
        return {tailLeft, neckLeft, headLeft, tip, headRight, neckRight, tailRight};
    }

    bool operator==(const TaperedArrowGeometry &other) const = default;
};
