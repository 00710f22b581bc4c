#pragma once

#include <QImage>

#include <cstddef>

// The "up" filter of PNG (each byte minus the byte above it), the one filter our writer uses: on
// screen pictures it compresses nearly as well as choosing a filter per row, at a fraction of the cost.
namespace pngrowfilter {

// Writes rows [firstRow, endRow) of `pixels`, each as the filter type byte and `rowLength` filtered
// bytes. 32-bit opaque pixels (Format_RGB32) come out as R, G, B; any other picture must be 8-bit RGB
// or RGBA with rows of `rowLength` bytes. `filtered` holds (endRow − firstRow) × (rowLength + 1)
// bytes plus one spare.
void filterRows(const QImage &pixels, size_t rowLength, int firstRow, int endRow, uchar *filtered);

} // namespace pngrowfilter
