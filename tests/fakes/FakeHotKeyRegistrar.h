#pragma once

#include "platform/HotKeyRegistrar.h"

#include <QList>
#include <QMap>

class FakeHotKeyRegistrar final : public HotKeyRegistrar
{
public:
    struct Registration
    {
        quint32 keyCode;
        quint32 modifiers;
        Identifier identifier;
    };

    Result installHandler(Handler handler) override
    {
        if (installStatus != noErr)
            return {installStatus, 0};
        const Handle handle = m_nextHandle++;
        handlers.insert(handle, std::move(handler));
        return {noErr, handle};
    }
    void removeHandler(Handle handle) override { handlers.remove(handle); }
    Result registerHotKey(quint32 keyCode, quint32 modifiers, Identifier identifier) override
    {
        ++registerCalls;
        const Status status = failingStatusForId.value(identifier.id, noErr);
        if (status != noErr)
            return {status, 0};
        const Handle handle = m_nextHandle++;
        registrations.insert(handle, {keyCode, modifiers, identifier});
        return {noErr, handle};
    }
    void unregisterHotKey(Handle handle) override { registrations.remove(handle); }
    Binder binder() const override { return currentBinder; }
    void setBinderObserver(BinderObserver observer) override { binderObserver = std::move(observer); }

    // The binder changes, as a portal's answer changes it.
    void reportBinder(Binder binder)
    {
        currentBinder = binder;
        if (binderObserver)
            binderObserver(binder);
    }

    // Delivers a press of the registered key with this identifier to every installed handler, as the
    // system would; an absent identifier stands for an event whose identifier could not be read.
    void press(std::optional<Identifier> identifier)
    {
        for (const Handler &handler : std::as_const(handlers))
            handler(identifier);
    }
    QList<Registration> registrationsFor(quint32 id) const
    {
        QList<Registration> found;
        for (const Registration &r : registrations) {
            if (r.identifier.id == id)
                found.append(r);
        }
        return found;
    }

    Status installStatus = noErr;
    QMap<quint32, Status> failingStatusForId;
    QMap<Handle, Handler> handlers;
    QMap<Handle, Registration> registrations;
    int registerCalls = 0;
    Binder currentBinder = Binder::System;
    BinderObserver binderObserver;

private:
    Handle m_nextHandle = 1;
};
