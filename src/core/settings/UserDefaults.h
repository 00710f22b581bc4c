#pragma once

#include <QString>
#include <QVariant>

#include <optional>

class KeyValueStore;

// Reads and writes the preferences database with the conversions of the macOS user defaults, so that
// every system reads stored values the same way: a string read accepts numbers too, a boolean read
// accepts numbers and "yes"/"true"-like text, and a missing key stays distinct from a stored false.
class UserDefaults final
{
public:
    explicit UserDefaults(KeyValueStore &store) : m_store(store) {}

    bool contains(const QString &key) const { return object(key).has_value(); }
    std::optional<QVariant> object(const QString &key) const;
    std::optional<QString> string(const QString &key) const;
    // False when missing or not convertible.
    bool boolValue(const QString &key) const;
    // 0 when missing or not convertible.
    double doubleValue(const QString &key) const;
    // Present only when the stored value is a number that is exactly a non-negative integer.
    std::optional<quint64> unsignedInteger(const QString &key) const;

    void setString(const QString &key, const QString &value);
    void setUnsignedInteger(const QString &key, quint64 value);
    void setBool(const QString &key, bool value);
    void setDouble(const QString &key, double value);
    void setObject(const QString &key, const QVariant &value);
    void remove(const QString &key);
    bool synchronize();

    KeyValueStore &store() const { return m_store; }

private:
    KeyValueStore &m_store;
};
