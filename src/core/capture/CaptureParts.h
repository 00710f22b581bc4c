#pragma once

#include "capture/CaptureAttempts.h"
#include "capture/CaptureExecution.h"
#include "capture/CaptureSaver.h"
#include "capture/CaptureState.h"
#include "capture/DisplayFreezer.h"
#include "capture/PermissionGate.h"
#include "capture/RepeatCapture.h"
#include "capture/SelectionSession.h"
#include "capture/WindowUnderCursor.h"

struct CaptureServices;

// The parts of the capture flow over one shared state, wired to one another. The screenshot manager
// owns the application's set; tests build theirs on fakes and drive the parts directly. It follows
// display changes. Main thread only.
struct CaptureParts final
{
    // `services` outlives the parts.
    explicit CaptureParts(const CaptureServices &services);

    CaptureParts(const CaptureParts &) = delete;
    CaptureParts &operator=(const CaptureParts &) = delete;

    CaptureState state;
    PermissionGate permission;
    CaptureAttempts attempts;
    DisplayFreezer freezer;
    CaptureSaver saver;
    SelectionSession session;
    WindowUnderCursor windowUnderCursor;
    CaptureExecution execution;
    RepeatCapture repeat;
};
