#pragma once

#include "settings/ShortcutKeyCombo.h"

#include <QList>
#include <QObject>
#include <QString>

class AppSettings;
class FolderChooser;
class ShortcutGuidance;

// The settings window's content as a model: every control reads and writes one setting of the store,
// which persists and announces each edit by its own rules. Holds no state of its own; the widgets
// redraw from the store's change signals. Main thread only.
class SettingsForm final : public QObject
{
    Q_OBJECT

public:
    enum class Shortcut { Capture, Repeat };

    struct ModifierToggle
    {
        QString title;
        ShortcutKeyCombo::Modifier modifier;
    };
    // ⌘ ⌥ ⌃ ⇧, in that order.
    static const QList<ModifierToggle> &modifierToggles();

    // The caption under the login toggle names the system's own term for login items.
    SettingsForm(AppSettings &settings, FolderChooser &folderChooser, QString loginCaption);

    static QString heading(Shortcut shortcut);
    QString displayText(Shortcut shortcut) const;
    QString keyFieldText(Shortcut shortcut) const;
    // Stores the edit upper-cased and cut to its first character; an empty edit stores an empty key.
    void editKey(Shortcut shortcut, const QString &edited);
    bool isModifierOn(Shortcut shortcut, ShortcutKeyCombo::Modifier modifier) const;
    void setModifier(Shortcut shortcut, ShortcutKeyCombo::Modifier modifier, bool on);
    // What binds the shortcut, or how the user binds it; empty until the guidance is set, and where
    // the system binds it.
    QString bindingText(Shortcut shortcut) const;
    void setShortcutGuidance(const ShortcutGuidance &guidance);
    // The button that binds both commands in the desktop's own shortcuts: offered on GNOME while nothing
    // else binds them; busy while it runs. Its status line says how the last click went.
    bool offersDesktopBinding() const;
    bool isDesktopBindingBusy() const;
    QString desktopBindingStatus() const;
    void bindOnDesktop();

    void chooseFolder();
    // Return in the folder field assigns the current value again, which saves it once more.
    void commitSaveFolderPath(const QString &path);
    QString currentFolderCaption() const;

    QString notificationCaption() const;
    bool isKeepWindowToggleEnabled() const;
    QString keepWindowCaption() const;
    const QString &loginCaption() const { return m_loginCaption; }

signals:
    void shortcutBindingsChanged();

private:
    ShortcutKeyCombo combo(Shortcut shortcut) const;
    void setCombo(Shortcut shortcut, const ShortcutKeyCombo &combo);

    AppSettings &m_settings;
    FolderChooser &m_folderChooser;
    QString m_loginCaption;
    const ShortcutGuidance *m_guidance = nullptr;
};
