#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

#include <optional>

// Texts of the update section of the settings window.
namespace updatesection {

inline const QString title = QStringLiteral("更新");
inline const QString automaticToggle = QStringLiteral("アップデートを自動的に確認");
inline const QString lastCheckLabel = QStringLiteral("最終確認");
inline const QString versionLabel = QStringLiteral("バージョン");
inline const QString checkNowButton = QStringLiteral("今すぐ確認");

// "1.2.0 (42)"; each part missing reads "不明".
QString versionDescription(const std::optional<QString> &shortVersion, const std::optional<QString> &build);
// The date abbreviated with a short time in the given locale, or "未確認" without a check.
QString lastCheckDescription(const std::optional<QDateTime> &lastCheck, const QLocale &locale = QLocale());

} // namespace updatesection
