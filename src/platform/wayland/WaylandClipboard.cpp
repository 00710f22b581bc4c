#include "WaylandClipboard.h"

#include "FastPngWriter.h"
#include "PipeWriter.h"

#include "wlr-data-control-unstable-v1-client-protocol.h"

#include <wayland-client.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString pngType = u"image/png"_s;
// A reader waits this long for another application to hand over its clipboard.
constexpr int readTimeoutMs = 2000;

std::optional<QByteArray> readAll(int fd, const QDeadlineTimer &deadline)
{
    QByteArray bytes;
    char buffer[65536];
    for (;;) {
        pollfd descriptor{fd, POLLIN, 0};
        const int ready = poll(&descriptor, 1, int(deadline.remainingTime()));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return std::nullopt;
        const ssize_t n = read(fd, buffer, sizeof(buffer));
        if (n == 0)
            return bytes;
        if (n < 0 && errno != EINTR && errno != EAGAIN)
            return std::nullopt;
        if (n > 0)
            bytes.append(buffer, n);
    }
}

} // namespace

std::unique_ptr<WaylandClipboard> WaylandClipboard::create()
{
    wl_display *display = wl_display_connect(nullptr);
    if (!display)
        return nullptr;
    std::unique_ptr<WaylandClipboard> clipboard(new WaylandClipboard(display));
    if (!clipboard->bindGlobals())
        return nullptr;
    return clipboard;
}

WaylandClipboard::WaylandClipboard(wl_display *display) : m_display(display)
{
    m_encoder.setMaxThreadCount(1);
    static const wl_registry_listener registryListener = {&onGlobal, &onGlobalRemove};
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &registryListener, this);
}

WaylandClipboard::~WaylandClipboard()
{
    // Readers waiting for a PNG still being made get it; writers still running close their descriptors.
    m_encoder.waitForDone();
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    qDeleteAll(findChildren<PipeWriter *>(Qt::FindDirectChildrenOnly));
    for (auto it = m_offers.keyBegin(); it != m_offers.keyEnd(); ++it)
        zwlr_data_control_offer_v1_destroy(*it);
    if (m_source)
        zwlr_data_control_source_v1_destroy(m_source);
    if (m_device)
        zwlr_data_control_device_v1_destroy(m_device);
    if (m_manager)
        zwlr_data_control_manager_v1_destroy(m_manager);
    if (m_seat)
        wl_seat_destroy(m_seat);
    wl_registry_destroy(m_registry);
    wl_display_disconnect(m_display);
}

bool WaylandClipboard::bindGlobals()
{
    if (wl_display_roundtrip(m_display) < 0 || !m_manager || !m_seat)
        return false;
    static const zwlr_data_control_device_v1_listener deviceListener = {&onDataOffer, &onSelection, &onFinished,
                                                                        &onPrimarySelection};
    m_device = zwlr_data_control_manager_v1_get_data_device(m_manager, m_seat);
    zwlr_data_control_device_v1_add_listener(m_device, &deviceListener, this);
    // The current selection comes with the device.
    if (wl_display_roundtrip(m_display) < 0)
        return false;
    m_notifier = new QSocketNotifier(qintptr(wl_display_get_fd(m_display)), QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &WaylandClipboard::dispatch);
    return true;
}

void WaylandClipboard::onGlobal(void *data, wl_registry *registry, quint32 name, const char *interface,
                                quint32 version)
{
    auto *self = static_cast<WaylandClipboard *>(data);
    if (std::strcmp(interface, wl_seat_interface.name) == 0 && !self->m_seat) {
        self->m_seat = static_cast<wl_seat *>(wl_registry_bind(registry, name, &wl_seat_interface, 1));
    } else if (std::strcmp(interface, zwlr_data_control_manager_v1_interface.name) == 0) {
        self->m_manager = static_cast<zwlr_data_control_manager_v1 *>(
            wl_registry_bind(registry, name, &zwlr_data_control_manager_v1_interface, std::min(version, 2u)));
    }
}

void WaylandClipboard::onGlobalRemove(void *, wl_registry *, quint32) {}

void WaylandClipboard::dispatch()
{
    while (wl_display_prepare_read(m_display) != 0)
        wl_display_dispatch_pending(m_display);
    // A read elsewhere (a round trip) may have taken what woke us up.
    pollfd descriptor{wl_display_get_fd(m_display), POLLIN, 0};
    if (poll(&descriptor, 1, 0) > 0)
        wl_display_read_events(m_display);
    else
        wl_display_cancel_read(m_display);
    wl_display_dispatch_pending(m_display);
    flush();
    if (wl_display_get_error(m_display) != 0)
        m_notifier->setEnabled(false);
}

void WaylandClipboard::flush() const
{
    wl_display_flush(m_display);
}

bool WaylandClipboard::refresh() const
{
    return wl_display_get_error(m_display) == 0 && wl_display_roundtrip(m_display) >= 0;
}

void WaylandClipboard::clearContents()
{
    setSelection(nullptr);
}

bool WaylandClipboard::writeImage(const QImage &image)
{
    if (image.isNull() || !m_device || wl_display_get_error(m_display) != 0)
        return false;
    static const zwlr_data_control_source_v1_listener sourceListener = {&onSend, &onCancelled};
    zwlr_data_control_source_v1 *source = zwlr_data_control_manager_v1_create_data_source(m_manager);
    zwlr_data_control_source_v1_add_listener(source, &sourceListener, this);
    zwlr_data_control_source_v1_offer(source, pngType.toUtf8().constData());
    setSelection(source);
    auto served = std::make_shared<Served>();
    m_served = served;
    m_encoder.start([this, served, image] {
        QByteArray png = FastPngWriter().encode(image);
        QMetaObject::invokeMethod(
            this, [this, served, png = std::move(png)]() mutable { encoded(*served, std::move(png)); },
            Qt::QueuedConnection);
    });
    return true;
}

bool WaylandClipboard::replaceImageWithPng(const QByteArray &png)
{
    if (png.isEmpty() || !m_source || !m_served || !m_served->isReady)
        return false;
    m_served->png = png;
    return true;
}

void WaylandClipboard::encoded(Served &served, QByteArray png)
{
    served.png = std::move(png);
    served.isReady = true;
    for (const int fd : std::as_const(served.waitingReaders))
        serve(served, fd);
    served.waitingReaders.clear();
}

void WaylandClipboard::serve(Served &served, int fd)
{
    if (!served.isReady) {
        served.waitingReaders.append(fd);
    } else if (served.png.isEmpty()) {
        // The encoder ran out of memory: the reader gets nothing rather than waiting forever.
        close(fd);
    } else {
        new PipeWriter(fd, served.png, this);
    }
}

QByteArray WaylandClipboard::ourPng() const
{
    if (!m_served->isReady) {
        m_encoder.waitForDone();
        QCoreApplication::sendPostedEvents(const_cast<WaylandClipboard *>(this), QEvent::MetaCall);
    }
    return m_served->png;
}

void WaylandClipboard::setSelection(zwlr_data_control_source_v1 *source)
{
    if (!m_device)
        return;
    zwlr_data_control_device_v1_set_selection(m_device, source);
    // The one we served before is done with; readers already writing keep their own copy of its bytes.
    dropSource(m_source);
    m_source = source;
    m_served.reset();
    flush();
}

void WaylandClipboard::dropSource(zwlr_data_control_source_v1 *source)
{
    if (!source)
        return;
    zwlr_data_control_source_v1_destroy(source);
    if (source == m_source) {
        m_source = nullptr;
        m_served.reset();
    }
}

void WaylandClipboard::onSend(void *data, zwlr_data_control_source_v1 *source, const char *mimeType, qint32 fd)
{
    auto *self = static_cast<WaylandClipboard *>(data);
    // Only the current source is still alive: the ones before it are destroyed when replaced.
    if (QLatin1StringView(mimeType) != pngType || source != self->m_source || !self->m_served) {
        close(fd);
        return;
    }
    self->serve(*self->m_served, fd);
}

void WaylandClipboard::onCancelled(void *data, zwlr_data_control_source_v1 *source)
{
    static_cast<WaylandClipboard *>(data)->dropSource(source);
}

void WaylandClipboard::onDataOffer(void *data, zwlr_data_control_device_v1 *, zwlr_data_control_offer_v1 *offer)
{
    static const zwlr_data_control_offer_v1_listener offerListener = {&onOfferType};
    auto *self = static_cast<WaylandClipboard *>(data);
    self->m_offers.insert(offer, {});
    zwlr_data_control_offer_v1_add_listener(offer, &offerListener, self);
}

void WaylandClipboard::onOfferType(void *data, zwlr_data_control_offer_v1 *offer, const char *mimeType)
{
    auto *self = static_cast<WaylandClipboard *>(data);
    if (const auto found = self->m_offers.find(offer); found != self->m_offers.end())
        found->append(QString::fromUtf8(mimeType));
}

void WaylandClipboard::onSelection(void *data, zwlr_data_control_device_v1 *, zwlr_data_control_offer_v1 *offer)
{
    static_cast<WaylandClipboard *>(data)->takeSelection(offer);
}

void WaylandClipboard::onPrimarySelection(void *data, zwlr_data_control_device_v1 *,
                                          zwlr_data_control_offer_v1 *offer)
{
    static_cast<WaylandClipboard *>(data)->takePrimarySelection(offer);
}

void WaylandClipboard::takeSelection(zwlr_data_control_offer_v1 *offer)
{
    if (m_selection && m_selection != offer) {
        m_offers.remove(m_selection);
        zwlr_data_control_offer_v1_destroy(m_selection);
    }
    m_selection = offer;
}

void WaylandClipboard::takePrimarySelection(zwlr_data_control_offer_v1 *offer)
{
    // Only the regular clipboard is ours to read; primary offers are let go when replaced.
    if (m_primarySelection && m_primarySelection != offer) {
        m_offers.remove(m_primarySelection);
        zwlr_data_control_offer_v1_destroy(m_primarySelection);
    }
    m_primarySelection = offer;
}

void WaylandClipboard::onFinished(void *data, zwlr_data_control_device_v1 *)
{
    auto *self = static_cast<WaylandClipboard *>(data);
    zwlr_data_control_device_v1_destroy(self->m_device);
    self->m_device = nullptr;
}

std::optional<QImage> WaylandClipboard::readImage() const
{
    const std::optional<QByteArray> png = readData(pngType);
    if (!png)
        return std::nullopt;
    QImage image = QImage::fromData(*png, "PNG");
    return image.isNull() ? std::nullopt : std::optional<QImage>(std::move(image));
}

QStringList WaylandClipboard::availableTypes() const
{
    if (!refresh())
        return {};
    if (m_source && m_served)
        return {pngType};
    return m_selection ? m_offers.value(m_selection) : QStringList();
}

std::optional<QByteArray> WaylandClipboard::readData(const QString &mimeType) const
{
    if (!refresh())
        return std::nullopt;
    // Asking the compositor for our own selection would wait on ourselves.
    if (m_source && m_served) {
        const QByteArray png = mimeType == pngType ? ourPng() : QByteArray();
        return png.isEmpty() ? std::nullopt : std::optional<QByteArray>(png);
    }
    if (!m_selection || !m_offers.value(m_selection).contains(mimeType))
        return std::nullopt;
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0)
        return std::nullopt;
    zwlr_data_control_offer_v1_receive(m_selection, mimeType.toUtf8().constData(), fds[1]);
    flush();
    close(fds[1]);
    const std::optional<QByteArray> bytes = readAll(fds[0], QDeadlineTimer(readTimeoutMs));
    close(fds[0]);
    return bytes;
}
