#pragma once

#include <QString>

class KeyValueStore;
class UserNotifier;

// A notification the user sees at most once: having posted it is remembered in the preferences under its
// key, so later calls, in this run or a later one, stay silent. Owned by the guidance that decides when
// the notice is due; main thread only.
class OnceNotice final
{
public:
    OnceNotice(QString shownKey, QString categoryIdentifier, KeyValueStore &store, UserNotifier &notifier);

    bool wasShown() const;
    // Posts the notification unless it was shown before. Whether it reached the screen is not waited for:
    // every notice also has a place in the settings or a dialog of the desktop that says the same.
    void post(const QString &title, const QString &body);

private:
    QString m_shownKey;
    QString m_categoryIdentifier;
    KeyValueStore &m_store;
    UserNotifier &m_notifier;
};
