#pragma once

#include "platform/ApplicationControl.h"

// The application object on macOS (NSApp, which Qt made). Main thread.
class MacApplicationControl final : public ApplicationControl
{
public:
    // Accessory: no Dock icon and no menu bar of our own. Info.plist's LSUIElement already starts the
    // process that way (so the Dock never flashes); this keeps it so whatever Qt does at launch.
    void setAccessoryActivationPolicy() override;
    void activate() override;
    // Ends Qt's event loop, which ends the Cocoa application; main() then runs the delegate's
    // termination from QCoreApplication::aboutToQuit.
    void terminate() override;
};
