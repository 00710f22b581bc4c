#pragma once

#include "platform/Workspace.h"

#include <QList>

class FakeWorkspace final : public Workspace
{
public:
    bool openURL(const QUrl &url) override
    {
        opened.append(url);
        return true;
    }

    QList<QUrl> opened;
};
