#pragma once

#include <QString>

// Labels and captions of the settings window, as the user reads them.
namespace settingsform {

inline const QString windowTitle = QStringLiteral("Vistrel 設定");

inline const QString shortcutSection = QStringLiteral("ショートカット");
inline const QString captureShortcutHeading = QStringLiteral("現在のショートカット");
inline const QString repeatShortcutHeading = QStringLiteral("繰り返し撮影ショートカット");
inline const QString keyFieldLabel = QStringLiteral("有効なキー");
inline const QString bindingLabel = QStringLiteral("登録先");
inline const QString desktopBindingButton = QStringLiteral("GNOME に登録");

inline const QString savingSection = QStringLiteral("保存設定");
inline const QString prefixField = QStringLiteral("ファイル名の接頭詞");
inline const QString includeDateToggle = QStringLiteral("日付をファイル名に付与");
inline const QString folderLabel = QStringLiteral("保存先フォルダ");
inline const QString changeFolderButton = QStringLiteral("変更");
inline const QString currentFolderCaptionPrefix = QStringLiteral("現在の保存先: ");
inline const QString folderChooserPrompt = QStringLiteral("選択");

inline const QString editorSection = QStringLiteral("編集画面の起動");
inline const QString notificationToggle = QStringLiteral("通知を出してクリックで編集画面を開く");
inline const QString notificationOnCaption = QStringLiteral("オン: 通知をクリックで編集画面を開く。");
inline const QString notificationOffCaption = QStringLiteral("オフ: 通知を出さずに自動で編集画面を開く。");
inline const QString keepWindowToggle = QStringLiteral("自動起動時、既存の編集画面を残して新しい編集画面を開く");
inline const QString keepWindowUnusedCaption = QStringLiteral("通知経由で開くときはこの設定は使われません。");
inline const QString keepWindowCaption = QStringLiteral("オン: 常に新規ウィンドウで開く。オフ: 既存ウィンドウを再利用する。");

inline const QString startupSection = QStringLiteral("起動設定");
inline const QString loginToggle = QStringLiteral("ログイン時に自動起動");

inline const QString noteSection = QStringLiteral("メモ");
inline const QString noteText = QStringLiteral("スクリーンショットは指定フォルダに自動保存され、同時にクリップボードにコピーされます。");

} // namespace settingsform
