#pragma once

#include "platform/ScreenCapturer.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>

#include <functional>
#include <optional>

class WaylandDisplayProvider;

// Screen images on KDE Plasma through KWin's own org.kde.KWin.ScreenShot2: each display at its native
// pixels (CaptureScreen by output name), a rectangle of the layout at the highest scale it touches
// (CaptureArea). KWin writes the raw pixels into a pipe we pass and describes them in its reply (size,
// stride, QImage format, scale); the pipe is read as the data comes, with a time limit. KWin answers only
// with OpenGL compositing, and only an application whose desktop entry grants the interface
// (X-KDE-DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2, matched by the executable's path).
// Main thread; completions run on the main thread once KWin's reply and all its pixels are in.
class KWinScreenCapturer final : public QObject, public ScreenCapturer
{
public:
    // Whether KWin lets us take screenshots: asked once, with a one-pixel picture, at start-up.
    enum class Offer { Answers, Refuses, Absent };
    struct Probe
    {
        Offer offer = Offer::Absent;
        // KWin's error where it refused.
        QString error;
    };
    static Probe probe(const QDBusConnection &bus);

    KWinScreenCapturer(const QDBusConnection &bus, const WaylandDisplayProvider &displays);

    void shareableDisplays(ContentCompletion completion) override;
    void captureDisplay(quint32 displayID, const Rect &sourceRect, QSize outputSize,
                        ImageCompletion completion) override;
    void captureRect(const Rect &globalRect, ImageCompletion completion) override;

private:
    using Taken = std::function<void(QImage image, double scale, std::optional<QString> error)>;
    // Sends `call` with a pipe's writing end appended and gathers the picture.
    void take(const QDBusMessage &call, Taken taken);

    QDBusConnection m_bus;
    const WaylandDisplayProvider &m_displays;
};
