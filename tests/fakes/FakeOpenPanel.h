#pragma once

#include "platform/OpenPanel.h"

#include <QList>

class FakeOpenPanel final : public OpenPanel
{
public:
    std::optional<QUrl> runModal(const Request &request) override
    {
        requests.append(request);
        return chosen;
    }

    // What the user picks; nothing is a cancel.
    std::optional<QUrl> chosen;
    QList<Request> requests;
};
