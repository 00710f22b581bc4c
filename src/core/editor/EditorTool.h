#pragma once

#include <QHash>
#include <QString>

#include <array>
#include <optional>

// The six annotation tools. Each tool's raw value is also its label in the toolbar and its identity.
enum class EditorTool { Rectangle, Circle, Arrow, Freehand, Mosaic, Text };

namespace editortool {

// Every tool in toolbar order.
const std::array<EditorTool, 6> &allCases();
QString rawValue(EditorTool tool);
// Accepts exactly the six raw values; anything else (an English name, other case, blanks) is absent.
std::optional<EditorTool> fromRawValue(const QString &text);

} // namespace editortool

inline size_t qHash(EditorTool tool, size_t seed = 0) noexcept
{
    return qHash(int(tool), seed);
}
