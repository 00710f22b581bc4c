#pragma once

#include "UpdateSettingsSection.h"

#include "app/SettingsWindow.h"

#include <QPointer>
#include <QString>
#include <QWidget>

#include <memory>
#include <optional>

class AppSettings;
class FolderChooser;
class SettingsForm;
class SettingsFormWidget;
class SoftwareUpdaterModel;

// The settings window: a top-level widget titled "Vistrel 設定", 560 × 860 at first and at least
// 480 × 320, showing the settings form. Closing only hides it, so the same window comes back, and
// Ctrl+Q closes it instead of quitting. A minimized window counts as hidden. Frames are converted between Qt's desktop and the global
// bottom-left space of the displays. Made on first use by the application controller; main thread.
class QtSettingsWindow final : public SettingsWindow
{
public:
    struct Dependencies
    {
        AppSettings &settings;
        FolderChooser &folderChooser;
        SoftwareUpdaterModel &updater;
        ApplicationVersion version;
        // The caption under the login toggle, in the system's own words for login items.
        QString loginCaption;
    };

    static constexpr QSize contentSize{560, 860};
    static constexpr QSize minimumContentSize{480, 320};

    explicit QtSettingsWindow(const Dependencies &dependencies);
    ~QtSettingsWindow() override;

    bool isVisible() const override;
    Rect frame() const override;
    std::optional<Rect> screenVisibleFrame() const override;
    void setFrame(const Rect &frame) override;
    void makeKeyAndOrderFront() override;
    void showShortcutBindings(const ShortcutGuidance &guidance) override;

    QWidget *widget() const { return m_widget; }
    SettingsFormWidget *form() const { return m_formWidget; }

private:
    void refitWhenFramed(int triesLeft);

    std::unique_ptr<SettingsForm> m_form;
    // The frame asked for before the window manager had framed the window, whose title bar it therefore
    // left out; asked for again once the title bar is known.
    std::optional<QRect> m_unframedFrame;
    QPointer<QWidget> m_widget;
    SettingsFormWidget *m_formWidget = nullptr;
};
