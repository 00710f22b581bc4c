#pragma once

#include <QString>

// The texts of the editor's toolbar and bottom buttons.
namespace editortoolbartexts {

inline const QString drawMode = QStringLiteral("描画モード");
inline const QString editMode = QStringLiteral("編集モード");
inline const QString undoHelp = QStringLiteral("元に戻す (⌘Z)");
inline const QString redoHelp = QStringLiteral("やり直し (⌘⇧Z)");
inline const QString deleteHelp = QStringLiteral("選択したオーバーレイを削除");
inline const QString undoSymbol = QStringLiteral("arrow.uturn.backward");
inline const QString redoSymbol = QStringLiteral("arrow.uturn.forward");
inline const QString deleteSymbol = QStringLiteral("trash");
inline const QString color = QStringLiteral("色");
inline const QString fill = QStringLiteral("塗り");
inline const QString opacity = QStringLiteral("透過");
inline const QString font = QStringLiteral("フォント");
inline const QString size = QStringLiteral("サイズ");
inline const QString cancel = QStringLiteral("キャンセル");
inline const QString save = QStringLiteral("決定");

} // namespace editortoolbartexts
