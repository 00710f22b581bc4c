#pragma once

#include <QString>
#include <QVariant>

#include <optional>

// The per-user preferences database (macOS user defaults; a typed file under ~/.config on Linux).
//
// Values keep their type: text (QString), unsigned integer (quint64), signed integer (qint64), boolean
// and double. A missing key is distinct from every stored value, false and 0 included.
class KeyValueStore
{
public:
    virtual ~KeyValueStore() = default;

    virtual std::optional<QVariant> value(const QString &key) const = 0;
    virtual void setValue(const QString &key, const QVariant &value) = 0;
    virtual void remove(const QString &key) = 0;
    virtual QStringList keys() const = 0;
    // Writes pending changes to permanent storage. False when that failed; the values stay in memory.
    virtual bool sync() = 0;
};
