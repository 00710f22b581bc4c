#pragma once

#include "PngPixels.h"

#include <cstddef>

// The "up" filter of PNG (each byte minus the byte above it), the one filter our writer uses: on
// screen pictures it compresses nearly as well as choosing a filter per row, at a fraction of the cost.
namespace pngrowfilter {

// Writes rows [firstRow, endRow) of `pixels`, each as the filter type byte and pixels.rowLength()
// filtered bytes; 32-bit opaque pixels come out as R, G, B. `filtered` holds
// (endRow − firstRow) × (rowLength + 1) bytes plus one spare.
void filterRows(const PngPixels &pixels, int firstRow, int endRow, unsigned char *filtered);

// The same for rows [firstRow, height), written over the picture's own memory from the start of row
// `firstRow` on; rows above it are left alone, the rest of the picture is lost. Each filtered row goes
// where source rows already used lay, the first few through a small buffer. Null (and nothing
// changed) where rows are not wider than filtered rows, or memory ran out.
unsigned char *filterRowsInPlace(const PngPixels &pixels, int firstRow);

} // namespace pngrowfilter
