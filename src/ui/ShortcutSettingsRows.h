#pragma once

#include "app/SettingsForm.h"

#include <QList>
#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;

// The rows of one capture shortcut in the settings form: its heading with the combination as it
// reads, the key field (60 wide), the four modifier toggles ⌘ ⌥ ⌃ ⇧, and, where the form has one, what
// binds the shortcut (selectable, so a line to paste into the desktop's settings can be copied). Edits
// go to the form; refresh() shows the stored combination again. Main thread.
class ShortcutSettingsRows final : public QWidget
{
    Q_OBJECT

public:
    static constexpr int keyFieldWidth = 60;

    ShortcutSettingsRows(SettingsForm &form, SettingsForm::Shortcut shortcut, QWidget *parent = nullptr);

    void refresh();

    QLabel *displayLabel() const { return m_display; }
    QLineEdit *keyField() const { return m_keyField; }
    QLabel *bindingLabel() const { return m_binding; }
    const QList<QToolButton *> &modifierButtons() const { return m_modifiers; }

private:
    SettingsForm &m_form;
    SettingsForm::Shortcut m_shortcut;
    QLabel *m_display = nullptr;
    QLineEdit *m_keyField = nullptr;
    QLabel *m_bindingHeading = nullptr;
    QLabel *m_binding = nullptr;
    QList<QToolButton *> m_modifiers;
};
