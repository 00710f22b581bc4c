#include "settings/AppSettings.h"

#include "platform/SystemLog.h"
#include "settings/KeyTable.h"
#include "settings/LegacySettingsMigration.h"
#include "settings/SaveSettings.h"


namespace {

namespace Keys {
const QString hotKeyKey = QStringLiteral("VistrelHotKeyKey");
const QString hotKeyModifiers = QStringLiteral("VistrelHotKeyModifiers");
const QString repeatHotKeyKey = QStringLiteral("VistrelRepeatHotKeyKey");
const QString repeatHotKeyModifiers = QStringLiteral("VistrelRepeatHotKeyModifiers");
const QString saveFolderPath = savesettings::saveFolderPathKey;
const QString filenamePrefix = savesettings::filenamePrefixKey;
const QString includeDate = savesettings::includeDateKey;
const QString openEditorViaNotification = QStringLiteral("VistrelOpenEditorViaNotification");
const QString keepExistingEditorWindowOnAutoOpen = QStringLiteral("VistrelKeepExistingEditorWindowOnAutoOpen");
const QString launchAtLoginEnabled = QStringLiteral("VistrelLaunchAtLoginEnabled");
} // namespace Keys

constexpr quint64 kDefaultModifiers = ShortcutKeyCombo::Command | ShortcutKeyCombo::Shift;

} // namespace

AppSettings::AppSettings(KeyValueStore &store, LoginItemService &loginItem, SystemLog &systemLog,
                         const LegacyPreferencesSource *legacyPreferences)
    : m_defaults(store), m_loginItem(loginItem), m_systemLog(systemLog)
{
    legacymigration::migrateLegacyUserDefaultsIfNeeded(m_defaults, legacyPreferences, m_systemLog);

    // Stored keys are taken as they are; they are normalized when written back.
    auto readModifiers = [this](const QString &key) {
        return m_defaults.unsignedInteger(key).value_or(kDefaultModifiers);
    };
    m_hotKeyCombo = {m_defaults.string(Keys::hotKeyKey).value_or(QStringLiteral("S")),
                     readModifiers(Keys::hotKeyModifiers)};
    m_repeatHotKeyCombo = {m_defaults.string(Keys::repeatHotKeyKey).value_or(QStringLiteral("R")),
                           readModifiers(Keys::repeatHotKeyModifiers)};
    m_saveFolderPath = savesettings::saveFolderPath(m_defaults);
    m_filenamePrefix = savesettings::filenamePrefix(m_defaults);
    m_includeDate = savesettings::includeDate(m_defaults);
    m_openEditorViaNotification = readBool(Keys::openEditorViaNotification, true);
    m_keepExistingEditorWindowOnAutoOpen = readBool(Keys::keepExistingEditorWindowOnAutoOpen, false);

    // The system's registration is the truth; it replaces the stored flag at once, without announcing.
    m_launchAtLoginEnabled = currentLaunchAtLoginStatus(readBool(Keys::launchAtLoginEnabled, false));
    m_defaults.setBool(Keys::launchAtLoginEnabled, m_launchAtLoginEnabled);
    m_defaults.synchronize();
}

void AppSettings::setHotKeyCombo(const ShortcutKeyCombo &combo)
{
    save();
    m_hotKeyCombo = combo;
    emit hotKeyComboChanged();
}

void AppSettings::setRepeatHotKeyCombo(const ShortcutKeyCombo &combo)
{
    m_repeatHotKeyCombo = combo;
    emit repeatHotKeyComboChanged();
    save();
}

void AppSettings::setSaveFolderPath(const QString &path)
{
    m_saveFolderPath = path;
    emit saveFolderPathChanged();
    save();
}

void AppSettings::setFilenamePrefix(const QString &prefix)
{
    save();
    m_filenamePrefix = prefix;
    emit filenamePrefixChanged();
}

void AppSettings::setIncludeDate(bool on)
{
    save();
    m_includeDate = on;
    emit includeDateChanged();
}

void AppSettings::setOpenEditorViaNotification(bool on)
{
    m_openEditorViaNotification = on;
    emit openEditorViaNotificationChanged();
    save();
}

void AppSettings::setKeepExistingEditorWindowOnAutoOpen(bool on)
{
    m_keepExistingEditorWindowOnAutoOpen = on;
    emit keepExistingEditorWindowOnAutoOpenChanged();
    save();
}

void AppSettings::setLaunchAtLoginEnabled(bool on)
{
    m_launchAtLoginEnabled = on;
    emit launchAtLoginEnabledChanged();
    if (!m_isApplyingLaunchAtLogin)
        applyLaunchAtLoginSetting();
}

std::optional<quint32> AppSettings::hotKeyCode() const
{
    return keyCode(m_hotKeyCombo.normalizedKey());
}

quint32 AppSettings::carbonModifierFlags() const
{
    return carbonModifierFlags(m_hotKeyCombo);
}

std::optional<quint32> AppSettings::repeatHotKeyCode() const
{
    return keyCode(m_repeatHotKeyCombo.normalizedKey());
}

quint32 AppSettings::repeatCarbonModifierFlags() const
{
    return carbonModifierFlags(m_repeatHotKeyCombo);
}

std::optional<quint32> AppSettings::keyCode(const QString &name)
{
    return keytable::keyCode(name);
}

quint32 AppSettings::carbonModifierFlags(const ShortcutKeyCombo &combo)
{
    return keytable::carbonModifierFlags(combo);
}

QString AppSettings::defaultSaveFolderPath()
{
    return savesettings::defaultSaveFolderPath();
}

void AppSettings::save()
{
    m_defaults.setString(Keys::hotKeyKey, m_hotKeyCombo.normalizedKey());
    m_defaults.setUnsignedInteger(Keys::hotKeyModifiers, m_hotKeyCombo.modifiers);
    m_defaults.setString(Keys::repeatHotKeyKey, m_repeatHotKeyCombo.normalizedKey());
    m_defaults.setUnsignedInteger(Keys::repeatHotKeyModifiers, m_repeatHotKeyCombo.modifiers);
    m_defaults.setString(Keys::saveFolderPath, m_saveFolderPath);
    m_defaults.setString(Keys::filenamePrefix, m_filenamePrefix);
    m_defaults.setBool(Keys::includeDate, m_includeDate);
    m_defaults.setBool(Keys::openEditorViaNotification, m_openEditorViaNotification);
    m_defaults.setBool(Keys::keepExistingEditorWindowOnAutoOpen, m_keepExistingEditorWindowOnAutoOpen);
    m_defaults.setBool(Keys::launchAtLoginEnabled, m_launchAtLoginEnabled);
    m_defaults.synchronize();
    emit settingsDidChange();
}

void AppSettings::applyLaunchAtLoginSetting()
{
    const std::optional<QString> error =
        m_launchAtLoginEnabled ? m_loginItem.registerApp() : m_loginItem.unregisterApp();
    if (!error) {
        save();
        return;
    }
    m_systemLog.log(QStringLiteral("Vistrel: 自動起動設定の反映に失敗しました: %1").arg(*error));
    // Snap the switch back to what the system really has, without trying again.
    m_isApplyingLaunchAtLogin = true;
    setLaunchAtLoginEnabled(currentLaunchAtLoginStatus(false));
    m_isApplyingLaunchAtLogin = false;
    save();
}

bool AppSettings::currentLaunchAtLoginStatus(bool fallback) const
{
    switch (m_loginItem.status()) {
    case LoginItemService::Status::Enabled:
        return true;
    case LoginItemService::Status::NotRegistered:
    case LoginItemService::Status::RequiresApproval:
    case LoginItemService::Status::NotFound:
        return false;
    case LoginItemService::Status::Unknown:
        break;
    }
    return fallback;
}

bool AppSettings::readBool(const QString &key, bool defaultValue) const
{
    return m_defaults.contains(key) ? m_defaults.boolValue(key) : defaultValue;
}
