#include "X11DisplayProvider.h"

#include "DesktopSpace.h"

#include <cstdlib>

X11DisplayProvider::X11DisplayProvider(xcb_connection_t *connection) : m_connection(connection) {}

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

std::optional<QPointF> X11DisplayProvider::pointerPosition() const
{
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    xcb_query_pointer_reply_t *reply =
        xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, root), nullptr);
    if (!reply)
        return std::nullopt;
    const QPointF native(reply->root_x, reply->root_y);
    std::free(reply);
    return desktopspace::nativeToLogical(native, DesktopSpace::current().screens());
}
