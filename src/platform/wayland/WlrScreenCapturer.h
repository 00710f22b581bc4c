#pragma once

#include "platform/ScreenCapturer.h"

#include <QHash>
#include <QImage>
#include <QTimer>

#include <memory>
#include <variant>

class WaylandConnection;
class WaylandDisplayProvider;

// Screen images on wlroots compositors (sway, Hyprland, wayfire), copied through wlr-screencopy on our own
// connection at each output's native pixels. Displays are Qt's screens matched to the compositor's
// outputs by name; the output list is refreshed before every capture, so a scale change or an unplugged
// output is seen at the next one. Every output is copied in the same compositor frame: a display's
// capture keeps the others' copies for the freeze's next requests (each used once, for a quarter of a
// second), so a freeze of several outputs waits for one frame, not one per output. Main thread;
// completions run before the call returns.
class WlrScreenCapturer final : public ScreenCapturer
{
public:
    WlrScreenCapturer(std::unique_ptr<WaylandConnection> connection, const WaylandDisplayProvider &displays);
    ~WlrScreenCapturer() override;

    void shareableDisplays(ContentCompletion completion) override;
    void captureDisplay(quint32 displayID, const Rect &sourceRect, QSize outputSize,
                        ImageCompletion completion) override;
    void captureRect(const Rect &globalRect, ImageCompletion completion) override;

private:
    // The copy of output `wanted`; the other outputs' copies go to m_laterDisplays.
    std::variant<QImage, QString> copyAllOutputs(const QString &wanted);

    std::unique_ptr<WaylandConnection> m_connection;
    const WaylandDisplayProvider &m_displays;
    QHash<QString, QImage> m_laterDisplays;
    QTimer m_forgetLaterDisplays;
};
