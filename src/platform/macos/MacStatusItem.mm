#include "MacStatusItem.h"

#include "MacConversions.h"
#include "MacMappings.h"

#import <AppKit/AppKit.h>

using namespace macconversions;

// The target of the button and of every menu item.
@interface VistrelStatusItemTarget : NSObject
- (void)statusItemClicked:(id)sender;
- (void)menuItemChosen:(NSMenuItem *)sender;
@end

@implementation VistrelStatusItemTarget {
@public
    StatusItem::ClickHandler _onClick;
    StatusItem::ActionHandler _onAction;
}

- (void)statusItemClicked:(id)sender
{
    NSEvent *event = NSApp.currentEvent;
    std::optional<StatusItem::ClickEvent> click;
    if (event)
        click = macmappings::statusItemClick(quint64(event.type), quint64(event.modifierFlags));
    // Copies: a handler may replace itself.
    if (const StatusItem::ClickHandler handler = _onClick)
        handler(click);
}

- (void)menuItemChosen:(NSMenuItem *)sender
{
    if (const StatusItem::ActionHandler handler = _onAction)
        handler(StatusItem::Action(sender.tag));
}

@end

struct MacStatusItem::Item
{
    NSStatusItem *statusItem = nil;
    NSMenu *menu = nil;
    NSMenuItem *toggle = nil;
    VistrelStatusItemTarget *target = [[VistrelStatusItemTarget alloc] init];
};

MacStatusItem::MacStatusItem() : m_item(std::make_unique<Item>()) {}

MacStatusItem::~MacStatusItem()
{
    if (m_item->statusItem)
        [[NSStatusBar systemStatusBar] removeStatusItem:m_item->statusItem];
}

void MacStatusItem::show(const Appearance &appearance, ClickHandler onClick)
{
    m_item->target->_onClick = std::move(onClick);
    if (!m_item->statusItem)
        m_item->statusItem = [[NSStatusBar systemStatusBar] statusItemWithLength:NSSquareStatusItemLength];
    NSStatusBarButton *button = m_item->statusItem.button;
    NSImage *image = [NSImage imageWithSystemSymbolName:toNSString(appearance.symbolName)
                               accessibilityDescription:toNSString(appearance.accessibilityDescription)];
    // `template` is a C++ keyword, so the property goes through its setter.
    [image setTemplate:appearance.isTemplate];
    button.image = image;
    if (!image)
        button.title = toNSString(appearance.accessibilityDescription);
    button.target = m_item->target;
    button.action = @selector(statusItemClicked:);
    [button sendActionOn:NSEventMaskLeftMouseUp | NSEventMaskRightMouseUp];
}

void MacStatusItem::setMenu(const QList<MenuEntry> &entries, ActionHandler onAction)
{
    m_item->target->_onAction = std::move(onAction);
    m_item->menu = [[NSMenu alloc] initWithTitle:@""];
    m_item->toggle = nil;
    for (const MenuEntry &entry : entries) {
        if (entry.isSeparator) {
            [m_item->menu addItem:[NSMenuItem separatorItem]];
            continue;
        }
        // Key equivalents carry Command by default and act only while the menu is open.
        NSMenuItem *item = [[NSMenuItem alloc] initWithTitle:toNSString(entry.title)
                                                      action:@selector(menuItemChosen:)
                                               keyEquivalent:toNSString(entry.keyEquivalent)];
        item.target = m_item->target;
        item.tag = NSInteger(entry.action);
        [m_item->menu addItem:item];
        if (entry.isToggle)
            m_item->toggle = item;
    }
}

void MacStatusItem::setToggleChecked(bool checked)
{
    m_item->toggle.state = checked ? NSControlStateValueOn : NSControlStateValueOff;
}

void MacStatusItem::popUpMenu()
{
    if (!m_item->statusItem || !m_item->menu)
        return;
    m_item->statusItem.menu = m_item->menu;
    [m_item->statusItem.button performClick:nil];
    m_item->statusItem.menu = nil;
}
