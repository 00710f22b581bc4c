#include "ShortcutSettingsRows.h"

#include "app/SettingsFormTexts.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QToolButton>

ShortcutSettingsRows::ShortcutSettingsRows(SettingsForm &form, SettingsForm::Shortcut shortcut, QWidget *parent)
    : QWidget(parent), m_form(form), m_shortcut(shortcut)
{
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setColumnStretch(1, 1);

    grid->addWidget(new QLabel(SettingsForm::heading(shortcut), this), 0, 0);
    m_display = new QLabel(this);
    m_display->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    grid->addWidget(m_display, 0, 1);

    auto *keyLabel = new QLabel(settingsform::keyFieldLabel, this);
    grid->addWidget(keyLabel, 1, 0);
    m_keyField = new QLineEdit(this);
    m_keyField->setFixedWidth(keyFieldWidth);
    m_keyField->setAlignment(Qt::AlignCenter);
    m_keyField->setAccessibleName(SettingsForm::heading(shortcut) + u' ' + settingsform::keyFieldLabel);
    keyLabel->setBuddy(m_keyField);
    connect(m_keyField, &QLineEdit::textEdited, this, [this](const QString &text) { m_form.editKey(m_shortcut, text); });
    grid->addWidget(m_keyField, 1, 1, Qt::AlignLeft);

    auto *toggles = new QHBoxLayout;
    for (const SettingsForm::ModifierToggle &toggle : SettingsForm::modifierToggles()) {
        auto *button = new QToolButton(this);
        button->setText(toggle.title);
        button->setCheckable(true);
        button->setMinimumWidth(36);
        // "⌘" alone says little when read out; the row it belongs to says which shortcut.
        button->setAccessibleName(SettingsForm::heading(shortcut) + u' ' + toggle.title);
        const ShortcutKeyCombo::Modifier modifier = toggle.modifier;
        connect(button, &QToolButton::toggled, this,
                [this, modifier](bool on) { m_form.setModifier(m_shortcut, modifier, on); });
        m_modifiers.append(button);
        toggles->addWidget(button);
    }
    toggles->addStretch();
    grid->addLayout(toggles, 2, 0, 1, 2);

    m_bindingHeading = new QLabel(settingsform::bindingLabel, this);
    grid->addWidget(m_bindingHeading, 3, 0, Qt::AlignTop);
    m_binding = new QLabel(this);
    m_binding->setWordWrap(true);
    m_binding->setTextFormat(Qt::PlainText);
    m_binding->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_bindingHeading->setBuddy(m_binding);
    grid->addWidget(m_binding, 3, 1);
    refresh();
}

void ShortcutSettingsRows::refresh()
{
    m_display->setText(m_form.displayText(m_shortcut));
    const QString binding = m_form.bindingText(m_shortcut);
    m_binding->setText(binding);
    m_bindingHeading->setHidden(binding.isEmpty());
    m_binding->setHidden(binding.isEmpty());
    const QString key = m_form.keyFieldText(m_shortcut);
    if (m_keyField->text() != key) {
        const QSignalBlocker blocker(m_keyField);
        m_keyField->setText(key);
    }
    const QList<SettingsForm::ModifierToggle> &toggles = SettingsForm::modifierToggles();
    for (qsizetype i = 0; i < toggles.size() && i < m_modifiers.size(); ++i) {
        const QSignalBlocker blocker(m_modifiers.at(i));
        m_modifiers.at(i)->setChecked(m_form.isModifierOn(m_shortcut, toggles.at(i).modifier));
    }
}
