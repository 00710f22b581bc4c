#pragma once

#include "platform/Pasteboard.h"

#include <QHash>
#include <QObject>

#include <memory>

class QSocketNotifier;
struct wl_display;
struct wl_registry;
struct wl_seat;
struct zwlr_data_control_device_v1;
struct zwlr_data_control_manager_v1;
struct zwlr_data_control_offer_v1;
struct zwlr_data_control_source_v1;

// The clipboard of a Wayland session through the compositor's data-control protocol, on a connection of
// its own, so the image is served with no window of ours focused for as long as Vistrel runs. The PNG
// is made once per image; each reader gets it through a PipeWriter. Reads go through the same protocol
// (the current selection's offer), so they too work without focus. Main thread: the connection is
// dispatched from a socket notifier.
class WaylandClipboard final : public QObject, public Pasteboard
{
    Q_OBJECT

public:
    // Nothing when there is no compositor or it offers no data-control (GNOME, for one).
    static std::unique_ptr<WaylandClipboard> create();
    ~WaylandClipboard() override;

    void clearContents() override;
    bool writeImage(const QImage &image) override;
    std::optional<QImage> readImage() const override;
    QStringList availableTypes() const override;
    std::optional<QByteArray> readData(const QString &mimeType) const override;

private:
    explicit WaylandClipboard(wl_display *display);
    bool bindGlobals();
    void dispatch();
    void flush() const;
    // Brings the selection up to date before a read; false when the connection is gone.
    bool refresh() const;
    void setSelection(zwlr_data_control_source_v1 *source);
    void dropSource(zwlr_data_control_source_v1 *source);
    void takeSelection(zwlr_data_control_offer_v1 *offer);
    void takePrimarySelection(zwlr_data_control_offer_v1 *offer);

    static void onGlobal(void *data, wl_registry *registry, quint32 name, const char *interface, quint32 version);
    static void onGlobalRemove(void *data, wl_registry *registry, quint32 name);
    static void onDataOffer(void *data, zwlr_data_control_device_v1 *device, zwlr_data_control_offer_v1 *offer);
    static void onSelection(void *data, zwlr_data_control_device_v1 *device, zwlr_data_control_offer_v1 *offer);
    static void onFinished(void *data, zwlr_data_control_device_v1 *device);
    static void onPrimarySelection(void *data, zwlr_data_control_device_v1 *device,
                                   zwlr_data_control_offer_v1 *offer);
    static void onOfferType(void *data, zwlr_data_control_offer_v1 *offer, const char *mimeType);
    static void onSend(void *data, zwlr_data_control_source_v1 *source, const char *mimeType, qint32 fd);
    static void onCancelled(void *data, zwlr_data_control_source_v1 *source);

    wl_display *m_display;
    wl_registry *m_registry = nullptr;
    wl_seat *m_seat = nullptr;
    zwlr_data_control_manager_v1 *m_manager = nullptr;
    zwlr_data_control_device_v1 *m_device = nullptr;
    QSocketNotifier *m_notifier = nullptr;
    // Ours while the compositor has not cancelled it, with the PNG it serves.
    zwlr_data_control_source_v1 *m_source = nullptr;
    QByteArray m_png;
    // The offers announced and the types each one offers; the selection is one of them or none.
    QHash<zwlr_data_control_offer_v1 *, QStringList> m_offers;
    zwlr_data_control_offer_v1 *m_selection = nullptr;
    zwlr_data_control_offer_v1 *m_primarySelection = nullptr;
};
