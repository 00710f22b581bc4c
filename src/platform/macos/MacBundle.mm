#include "MacBundle.h"

#include "MacConversions.h"

using namespace macconversions;

namespace macbundle {

std::optional<QString> bundleIdentifier()
{
    return optionalString([NSBundle mainBundle].bundleIdentifier);
}

std::optional<QString> infoString(const QString &key)
{
    id value = [[NSBundle mainBundle] objectForInfoDictionaryKey:toNSString(key)];
    if (![value isKindOfClass:[NSString class]])
        return std::nullopt;
    return fromNSString(value);
}

std::optional<QString> userLibraryFolder()
{
    NSURL *library = [[NSFileManager defaultManager] URLsForDirectory:NSLibraryDirectory
                                                            inDomains:NSUserDomainMask].firstObject;
    return library ? optionalString(library.path) : std::nullopt;
}

QString homeFolder()
{
    return fromNSString(NSHomeDirectory());
}

} // namespace macbundle
