#include "DesktopWorkspace.h"

#include <QDesktopServices>

using namespace Qt::StringLiterals;

bool DesktopWorkspace::openURL(const QUrl &url)
{
    if (url.scheme() == u"x-apple.systempreferences"_s) {
        if (m_trace)
            m_trace(u"workspace: not opening "_s % url.toString()
                    % u" (a macOS settings pane; on Linux X11 needs no permission and a Wayland desktop asks"
                      " in its own dialog)"_s);
        return false;
    }
    return QDesktopServices::openUrl(url);
}
