#include "AppcastSoftwareUpdater.h"

#include "platform/Clock.h"
#include "platform/KeyValueStore.h"
#include "platform/Scheduler.h"
#include "platform/SystemLog.h"
#include "platform/UpdateUserDriver.h"
#include "platform/Workspace.h"
#include "update/Appcast.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int transferTimeoutMilliseconds = 30'000;
// Appcasts are a few kilobytes; anything this large is not one.
constexpr qint64 maximumFeedBytes = 4 * 1024 * 1024;

const QString networkFailureText = u"アップデート情報を読み込めませんでした。ネットワーク接続を確認してから、もう一度お試しください。"_s;

} // namespace

QUrl AppcastSoftwareUpdater::configuredFeedURL()
{
    return QUrl(QStringLiteral(VISTREL_UPDATE_FEED_URL));
}

AppcastSoftwareUpdater::AppcastSoftwareUpdater(const Configuration &configuration, const Services &services,
                                               QObject *parent)
    : QObject(parent),
      m_configuration(configuration),
      m_services(services),
      m_network(std::make_unique<QNetworkAccessManager>())
{
}

AppcastSoftwareUpdater::~AppcastSoftwareUpdater()
{
    // A check still running ends quietly: nobody is left to tell.
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
    }
}

std::optional<QString> AppcastSoftwareUpdater::unavailableReason() const
{
    const QUrl &feed = m_configuration.feedURL;
    if (feed.isEmpty() || !feed.isValid() || (feed.scheme() != u"https" && feed.scheme() != u"http"))
        return u"このビルドにはアップデートの配信元が設定されていないため、アップデートを確認できません。"_s;
    return std::nullopt;
}

void AppcastSoftwareUpdater::start()
{
    m_isStarted = true;
    scheduleAutomaticCheck(launchCheckDelay);
}

bool AppcastSoftwareUpdater::canCheckForUpdates() const
{
    return !unavailableReason() && !isChecking();
}

void AppcastSoftwareUpdater::observeCanCheckForUpdates(std::function<void(bool)> observer)
{
    m_observers.append(std::move(observer));
}

bool AppcastSoftwareUpdater::automaticallyChecksForUpdates() const
{
    if (unavailableReason())
        return false;
    const std::optional<QVariant> stored = m_services.store.value(automaticChecksKey);
    return stored && stored->typeId() == QMetaType::Bool ? stored->toBool() : true;
}

void AppcastSoftwareUpdater::setAutomaticallyChecksForUpdates(bool on)
{
    if (unavailableReason())
        return;
    m_services.store.setValue(automaticChecksKey, on);
    m_services.store.sync();
    scheduleAutomaticCheck(launchCheckDelay);
}

std::optional<QDateTime> AppcastSoftwareUpdater::lastUpdateCheckDate() const
{
    const std::optional<QVariant> stored = m_services.store.value(lastCheckTimeKey);
    if (!stored || stored->typeId() != QMetaType::QString)
        return std::nullopt;
    const QDateTime date = QDateTime::fromString(stored->toString(), Qt::ISODateWithMs);
    return date.isValid() ? std::optional(date.toLocalTime()) : std::nullopt;
}

void AppcastSoftwareUpdater::checkForUpdates()
{
    if (const std::optional<QString> reason = unavailableReason()) {
        m_services.systemLog.log(u"Vistrel: アップデートを確認できません: "_s % *reason);
        m_services.userDriver.runModalNotice(u"アップデートを確認できません"_s, *reason);
        return;
    }
    if (!isChecking())
        beginCheck(true);
}

void AppcastSoftwareUpdater::beginCheck(bool userInitiated)
{
    QNetworkRequest request(m_configuration.feedURL);
    request.setTransferTimeout(transferTimeoutMilliseconds);
    request.setHeader(QNetworkRequest::UserAgentHeader, QString(u"Vistrel/"_s % m_configuration.currentDisplayVersion));
    QNetworkReply *reply = m_network->get(request);
    connect(reply, &QNetworkReply::downloadProgress, reply, [reply](qint64 received, qint64) {
        if (received > maximumFeedBytes)
            reply->abort();
    });
    connect(reply, &QNetworkReply::finished, this, [this, reply, userInitiated] { finishCheck(reply, userInitiated); });
    setChecking(reply);
}

void AppcastSoftwareUpdater::finishCheck(QNetworkReply *reply, bool userInitiated)
{
    reply->deleteLater();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    QString error;
    std::optional<appcast::Feed> feed;
    if (reply->error() != QNetworkReply::NoError)
        error = reply->errorString();
    else if (status < 200 || status >= 300)
        error = u"HTTP status %1"_s.arg(status);
    else
        feed = appcast::parse(reply->readAll());
    if (feed) {
        // A check took place: the next automatic one is a day from now. Recorded before the check
        // ends, so whoever watches it ending reads the new date.
        m_services.store.setValue(lastCheckTimeKey, m_services.clock.now().toUTC().toString(Qt::ISODateWithMs));
        m_services.store.sync();
    }
    setChecking(nullptr);
    scheduleAutomaticCheck(automaticCheckInterval);

    if (!error.isEmpty()) {
        reportFailure(error, networkFailureText, userInitiated);
        return;
    }
    if (!feed) {
        reportFailure(u"the feed is not an appcast"_s, u"アップデート情報を読み取れませんでした。"_s, userInitiated);
        return;
    }
    const std::optional<appcast::Item> newest = appcast::newestItem(*feed);
    if (newest && appcast::compareVersions(newest->version, m_configuration.currentVersion) > 0) {
        offer(newest->displayVersion, newest->downloadPage);
        return;
    }
    if (userInitiated)
        m_services.userDriver.runModalNotice(u"最新のバージョンです"_s,
                                             u"Vistrel %1 は入手できる最新のバージョンです。"_s.arg(
                                                 m_configuration.currentDisplayVersion));
}

void AppcastSoftwareUpdater::reportFailure(const QString &reason, const QString &informative, bool userInitiated)
{
    m_services.systemLog.log(u"Vistrel: アップデートの確認に失敗しました: "_s % reason);
    if (userInitiated)
        m_services.userDriver.runModalNotice(u"アップデートを確認できませんでした"_s, informative);
}

void AppcastSoftwareUpdater::offer(const QString &displayVersion, const QUrl &page)
{
    const QString informative = u"Vistrel %1 を入手できます（現在のバージョンは %2）。"_s.arg(
        displayVersion, m_configuration.currentDisplayVersion);
    if (page.isEmpty()) {
        m_services.userDriver.runModalNotice(u"新しいバージョンのVistrelがあります"_s, informative);
        return;
    }
    const bool accepted = m_services.userDriver.runModalOffer(
        u"新しいバージョンのVistrelがあります"_s, informative + u"ダウンロードページを開きますか？"_s,
        u"ダウンロードページを開く"_s, u"あとで"_s);
    if (accepted && !m_services.workspace.openURL(page))
        m_services.systemLog.log(u"Vistrel: ダウンロードページを開けませんでした: "_s % page.toString());
}

void AppcastSoftwareUpdater::scheduleAutomaticCheck(double minimumDelay)
{
    const quint64 generation = ++m_scheduleGeneration;
    if (!m_isStarted || !automaticallyChecksForUpdates())
        return;
    double delay = minimumDelay;
    if (const std::optional<QDateTime> last = lastUpdateCheckDate()) {
        const double since = last->msecsTo(m_services.clock.now()) / 1000.0;
        // A clock set back makes the last check lie in the future: a day from now, then.
        if (since >= 0)
            delay = std::max(minimumDelay, automaticCheckInterval - since);
    }
    m_services.scheduler.postToMainAfter(delay, [this, generation, alive = QPointer<AppcastSoftwareUpdater>(this)] {
        if (!alive || generation != m_scheduleGeneration || isChecking() || !automaticallyChecksForUpdates())
            return;
        beginCheck(false);
    });
}

void AppcastSoftwareUpdater::setChecking(QNetworkReply *reply)
{
    const bool couldCheck = canCheckForUpdates();
    m_reply = reply;
    if (canCheckForUpdates() == couldCheck)
        return;
    for (const std::function<void(bool)> &observer : std::as_const(m_observers))
        observer(canCheckForUpdates());
}
