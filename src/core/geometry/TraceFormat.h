#pragma once

#include "geometry/Rect.h"

#include <QString>

#include <optional>

// Text forms of numbers, rectangles and sizes in diagnostics lines. Rectangles read
// "{{10, 20}, {300, 200}}" and sizes "{300, 200}"; each number is the shortest decimal that reads back
// exactly, so whole numbers carry no decimals and 10.5 stays 10.5.
namespace trace {

QString number(double value);
QString rect(const Rect &r);
QString size(QSizeF s);
QString point(QPointF p);
// A display id in decimal, or "nil" when there is none.
QString displayID(std::optional<quint32> id);

} // namespace trace
