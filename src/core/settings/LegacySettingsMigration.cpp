#include "settings/LegacySettingsMigration.h"

#include "platform/LegacyPreferencesSource.h"
#include "platform/SystemLog.h"
#include "settings/UserDefaults.h"

#include <QDir>

namespace legacymigration {

int migrateLegacyUserDefaultsIfNeeded(UserDefaults &defaults, const LegacyPreferencesSource *source,
                                      SystemLog &systemLog)
{
    if (!source)
        return 0;
    const QStringList markers = {QStringLiteral("VistrelHotKeyKey"), QStringLiteral("VistrelSaveFolderPath"),
                                 QStringLiteral("VistrelFilenamePrefix"),
                                 QStringLiteral("VistrelLaunchAtLoginEnabled")};
    for (const QString &key : markers) {
        if (defaults.contains(key))
            return 0;
    }
    const std::optional<QString> bundleID = source->bundleIdentifier();
    if (!bundleID || bundleID->isEmpty())
        return 0;

    // The sandbox container of an earlier sandboxed build first, then the plain preferences folder.
    // Every readable file contributes; an entry already copied from an earlier file is kept.
    const QDir home(source->homePath());
    const QStringList candidates = {
        home.filePath(u"Library/Containers/" % *bundleID % u"/Data/Library/Preferences/" % *bundleID % u".plist"),
        home.filePath(u"Library/Preferences/" % *bundleID % u".plist"),
    };
    int copied = 0;
    for (const QString &path : candidates) {
        const std::optional<QVariantMap> dictionary = source->readDictionary(path);
        if (!dictionary)
            continue;
        for (auto it = dictionary->cbegin(); it != dictionary->cend(); ++it) {
            if (!it.key().startsWith(u"Vistrel") || defaults.contains(it.key()))
                continue;
            defaults.setObject(it.key(), it.value());
            ++copied;
        }
    }
    defaults.synchronize();
    systemLog.log(QStringLiteral("Vistrel: Debug/旧環境から設定を移行しました（%1件）").arg(copied));
    return copied;
}

} // namespace legacymigration
