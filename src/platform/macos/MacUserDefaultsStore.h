#pragma once

#include "platform/KeyValueStore.h"

// The settings database on macOS: NSUserDefaults.standardUserDefaults, whose domain is the bundle
// identifier (~/Library/Preferences/<bundle id>.plist). Values keep their kind: unsigned integers are
// stored as unsigned 64-bit numbers and booleans as booleans. Main thread.
class MacUserDefaultsStore final : public KeyValueStore
{
public:
    std::optional<QVariant> value(const QString &key) const override;
    void setValue(const QString &key, const QVariant &value) override;
    void remove(const QString &key) override;
    // The keys of the application's own domain, without the global and registration domains.
    QStringList keys() const override;
    bool sync() override;
};
