#pragma once

#include "platform/SoftwareUpdater.h"

#include <QList>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <memory>

class Clock;
class KeyValueStore;
class QNetworkAccessManager;
class Scheduler;
class SystemLog;
class UpdateUserDriver;
class Workspace;

// Updates on Linux: reads the Sparkle-format appcast at the feed URL the build was configured with,
// compares the newest release with the running build, and offers to open its download page. Checks
// the user asks for say what they found; automatic checks (at most once a day) speak only when there
// is something new. The last check and the automatic setting live in the preferences store under
// Sparkle's own keys. Without a feed nothing can be checked, and unavailableReason() says so.
// Network failures are messages, never crashes. Main thread.
class AppcastSoftwareUpdater final : public QObject, public SoftwareUpdater
{
    Q_OBJECT

public:
    struct Configuration
    {
        QUrl feedURL;
        // The running build, compared with sparkle:version, and the version users read.
        QString currentVersion;
        QString currentDisplayVersion;
    };
    struct Services
    {
        KeyValueStore &store;
        Scheduler &scheduler;
        Clock &clock;
        Workspace &workspace;
        UpdateUserDriver &userDriver;
        SystemLog &systemLog;
    };

    static inline const QString lastCheckTimeKey = QStringLiteral("SULastCheckTime");
    static inline const QString automaticChecksKey = QStringLiteral("SUEnableAutomaticChecks");
    static constexpr double automaticCheckInterval = 24 * 60 * 60;
    // The first automatic check waits this long after start, so it never slows the start down.
    static constexpr double launchCheckDelay = 10;

    // The feed this build was configured with (VISTREL_UPDATE_FEED_URL); empty when none.
    static QUrl configuredFeedURL();

    AppcastSoftwareUpdater(const Configuration &configuration, const Services &services, QObject *parent = nullptr);
    ~AppcastSoftwareUpdater() override;

    std::optional<QString> unavailableReason() const override;
    void start() override;
    bool canCheckForUpdates() const override;
    void observeCanCheckForUpdates(std::function<void(bool)> observer) override;
    bool automaticallyChecksForUpdates() const override;
    void setAutomaticallyChecksForUpdates(bool on) override;
    std::optional<QDateTime> lastUpdateCheckDate() const override;
    void checkForUpdates() override;

    bool isChecking() const { return m_reply != nullptr; }

private:
    void beginCheck(bool userInitiated);
    void finishCheck(QNetworkReply *reply, bool userInitiated);
    void reportFailure(const QString &reason, const QString &informative, bool userInitiated);
    void offer(const QString &displayVersion, const QUrl &page);
    void scheduleAutomaticCheck(double minimumDelay);
    void setChecking(QNetworkReply *reply);

    Configuration m_configuration;
    Services m_services;
    std::unique_ptr<QNetworkAccessManager> m_network;
    QPointer<QNetworkReply> m_reply;
    QList<std::function<void(bool)>> m_observers;
    bool m_isStarted = false;
    // Scheduled automatic checks from before the latest schedule do nothing.
    quint64 m_scheduleGeneration = 0;
};
