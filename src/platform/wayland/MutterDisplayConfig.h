#pragma once

#include "DesktopSpace.h"

#include <QDBusConnection>
#include <QList>

#include <memory>
#include <optional>

// GNOME's own account of its monitors (org.gnome.Mutter.DisplayConfig): each one's place in the
// layout, its scale and its pixels, and whether the layout is in pixels or in logical points. Qt 6.4
// on GNOME gets a scaled monitor's size wrong, so the session installs this as the desktop's
// compositor layout. Asked again only when Qt's screens change. Main thread.
class MutterDisplayConfig final
{
public:
    // Where Mutter answers on the bus; else nothing.
    static std::unique_ptr<MutterDisplayConfig> whereMutterRuns(const QDBusConnection &bus);
    explicit MutterDisplayConfig(const QDBusConnection &bus);

    // The outputs for the screens Qt lists now: the last answer while Qt's screens stay as they were.
    std::optional<QList<CompositorOutput>> outputs(const QList<DesktopScreen> &qtScreens);

private:
    std::optional<QList<CompositorOutput>> ask() const;

    QDBusConnection m_bus;
    QList<DesktopScreen> m_askedFor;
    std::optional<QList<CompositorOutput>> m_last;
};
