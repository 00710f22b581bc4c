#include "SettingsFormWidget.h"

#include "ElidedLabel.h"
#include "FormCaption.h"
#include "ShortcutSettingsRows.h"
#include "SymbolIcons.h"

#include "app/SettingsForm.h"
#include "app/SettingsFormTexts.h"
#include "settings/AppSettings.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
namespace texts = settingsform;

namespace {

QGroupBox *section(const QString &title, QWidget *parent)
{
    auto *box = new QGroupBox(title, parent);
    new QVBoxLayout(box);
    return box;
}

void showText(QLineEdit *field, const QString &text)
{
    // Only when it differs, so the caret stays where the user is typing.
    if (field->text() == text)
        return;
    const QSignalBlocker blocker(field);
    field->setText(text);
}

void showChecked(QCheckBox *toggle, bool on)
{
    const QSignalBlocker blocker(toggle);
    toggle->setChecked(on);
}

} // namespace

SettingsFormWidget::SettingsFormWidget(AppSettings &settings, SettingsForm &form, SoftwareUpdaterModel &updater,
                                       const ApplicationVersion &version, QWidget *parent)
    : QScrollArea(parent), m_settings(settings), m_form(form)
{
    auto *content = new QWidget(this);
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(20, 20, 20, 20);
    column->setSpacing(14);
    column->addWidget(makeShortcutSection());
    column->addWidget(makeSavingSection());
    column->addWidget(makeEditorSection());
    column->addWidget(makeStartupSection());
    m_update = new UpdateSettingsSection(updater, version, content);
    column->addWidget(m_update);
    column->addWidget(makeNoteSection());
    column->addStretch();
    setWidget(content);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    for (auto signal : {&AppSettings::hotKeyComboChanged, &AppSettings::repeatHotKeyComboChanged,
                        &AppSettings::saveFolderPathChanged, &AppSettings::filenamePrefixChanged,
                        &AppSettings::includeDateChanged, &AppSettings::openEditorViaNotificationChanged,
                        &AppSettings::keepExistingEditorWindowOnAutoOpenChanged,
                        &AppSettings::launchAtLoginEnabledChanged})
        connect(&m_settings, signal, this, &SettingsFormWidget::refresh);
    connect(&m_form, &SettingsForm::shortcutBindingsChanged, this, &SettingsFormWidget::refresh);
    refresh();
}

QWidget *SettingsFormWidget::makeShortcutSection()
{
    QGroupBox *box = section(texts::shortcutSection, this);
    m_capture = new ShortcutSettingsRows(m_form, SettingsForm::Shortcut::Capture, box);
    m_repeat = new ShortcutSettingsRows(m_form, SettingsForm::Shortcut::Repeat, box);
    box->layout()->addWidget(m_capture);
    box->layout()->addWidget(m_repeat);
    auto *bindRow = new QHBoxLayout;
    m_bindOnDesktop = new QPushButton(texts::desktopBindingButton, box);
    connect(m_bindOnDesktop, &QPushButton::clicked, this, [this] { m_form.bindOnDesktop(); });
    bindRow->addWidget(m_bindOnDesktop);
    m_bindingStatus = formcaption::make(QString(), box);
    bindRow->addWidget(m_bindingStatus, 1);
    qobject_cast<QVBoxLayout *>(box->layout())->addLayout(bindRow);
    return box;
}

QWidget *SettingsFormWidget::makeSavingSection()
{
    QGroupBox *box = section(texts::savingSection, this);
    auto *prefixRow = new QHBoxLayout;
    auto *prefixLabel = new QLabel(texts::prefixField, box);
    m_prefix = new QLineEdit(box);
    m_prefix->setPlaceholderText(texts::prefixField);
    m_prefix->setAccessibleName(texts::prefixField);
    prefixLabel->setBuddy(m_prefix);
    connect(m_prefix, &QLineEdit::textEdited, this, [this](const QString &text) { m_settings.setFilenamePrefix(text); });
    prefixRow->addWidget(prefixLabel);
    prefixRow->addWidget(m_prefix, 1);
    qobject_cast<QVBoxLayout *>(box->layout())->addLayout(prefixRow);

    m_includeDate = new QCheckBox(texts::includeDateToggle, box);
    connect(m_includeDate, &QCheckBox::toggled, this, [this](bool on) { m_settings.setIncludeDate(on); });
    box->layout()->addWidget(m_includeDate);

    auto *folderRow = new QHBoxLayout;
    folderRow->addWidget(new QLabel(texts::folderLabel, box));
    folderRow->addStretch();
    m_changeFolder = new QPushButton(symbolicons::icon(u"folder"_s, style()), texts::changeFolderButton, box);
    connect(m_changeFolder, &QPushButton::clicked, this, [this] { m_form.chooseFolder(); });
    folderRow->addWidget(m_changeFolder);
    qobject_cast<QVBoxLayout *>(box->layout())->addLayout(folderRow);

    m_folder = new QLineEdit(box);
    m_folder->setPlaceholderText(texts::folderLabel);
    m_folder->setAccessibleName(texts::folderLabel);
    m_folder->setInputMethodHints(Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    connect(m_folder, &QLineEdit::textEdited, this, [this](const QString &text) { m_settings.setSaveFolderPath(text); });
    connect(m_folder, &QLineEdit::returnPressed, this, [this] { m_form.commitSaveFolderPath(m_folder->text()); });
    box->layout()->addWidget(m_folder);

    m_currentFolder = new ElidedLabel(box);
    box->layout()->addWidget(m_currentFolder);
    return box;
}

QWidget *SettingsFormWidget::makeEditorSection()
{
    QGroupBox *box = section(texts::editorSection, this);
    m_notification = new QCheckBox(texts::notificationToggle, box);
    connect(m_notification, &QCheckBox::toggled, this,
            [this](bool on) { m_settings.setOpenEditorViaNotification(on); });
    m_notificationCaption = formcaption::make(QString(), box);
    m_keepWindow = new QCheckBox(texts::keepWindowToggle, box);
    connect(m_keepWindow, &QCheckBox::toggled, this,
            [this](bool on) { m_settings.setKeepExistingEditorWindowOnAutoOpen(on); });
    m_keepWindowCaption = formcaption::make(QString(), box);
    for (QWidget *widget : {static_cast<QWidget *>(m_notification), static_cast<QWidget *>(m_notificationCaption),
                            static_cast<QWidget *>(m_keepWindow), static_cast<QWidget *>(m_keepWindowCaption)})
        box->layout()->addWidget(widget);
    return box;
}

QWidget *SettingsFormWidget::makeStartupSection()
{
    QGroupBox *box = section(texts::startupSection, this);
    m_login = new QCheckBox(texts::loginToggle, box);
    connect(m_login, &QCheckBox::toggled, this, [this](bool on) { m_settings.setLaunchAtLoginEnabled(on); });
    box->layout()->addWidget(m_login);
    box->layout()->addWidget(formcaption::make(m_form.loginCaption(), box));
    return box;
}

QWidget *SettingsFormWidget::makeNoteSection()
{
    QGroupBox *box = section(texts::noteSection, this);
    auto *note = new QLabel(texts::noteText, box);
    note->setWordWrap(true);
    box->layout()->addWidget(note);
    return box;
}

void SettingsFormWidget::refresh()
{
    m_capture->refresh();
    m_repeat->refresh();
    m_bindOnDesktop->setVisible(m_form.offersDesktopBinding());
    m_bindOnDesktop->setEnabled(!m_form.isDesktopBindingBusy());
    m_bindingStatus->setText(m_form.desktopBindingStatus());
    m_bindingStatus->setVisible(m_form.offersDesktopBinding());
    showText(m_prefix, m_settings.filenamePrefix());
    showChecked(m_includeDate, m_settings.includeDate());
    showText(m_folder, m_settings.saveFolderPath());
    m_currentFolder->setFullText(m_form.currentFolderCaption(), texts::currentFolderCaptionPrefix.size());
    showChecked(m_notification, m_settings.openEditorViaNotification());
    m_notificationCaption->setText(m_form.notificationCaption());
    showChecked(m_keepWindow, m_settings.keepExistingEditorWindowOnAutoOpen());
    m_keepWindow->setEnabled(m_form.isKeepWindowToggleEnabled());
    m_keepWindowCaption->setText(m_form.keepWindowCaption());
    showChecked(m_login, m_settings.launchAtLoginEnabled());
}
