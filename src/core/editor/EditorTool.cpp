#include "editor/EditorTool.h"

namespace editortool {

const std::array<EditorTool, 6> &allCases()
{
    static const std::array<EditorTool, 6> tools = {EditorTool::Rectangle, EditorTool::Circle,
                                                    EditorTool::Arrow,     EditorTool::Freehand,
                                                    EditorTool::Mosaic,    EditorTool::Text};
    return tools;
}

QString rawValue(EditorTool tool)
{
    switch (tool) {
    case EditorTool::Rectangle:
        return QStringLiteral("四角枠");
    case EditorTool::Circle:
        return QStringLiteral("丸枠");
    case EditorTool::Arrow:
        return QStringLiteral("矢印");
    case EditorTool::Freehand:
        return QStringLiteral("フリーハンド");
    case EditorTool::Mosaic:
        return QStringLiteral("モザイク");
    case EditorTool::Text:
        return QStringLiteral("文字入力");
    }
    return {};
}

std::optional<EditorTool> fromRawValue(const QString &text)
{
    for (EditorTool tool : allCases()) {
        if (rawValue(tool) == text)
            return tool;
    }
    return std::nullopt;
}

} // namespace editortool
