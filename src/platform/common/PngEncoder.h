#pragma once

#include "PngPixels.h"

#include "platform/PngWriter.h"

#include <QByteArray>
#include <QString>

#include <optional>

// Our PNG format on plain pixel rows: signature, IHDR, one IDAT (pngimagedata), IEND, no metadata;
// 8-bit RGB, or 8-bit RGBA for pictures with an alpha channel. FastPngWriter puts Qt's images through
// here, and the command-line capture its grabs, so both write the same files.
namespace pngencoder {

// The whole file; empty when memory or a compressor failed or the picture is empty.
QByteArray encode(const PngPixels &pixels, int compressionLevel, bool mayUseSecondThread);
// Writes the file at `path`, replacing any file of that name through atomicfile, so a failed or killed
// write never leaves half a file under that name.
std::optional<PngWriter::Failure> writeFile(const PngPixels &pixels, const QString &path, int compressionLevel,
                                            bool mayUseSecondThread);

} // namespace pngencoder
