#pragma once

#include "platform/DisplayProvider.h"
#include "platform/ScreenCapturer.h"

#include <QObject>
#include <QPointF>

class QScreen;

// The displays as Qt's screens, converted into the global bottom-left space through the desktop space.
// Qt's screen signals become one screen-parameters change per turn of the event loop. What differs
// between systems is left to the subclass: the ids of displays and where the pointer is. Main thread.
class QtScreensDisplayProvider : public QObject, public DisplayProvider
{
public:
    QtScreensDisplayProvider();

    QList<DisplayInfo> screens() const override;
    std::optional<DisplayInfo> mainScreen() const override;
    void observeScreenParameters(std::function<void()> observer) override;

    // The id of the display Qt calls `name`: the same for as long as the session runs, and distinct for
    // every display. Nothing when the system would not name it.
    virtual std::optional<quint32> displayID(const QString &name) const = 0;
    // The displays as a screen capturer lists them: each one's id, and its size in device pixels.
    QList<ScreenCapturer::ShareableDisplay> shareableDisplays() const;
    // The pointer in Qt's logical space, when it is known.
    virtual std::optional<QPointF> pointerPosition() const = 0;

private:
    void watch(QScreen *screen);
    void scheduleChange();

    QList<std::function<void()>> m_observers;
    bool m_isChangePending = false;
};
