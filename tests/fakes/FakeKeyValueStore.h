#pragma once

#include "platform/KeyValueStore.h"

#include <QMap>

class FakeKeyValueStore final : public KeyValueStore
{
public:
    std::optional<QVariant> value(const QString &key) const override
    {
        const auto it = values.constFind(key);
        return it == values.constEnd() ? std::nullopt : std::optional<QVariant>(*it);
    }
    void setValue(const QString &key, const QVariant &value) override { values.insert(key, value); }
    void remove(const QString &key) override { values.remove(key); }
    QStringList keys() const override { return values.keys(); }
    bool sync() override
    {
        ++syncCount;
        synced = values;
        return true;
    }

    QMap<QString, QVariant> values;
    // What the last sync() made permanent.
    QMap<QString, QVariant> synced;
    int syncCount = 0;
};
