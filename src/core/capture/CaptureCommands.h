#pragma once

// What the application shell asks of the capture subsystem.
class CaptureCommands
{
public:
    virtual ~CaptureCommands() = default;
    // Interactive selection over every display.
    virtual void startSelection() = 0;
    // The last selected region again, without the overlay.
    virtual void captureLastSelection() = 0;
};
