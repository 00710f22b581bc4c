#pragma once

#include "update/UpdateCommands.h"

#include <QDateTime>
#include <QObject>

#include <optional>

class ApplicationControl;
class SoftwareUpdater;

// The observable face of the update framework, used by the menu command and the settings section.
// It owns no update logic. Main thread only.
class SoftwareUpdaterModel final : public QObject, public UpdateCommands
{
    Q_OBJECT

public:
    // Started unless the process runs as a design-time preview (XCODE_RUNNING_FOR_PREVIEWS=1). Built in
    // app/SharedInstances.cpp.
    static SoftwareUpdaterModel &shared();
    static bool startsUpdaterInThisProcess();

    SoftwareUpdaterModel(SoftwareUpdater &updater, ApplicationControl &application, bool startsUpdater);

    bool canCheckForUpdates() const { return m_canCheckForUpdates; }
    bool automaticallyChecksForUpdates() const { return m_automaticallyChecksForUpdates; }
    // Writes through to the framework when it differs from the framework's value.
    void setAutomaticallyChecksForUpdates(bool on);
    std::optional<QDateTime> lastUpdateCheckDate() const;
    std::optional<QString> unavailableReason() const;

    void checkForUpdates() override;

signals:
    void canCheckForUpdatesChanged();
    void automaticallyChecksForUpdatesChanged();

private:
    SoftwareUpdater &m_updater;
    ApplicationControl &m_application;
    bool m_canCheckForUpdates = false;
    bool m_automaticallyChecksForUpdates = false;
};
