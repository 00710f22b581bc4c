#include "CanberraSoundPlayer.h"

#include <QFileInfo>

#include <canberra.h>

#include <thread>

using namespace Qt::StringLiterals;

CanberraSoundPlayer::CanberraSoundPlayer(xcb_connection_t *connection) : m_connection(connection) {}

CanberraSoundPlayer::~CanberraSoundPlayer()
{
    // Destroying a context waits for the sound it still plays, and a sound server that never takes the
    // stream (PipeWire without its session manager) would hold up quitting for ever: the context goes on
    // a thread of its own, which nothing waits for.
    if (m_context)
        std::thread(ca_context_destroy, m_context).detach();
}

QString CanberraSoundPlayer::eventIDForName(const QString &name)
{
    if (name == u"Shutter"_s)
        return u"camera-shutter"_s;
    return name.toLower();
}

ca_context *CanberraSoundPlayer::context()
{
    if (m_context || m_contextFailed)
        return m_context;
    if ((m_openStatus = ca_context_create(&m_context)) != CA_SUCCESS) {
        m_context = nullptr;
        m_contextFailed = true;
        return nullptr;
    }
    ca_context_change_props(m_context, CA_PROP_APPLICATION_NAME, "Vistrel", CA_PROP_APPLICATION_ID,
                            "org.vistrel.Vistrel", nullptr);
    // Opening picks the audio backend; without any, every sound fails and the bell takes over.
    if ((m_openStatus = ca_context_open(m_context)) != CA_SUCCESS) {
        ca_context_destroy(m_context);
        m_context = nullptr;
        m_contextFailed = true;
    }
    return m_context;
}

bool CanberraSoundPlayer::playFile(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return false;
    ca_context *c = context();
    return c && ca_context_play(c, 0, CA_PROP_MEDIA_FILENAME, QFile::encodeName(path).constData(), nullptr) == CA_SUCCESS;
}

bool CanberraSoundPlayer::playNamed(const QString &name)
{
    const QString event = eventIDForName(name);
    ca_context *c = context();
    const int status = c ? ca_context_play(c, 0, CA_PROP_EVENT_ID, event.toUtf8().constData(),
                                           CA_PROP_EVENT_DESCRIPTION, "Vistrel", nullptr)
                         : m_openStatus;
    // Without an audio device the ALSA back end reports the event as not found.
    if (status != CA_SUCCESS && m_trace)
        m_trace(u"sound "_s % event % u" not played (libcanberra: "_s % QString::fromUtf8(ca_strerror(status)) % u')');
    return status == CA_SUCCESS;
}

bool CanberraSoundPlayer::beep()
{
    if (!m_connection)
        return playNamed(u"bell-window-system"_s);
    xcb_bell(m_connection, 0);
    xcb_flush(m_connection);
    return true;
}
