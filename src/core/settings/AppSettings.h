#pragma once

#include "platform/LoginItemService.h"
#include "settings/ShortcutKeyCombo.h"
#include "settings/UserDefaults.h"

#include <QObject>
#include <QString>

#include <optional>

class KeyValueStore;
class LegacyPreferencesSource;
class SystemLog;

// The user's preferences: observable properties, persisted in the preferences database on assignment,
// announced by settingsDidChange() after every save, and with the login-item registration kept in step
// with launchAtLoginEnabled. Built by the app layer, which also connects the announcement's observers.
// Main thread only.
//
// Saving is deliberately uneven. repeatHotKeyCombo, saveFolderPath, openEditorViaNotification and
// keepExistingEditorWindowOnAutoOpen save after the new value is stored. hotKeyCombo, filenamePrefix and
// includeDate save when they are about to change, so that save writes (and announces) the value they
// held before; the new value reaches the database with the next save, whatever starts it. Observers of
// the announcement therefore see a new capture shortcut only one save later.
class AppSettings final : public QObject
{
    Q_OBJECT

public:
    // Built in app/SharedInstances.cpp.
    static AppSettings &shared();

    AppSettings(KeyValueStore &store, LoginItemService &loginItem, SystemLog &systemLog,
                const LegacyPreferencesSource *legacyPreferences = nullptr);

    ShortcutKeyCombo hotKeyCombo() const { return m_hotKeyCombo; }
    ShortcutKeyCombo repeatHotKeyCombo() const { return m_repeatHotKeyCombo; }
    QString saveFolderPath() const { return m_saveFolderPath; }
    QString filenamePrefix() const { return m_filenamePrefix; }
    bool includeDate() const { return m_includeDate; }
    bool openEditorViaNotification() const { return m_openEditorViaNotification; }
    bool keepExistingEditorWindowOnAutoOpen() const { return m_keepExistingEditorWindowOnAutoOpen; }
    bool launchAtLoginEnabled() const { return m_launchAtLoginEnabled; }

    void setHotKeyCombo(const ShortcutKeyCombo &combo);
    void setRepeatHotKeyCombo(const ShortcutKeyCombo &combo);
    void setSaveFolderPath(const QString &path);
    void setFilenamePrefix(const QString &prefix);
    void setIncludeDate(bool on);
    void setOpenEditorViaNotification(bool on);
    void setKeepExistingEditorWindowOnAutoOpen(bool on);
    void setLaunchAtLoginEnabled(bool on);

    // Derived on every read.
    std::optional<quint32> hotKeyCode() const;
    quint32 carbonModifierFlags() const;
    std::optional<quint32> repeatHotKeyCode() const;
    quint32 repeatCarbonModifierFlags() const;

    static std::optional<quint32> keyCode(const QString &name);
    static quint32 carbonModifierFlags(const ShortcutKeyCombo &combo);
    // The user's Desktop folder, or the home folder when the system names none.
    static QString defaultSaveFolderPath();

    UserDefaults &defaults() { return m_defaults; }

signals:
    void hotKeyComboChanged();
    void repeatHotKeyComboChanged();
    void saveFolderPathChanged();
    void filenamePrefixChanged();
    void includeDateChanged();
    void openEditorViaNotificationChanged();
    void keepExistingEditorWindowOnAutoOpenChanged();
    void launchAtLoginEnabledChanged();
    // "VistrelSettingsDidChange": after every save, with no payload; observers run inside the setter.
    void settingsDidChange();

private:
    void save();
    void applyLaunchAtLoginSetting();
    bool currentLaunchAtLoginStatus(bool fallback) const;
    bool readBool(const QString &key, bool defaultValue) const;

    UserDefaults m_defaults;
    LoginItemService &m_loginItem;
    SystemLog &m_systemLog;

    ShortcutKeyCombo m_hotKeyCombo;
    ShortcutKeyCombo m_repeatHotKeyCombo;
    QString m_saveFolderPath;
    QString m_filenamePrefix;
    bool m_includeDate = true;
    bool m_openEditorViaNotification = true;
    bool m_keepExistingEditorWindowOnAutoOpen = false;
    bool m_launchAtLoginEnabled = false;
    bool m_isApplyingLaunchAtLogin = false;
};
