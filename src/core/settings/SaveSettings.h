#pragma once

#include <QString>

class UserDefaults;

// The settings that place and name saved captures, read from the preferences database with their
// defaults, as AppSettings reads them. A capture from the command line reads them here without making
// an AppSettings, which writes back to the database when it is made.
namespace savesettings {

inline const QString saveFolderPathKey = QStringLiteral("VistrelSaveFolderPath");
inline const QString filenamePrefixKey = QStringLiteral("VistrelFilenamePrefix");
inline const QString includeDateKey = QStringLiteral("VistrelIncludeDate");

QString saveFolderPath(const UserDefaults &defaults);
QString filenamePrefix(const UserDefaults &defaults);
bool includeDate(const UserDefaults &defaults);
// The user's Desktop folder, or the home folder when the system names none.
QString defaultSaveFolderPath();

} // namespace savesettings
