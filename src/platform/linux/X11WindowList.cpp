#include "X11WindowList.h"

#include "DesktopSpace.h"

#include <QFile>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {
// Window levels as macOS numbers them, so layers read alike on both systems.
constexpr qint64 desktopLayer = -2147483623;
constexpr qint64 floatingLayer = 3;
constexpr qint64 dockLayer = 20;
constexpr qint64 notificationLayer = 23;
constexpr qint64 overlayLayer = 25;
constexpr qint64 popUpMenuLayer = 101;
} // namespace

X11WindowList::X11WindowList(xcb_connection_t *connection) : m_connection(connection)
{
    m_root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

qint64 X11WindowList::layerForWindowType(const QByteArray &typeName)
{
    static const QHash<QByteArray, qint64> layers = {
        {"_NET_WM_WINDOW_TYPE_DESKTOP", desktopLayer},
        {"_NET_WM_WINDOW_TYPE_DOCK", dockLayer},
        {"_NET_WM_WINDOW_TYPE_TOOLBAR", floatingLayer},
        {"_NET_WM_WINDOW_TYPE_MENU", floatingLayer},
        {"_NET_WM_WINDOW_TYPE_UTILITY", floatingLayer},
        {"_NET_WM_WINDOW_TYPE_SPLASH", floatingLayer},
        {"_NET_WM_WINDOW_TYPE_DROPDOWN_MENU", popUpMenuLayer},
        {"_NET_WM_WINDOW_TYPE_POPUP_MENU", popUpMenuLayer},
        {"_NET_WM_WINDOW_TYPE_TOOLTIP", popUpMenuLayer},
        {"_NET_WM_WINDOW_TYPE_COMBO", popUpMenuLayer},
        {"_NET_WM_WINDOW_TYPE_DND", popUpMenuLayer},
        {"_NET_WM_WINDOW_TYPE_NOTIFICATION", notificationLayer},
    };
    return layers.value(typeName, 0);
}

std::optional<QString> X11WindowList::classFromWmClass(const QByteArray &value)
{
    const qsizetype end = value.indexOf('\0');
    if (end < 0)
        return std::nullopt;
    QByteArray windowClass = value.mid(end + 1);
    if (const qsizetype classEnd = windowClass.indexOf('\0'); classEnd >= 0)
        windowClass.truncate(classEnd);
    if (windowClass.isEmpty())
        return std::nullopt;
    return QString::fromUtf8(windowClass);
}

xcb_atom_t X11WindowList::atom(const char *name) const
{
    const QByteArray key(name);
    if (const auto found = m_atoms.constFind(key); found != m_atoms.constEnd())
        return *found;
    xcb_intern_atom_reply_t *reply = xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, quint16(key.size()), key.constData()), nullptr);
    const xcb_atom_t value = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    m_atoms.insert(key, value);
    return value;
}

QByteArray X11WindowList::atomName(xcb_atom_t atom) const
{
    if (const auto found = m_atomNames.constFind(atom); found != m_atomNames.constEnd())
        return *found;
    xcb_get_atom_name_reply_t *reply =
        xcb_get_atom_name_reply(m_connection, xcb_get_atom_name(m_connection, atom), nullptr);
    QByteArray name;
    if (reply)
        name = QByteArray(xcb_get_atom_name_name(reply), xcb_get_atom_name_name_length(reply));
    std::free(reply);
    m_atomNames.insert(atom, name);
    return name;
}

QByteArray X11WindowList::property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type, quint32 maxLongs) const
{
    xcb_get_property_reply_t *reply = xcb_get_property_reply(
        m_connection, xcb_get_property(m_connection, 0, window, name, type, 0, maxLongs), nullptr);
    QByteArray value;
    if (reply && reply->type != XCB_ATOM_NONE) {
        value = QByteArray(static_cast<const char *>(xcb_get_property_value(reply)),
                           xcb_get_property_value_length(reply));
    }
    std::free(reply);
    return value;
}

std::optional<QList<WindowList::Entry>> X11WindowList::onScreenWindows() const
{
    const QByteArray stacking = property(m_root, atom("_NET_CLIENT_LIST_STACKING"), XCB_ATOM_WINDOW, 65536);
    QList<xcb_window_t> windows;
    for (qsizetype i = 0; i + 4 <= stacking.size(); i += 4)
        windows.prepend(*reinterpret_cast<const xcb_window_t *>(stacking.constData() + i));
    if (windows.isEmpty()) {
        xcb_query_tree_reply_t *tree =
            xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, m_root), nullptr);
        if (!tree)
            return std::nullopt;
        const xcb_window_t *children = xcb_query_tree_children(tree);
        for (int i = 0; i < xcb_query_tree_children_length(tree); ++i)
            windows.prepend(children[i]);
        std::free(tree);
    }
    QList<Entry> entries;
    for (const xcb_window_t window : std::as_const(windows)) {
        if (std::optional<Entry> entry = entryFor(window))
            entries.append(*entry);
    }
    return entries;
}

std::optional<WindowList::Entry> X11WindowList::entryFor(xcb_window_t window) const
{
    xcb_get_window_attributes_reply_t *attributes =
        xcb_get_window_attributes_reply(m_connection, xcb_get_window_attributes(m_connection, window), nullptr);
    if (!attributes)
        return std::nullopt;
    const bool viewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    const bool overrideRedirect = attributes->override_redirect;
    std::free(attributes);
    if (!viewable)
        return std::nullopt;

    Entry entry;
    entry.number = qint64(window);
    xcb_get_geometry_reply_t *geometry =
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr);
    xcb_translate_coordinates_reply_t *origin = xcb_translate_coordinates_reply(
        m_connection, xcb_translate_coordinates(m_connection, window, m_root, 0, 0), nullptr);
    if (geometry && origin) {
        QRect native(origin->dst_x, origin->dst_y, geometry->width, geometry->height);
        const QByteArray extents = property(window, atom("_NET_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 4);
        if (extents.size() == 16) {
            const auto *e = reinterpret_cast<const quint32 *>(extents.constData());
            native.adjust(-int(e[0]), -int(e[2]), int(e[1]), int(e[3]));
        }
        entry.bounds = DesktopSpace::current().nativeToTopLeftGlobal(QRectF(native));
    }
    std::free(geometry);
    std::free(origin);

    entry.ownerName = ownerName(window);
    const QByteArray types = property(window, atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 16);
    if (overrideRedirect)
        entry.layer = overlayLayer;
    else if (types.size() >= 4)
        entry.layer = layerForWindowType(atomName(*reinterpret_cast<const xcb_atom_t *>(types.constData())));
    const QByteArray opacity = property(window, atom("_NET_WM_WINDOW_OPACITY"), XCB_ATOM_CARDINAL, 1);
    if (opacity.size() == 4)
        entry.alpha = *reinterpret_cast<const quint32 *>(opacity.constData()) / double(0xffffffffu);
    return entry;
}

std::optional<QString> X11WindowList::ownerName(xcb_window_t window) const
{
    if (std::optional<QString> name = classFromWmClass(property(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING)))
        return name;
    const QByteArray pid = property(window, atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, 1);
    if (pid.size() != 4)
        return std::nullopt;
    QFile comm(u"/proc/%1/comm"_s.arg(*reinterpret_cast<const quint32 *>(pid.constData())));
    if (!comm.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QString name = QString::fromUtf8(comm.readAll()).trimmed();
    return name.isEmpty() ? std::nullopt : std::optional<QString>(name);
}
