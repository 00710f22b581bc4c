#include "output/ClipboardCopy.h"

#include "platform/Pasteboard.h"

namespace clipboardcopy {

void copyImageToClipboard(Pasteboard &pasteboard, const QImage &image)
{
    pasteboard.clearContents();
    pasteboard.writeImage(image);
}

} // namespace clipboardcopy
