// The updater of a build with Sparkle: SPUStandardUpdaterController with Sparkle's own dialogs. The
// feed (SUFeedURL) and the EdDSA public key (SUPublicEDKey) come from Info.plist; without either the
// updater is not started (Sparkle would show an error at every launch) and reports why.
#include "MacSoftwareUpdater.h"

#include "MacBundle.h"
#include "MacConversions.h"
#include "MacMappings.h"

#include "platform/SoftwareUpdater.h"
#include "platform/SystemLog.h"

#import <Sparkle/Sparkle.h>

#include <QList>

using namespace Qt::StringLiterals;

// Key-value observer of the updater's canCheckForUpdates; tells the observers on the main queue.
@interface VistrelUpdaterObserver : NSObject
@end

@implementation VistrelUpdaterObserver {
@public
    QList<std::function<void(bool)>> _observers;
}

- (void)observeValueForKeyPath:(NSString *)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id> *)change
                       context:(void *)context
{
    SPUUpdater *updater = object;
    const bool canCheck = updater.canCheckForUpdates;
    VistrelUpdaterObserver *observer = self;
    dispatch_async(dispatch_get_main_queue(), ^{
        const QList<std::function<void(bool)>> observers = observer->_observers;
        for (const std::function<void(bool)> &notify : observers)
            notify(canCheck);
    });
}

@end

namespace {

NSString *const canCheckKeyPath = @"canCheckForUpdates";

class SparkleSoftwareUpdater final : public SoftwareUpdater
{
public:
    explicit SparkleSoftwareUpdater(SystemLog &systemLog)
        : m_systemLog(systemLog),
          m_unavailableReason(macmappings::updaterUnavailableReason(
              true, macbundle::infoString(u"SUFeedURL"_s).value_or(QString()),
              macbundle::infoString(u"SUPublicEDKey"_s).value_or(QString()))),
          m_controller([[SPUStandardUpdaterController alloc] initWithStartingUpdater:NO
                                                                     updaterDelegate:nil
                                                                  userDriverDelegate:nil]),
          m_observer([[VistrelUpdaterObserver alloc] init])
    {
        [m_controller.updater addObserver:m_observer forKeyPath:canCheckKeyPath options:NSKeyValueObservingOptionNew
                                  context:nullptr];
    }

    ~SparkleSoftwareUpdater() override
    {
        [m_controller.updater removeObserver:m_observer forKeyPath:canCheckKeyPath];
    }

    std::optional<QString> unavailableReason() const override { return m_unavailableReason; }

    void start() override
    {
        if (m_unavailableReason || m_isStarted)
            return;
        [m_controller startUpdater];
        m_isStarted = true;
    }

    bool canCheckForUpdates() const override { return m_isStarted && m_controller.updater.canCheckForUpdates; }

    void observeCanCheckForUpdates(std::function<void(bool)> observer) override
    {
        m_observer->_observers.append(std::move(observer));
    }

    bool automaticallyChecksForUpdates() const override { return m_controller.updater.automaticallyChecksForUpdates; }

    void setAutomaticallyChecksForUpdates(bool on) override { m_controller.updater.automaticallyChecksForUpdates = on; }

    std::optional<QDateTime> lastUpdateCheckDate() const override
    {
        NSDate *date = m_controller.updater.lastUpdateCheckDate;
        if (!date)
            return std::nullopt;
        return macconversions::fromNSDate(date);
    }

    void checkForUpdates() override
    {
        if (m_unavailableReason) {
            m_systemLog.log(u"Vistrel: アップデートを確認できません: "_s % *m_unavailableReason);
            return;
        }
        [m_controller checkForUpdates:nil];
    }

private:
    SystemLog &m_systemLog;
    const std::optional<QString> m_unavailableReason;
    SPUStandardUpdaterController *m_controller;
    VistrelUpdaterObserver *m_observer;
    bool m_isStarted = false;
};

} // namespace

std::unique_ptr<SoftwareUpdater> makeMacSoftwareUpdater(SystemLog &systemLog)
{
    return std::make_unique<SparkleSoftwareUpdater>(systemLog);
}
