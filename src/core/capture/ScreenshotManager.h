#pragma once

#include "capture/CaptureCommands.h"
#include "capture/CaptureParts.h"
#include "capture/CaptureServices.h"

#include <QImage>

class EditorHandOff;

// The one capture controller, as the application sees it: the interactive selection over every
// display, the repeat capture of the last region, and the clipboard. Its parts (CaptureParts) do the
// work over one shared state. Main thread only; work started elsewhere (capture services, permission
// requests, file writing) posts back to it.
class ScreenshotManager final : public CaptureCommands
{
public:
    // Built in app/SharedInstances.cpp.
    static ScreenshotManager &shared();

    explicit ScreenshotManager(const CaptureServices &services);
    ~ScreenshotManager() override;

    ScreenshotManager(const ScreenshotManager &) = delete;
    ScreenshotManager &operator=(const ScreenshotManager &) = delete;

    // Where saved captures are offered for editing; null until the editor is set up.
    void setEditorHandOff(EditorHandOff *handOff) { m_parts.saver.setEditorHandOff(handOff); }

    void startSelection() override { m_parts.session.startSelection(); }
    void captureLastSelection() override { m_parts.repeat.captureLastSelection(); }
    // Replaces the clipboard's content with the image.
    void copyImageToClipboard(const QImage &image) { m_parts.saver.copyImageToClipboard(image); }

private:
    CaptureServices m_services;
    CaptureParts m_parts;
};
