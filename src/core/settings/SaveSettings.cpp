#include "settings/SaveSettings.h"

#include "settings/UserDefaults.h"

#include <QDir>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace savesettings {

QString saveFolderPath(const UserDefaults &defaults)
{
    return defaults.string(saveFolderPathKey).value_or(defaultSaveFolderPath());
}

QString filenamePrefix(const UserDefaults &defaults)
{
    return defaults.string(filenamePrefixKey).value_or(u"Vistrel"_s);
}

bool includeDate(const UserDefaults &defaults)
{
    return defaults.contains(includeDateKey) ? defaults.boolValue(includeDateKey) : true;
}

QString defaultSaveFolderPath()
{
    const QStringList desktops = QStandardPaths::standardLocations(QStandardPaths::DesktopLocation);
    return desktops.isEmpty() ? QDir::homePath() : desktops.first();
}

} // namespace savesettings
