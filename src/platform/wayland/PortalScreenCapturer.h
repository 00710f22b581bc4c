#pragma once

#include "DesktopSpace.h"
#include "platform/ScreenCapturer.h"

#include <QDBusConnection>
#include <QDateTime>
#include <QList>
#include <QObject>
#include <QRectF>
#include <QSet>

#include <atomic>
#include <chrono>
#include <functional>
#include <optional>

class SystemLog;
class WaylandDisplayProvider;

// Screen images through the desktop portal's Screenshot call, where the compositor lets no client copy
// its outputs (GNOME, KDE) or where asked to. The portal answers, about a second later, with a file of
// the whole layout; each display is cut from it at the image's own scale and the file is removed. One
// answer serves every request made while it was awaited and, for a short while after, each display
// once more, so a freeze of all displays asks the portal once. Main thread; completions run on the main
// thread, when the portal answers or, for an image kept from a moment ago, before the call returns.
class PortalScreenCapturer final : public QObject, public ScreenCapturer
{
public:
    PortalScreenCapturer(const QDBusConnection &bus, const WaylandDisplayProvider &displays, SystemLog &log);
    ~PortalScreenCapturer() override;

    // Whether the session bus has a portal with the Screenshot interface (started on demand, waited
    // for a few seconds at most).
    static bool isOffered(const QDBusConnection &bus);

    void shareableDisplays(ContentCompletion completion) override;
    void captureDisplay(quint32 displayID, const Rect &sourceRect, QSize outputSize,
                        ImageCompletion completion) override;
    void captureRect(const Rect &globalRect, ImageCompletion completion) override;

    // From a worker thread: asks the portal for an image of the layout, kept for the captures that
    // follow, and waits for the answer. True when the portal gave one; false when it refused, or when
    // the application quits first.
    bool takeImageAndWait();

private:
    // The portal's image of the layout, with the layout (Qt's screens, layout coordinates) as it was
    // when the image came; or why there is none.
    struct Layout
    {
        QImage image;
        QList<DesktopScreen> screens;
        QRectF bounds;
        QString error;
        std::chrono::steady_clock::time_point arrived;
        QSet<quint32> servedDisplays;
    };
    using LayoutUse = std::function<void(const Layout &layout)>;
    struct Waiting
    {
        std::optional<quint32> displayID;
        LayoutUse use;
    };

    // Runs `use` with a fresh layout image: the one just fetched, or a new one.
    void withLayout(std::optional<quint32> displayID, LayoutUse use);
    void ask();
    void answered(uint response, const QVariantMap &results, const QString &error);
    // Reads the portal's file and removes it when the portal made it for this request.
    QImage takeFile(const QString &uri);

    QDBusConnection m_bus;
    const WaylandDisplayProvider &m_displays;
    SystemLog &m_log;
    std::optional<Layout> m_last;
    QList<Waiting> m_waiting;
    QDateTime m_askedAt;
    // Set once the application quits: a worker waiting for the portal gives up.
    std::atomic<bool> m_quitting = false;
};
