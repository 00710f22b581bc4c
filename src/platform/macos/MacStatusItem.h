#pragma once

#include "platform/StatusItem.h"

#include <memory>

// The item in the menu bar: an NSStatusItem of square length whose button shows the system symbol as a
// template image and sends its action on left- and right-mouse-up. The menu is never left attached, so
// every click reaches the click handler with the event behind it; popUpMenu() attaches the menu,
// performs a click on the button (which returns once the menu closed) and detaches it again. Qt's tray
// icon cannot do this on macOS: it opens an attached menu on every click. Main thread.
class MacStatusItem final : public StatusItem
{
public:
    MacStatusItem();
    ~MacStatusItem() override;

    void show(const Appearance &appearance, ClickHandler onClick) override;
    void setMenu(const QList<MenuEntry> &entries, ActionHandler onAction) override;
    void setToggleChecked(bool checked) override;
    void popUpMenu() override;

private:
    struct Item;
    std::unique_ptr<Item> m_item;
};
