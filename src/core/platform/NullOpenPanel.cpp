#include "platform/NullOpenPanel.h"

#include "platform/DiagnosticsLog.h"

using namespace Qt::StringLiterals;

std::optional<QUrl> NullOpenPanel::runModal(const Request &)
{
    m_diagnostics.write(u"open panel not shown: this platform set has no file-open panel"_s);
    return std::nullopt;
}
