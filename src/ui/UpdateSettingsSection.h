#pragma once

#include <QGroupBox>
#include <QString>

#include <optional>

class QCheckBox;
class QLabel;
class QPushButton;
class SoftwareUpdaterModel;

// The version of the running application, as its build recorded it; a part it lacks reads "不明".
struct ApplicationVersion
{
    std::optional<QString> shortVersion;
    std::optional<QString> build;
};

// "更新" in the settings form: automatic checks, the last check, the version and "今すぐ確認"
// (disabled while no check can start). Where this build cannot check for updates, it says why and
// its controls are disabled. Follows the updater model. Main thread.
class UpdateSettingsSection final : public QGroupBox
{
    Q_OBJECT

public:
    UpdateSettingsSection(SoftwareUpdaterModel &updater, const ApplicationVersion &version, QWidget *parent = nullptr);

    void refresh();

    QCheckBox *automaticToggle() const { return m_automatic; }
    QLabel *lastCheckLabel() const { return m_lastCheck; }
    QLabel *versionLabel() const { return m_version; }
    QPushButton *checkNowButton() const { return m_checkNow; }
    QLabel *unavailableCaption() const { return m_unavailable; }

private:
    SoftwareUpdaterModel &m_updater;
    QCheckBox *m_automatic = nullptr;
    QLabel *m_lastCheck = nullptr;
    QLabel *m_version = nullptr;
    QPushButton *m_checkNow = nullptr;
    QLabel *m_unavailable = nullptr;
};
