#include "WaylandConnection.h"

#include "wlr-screencopy-unstable-v1-client-protocol.h"
#include "xdg-output-unstable-v1-client-protocol.h"

#include <wayland-client.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <poll.h>

using namespace Qt::StringLiterals;

namespace {

using Output = WaylandConnection::Output;

void outputGeometry(void *, wl_output *, int32_t, int32_t, int32_t, int32_t, int32_t, const char *, const char *,
                    int32_t)
{
}

void outputMode(void *data, wl_output *, uint32_t flags, int32_t width, int32_t height, int32_t)
{
    if (flags & WL_OUTPUT_MODE_CURRENT)
        static_cast<Output *>(data)->modeSize = QSize(width, height);
}

void outputDone(void *, wl_output *) {}

void outputScale(void *data, wl_output *, int32_t factor)
{
    static_cast<Output *>(data)->scale = std::max(1, factor);
}

const wl_output_listener outputListener = {outputGeometry, outputMode, outputDone, outputScale};

void xdgPosition(void *data, zxdg_output_v1 *, int32_t x, int32_t y)
{
    static_cast<Output *>(data)->logical.moveTopLeft(QPoint(x, y));
}

void xdgSize(void *data, zxdg_output_v1 *, int32_t width, int32_t height)
{
    static_cast<Output *>(data)->logical.setSize(QSize(width, height));
}

void xdgDone(void *, zxdg_output_v1 *) {}

void xdgName(void *data, zxdg_output_v1 *, const char *name)
{
    static_cast<Output *>(data)->name = QString::fromUtf8(name);
}

void xdgDescription(void *, zxdg_output_v1 *, const char *) {}

const zxdg_output_v1_listener xdgOutputListener = {xdgPosition, xdgSize, xdgDone, xdgName, xdgDescription};

} // namespace

std::variant<std::unique_ptr<WaylandConnection>, QString> WaylandConnection::open()
{
    wl_display *display = wl_display_connect(nullptr);
    if (!display)
        return u"cannot connect to the Wayland compositor (WAYLAND_DISPLAY=%1)"_s.arg(
            qEnvironmentVariable("WAYLAND_DISPLAY"));
    std::unique_ptr<WaylandConnection> connection(new WaylandConnection(display));
    // Two round trips: the globals, then the outputs' own descriptions.
    if (!connection->update() || !connection->update())
        return u"the Wayland compositor closed the connection"_s;
    return connection;
}

WaylandConnection::WaylandConnection(wl_display *display) : m_display(display)
{
    static const wl_registry_listener registryListener = {&onGlobal, &onGlobalRemove};
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &registryListener, this);
}

WaylandConnection::~WaylandConnection()
{
    for (const std::unique_ptr<Output> &output : m_outputs) {
        if (output->xdgOutput)
            zxdg_output_v1_destroy(output->xdgOutput);
        wl_output_destroy(output->output);
    }
    if (m_screencopy)
        zwlr_screencopy_manager_v1_destroy(m_screencopy);
    if (m_xdgOutputs)
        zxdg_output_manager_v1_destroy(m_xdgOutputs);
    if (m_shm)
        wl_shm_destroy(m_shm);
    wl_registry_destroy(m_registry);
    wl_display_disconnect(m_display);
}

void WaylandConnection::onGlobal(void *data, wl_registry *registry, quint32 name, const char *interface,
                                 quint32 version)
{
    auto *self = static_cast<WaylandConnection *>(data);
    if (std::strcmp(interface, wl_output_interface.name) == 0) {
        self->addOutput(name, version);
    } else if (std::strcmp(interface, wl_shm_interface.name) == 0) {
        self->m_shm = static_cast<wl_shm *>(wl_registry_bind(registry, name, &wl_shm_interface, 1));
    } else if (std::strcmp(interface, zwlr_screencopy_manager_v1_interface.name) == 0) {
        self->m_screencopy = static_cast<zwlr_screencopy_manager_v1 *>(
            wl_registry_bind(registry, name, &zwlr_screencopy_manager_v1_interface, std::min(version, 3u)));
    } else if (std::strcmp(interface, zxdg_output_manager_v1_interface.name) == 0) {
        self->m_xdgOutputs = static_cast<zxdg_output_manager_v1 *>(
            wl_registry_bind(registry, name, &zxdg_output_manager_v1_interface, std::min(version, 3u)));
        for (const std::unique_ptr<Output> &output : self->m_outputs)
            self->describe(*output);
    }
}

void WaylandConnection::onGlobalRemove(void *data, wl_registry *, quint32 name)
{
    auto *self = static_cast<WaylandConnection *>(data);
    auto &outputs = self->m_outputs;
    const auto gone = std::find_if(outputs.begin(), outputs.end(),
                                   [name](const std::unique_ptr<Output> &o) { return o->globalName == name; });
    if (gone == outputs.end())
        return;
    if ((*gone)->xdgOutput)
        zxdg_output_v1_destroy((*gone)->xdgOutput);
    wl_output_destroy((*gone)->output);
    outputs.erase(gone);
}

void WaylandConnection::addOutput(quint32 globalName, quint32 version)
{
    auto output = std::make_unique<Output>();
    output->globalName = globalName;
    output->output = static_cast<wl_output *>(
        wl_registry_bind(m_registry, globalName, &wl_output_interface, std::min(version, 2u)));
    wl_output_add_listener(output->output, &outputListener, output.get());
    describe(*output);
    m_outputs.push_back(std::move(output));
}

void WaylandConnection::describe(Output &output)
{
    if (!m_xdgOutputs || output.xdgOutput)
        return;
    output.xdgOutput = zxdg_output_manager_v1_get_xdg_output(m_xdgOutputs, output.output);
    zxdg_output_v1_add_listener(output.xdgOutput, &xdgOutputListener, &output);
}

const WaylandConnection::Output *WaylandConnection::output(const QString &name) const
{
    for (const std::unique_ptr<Output> &output : m_outputs) {
        if (output->name == name)
            return output.get();
    }
    return nullptr;
}

bool WaylandConnection::update()
{
    return wl_display_roundtrip(m_display) >= 0;
}

bool WaylandConnection::dispatch(int timeoutMs)
{
    while (wl_display_prepare_read(m_display) != 0) {
        if (wl_display_dispatch_pending(m_display) < 0)
            return false;
    }
    wl_display_flush(m_display);
    pollfd descriptor{wl_display_get_fd(m_display), POLLIN, 0};
    int ready = 0;
    do {
        ready = poll(&descriptor, 1, timeoutMs);
    } while (ready < 0 && errno == EINTR);
    if (ready <= 0) {
        wl_display_cancel_read(m_display);
        return false;
    }
    if (wl_display_read_events(m_display) < 0)
        return false;
    return wl_display_dispatch_pending(m_display) >= 0;
}
