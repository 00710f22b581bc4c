#include "X11Monitors.h"

#include <xcb/randr.h>

#include <cstdlib>
#include <memory>

namespace x11monitors {

namespace {

template<typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

template<typename T>
Reply<T> reply(T *pointer)
{
    return Reply<T>(pointer, &std::free);
}

QString atomName(xcb_connection_t *connection, xcb_atom_t atom)
{
    const auto name = reply(xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, atom), nullptr));
    if (!name)
        return {};
    return QString::fromUtf8(xcb_get_atom_name_name(name.get()), xcb_get_atom_name_name_length(name.get()));
}

} // namespace

QList<Monitor> list(xcb_connection_t *connection)
{
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(connection, &xcb_randr_id);
    if (!extension || !extension->present)
        return {};
    const auto version = reply(xcb_randr_query_version_reply(connection, xcb_randr_query_version(connection, 1, 5),
                                                             nullptr));
    if (!version || version->major_version < 1 || (version->major_version == 1 && version->minor_version < 5))
        return {};
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto monitors = reply(xcb_randr_get_monitors_reply(connection, xcb_randr_get_monitors(connection, root, 1),
                                                             nullptr));
    if (!monitors)
        return {};
    QList<Monitor> result;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(monitors.get()); it.rem;
         xcb_randr_monitor_info_next(&it)) {
        const xcb_randr_monitor_info_t &info = *it.data;
        result.append({atomName(connection, info.name), QRect(info.x, info.y, info.width, info.height),
                       bool(info.primary)});
    }
    return result;
}

} // namespace x11monitors
