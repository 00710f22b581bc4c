// The updater of a build without Sparkle.framework: nothing can be checked, the settings window says
// why, and a check asked for from the menu says so in the system log.
#include "MacSoftwareUpdater.h"

#include "MacMappings.h"

#include "platform/SoftwareUpdater.h"
#include "platform/SystemLog.h"

using namespace Qt::StringLiterals;

namespace {

class UnavailableSoftwareUpdater final : public SoftwareUpdater
{
public:
    explicit UnavailableSoftwareUpdater(SystemLog &systemLog) : m_systemLog(systemLog) {}

    std::optional<QString> unavailableReason() const override
    {
        return macmappings::updaterUnavailableReason(false, QString(), QString());
    }
    void start() override {}
    bool canCheckForUpdates() const override { return false; }
    void observeCanCheckForUpdates(std::function<void(bool)>) override {}
    bool automaticallyChecksForUpdates() const override { return false; }
    void setAutomaticallyChecksForUpdates(bool) override {}
    std::optional<QDateTime> lastUpdateCheckDate() const override { return std::nullopt; }
    void checkForUpdates() override
    {
        m_systemLog.log(u"Vistrel: アップデートを確認できません: "_s % unavailableReason().value_or(QString()));
    }

private:
    SystemLog &m_systemLog;
};

} // namespace

std::unique_ptr<SoftwareUpdater> makeMacSoftwareUpdater(SystemLog &systemLog)
{
    return std::make_unique<UnavailableSoftwareUpdater>(systemLog);
}
