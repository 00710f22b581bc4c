#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

// Preference files of older installations (macOS property lists). Linux has none to offer.
class LegacyPreferencesSource
{
public:
    virtual ~LegacyPreferencesSource() = default;

    // The application's bundle identifier, when it has one.
    virtual std::optional<QString> bundleIdentifier() const = 0;
    virtual QString homePath() const = 0;
    // The file parsed as a dictionary, or nothing when it is missing or unreadable.
    virtual std::optional<QVariantMap> readDictionary(const QString &path) const = 0;
};
