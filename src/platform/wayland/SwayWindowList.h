#pragma once

#include "SwayTree.h"

#include "platform/WindowList.h"

#include <QString>

#include <functional>
#include <memory>

// The windows on screen as sway lays them out, read from its IPC socket (GET_TREE) on every call and
// turned into entries by swaytree. Nothing when there is no socket or sway does not answer within a
// short time, as on any other compositor. Called by the capture's window-under-pointer lookup on the
// main thread.
class SwayWindowList final : public WindowList
{
public:
    // `socketPath` is sway's IPC socket, normally $SWAYSOCK; `identity` names our own windows.
    SwayWindowList(QString socketPath, swaytree::Identity identity);
    // $SWAYSOCK, and our windows by the application's desktop file name and name.
    static std::unique_ptr<SwayWindowList> fromEnvironment();

    std::optional<QList<Entry>> onScreenWindows() const override;

    // Where a missing list is explained (the diagnostics log): the capture only says that no window
    // was found.
    using Trace = std::function<void(const QString &line)>;
    void setTrace(Trace trace) { m_trace = std::move(trace); }

private:
    QString m_socketPath;
    swaytree::Identity m_identity;
    Trace m_trace;
};
