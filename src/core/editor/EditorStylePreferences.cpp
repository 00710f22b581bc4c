#include "editor/EditorStylePreferences.h"

#include "editor/SystemColors.h"
#include "settings/UserDefaults.h"

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace editorstyle {

namespace {

std::array<QString, 4> componentKeys(const QString &baseKey)
{
    return {baseKey + u".red"_s, baseKey + u".green"_s, baseKey + u".blue"_s, baseKey + u".alpha"_s};
}

// Writes the components without flushing; false when the colour has no RGB form.
bool writeColor(UserDefaults &defaults, const QColor &color, const QString &baseKey)
{
    if (!color.isValid())
        return false;
    const QColor rgb = color.spec() == QColor::ExtendedRgb ? color : color.toRgb();
    const std::array<QString, 4> keys = componentKeys(baseKey);
    defaults.setDouble(keys[0], rgb.redF());
    defaults.setDouble(keys[1], rgb.greenF());
    defaults.setDouble(keys[2], rgb.blueF());
    defaults.setDouble(keys[3], rgb.alphaF());
    return true;
}

} // namespace

QColor readSavedEditorColor(const UserDefaults &defaults, const QString &baseKey, const QColor &fallback)
{
    const std::array<QString, 4> keys = componentKeys(baseKey);
    std::array<double, 4> components{};
    for (size_t i = 0; i < keys.size(); ++i) {
        if (!defaults.contains(keys[i]))
            return fallback;
        components[i] = defaults.doubleValue(keys[i]);
        if (!std::isfinite(components[i]))
            return fallback;
    }
    // Colour components outside 0 … 1 are kept (an extended-range colour); an alpha outside it has no
    // meaning and is brought into range.
    const double alpha = std::clamp(components[3], 0.0, 1.0);
    return QColor::fromRgbF(float(components[0]), float(components[1]), float(components[2]), float(alpha));
}

void saveEditorColor(UserDefaults &defaults, const QColor &color, const QString &baseKey)
{
    if (writeColor(defaults, color, baseKey))
        defaults.synchronize();
}

QColor savedEditorStrokeColor(const UserDefaults &defaults)
{
    return readSavedEditorColor(defaults, editorStrokeColorDefaultsKey, systemcolors::systemRed());
}

QColor savedEditorTextFillColor(const UserDefaults &defaults)
{
    QColor fallback = systemcolors::systemCyan();
    fallback.setAlphaF(float(savedEditorTextFillOpacity(defaults)));
    return readSavedEditorColor(defaults, editorTextFillColorDefaultsKey, fallback);
}

QColor editorTextFillColor(const UserDefaults &defaults)
{
    return savedEditorTextFillColor(defaults);
}

double savedEditorTextFillOpacity(const UserDefaults &defaults)
{
    if (!defaults.contains(editorTextFillOpacityDefaultsKey))
        return 1.0;
    return normalizeEditorTextFillOpacity(defaults.doubleValue(editorTextFillOpacityDefaultsKey));
}

double clampEditorTextFillOpacity(double opacity)
{
    if (std::isnan(opacity))
        return 1.0;
    return std::min(std::max(opacity, 0.1), 1.0);
}

double normalizeEditorTextFillOpacity(double opacity)
{
    // std::round takes halves away from zero.
    return std::round(clampEditorTextFillOpacity(opacity) * 10) / 10;
}

QColor saveEditorTextFillOpacity(UserDefaults &defaults, double opacity, const QColor &fillColor)
{
    const double normalized = normalizeEditorTextFillOpacity(opacity);
    defaults.setDouble(editorTextFillOpacityDefaultsKey, normalized);
    QColor color = fillColor;
    color.setAlphaF(float(normalized));
    writeColor(defaults, color, editorTextFillColorDefaultsKey);
    defaults.synchronize();
    return color;
}

} // namespace editorstyle
