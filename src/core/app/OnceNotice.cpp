#include "app/OnceNotice.h"

#include "platform/UserNotifier.h"
#include "settings/UserDefaults.h"

OnceNotice::OnceNotice(QString shownKey, QString categoryIdentifier, KeyValueStore &store, UserNotifier &notifier)
    : m_shownKey(std::move(shownKey)), m_categoryIdentifier(std::move(categoryIdentifier)), m_store(store),
      m_notifier(notifier)
{
}

bool OnceNotice::wasShown() const
{
    return UserDefaults(m_store).boolValue(m_shownKey);
}

void OnceNotice::post(const QString &title, const QString &body)
{
    if (wasShown())
        return;
    m_notifier.add({m_shownKey, title, body, m_categoryIdentifier, false, 0}, [](std::optional<QString>) {});
    UserDefaults defaults(m_store);
    defaults.setBool(m_shownKey, true);
    defaults.synchronize();
}
