#include "update/SoftwareUpdateSettingsSection.h"

namespace updatesection {

QString versionDescription(const std::optional<QString> &shortVersion, const std::optional<QString> &build)
{
    const QString unknown = QStringLiteral("不明");
    return shortVersion.value_or(unknown) % u" (" % build.value_or(unknown) % u')';
}

QString lastCheckDescription(const std::optional<QDateTime> &lastCheck, const QLocale &locale)
{
    if (!lastCheck || !lastCheck->isValid())
        return QStringLiteral("未確認");
    return locale.toString(lastCheck->date(), QLocale::ShortFormat) % u' '
        % locale.toString(lastCheck->time(), QLocale::ShortFormat);
}

} // namespace updatesection
