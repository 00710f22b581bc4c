#pragma once

#include "editor/Overlay.h"

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QSize>

#include <benchmark/benchmark.h>

#include <functional>

namespace benchsupport {

// The 4K desktop picture made in the build tree; the run stops when it is missing.
const QImage &deskImage();

// A busy document over an image of `size`: 20 rectangles, 20 circles, 20 arrows of 80 to 600 pixels, 20 freehand strokes
// of 500 points, 10 mosaics and 10 text boxes in Japanese and Latin, placed by a fixed seed.
QList<Overlay> busyDocument(QSize size);

// A freehand stroke of `count` points wandering from `start`.
Overlay freehandStroke(QPointF start, int count, quint32 seed);

// Times `encode` and reports the size of what it made as "png_bytes".
void measureEncoding(benchmark::State &state, const std::function<QByteArray()> &encode);

} // namespace benchsupport
