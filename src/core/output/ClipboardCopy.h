#pragma once

class Pasteboard;
class QImage;

// How a finished picture reaches the clipboard, shared by captures and edited images.
namespace clipboardcopy {

// Replaces the clipboard's content with the image alone.
void copyImageToClipboard(Pasteboard &pasteboard, const QImage &image);

} // namespace clipboardcopy
