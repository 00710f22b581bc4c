#include "SwayTree.h"

#include "DesktopSpace.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

enum FullscreenMode { notFullscreen = 0, workspaceFullscreen = 1, globalFullscreen = 2 };

struct Walk
{
    const QRect &primary;
    const swaytree::Identity &identity;
    QList<WindowList::Entry> own;
    QList<WindowList::Entry> fullscreen;
    QList<WindowList::Entry> floating;
    QList<WindowList::Entry> tiled;
    // Windows fullscreen across all outputs.
    QList<WindowList::Entry> coveringAll;
};

QRect rectOf(const QJsonValue &value)
{
    const QJsonObject r = value.toObject();
    return QRect(r.value("x"_L1).toInt(), r.value("y"_L1).toInt(), r.value("width"_L1).toInt(),
                 r.value("height"_L1).toInt());
}

// Views (application windows) carry the shell they speak; containers do not.
bool isView(const QJsonObject &node)
{
    return node.contains("shell"_L1);
}

bool isOwn(const QJsonObject &node, const swaytree::Identity &identity)
{
    return isView(node) && !identity.ownAppId.isEmpty() && node.value("app_id"_L1).toString() == identity.ownAppId;
}

std::optional<QString> ownerOf(const QJsonObject &view, const swaytree::Identity &identity)
{
    const QString appId = view.value("app_id"_L1).toString();
    if (!appId.isEmpty())
        return appId == identity.ownAppId ? identity.ownName : appId;
    const QString x11Class = view.value("window_properties"_L1).toObject().value("class"_L1).toString();
    return x11Class.isEmpty() ? std::nullopt : std::optional<QString>(x11Class);
}

WindowList::Entry entryFor(const QJsonObject &view, std::optional<int> titleTop, const Walk &walk)
{
    // sway's rect leaves out the title bar; a tab or stack row sits at the top of the parent.
    QRect frame = rectOf(view.value("rect"_L1));
    const int decoration = rectOf(view.value("deco_rect"_L1)).height();
    if (view.value("fullscreen_mode"_L1).toInt() == notFullscreen)
        frame.setTop(titleTop ? std::min(*titleTop, frame.top()) : frame.top() - decoration);
    WindowList::Entry entry;
    entry.bounds = desktopspace::toTopLeftGlobal(QRectF(frame), walk.primary);
    entry.ownerName = ownerOf(view, walk.identity);
    entry.layer = 0;
    entry.number = view.value("id"_L1).toInteger();
    return entry;
}

// The child a tab or stack shows: the most recently focused one that is not ours.
qint64 shownChild(const QJsonObject &container, const QJsonArray &nodes, const swaytree::Identity &identity)
{
    for (const QJsonValue &id : container.value("focus"_L1).toArray()) {
        for (const QJsonValue &child : nodes) {
            if (child.toObject().value("id"_L1).toInteger() == id.toInteger() && !isOwn(child.toObject(), identity))
                return id.toInteger();
        }
    }
    return nodes.isEmpty() ? -1 : nodes.first().toObject().value("id"_L1).toInteger();
}

void collect(const QJsonObject &node, std::optional<int> titleTop, QList<WindowList::Entry> &into, Walk &walk)
{
    if (isView(node)) {
        const int mode = node.value("fullscreen_mode"_L1).toInt();
        if (isOwn(node, walk.identity))
            walk.own.append(entryFor(node, titleTop, walk));
        else if (mode == globalFullscreen)
            walk.coveringAll.append(entryFor(node, titleTop, walk));
        else
            into.append(entryFor(node, titleTop, walk));
        return;
    }
    const QJsonArray nodes = node.value("nodes"_L1).toArray();
    const QString layout = node.value("layout"_L1).toString();
    const bool tabs = layout == "tabbed"_L1 || layout == "stacked"_L1;
    const qint64 shown = tabs ? shownChild(node, nodes, walk.identity) : -1;
    for (const QJsonValue &value : nodes) {
        const QJsonObject child = value.toObject();
        if (tabs && child.value("id"_L1).toInteger() != shown && !isOwn(child, walk.identity))
            continue;
        // Only a view of the tab or stack gets its row; a nested container's views have their own.
        const std::optional<int> childTitleTop =
            tabs && isView(child) ? std::optional<int>(rectOf(node.value("rect"_L1)).top()) : std::nullopt;
        QList<WindowList::Entry> &target = child.value("fullscreen_mode"_L1).toInt() == workspaceFullscreen
                                                   && !isOwn(child, walk.identity)
                                               ? walk.fullscreen
                                               : into;
        collect(child, childTitleTop, target, walk);
    }
}

void collectWorkspace(const QJsonObject &workspace, Walk &walk, QList<WindowList::Entry> &out)
{
    walk.fullscreen.clear();
    walk.floating.clear();
    walk.tiled.clear();
    collect(workspace, std::nullopt, walk.tiled, walk);
    const QJsonArray floating = workspace.value("floating_nodes"_L1).toArray();
    // The last floating window is drawn on top.
    for (qsizetype i = floating.size() - 1; i >= 0; --i) {
        const QJsonObject node = floating.at(i).toObject();
        QList<WindowList::Entry> &target =
            node.value("fullscreen_mode"_L1).toInt() == workspaceFullscreen ? walk.fullscreen : walk.floating;
        collect(node, std::nullopt, target, walk);
    }
    out += walk.fullscreen;
    if (walk.fullscreen.isEmpty())
        out += walk.floating + walk.tiled;
}

QJsonObject visibleWorkspace(const QJsonObject &output)
{
    const QString current = output.value("current_workspace"_L1).toString();
    const QJsonArray focus = output.value("focus"_L1).toArray();
    for (const QJsonValue &value : output.value("nodes"_L1).toArray()) {
        const QJsonObject workspace = value.toObject();
        if (current.isEmpty() ? workspace.value("id"_L1) == focus.first() : workspace.value("name"_L1) == current)
            return workspace;
    }
    return {};
}

} // namespace

namespace swaytree {

std::optional<QList<WindowList::Entry>> windows(const QByteArray &treeJson, const QRect &primary,
                                                const Identity &identity)
{
    const QJsonDocument document = QJsonDocument::fromJson(treeJson);
    const QJsonObject root = document.object();
    if (root.value("type"_L1).toString() != "root"_L1)
        return std::nullopt;
    Walk walk{primary, identity, {}, {}, {}, {}, {}};
    QList<WindowList::Entry> shown;
    for (const QJsonValue &value : root.value("nodes"_L1).toArray()) {
        const QJsonObject output = value.toObject();
        // "__i3" holds the scratchpad, which is never on screen.
        if (output.value("name"_L1).toString().startsWith("__"_L1))
            continue;
        const QJsonObject workspace = visibleWorkspace(output);
        if (!workspace.isEmpty())
            collectWorkspace(workspace, walk, shown);
    }
    if (!walk.coveringAll.isEmpty())
        shown = walk.coveringAll.mid(0, 1);
    return walk.own + shown;
}

} // namespace swaytree
