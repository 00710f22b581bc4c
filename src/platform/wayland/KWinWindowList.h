#pragma once

#include "platform/WindowList.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QRect>
#include <QString>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <optional>

class QDBusVirtualObject;

// The windows on screen as KWin stacks them. KWin lists its windows to its own scripts only, so every
// call loads a small KWin script (org.kde.kwin.Scripting) that reports each window's frame, stacking
// place and class back to an object of ours on the session bus, and waits a short time for that
// report; the script is unloaded again. Nothing when KWin does not answer in time. Called by the
// capture's window-under-pointer lookup on the main thread, which keeps handling events while it waits.
class KWinWindowList final : public WindowList
{
public:
    struct Identity
    {
        // The class KWin gives our own windows (Qt's desktop file name) and the name they are listed under.
        QString ownClass;
        QString ownName;
    };

    // A list where KWin runs and sway does not; else nothing.
    static std::unique_ptr<KWinWindowList> whereKWinRuns(const QDBusConnection &bus);
    KWinWindowList(const QDBusConnection &bus, Identity identity);
    ~KWinWindowList() override;

    std::optional<QList<Entry>> onScreenWindows() const override;

    // The script's report read as the window list sees the screen: windows on the current desktop that
    // are neither minimized nor hidden, ours first, then front to back. Bounds are frames in KWin's
    // layout coordinates moved so that `primary` (the primary display's layout rectangle) has its
    // top-left at the origin; ordinary windows and dialogs are layer 0, docks, panels and the like 1.
    // Nothing when the report is not a list.
    static std::optional<QList<Entry>> windows(const QByteArray &reportJson, const QRect &primary,
                                               const Identity &identity);

    // Where a missing list is explained (the diagnostics log).
    using Trace = std::function<void(const QString &line)>;
    void setTrace(Trace trace) { m_trace = std::move(trace); }

private:
    void trace(const QString &line) const;

    QDBusConnection m_bus;
    Identity m_identity;
    QTemporaryDir m_scriptFolder;
    std::unique_ptr<QDBusVirtualObject> m_receiver;
    Trace m_trace;
    mutable quint64 m_lastRequest = 0;
    mutable bool m_waiting = false;
};
