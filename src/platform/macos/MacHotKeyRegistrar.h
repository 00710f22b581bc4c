#pragma once

#include "platform/HotKeyRegistrar.h"

#include <map>
#include <memory>

// Global hot keys through the Carbon event manager: one handler for kEventHotKeyPressed on the
// application's event target, and RegisterEventHotKey for each combination. Carbon calls the handler
// on the main thread from the Cocoa event loop Qt runs. Statuses are Carbon's own (noErr, or e.g.
// eventHotKeyExistsErr -9878 when another application holds the combination). Main thread.
class MacHotKeyRegistrar final : public HotKeyRegistrar
{
public:
    ~MacHotKeyRegistrar() override;

    Result installHandler(Handler handler) override;
    void removeHandler(Handle handler) override;
    Result registerHotKey(quint32 keyCode, quint32 carbonModifiers, Identifier identifier) override;
    void unregisterHotKey(Handle hotKey) override;

private:
    // Each installed handler's function, by the handle of its Carbon event handler; Carbon gets a
    // pointer to it as user data.
    std::map<Handle, std::unique_ptr<Handler>> m_handlers;
};
