#include "SwayWindowList.h"

#include "DesktopSpace.h"
#include "SwayIpc.h"

#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace {
// Space is pressed with the overlay up; a compositor that has not answered by now is not going to.
constexpr int replyTimeoutMs = 300;
} // namespace

SwayWindowList::SwayWindowList(QString socketPath, swaytree::Identity identity)
    : m_socketPath(std::move(socketPath)), m_identity(std::move(identity))
{
}

std::unique_ptr<SwayWindowList> SwayWindowList::fromEnvironment()
{
    // Qt gives each window the desktop file name as its app_id.
    return std::make_unique<SwayWindowList>(qEnvironmentVariable("SWAYSOCK"),
                                            swaytree::Identity{QGuiApplication::desktopFileName(),
                                                               QCoreApplication::applicationName()});
}

std::optional<QList<WindowList::Entry>> SwayWindowList::onScreenWindows() const
{
    if (m_socketPath.isEmpty()) {
        if (m_trace)
            m_trace(u"window list unavailable: this compositor gives applications no window rectangles "
                    "(GNOME never does; sway does through its IPC, and SWAYSOCK is not set)"_s);
        return std::nullopt;
    }
    const std::optional<QByteArray> tree = swayipc::request(m_socketPath, swayipc::getTree, {}, replyTimeoutMs);
    if (!tree) {
        if (m_trace)
            m_trace(u"window list unavailable: sway did not answer on "_s % m_socketPath);
        return std::nullopt;
    }
    // Qt's screens on sway carry the layout coordinates the tree is in.
    return swaytree::windows(*tree, DesktopSpace::current().primary(), m_identity);
}
