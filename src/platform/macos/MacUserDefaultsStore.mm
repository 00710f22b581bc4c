#include "MacUserDefaultsStore.h"

#include "MacConversions.h"

using namespace macconversions;

std::optional<QVariant> MacUserDefaultsStore::value(const QString &key) const
{
    id object = [[NSUserDefaults standardUserDefaults] objectForKey:toNSString(key)];
    if (!object)
        return std::nullopt;
    // A value of a kind we do not read is still there: present, and of no usable type.
    return variantFromObject(object);
}

void MacUserDefaultsStore::setValue(const QString &key, const QVariant &value)
{
    id object = objectFromVariant(value);
    if (object)
        [[NSUserDefaults standardUserDefaults] setObject:object forKey:toNSString(key)];
    else
        remove(key);
}

void MacUserDefaultsStore::remove(const QString &key)
{
    [[NSUserDefaults standardUserDefaults] removeObjectForKey:toNSString(key)];
}

QStringList MacUserDefaultsStore::keys() const
{
    NSString *domain = [NSBundle mainBundle].bundleIdentifier ?: [NSProcessInfo processInfo].processName;
    QStringList result;
    for (id key in [[NSUserDefaults standardUserDefaults] persistentDomainForName:domain]) {
        if ([key isKindOfClass:[NSString class]])
            result << fromNSString(key);
    }
    return result;
}

bool MacUserDefaultsStore::sync()
{
    return [[NSUserDefaults standardUserDefaults] synchronize];
}
