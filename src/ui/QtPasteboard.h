#pragma once

#include "platform/Pasteboard.h"

// The clipboard through QClipboard. On X11 the application serves the image itself for as long as it
// runs (image/png and Qt's other image targets, encoded when a client asks). Main thread.
class QtPasteboard final : public Pasteboard
{
public:
    void clearContents() override;
    bool writeImage(const QImage &image) override;
};
