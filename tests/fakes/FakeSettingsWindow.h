#pragma once

#include "app/SettingsWindow.h"

class FakeSettingsWindow final : public SettingsWindow
{
public:
    bool isVisible() const override { return visible; }
    Rect frame() const override { return currentFrame; }
    std::optional<Rect> screenVisibleFrame() const override { return screenFrame; }
    void setFrame(const Rect &frame) override { currentFrame = frame; }
    void makeKeyAndOrderFront() override
    {
        visible = true;
        ++orderFrontCount;
    }
    void showShortcutBindings(const ShortcutGuidance &guidance) override { shortcutGuidance = &guidance; }

    bool visible = false;
    Rect currentFrame{0, 0, 560, 860};
    std::optional<Rect> screenFrame;
    int orderFrontCount = 0;
    const ShortcutGuidance *shortcutGuidance = nullptr;
};
