#include "app/SettingsForm.h"

#include "app/GnomeShortcutBinding.h"
#include "app/SettingsFormTexts.h"
#include "app/ShortcutGuidance.h"
#include "platform/FolderChooser.h"
#include "settings/AppSettings.h"

#include <QTextBoundaryFinder>

SettingsForm::SettingsForm(AppSettings &settings, FolderChooser &folderChooser, QString loginCaption)
    : m_settings(settings), m_folderChooser(folderChooser), m_loginCaption(std::move(loginCaption))
{
}

const QList<SettingsForm::ModifierToggle> &SettingsForm::modifierToggles()
{
    static const QList<ModifierToggle> toggles = {
        {QStringLiteral("⌘"), ShortcutKeyCombo::Command},
        {QStringLiteral("⌥"), ShortcutKeyCombo::Option},
        {QStringLiteral("⌃"), ShortcutKeyCombo::Control},
        {QStringLiteral("⇧"), ShortcutKeyCombo::Shift},
    };
    return toggles;
}

QString SettingsForm::heading(Shortcut shortcut)
{
    return shortcut == Shortcut::Capture ? settingsform::captureShortcutHeading : settingsform::repeatShortcutHeading;
}

ShortcutKeyCombo SettingsForm::combo(Shortcut shortcut) const
{
    return shortcut == Shortcut::Capture ? m_settings.hotKeyCombo() : m_settings.repeatHotKeyCombo();
}

void SettingsForm::setCombo(Shortcut shortcut, const ShortcutKeyCombo &combo)
{
    if (shortcut == Shortcut::Capture)
        m_settings.setHotKeyCombo(combo);
    else
        m_settings.setRepeatHotKeyCombo(combo);
}

QString SettingsForm::displayText(Shortcut shortcut) const
{
    return combo(shortcut).displayText();
}

QString SettingsForm::bindingText(Shortcut shortcut) const
{
    if (!m_guidance)
        return {};
    return m_guidance->bindingText(shortcut == Shortcut::Capture ? shortcutguidance::Command::Select
                                                                 : shortcutguidance::Command::Repeat);
}

void SettingsForm::setShortcutGuidance(const ShortcutGuidance &guidance)
{
    if (m_guidance)
        disconnect(m_guidance, nullptr, this, nullptr);
    m_guidance = &guidance;
    connect(m_guidance, &ShortcutGuidance::binderChanged, this, &SettingsForm::shortcutBindingsChanged);
    emit shortcutBindingsChanged();
}

bool SettingsForm::offersDesktopBinding() const
{
    return m_guidance && m_guidance->desktopBinding();
}

bool SettingsForm::isDesktopBindingBusy() const
{
    const GnomeShortcutBinding *binding = m_guidance ? m_guidance->desktopBinding() : nullptr;
    return binding && binding->state() == GnomeShortcutBinding::State::Binding;
}

QString SettingsForm::desktopBindingStatus() const
{
    const GnomeShortcutBinding *binding = m_guidance ? m_guidance->desktopBinding() : nullptr;
    return binding ? binding->statusText() : QString();
}

void SettingsForm::bindOnDesktop()
{
    if (GnomeShortcutBinding *binding = m_guidance ? m_guidance->desktopBinding() : nullptr)
        binding->bind();
}

QString SettingsForm::keyFieldText(Shortcut shortcut) const
{
    return combo(shortcut).key;
}

void SettingsForm::editKey(Shortcut shortcut, const QString &edited)
{
    // Upper-case first (one letter may become two), then keep the first user-perceived character.
    const QString upper = edited.toUpper();
    QTextBoundaryFinder graphemes(QTextBoundaryFinder::Grapheme, upper);
    const qsizetype end = upper.isEmpty() ? 0 : graphemes.toNextBoundary();
    ShortcutKeyCombo updated = combo(shortcut);
    updated.key = upper.left(end < 0 ? upper.size() : end);
    setCombo(shortcut, updated);
}

bool SettingsForm::isModifierOn(Shortcut shortcut, ShortcutKeyCombo::Modifier modifier) const
{
    return combo(shortcut).has(modifier);
}

void SettingsForm::setModifier(Shortcut shortcut, ShortcutKeyCombo::Modifier modifier, bool on)
{
    ShortcutKeyCombo updated = combo(shortcut);
    updated.set(modifier, on);
    setCombo(shortcut, updated);
}

void SettingsForm::chooseFolder()
{
    if (const std::optional<QString> path =
            m_folderChooser.chooseFolder(m_settings.saveFolderPath(), settingsform::folderChooserPrompt))
        m_settings.setSaveFolderPath(*path);
}

void SettingsForm::commitSaveFolderPath(const QString &path)
{
    m_settings.setSaveFolderPath(path);
}

QString SettingsForm::currentFolderCaption() const
{
    return settingsform::currentFolderCaptionPrefix + m_settings.saveFolderPath();
}

QString SettingsForm::notificationCaption() const
{
    return m_settings.openEditorViaNotification() ? settingsform::notificationOnCaption
                                                  : settingsform::notificationOffCaption;
}

bool SettingsForm::isKeepWindowToggleEnabled() const
{
    return !m_settings.openEditorViaNotification();
}

QString SettingsForm::keepWindowCaption() const
{
    return m_settings.openEditorViaNotification() ? settingsform::keepWindowUnusedCaption
                                                  : settingsform::keepWindowCaption;
}
