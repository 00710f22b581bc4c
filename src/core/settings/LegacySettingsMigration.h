#pragma once

class LegacyPreferencesSource;
class SystemLog;
class UserDefaults;

// Copies the settings of an older installation into the database on a first start: only when none of
// the main keys exists yet, and only entries whose key starts with "Vistrel" that the database lacks.
namespace legacymigration {

// Returns the number of entries copied.
int migrateLegacyUserDefaultsIfNeeded(UserDefaults &defaults, const LegacyPreferencesSource *source,
                                      SystemLog &systemLog);

} // namespace legacymigration
