#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

// Decoding of the pictures the editor opens (files, clipboard data, drops) through Qt's image plugins:
// PNG, JPEG, GIF, BMP, TIFF, WebP and whatever else is installed. The format is recognised from the
// contents, not the file name; orientation tags are applied; pictures in another colour space are
// converted to sRGB, the space the editor draws and saves in. Callable from any thread.
//
// Decoders refuse pictures whose pixels would take more than allocationLimitMegabytes. 512 MiB holds
// every screen and stitched capture and photos up to about 130 megapixels; a 16384 × 16384 picture
// (1 GiB) is refused before anything is allocated, since flattening and saving it would need several
// times that again.
namespace imageloading {

constexpr int allocationLimitMegabytes = 512;

// A null image when the file is missing, empty, truncated, corrupt, of an unknown format or too large;
// `error` (when given) then says why, in English, for the diagnostics trace.
QImage loadImageFile(const QString &path, QString *error = nullptr);
QImage decodeImageData(const QByteArray &data, QString *error = nullptr);

} // namespace imageloading
