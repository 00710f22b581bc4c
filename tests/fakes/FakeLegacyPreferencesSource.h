#pragma once

#include "platform/LegacyPreferencesSource.h"

#include <QMap>

class FakeLegacyPreferencesSource final : public LegacyPreferencesSource
{
public:
    std::optional<QString> bundleIdentifier() const override { return bundleID; }
    QString homePath() const override { return QStringLiteral("/Users/tester"); }
    std::optional<QVariantMap> readDictionary(const QString &path) const override
    {
        const auto it = files.constFind(path);
        return it == files.constEnd() ? std::nullopt : std::optional<QVariantMap>(*it);
    }

    std::optional<QString> bundleID = QStringLiteral("com.example.Vistrel");
    QMap<QString, QVariantMap> files;
};
