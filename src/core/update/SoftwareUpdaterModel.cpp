#include "update/SoftwareUpdaterModel.h"

#include "platform/ApplicationControl.h"
#include "platform/SoftwareUpdater.h"

bool SoftwareUpdaterModel::startsUpdaterInThisProcess()
{
    return qEnvironmentVariable("XCODE_RUNNING_FOR_PREVIEWS") != u"1";
}

SoftwareUpdaterModel::SoftwareUpdaterModel(SoftwareUpdater &updater, ApplicationControl &application,
                                           bool startsUpdater)
    : m_updater(updater), m_application(application)
{
    if (startsUpdater)
        m_updater.start();
    m_automaticallyChecksForUpdates = m_updater.automaticallyChecksForUpdates();
    m_canCheckForUpdates = m_updater.canCheckForUpdates();
    m_updater.observeCanCheckForUpdates([this](bool canCheck) {
        m_canCheckForUpdates = canCheck;
        emit canCheckForUpdatesChanged();
    });
}

void SoftwareUpdaterModel::setAutomaticallyChecksForUpdates(bool on)
{
    m_automaticallyChecksForUpdates = on;
    emit automaticallyChecksForUpdatesChanged();
    if (on != m_updater.automaticallyChecksForUpdates())
        m_updater.setAutomaticallyChecksForUpdates(on);
}

std::optional<QDateTime> SoftwareUpdaterModel::lastUpdateCheckDate() const
{
    return m_updater.lastUpdateCheckDate();
}

std::optional<QString> SoftwareUpdaterModel::unavailableReason() const
{
    return m_updater.unavailableReason();
}

void SoftwareUpdaterModel::checkForUpdates()
{
    m_application.activate();
    m_updater.checkForUpdates();
}
