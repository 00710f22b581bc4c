#include "FakeFolderChooser.h"
#include "FakeKeyValueStore.h"
#include "FakeLoginItemService.h"
#include "FakeSystemLog.h"

#include "app/SettingsForm.h"
#include "app/SettingsFormTexts.h"
#include "settings/AppSettings.h"

#include <QTest>

using namespace Qt::StringLiterals;
using Shortcut = SettingsForm::Shortcut;

namespace {
struct Fixture
{
    FakeKeyValueStore store;
    FakeLoginItemService loginItem;
    FakeSystemLog systemLog;
    AppSettings settings{store, loginItem, systemLog};
    FakeFolderChooser chooser;
    SettingsForm form{settings, chooser, u"caption"_s};
};
} // namespace

class SettingsFormTest : public QObject
{
    Q_OBJECT

private slots:
    void keyEditsKeepOneUpperCaseCharacter_data();
    void keyEditsKeepOneUpperCaseCharacter();
    void modifierTogglesInOrder();
    void folderChooser();
};

void SettingsFormTest::keyEditsKeepOneUpperCaseCharacter_data()
{
    QTest::addColumn<QString>("edit");
    QTest::addColumn<QString>("stored");
    // A typed lower-case letter stored upper-case the end-to-end test shows.
    QTest::newRow("pasted space") << u"space"_s << u"S"_s;
    QTest::newRow("cleared") << QString() << QString();
    QTest::newRow("sharp s upper-cases to two letters first") << u"ß"_s << u"S"_s;
    QTest::newRow("digit") << u"7x"_s << u"7"_s;
    QTest::newRow("combining mark stays with its letter") << u"e\u0301z"_s << u"E\u0301"_s;
}

void SettingsFormTest::keyEditsKeepOneUpperCaseCharacter()
{
    QFETCH(QString, edit);
    QFETCH(QString, stored);
    Fixture f;
    f.form.editKey(Shortcut::Repeat, edit);
    QCOMPARE(f.settings.repeatHotKeyCombo().key, stored);
    QCOMPARE(f.form.keyFieldText(Shortcut::Repeat), stored);
    QCOMPARE(f.store.synced.value(u"VistrelRepeatHotKeyKey"_s), QVariant(stored.trimmed().toUpper()));
}

void SettingsFormTest::modifierTogglesInOrder()
{
    QStringList titles;
    for (const auto &toggle : SettingsForm::modifierToggles())
        titles << toggle.title;
    QCOMPARE(titles, (QStringList{u"⌘"_s, u"⌥"_s, u"⌃"_s, u"⇧"_s}));

    Fixture f;
    f.form.setModifier(Shortcut::Repeat, ShortcutKeyCombo::Option, true);
    f.form.setModifier(Shortcut::Repeat, ShortcutKeyCombo::Command, false);
    QVERIFY(f.form.isModifierOn(Shortcut::Repeat, ShortcutKeyCombo::Option));
    QVERIFY(!f.form.isModifierOn(Shortcut::Repeat, ShortcutKeyCombo::Command));
    QCOMPARE(f.form.displayText(Shortcut::Repeat), u"⌥⇧R"_s);
    QCOMPARE(f.store.synced.value(u"VistrelRepeatHotKeyModifiers"_s),
             QVariant(quint64(ShortcutKeyCombo::Option | ShortcutKeyCombo::Shift)));
}

void SettingsFormTest::folderChooser()
{
    Fixture f;
    f.settings.setSaveFolderPath(u"/home/me/Shots"_s);
    const int syncs = f.store.syncCount;
    f.form.chooseFolder(); // cancelled
    QCOMPARE(f.chooser.lastStartFolder, u"/home/me/Shots"_s);
    QCOMPARE(f.chooser.lastPrompt, u"選択"_s);
    QCOMPARE(f.settings.saveFolderPath(), u"/home/me/Shots"_s);
    QCOMPARE(f.store.syncCount, syncs);
    f.chooser.answer = u"/srv/captures"_s;
    f.form.chooseFolder();
    QCOMPARE(f.settings.saveFolderPath(), u"/srv/captures"_s);
    QCOMPARE(f.store.synced.value(u"VistrelSaveFolderPath"_s), QVariant(u"/srv/captures"_s));
    QCOMPARE(f.form.currentFolderCaption(), u"現在の保存先: /srv/captures"_s);
}

QTEST_GUILESS_MAIN(SettingsFormTest)
#include "tst_settingsform.moc"
