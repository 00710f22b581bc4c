#include "settings/UserDefaults.h"

#include "platform/KeyValueStore.h"

#include <cmath>

namespace {

bool isNumber(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return true;
    default:
        return false;
    }
}

// NSString.boolValue: after leading blanks and an optional sign and zeros, Y, y, T, t or a digit 1-9
// means true; anything else false.
bool textBoolValue(const QString &text)
{
    int i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    if (i < text.size() && (text.at(i) == u'+' || text.at(i) == u'-'))
        ++i;
    while (i < text.size() && text.at(i) == u'0')
        ++i;
    if (i >= text.size())
        return false;
    const QChar c = text.at(i);
    return c == u'Y' || c == u'y' || c == u'T' || c == u't' || (c >= u'1' && c <= u'9');
}

} // namespace

std::optional<QVariant> UserDefaults::object(const QString &key) const
{
    return m_store.value(key);
}

std::optional<QString> UserDefaults::string(const QString &key) const
{
    const std::optional<QVariant> value = object(key);
    if (!value)
        return std::nullopt;
    if (value->typeId() == QMetaType::QString)
        return value->toString();
    if (isNumber(*value))
        return value->toString();
    return std::nullopt;
}

bool UserDefaults::boolValue(const QString &key) const
{
    const std::optional<QVariant> value = object(key);
    if (!value)
        return false;
    if (value->typeId() == QMetaType::Bool)
        return value->toBool();
    if (isNumber(*value))
        return value->toDouble() != 0;
    if (value->typeId() == QMetaType::QString)
        return textBoolValue(value->toString());
    return false;
}

double UserDefaults::doubleValue(const QString &key) const
{
    const std::optional<QVariant> value = object(key);
    if (!value)
        return 0;
    if (value->typeId() == QMetaType::Bool)
        return value->toBool() ? 1 : 0;
    bool ok = false;
    const double result = value->toDouble(&ok);
    return ok ? result : 0;
}

std::optional<quint64> UserDefaults::unsignedInteger(const QString &key) const
{
    const std::optional<QVariant> value = object(key);
    if (!value || !isNumber(*value))
        return std::nullopt;
    switch (value->typeId()) {
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return value->toULongLong();
    case QMetaType::Int:
    case QMetaType::LongLong:
        if (value->toLongLong() < 0)
            return std::nullopt;
        return quint64(value->toLongLong());
    default: {
        const double d = value->toDouble();
        if (!std::isfinite(d) || d < 0 || d != std::floor(d) || d >= 18446744073709551616.0)
            return std::nullopt;
        return quint64(d);
    }
    }
}

void UserDefaults::setString(const QString &key, const QString &value) { m_store.setValue(key, value); }
void UserDefaults::setUnsignedInteger(const QString &key, quint64 value) { m_store.setValue(key, value); }
void UserDefaults::setBool(const QString &key, bool value) { m_store.setValue(key, value); }
void UserDefaults::setDouble(const QString &key, double value) { m_store.setValue(key, value); }
void UserDefaults::setObject(const QString &key, const QVariant &value) { m_store.setValue(key, value); }
void UserDefaults::remove(const QString &key) { m_store.remove(key); }
bool UserDefaults::synchronize() { return m_store.sync(); }
