#include "QtScreensDisplayProvider.h"

#include "DesktopSpace.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

QtScreensDisplayProvider::QtScreensDisplayProvider()
{
    for (QScreen *screen : QGuiApplication::screens())
        watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen *screen) {
        watch(screen);
        scheduleChange();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &QtScreensDisplayProvider::scheduleChange);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &QtScreensDisplayProvider::scheduleChange);
}

void QtScreensDisplayProvider::watch(QScreen *screen)
{
    connect(screen, &QScreen::geometryChanged, this, &QtScreensDisplayProvider::scheduleChange);
    connect(screen, &QScreen::availableGeometryChanged, this, &QtScreensDisplayProvider::scheduleChange);
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, &QtScreensDisplayProvider::scheduleChange);
    connect(screen, &QScreen::physicalDotsPerInchChanged, this, &QtScreensDisplayProvider::scheduleChange);
}

void QtScreensDisplayProvider::scheduleChange()
{
    if (m_isChangePending)
        return;
    m_isChangePending = true;
    QTimer::singleShot(0, this, [this] {
        m_isChangePending = false;
        const QList<std::function<void()>> observers = m_observers;
        for (const std::function<void()> &observer : observers)
            observer();
    });
}

void QtScreensDisplayProvider::observeScreenParameters(std::function<void()> observer)
{
    m_observers.append(std::move(observer));
}

QList<DisplayInfo> QtScreensDisplayProvider::screens() const
{
    const DesktopSpace space = DesktopSpace::current();
    QList<DisplayInfo> displays;
    for (const DesktopScreen &screen : space.screens()) {
        displays.append({displayID(screen.name), space.toGlobal(QRectF(screen.logical)),
                         space.toGlobal(QRectF(screen.availableLogical.intersected(screen.logical))),
                         screen.scale});
    }
    return displays;
}

QList<ScreenCapturer::ShareableDisplay> QtScreensDisplayProvider::shareableDisplays() const
{
    QList<ScreenCapturer::ShareableDisplay> displays;
    const DesktopSpace space = DesktopSpace::current();
    for (const DesktopScreen &screen : space.screens()) {
        if (const std::optional<quint32> id = displayID(screen.name))
            displays.append({*id, screen.native.width(), screen.native.height()});
    }
    return displays;
}

std::optional<DisplayInfo> QtScreensDisplayProvider::mainScreen() const
{
    const QList<DisplayInfo> displays = screens();
    if (displays.isEmpty())
        return std::nullopt;
    if (const std::optional<QPointF> pointer = pointerPosition()) {
        const QPointF global = DesktopSpace::current().pointToGlobal(*pointer);
        for (const DisplayInfo &display : displays) {
            if (display.frame.contains(global))
                return display;
        }
    }
    return displays.first();
}
