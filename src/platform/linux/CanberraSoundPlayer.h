#pragma once

#include "platform/SoundPlayer.h"

#include <QString>

#include <functional>

#include <xcb/xcb.h>

typedef struct ca_context ca_context;

// Sounds on Linux: files and the sound theme's events through libcanberra ("Shutter" is the theme's
// "camera-shutter"), and the display's bell as the alert sound. The sound context is made on first use,
// so a start without any capture never loads the audio stack. Without an X connection (Wayland has no
// bell) the alert sound is the theme's bell event. Main thread.
class CanberraSoundPlayer final : public SoundPlayer
{
public:
    explicit CanberraSoundPlayer(xcb_connection_t *connection);
    ~CanberraSoundPlayer() override;

    bool playFile(const QString &path) override;
    bool playNamed(const QString &name) override;
    bool beep() override;

    // Where failed sounds are reported (the diagnostics log): the bell that rings instead says nothing.
    using Trace = std::function<void(const QString &line)>;
    void setTrace(Trace trace) { m_trace = std::move(trace); }

    // The theme's event for a named system sound.
    static QString eventIDForName(const QString &name);

private:
    ca_context *context();

    xcb_connection_t *m_connection;
    ca_context *m_context = nullptr;
    bool m_contextFailed = false;
    int m_openStatus = 0;
    Trace m_trace;
};
