#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

// Strings and string arrays in GLib's GVariant text form, as the gsettings program prints and reads
// values: 'text' (or "text" when it holds a single quote) with backslash escapes, ['a', 'b'], @as [].
// Pure.
namespace gvarianttext {

QString quoted(const QString &text);
QString stringArray(const QStringList &items);

// Absent for anything else, or for trailing text.
std::optional<QString> parseString(QStringView text);
std::optional<QStringList> parseStringArray(QStringView text);

} // namespace gvarianttext
