#include "UnconfiguredSoftwareUpdater.h"

#include "platform/SystemLog.h"

using namespace Qt::StringLiterals;

std::optional<QString> UnconfiguredSoftwareUpdater::unavailableReason() const
{
    return u"no update feed configured"_s;
}

void UnconfiguredSoftwareUpdater::checkForUpdates()
{
    m_systemLog.log(u"Vistrel: アップデートを確認できません: "_s % *unavailableReason());
}
