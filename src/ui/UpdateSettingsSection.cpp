#include "UpdateSettingsSection.h"

#include "FormCaption.h"

#include "update/SoftwareUpdateSettingsSection.h"
#include "update/SoftwareUpdaterModel.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

namespace {

QLabel *secondaryValue(QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QPalette colors = label->palette();
    colors.setColor(QPalette::WindowText, colors.color(QPalette::PlaceholderText));
    label->setPalette(colors);
    return label;
}

} // namespace

UpdateSettingsSection::UpdateSettingsSection(SoftwareUpdaterModel &updater, const ApplicationVersion &version,
                                             QWidget *parent)
    : QGroupBox(updatesection::title, parent), m_updater(updater)
{
    auto *grid = new QGridLayout(this);
    grid->setColumnStretch(1, 1);
    m_automatic = new QCheckBox(updatesection::automaticToggle, this);
    connect(m_automatic, &QCheckBox::toggled, this, [this](bool on) { m_updater.setAutomaticallyChecksForUpdates(on); });
    grid->addWidget(m_automatic, 0, 0, 1, 2);

    grid->addWidget(new QLabel(updatesection::lastCheckLabel, this), 1, 0);
    m_lastCheck = secondaryValue(this);
    grid->addWidget(m_lastCheck, 1, 1);
    grid->addWidget(new QLabel(updatesection::versionLabel, this), 2, 0);
    m_version = secondaryValue(this);
    m_version->setText(updatesection::versionDescription(version.shortVersion, version.build));
    grid->addWidget(m_version, 2, 1);

    m_checkNow = new QPushButton(updatesection::checkNowButton, this);
    connect(m_checkNow, &QPushButton::clicked, this, [this] { m_updater.checkForUpdates(); });
    grid->addWidget(m_checkNow, 3, 1, Qt::AlignRight);
    m_unavailable = formcaption::make(QString(), this);
    grid->addWidget(m_unavailable, 4, 0, 1, 2);

    connect(&m_updater, &SoftwareUpdaterModel::canCheckForUpdatesChanged, this, &UpdateSettingsSection::refresh);
    connect(&m_updater, &SoftwareUpdaterModel::automaticallyChecksForUpdatesChanged, this,
            &UpdateSettingsSection::refresh);
    refresh();
}

void UpdateSettingsSection::refresh()
{
    const std::optional<QString> unavailable = m_updater.unavailableReason();
    {
        const QSignalBlocker blocker(m_automatic);
        m_automatic->setChecked(m_updater.automaticallyChecksForUpdates());
    }
    m_automatic->setEnabled(!unavailable);
    // A check ends with canCheckForUpdates coming back: the date is read again then.
    m_lastCheck->setText(updatesection::lastCheckDescription(m_updater.lastUpdateCheckDate()));
    m_checkNow->setEnabled(m_updater.canCheckForUpdates() && !unavailable);
    m_unavailable->setText(unavailable.value_or(QString()));
    m_unavailable->setVisible(unavailable.has_value());
}
