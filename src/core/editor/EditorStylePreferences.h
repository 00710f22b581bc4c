#pragma once

#include <QColor>
#include <QString>

class UserDefaults;

// The editor's remembered styles: the last stroke colour, text fill colour and text fill opacity the
// user picked, kept in the preferences database under keys of their own. A colour under base key K is
// four doubles (device RGB, 0 to 1) under K.red, K.green, K.blue and K.alpha. Main thread only.
namespace editorstyle {

inline const QString editorStrokeColorDefaultsKey = QStringLiteral("VistrelEditorStrokeColor");
inline const QString editorTextFillColorDefaultsKey = QStringLiteral("VistrelEditorTextFillColor");
inline const QString editorTextFillOpacityDefaultsKey = QStringLiteral("VistrelEditorTextFillOpacity");

// The colour stored under `baseKey` when all four component keys exist (a stored 0 counts), otherwise
// `fallback`. Components are taken as stored, without clamping.
QColor readSavedEditorColor(const UserDefaults &defaults, const QString &baseKey, const QColor &fallback);
// Writes the four components at once and flushes them to disk. An invalid colour writes nothing.
void saveEditorColor(UserDefaults &defaults, const QColor &color, const QString &baseKey);

// System red unless a stroke colour was saved.
QColor savedEditorStrokeColor(const UserDefaults &defaults);
// The saved text fill colour, or system cyan with the saved opacity as its alpha.
QColor savedEditorTextFillColor(const UserDefaults &defaults);
// The fill colour new text boxes get; the same as savedEditorTextFillColor.
QColor editorTextFillColor(const UserDefaults &defaults);
// The stored opacity brought into range, or 1 when none is stored.
double savedEditorTextFillOpacity(const UserDefaults &defaults);

double clampEditorTextFillOpacity(double opacity);
// Clamped to 0.1 … 1, then rounded to one decimal with halves away from zero (0.25 → 0.3).
double normalizeEditorTextFillOpacity(double opacity);

// A change of the opacity control: stores the normalised opacity and `fillColor` with that alpha as the
// text fill colour. Returns that colour.
QColor saveEditorTextFillOpacity(UserDefaults &defaults, double opacity, const QColor &fillColor);

} // namespace editorstyle
