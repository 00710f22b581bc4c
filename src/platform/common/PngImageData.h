#pragma once

#include "PngPixels.h"

#include <QByteArray>

// The image data of a PNG: every row "up"-filtered, as one zlib stream (header, deflate data,
// Adler-32), made as fast as the machine allows.
//
// Large pictures are split at a row into two parts compressed at once on two threads, each filtering
// its own rows. The upper part goes through zlib, row block by row block, and ends with a sync flush:
// a byte boundary that does not end the stream. The lower part, filtered whole, goes through
// libdeflate, which is faster but can only end a stream. The two join into the one stream that PNG
// requires. Small pictures, or a machine that cannot start a thread, take one part.
namespace pngimagedata {

// Appends the stream to `out`. False when memory or a compressor failed.
bool append(const PngPixels &pixels, int level, bool mayUseSecondThread, QByteArray &out);

} // namespace pngimagedata
