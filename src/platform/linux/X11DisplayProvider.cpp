#include "X11DisplayProvider.h"

#include "DesktopSpace.h"
#include "X11Cursor.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

#include <cstdlib>

X11DisplayProvider::X11DisplayProvider(xcb_connection_t *connection) : m_connection(connection)
{
    for (QScreen *screen : QGuiApplication::screens())
        watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen *screen) {
        watch(screen);
        scheduleChange();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &X11DisplayProvider::scheduleChange);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &X11DisplayProvider::scheduleChange);
}

void X11DisplayProvider::watch(QScreen *screen)
{
    connect(screen, &QScreen::geometryChanged, this, &X11DisplayProvider::scheduleChange);
    connect(screen, &QScreen::availableGeometryChanged, this, &X11DisplayProvider::scheduleChange);
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, &X11DisplayProvider::scheduleChange);
    connect(screen, &QScreen::physicalDotsPerInchChanged, this, &X11DisplayProvider::scheduleChange);
}

void X11DisplayProvider::scheduleChange()
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

void X11DisplayProvider::observeScreenParameters(std::function<void()> observer)
{
    m_observers.append(std::move(observer));
}

std::optional<quint32> X11DisplayProvider::displayID(const QString &name) const
{
    const auto cached = m_ids.constFind(name);
    if (cached != m_ids.constEnd())
        return *cached;
    const QByteArray bytes = name.toUtf8();
    xcb_intern_atom_reply_t *reply = xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, quint16(bytes.size()), bytes.constData()), nullptr);
    if (!reply)
        return std::nullopt;
    const quint32 id = reply->atom;
    std::free(reply);
    if (id == XCB_ATOM_NONE)
        return std::nullopt;
    m_ids.insert(name, id);
    return id;
}

QList<DisplayInfo> X11DisplayProvider::screens() const
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

std::optional<DisplayInfo> X11DisplayProvider::mainScreen() const
{
    const QList<DisplayInfo> displays = screens();
    if (displays.isEmpty())
        return std::nullopt;
    const std::optional<QPoint> native = X11Cursor::nativePosition(m_connection);
    if (native) {
        const DesktopSpace space = DesktopSpace::current();
        const QPointF pointer = space.pointToGlobal(desktopspace::nativeToLogical(QPointF(*native), space.screens()));
        for (const DisplayInfo &display : displays) {
            if (display.frame.contains(pointer))
                return display;
        }
    }
    return displays.first();
}
