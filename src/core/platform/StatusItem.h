#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <optional>

// The icon in the menu bar (macOS) or system tray (Linux), with a menu that is shown only on request.
class StatusItem
{
public:
    enum class Action { TriggerScreenshot, OpenEditorLauncher, ShowSettings, CheckForUpdates,
                        ToggleOpenEditorViaNotification, TerminateApp };

    struct MenuEntry
    {
        bool isSeparator = false;
        QString title;
        Action action = Action::TriggerScreenshot;
        // Shown next to the title; acts only while the menu is open.
        QString keyEquivalent;
        // The check-mark entry; its state is set through setToggleChecked.
        bool isToggle = false;
    };

    struct ClickEvent
    {
        enum class Type { LeftMouseUp, RightMouseUp, Other };
        Type type = Type::LeftMouseUp;
        bool controlHeld = false;
    };

    struct Appearance
    {
        QString symbolName;
        QString accessibilityDescription;
        bool isTemplate = true;
    };

    // The click handler gets the event that caused the click, or nothing when none is known.
    using ClickHandler = std::function<void(std::optional<ClickEvent>)>;
    using ActionHandler = std::function<void(Action)>;

    virtual ~StatusItem() = default;

    virtual void show(const Appearance &appearance, ClickHandler onClick) = 0;
    virtual void setMenu(const QList<MenuEntry> &entries, ActionHandler onAction) = 0;
    virtual void setToggleChecked(bool checked) = 0;
    // Attaches the menu, opens it at the item and detaches it again once it closes.
    virtual void popUpMenu() = 0;
    // Whether anything shows the item: false where no system tray runs.
    virtual bool isShownToUser() const { return true; }
};
