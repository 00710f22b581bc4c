#pragma once

#include "platform/StatusItem.h"

#include <QKeySequence>
#include <QObject>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>

class QAction;
class QMenu;

// The status item as a system-tray icon (StatusNotifierItem where a host is registered, else an
// XEmbed tray) with the camera symbol. The menu is never attached to the icon: every click goes to
// the click handler, and the menu opens at the pointer only when popUpMenu() is called. Without any
// tray host the icon is simply not shown and everything else goes on. Main thread only.
class TrayStatusItem final : public QObject, public StatusItem
{
    Q_OBJECT

public:
    TrayStatusItem();
    ~TrayStatusItem() override;

    void show(const Appearance &appearance, ClickHandler onClick) override;
    void setMenu(const QList<MenuEntry> &entries, ActionHandler onAction) override;
    void setToggleChecked(bool checked) override;
    void popUpMenu() override;
    bool isShownToUser() const override;

    // Where the item says that no tray shows it (the diagnostics log).
    using Trace = std::function<void(const QString &line)>;
    void setTrace(Trace trace) { m_trace = std::move(trace); }

    QMenu *menu() const { return m_menu.get(); }
    QSystemTrayIcon *trayIcon() const { return m_icon.get(); }

private:
    std::unique_ptr<QSystemTrayIcon> m_icon;
    std::unique_ptr<QMenu> m_menu;
    QAction *m_toggle = nullptr;
    ClickHandler m_onClick;
    ActionHandler m_onAction;
    Trace m_trace;
};

namespace trayclick {
// The click a tray activation stands for, or nothing for activations that are no click of their own
// (the second half of a double click) or that the menu bar never reports (middle button). Trays tell
// only the button; Control held with the left button is read from the keyboard state.
std::optional<StatusItem::ClickEvent> clickEventFor(QSystemTrayIcon::ActivationReason reason,
                                                    Qt::KeyboardModifiers modifiers);
// A menu's key equivalent ("s", ",") as the shortcut shown next to the title: Ctrl with the key.
QKeySequence shortcutFor(const QString &keyEquivalent);
} // namespace trayclick
