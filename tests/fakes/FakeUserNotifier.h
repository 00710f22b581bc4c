#pragma once

#include "platform/UserNotifier.h"

#include <QList>
#include <QStringList>

class FakeUserNotifier final : public UserNotifier
{
public:
    explicit FakeUserNotifier(QStringList *journal = nullptr) : m_journal(journal) {}

    void setResponseHandler(ResponseHandler handler) override { onResponse = std::move(handler); }
    void requestAuthorization(AuthorizationCompletion completion) override
    {
        if (m_journal)
            m_journal->append(QStringLiteral("notifier.requestAuthorization"));
        pendingAuthorization = std::move(completion);
    }
    void setCategories(const QStringList &identifiers) override
    {
        categories = identifiers;
        if (m_journal)
            m_journal->append(QStringLiteral("notifier.setCategories"));
    }
    void add(const Request &request, ErrorCompletion completion) override
    {
        requests.append(request);
        pendingAdds.append(std::move(completion));
    }

    ResponseHandler onResponse;
    AuthorizationCompletion pendingAuthorization;
    QStringList categories;
    QList<Request> requests;
    QList<ErrorCompletion> pendingAdds;

private:
    QStringList *m_journal;
};
