#include "X11Cursor.h"

#include "DesktopSpace.h"

#include <QCursor>
#include <QGuiApplication>

#include <cstdlib>

X11Cursor::X11Cursor(xcb_connection_t *connection) : m_connection(connection) {}

X11Cursor::~X11Cursor()
{
    while (m_hideCount > 0)
        unhide();
}

std::optional<QPoint> X11Cursor::nativePosition(xcb_connection_t *connection)
{
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_query_pointer_reply_t *reply = xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr);
    if (!reply)
        return std::nullopt;
    const QPoint position(reply->root_x, reply->root_y);
    std::free(reply);
    return position;
}

QPointF X11Cursor::location() const
{
    const DesktopSpace space = DesktopSpace::current();
    const std::optional<QPoint> native = nativePosition(m_connection);
    const QPointF logical = native ? desktopspace::nativeToLogical(QPointF(*native), space.screens())
                                   : QPointF(QCursor::pos());
    return space.pointToGlobal(logical);
}

void X11Cursor::hide()
{
    ++m_hideCount;
    QGuiApplication::setOverrideCursor(Qt::BlankCursor);
}

void X11Cursor::unhide()
{
    if (m_hideCount == 0)
        return;
    --m_hideCount;
    QGuiApplication::restoreOverrideCursor();
}
