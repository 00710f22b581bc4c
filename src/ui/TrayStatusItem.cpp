#include "TrayStatusItem.h"

#include "CameraIcon.h"

#include <QCursor>
#include <QGuiApplication>
#include <QMenu>

namespace trayclick {

std::optional<StatusItem::ClickEvent> clickEventFor(QSystemTrayIcon::ActivationReason reason,
                                                    Qt::KeyboardModifiers modifiers)
{
    using Type = StatusItem::ClickEvent::Type;
    switch (reason) {
    case QSystemTrayIcon::Trigger:
        return StatusItem::ClickEvent{Type::LeftMouseUp, modifiers.testFlag(Qt::ControlModifier)};
    case QSystemTrayIcon::Context:
        return StatusItem::ClickEvent{Type::RightMouseUp, false};
    default:
        return std::nullopt;
    }
}

QKeySequence shortcutFor(const QString &keyEquivalent)
{
    if (keyEquivalent.size() != 1)
        return {};
    // Qt's key codes of printable ASCII keys are the upper-case characters.
    const Qt::Key key = Qt::Key(keyEquivalent.toUpper().at(0).unicode());
    return QKeySequence(QKeyCombination(Qt::ControlModifier, key));
}

} // namespace trayclick

TrayStatusItem::TrayStatusItem() = default;
TrayStatusItem::~TrayStatusItem() = default;

void TrayStatusItem::show(const Appearance &appearance, ClickHandler onClick)
{
    m_onClick = std::move(onClick);
    if (!m_icon) {
        // Qt docks the icon by itself when a tray starts later; until then only the shortcuts reach us.
        if (m_trace && !QSystemTrayIcon::isSystemTrayAvailable())
            m_trace(QStringLiteral("status item: no system tray to show the icon in; it appears once a tray starts"));
        m_icon = std::make_unique<QSystemTrayIcon>();
        connect(m_icon.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
            const std::optional<ClickEvent> click =
                trayclick::clickEventFor(reason, QGuiApplication::queryKeyboardModifiers());
            if (click && m_onClick)
                m_onClick(click);
        });
    }
    // The symbol name is macOS's; the camera is our own drawing of it.
    m_icon->setIcon(cameraicon::icon());
    m_icon->setToolTip(appearance.accessibilityDescription);
    m_icon->show();
}

void TrayStatusItem::setMenu(const QList<MenuEntry> &entries, ActionHandler onAction)
{
    m_onAction = std::move(onAction);
    m_menu = std::make_unique<QMenu>();
    m_toggle = nullptr;
    for (const MenuEntry &entry : entries) {
        if (entry.isSeparator) {
            m_menu->addSeparator();
            continue;
        }
        QAction *action = m_menu->addAction(entry.title);
        action->setShortcut(trayclick::shortcutFor(entry.keyEquivalent));
        action->setShortcutVisibleInContextMenu(true);
        if (entry.isToggle) {
            action->setCheckable(true);
            m_toggle = action;
        }
        connect(action, &QAction::triggered, this, [this, command = entry.action] {
            if (m_onAction)
                m_onAction(command);
        });
    }
}

void TrayStatusItem::setToggleChecked(bool checked)
{
    if (m_toggle)
        m_toggle->setChecked(checked);
}

void TrayStatusItem::popUpMenu()
{
    if (m_menu)
        m_menu->popup(QCursor::pos());
}

bool TrayStatusItem::isShownToUser() const
{
    return QSystemTrayIcon::isSystemTrayAvailable();
}
