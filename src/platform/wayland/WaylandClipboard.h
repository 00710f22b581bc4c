#pragma once

#include "platform/Pasteboard.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QThreadPool>

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
// is made once per image on a worker (a 4K capture takes tens of milliseconds), readers who ask before
// it is ready wait for it, and each reader gets it through a PipeWriter. Reads go through the same
// protocol (the current selection's offer), so they too work without focus. Main thread: the
// connection is dispatched from a socket notifier, and the worker posts its PNG back.
class WaylandClipboard final : public QObject, public Pasteboard
{
    Q_OBJECT

public:
    // Nothing when there is no compositor or it offers no data-control (GNOME, for one).
    static std::unique_ptr<WaylandClipboard> create();
    ~WaylandClipboard() override;

    void clearContents() override;
    bool writeImage(const QImage &image) override;
    // Holds no decoded image: the saved file's bytes only take the place of its own PNG once that is made.
    bool replaceImageWithPng(const QByteArray &png) override;
    std::optional<QImage> readImage() const override;
    QStringList availableTypes() const override;
    std::optional<QByteArray> readData(const QString &mimeType) const override;

private:
    // What one source serves: its PNG once made, and the readers who asked before that.
    struct Served
    {
        QByteArray png;
        bool isReady = false;
        QList<int> waitingReaders;
    };

    explicit WaylandClipboard(wl_display *display);
    void serve(Served &served, int fd);
    void encoded(Served &served, QByteArray png);
    // The PNG of our current selection, finishing its encoding first if need be.
    QByteArray ourPng() const;
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
    // Ours while the compositor has not cancelled it, with what it serves.
    zwlr_data_control_source_v1 *m_source = nullptr;
    std::shared_ptr<Served> m_served;
    mutable QThreadPool m_encoder;
    // The offers announced and the types each one offers; the selection is one of them or none.
    QHash<zwlr_data_control_offer_v1 *, QStringList> m_offers;
    zwlr_data_control_offer_v1 *m_selection = nullptr;
    zwlr_data_control_offer_v1 *m_primarySelection = nullptr;
};
