#include "MacConversions.h"

#include "MacMappings.h"

using namespace Qt::StringLiterals;

namespace macconversions {

NSString *toNSString(const QString &text)
{
    return [NSString stringWithCharacters:reinterpret_cast<const unichar *>(text.utf16())
                                   length:NSUInteger(text.size())];
}

QString fromNSString(NSString *text)
{
    if (!text)
        return {};
    const NSUInteger length = text.length;
    QString result(qsizetype(length), Qt::Uninitialized);
    [text getCharacters:reinterpret_cast<unichar *>(result.data()) range:NSMakeRange(0, length)];
    return result;
}

std::optional<QString> optionalString(NSString *text)
{
    if (!text)
        return std::nullopt;
    return fromNSString(text);
}

QString describe(NSError *error)
{
    return error ? fromNSString(error.localizedDescription) : u"unknown error"_s;
}

NSURL *toNSURL(const QUrl &url)
{
    if (url.isLocalFile())
        return [NSURL fileURLWithPath:toNSString(url.toLocalFile())];
    return [NSURL URLWithString:toNSString(url.toString(QUrl::FullyEncoded))];
}

QDateTime fromNSDate(NSDate *date)
{
    if (!date)
        return {};
    return QDateTime::fromMSecsSinceEpoch(qint64(date.timeIntervalSince1970 * 1000.0));
}

Rect fromCGRect(CGRect rect)
{
    return Rect(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}

CGRect toCGRect(const Rect &rect)
{
    return CGRectMake(rect.x(), rect.y(), rect.width(), rect.height());
}

namespace {

QVariant variantFromNumber(NSNumber *number)
{
    const bool isBooleanSingleton = CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID();
    switch (macmappings::numberKind(number.objCType[0], isBooleanSingleton)) {
    case macmappings::NumberKind::Boolean: return QVariant(bool(number.boolValue));
    case macmappings::NumberKind::SignedInteger: return QVariant(qint64(number.longLongValue));
    case macmappings::NumberKind::UnsignedInteger: return QVariant(quint64(number.unsignedLongLongValue));
    case macmappings::NumberKind::Real: return QVariant(number.doubleValue);
    }
    return {};
}

NSNumber *numberFromVariant(const QVariant &value, macmappings::NumberKind kind)
{
    switch (kind) {
    case macmappings::NumberKind::Boolean: return [NSNumber numberWithBool:value.toBool()];
    case macmappings::NumberKind::SignedInteger: return [NSNumber numberWithLongLong:value.toLongLong()];
    case macmappings::NumberKind::UnsignedInteger: return [NSNumber numberWithUnsignedLongLong:value.toULongLong()];
    case macmappings::NumberKind::Real: return [NSNumber numberWithDouble:value.toDouble()];
    }
    return nil;
}

} // namespace

QVariant variantFromObject(id object)
{
    if ([object isKindOfClass:[NSString class]])
        return fromNSString(object);
    if ([object isKindOfClass:[NSNumber class]])
        return variantFromNumber(object);
    if ([object isKindOfClass:[NSData class]]) {
        NSData *data = object;
        return QByteArray(static_cast<const char *>(data.bytes), qsizetype(data.length));
    }
    if ([object isKindOfClass:[NSDate class]])
        return fromNSDate(object);
    if ([object isKindOfClass:[NSArray class]]) {
        QVariantList list;
        for (id element in static_cast<NSArray *>(object))
            list.append(variantFromObject(element));
        return list;
    }
    if ([object isKindOfClass:[NSDictionary class]]) {
        NSDictionary *dictionary = object;
        QVariantMap map;
        for (id key in dictionary) {
            if ([key isKindOfClass:[NSString class]])
                map.insert(fromNSString(key), variantFromObject(dictionary[key]));
        }
        return map;
    }
    return {};
}

id objectFromVariant(const QVariant &value)
{
    if (const std::optional<macmappings::NumberKind> kind = macmappings::numberKindOf(value))
        return numberFromVariant(value, *kind);
    switch (value.typeId()) {
    case QMetaType::QString:
        return toNSString(value.toString());
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        return [NSData dataWithBytes:bytes.constData() length:NSUInteger(bytes.size())];
    }
    case QMetaType::QDateTime:
        return [NSDate dateWithTimeIntervalSince1970:double(value.toDateTime().toMSecsSinceEpoch()) / 1000.0];
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        NSMutableArray *array = [NSMutableArray array];
        for (const QVariant &element : value.toList()) {
            if (id object = objectFromVariant(element))
                [array addObject:object];
        }
        return array;
    }
    case QMetaType::QVariantMap: {
        NSMutableDictionary *dictionary = [NSMutableDictionary dictionary];
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            if (id object = objectFromVariant(it.value()))
                dictionary[toNSString(it.key())] = object;
        }
        return dictionary;
    }
    default:
        return nil;
    }
}

} // namespace macconversions
