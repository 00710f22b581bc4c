#pragma once

#include "platform/OpenPanel.h"

// The file-open panel as Qt's file dialog, filtered by the MIME types asked for. Main thread.
class QtOpenPanel final : public OpenPanel
{
public:
    std::optional<QUrl> runModal(const Request &request) override;
};
