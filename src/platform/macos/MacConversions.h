#pragma once

// Conversions between Foundation's values and Qt's. Objective-C++: included by the .mm files of this
// folder only, never by core or ui code.

#import <Foundation/Foundation.h>

#include "geometry/Rect.h"

#include <QDateTime>
#include <QString>
#include <QUrl>
#include <QVariant>

#include <optional>

namespace macconversions {

NSString *toNSString(const QString &text);
// Empty for nil.
QString fromNSString(NSString *text);
// Nothing for nil.
std::optional<QString> optionalString(NSString *text);
// The error's localized description, or a plain phrase when there is no error object.
QString describe(NSError *error);

NSURL *toNSURL(const QUrl &url);
// Invalid for nil.
QDateTime fromNSDate(NSDate *date);

// NSRect is CGRect on every 64-bit system.
Rect fromCGRect(CGRect rect);
CGRect toCGRect(const Rect &rect);

// Property-list values (strings, numbers, booleans, data, dates, arrays, dictionaries with string
// keys) both ways. Numbers keep their kind: booleans stay booleans, unsigned 64-bit values stay
// unsigned. Anything else becomes an invalid QVariant, or nil.
QVariant variantFromObject(id object);
id objectFromVariant(const QVariant &value);

} // namespace macconversions
