#pragma once

#include "UpdateSettingsSection.h"

#include <QScrollArea>

class AppSettings;
class ElidedLabel;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class SettingsForm;
class ShortcutSettingsRows;
class SoftwareUpdaterModel;

// The settings window's content: the sections of the form, top to bottom, in a scroll area. Every
// control edits one setting through the form (or the store), and the form follows the store live,
// whoever changed it. Main thread.
class SettingsFormWidget final : public QScrollArea
{
    Q_OBJECT

public:
    SettingsFormWidget(AppSettings &settings, SettingsForm &form, SoftwareUpdaterModel &updater,
                       const ApplicationVersion &version, QWidget *parent = nullptr);

    // Shows every setting as the store holds it.
    void refresh();

    ShortcutSettingsRows *captureShortcut() const { return m_capture; }
    ShortcutSettingsRows *repeatShortcut() const { return m_repeat; }
    QPushButton *desktopBindingButton() const { return m_bindOnDesktop; }
    QLabel *desktopBindingStatus() const { return m_bindingStatus; }
    QLineEdit *prefixField() const { return m_prefix; }
    QCheckBox *includeDateToggle() const { return m_includeDate; }
    QPushButton *changeFolderButton() const { return m_changeFolder; }
    QLineEdit *folderField() const { return m_folder; }
    ElidedLabel *currentFolderCaption() const { return m_currentFolder; }
    QCheckBox *notificationToggle() const { return m_notification; }
    QLabel *notificationCaption() const { return m_notificationCaption; }
    QCheckBox *keepWindowToggle() const { return m_keepWindow; }
    QLabel *keepWindowCaption() const { return m_keepWindowCaption; }
    QCheckBox *loginToggle() const { return m_login; }
    UpdateSettingsSection *updateSection() const { return m_update; }

private:
    QWidget *makeShortcutSection();
    QWidget *makeSavingSection();
    QWidget *makeEditorSection();
    QWidget *makeStartupSection();
    QWidget *makeNoteSection();

    AppSettings &m_settings;
    SettingsForm &m_form;
    ShortcutSettingsRows *m_capture = nullptr;
    ShortcutSettingsRows *m_repeat = nullptr;
    QPushButton *m_bindOnDesktop = nullptr;
    QLabel *m_bindingStatus = nullptr;
    QLineEdit *m_prefix = nullptr;
    QCheckBox *m_includeDate = nullptr;
    QPushButton *m_changeFolder = nullptr;
    QLineEdit *m_folder = nullptr;
    ElidedLabel *m_currentFolder = nullptr;
    QCheckBox *m_notification = nullptr;
    QLabel *m_notificationCaption = nullptr;
    QCheckBox *m_keepWindow = nullptr;
    QLabel *m_keepWindowCaption = nullptr;
    QCheckBox *m_login = nullptr;
    UpdateSettingsSection *m_update = nullptr;
};
