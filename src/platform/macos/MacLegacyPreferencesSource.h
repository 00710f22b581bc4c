#pragma once

#include "platform/LegacyPreferencesSource.h"

// Preference files of older installations: property lists read with NSDictionary. Main thread.
class MacLegacyPreferencesSource final : public LegacyPreferencesSource
{
public:
    std::optional<QString> bundleIdentifier() const override;
    QString homePath() const override;
    std::optional<QVariantMap> readDictionary(const QString &path) const override;
};
