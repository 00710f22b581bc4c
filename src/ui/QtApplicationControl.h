#pragma once

#include "platform/ApplicationControl.h"

// The application object on Linux. The agent has no Dock icon to hide there; what it must not do is
// quit when its last window (editor, settings) closes. terminate() ends the event loop, and main
// runs the delegate's termination when QCoreApplication::aboutToQuit is emitted.
class QtApplicationControl final : public ApplicationControl
{
public:
    void setAccessoryActivationPolicy() override;
    // Raises our visible windows and asks the window manager to activate them.
    void activate() override;
    void terminate() override;
};
