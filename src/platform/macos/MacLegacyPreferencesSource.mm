#include "MacLegacyPreferencesSource.h"

#include "MacBundle.h"
#include "MacConversions.h"

using namespace macconversions;

std::optional<QString> MacLegacyPreferencesSource::bundleIdentifier() const
{
    return macbundle::bundleIdentifier();
}

QString MacLegacyPreferencesSource::homePath() const
{
    return macbundle::homeFolder();
}

std::optional<QVariantMap> MacLegacyPreferencesSource::readDictionary(const QString &path) const
{
    NSError *error = nil;
    NSDictionary *dictionary = [NSDictionary dictionaryWithContentsOfURL:[NSURL fileURLWithPath:toNSString(path)]
                                                                   error:&error];
    if (!dictionary)
        return std::nullopt;
    return variantFromObject(dictionary).toMap();
}
