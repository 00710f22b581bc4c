#include "FakeApplicationControl.h"
#include "FakeCustomKeybindingStore.h"
#include "FakeFolderChooser.h"
#include "FakeHotKeyRegistrar.h"
#include "FakeKeyValueStore.h"
#include "FakeLoginItemService.h"
#include "FakeSoftwareUpdater.h"
#include "FakeSystemLog.h"
#include "FakeUserNotifier.h"

#include "ElidedLabel.h"
#include "QtSettingsWindow.h"
#include "SettingsFormWidget.h"
#include "ShortcutSettingsRows.h"

#include "app/ShortcutGuidance.h"
#include "settings/AppSettings.h"
#include "update/SoftwareUpdateSettingsSection.h"
#include "update/SoftwareUpdaterModel.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

const QString loginCaption = u"自動起動アプリケーションとして登録し、ログイン時にVistrelを起動します。"_s;

struct Fixture
{
    FakeKeyValueStore store;
    FakeLoginItemService loginItem;
    FakeSystemLog systemLog;
    AppSettings settings{store, loginItem, systemLog};
    FakeFolderChooser chooser;
    FakeSoftwareUpdater updater;
    FakeApplicationControl application;
    SoftwareUpdaterModel updaterModel{updater, application, false};
    QtSettingsWindow window{{settings, chooser, updaterModel, {u"1.2.0"_s, std::nullopt}, loginCaption}};

    SettingsFormWidget &form() const { return *window.form(); }
    QWidget &widget() const { return *window.widget(); }

    QStringList texts() const
    {
        QStringList texts;
        for (const QGroupBox *box : widget().findChildren<QGroupBox *>())
            texts.append(u"["_s + box->title() + u']');
        for (const QLabel *label : widget().findChildren<QLabel *>())
            texts.append(label->text());
        for (const QAbstractButton *button : widget().findChildren<QAbstractButton *>())
            texts.append(button->text());
        return texts;
    }
};

} // namespace

class QtSettingsWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void windowAndEveryText();
    void shortcutRowsShowTheCombos();
    void savingSection();
    void editorAndLoginToggles();
    void updateSection();
    void framesInTheGlobalSpaceAndClosingHides();
};

void QtSettingsWindowTest::windowAndEveryText()
{
    Fixture f;
    QCOMPARE(f.widget().windowTitle(), u"Vistrel 設定"_s);
    QCOMPARE(f.widget().size(), QSize(560, 860));
    QCOMPARE(f.widget().minimumSize(), QSize(480, 320));
    const QStringList texts = f.texts();
    for (const QString &expected :
         {u"[ショートカット]"_s, u"現在のショートカット"_s, u"繰り返し撮影ショートカット"_s, u"有効なキー"_s, u"⌘"_s,
          u"⌥"_s, u"⌃"_s, u"⇧"_s, u"[保存設定]"_s, u"ファイル名の接頭詞"_s, u"日付をファイル名に付与"_s,
          u"保存先フォルダ"_s, u"変更"_s, u"[編集画面の起動]"_s, u"通知を出してクリックで編集画面を開く"_s,
          u"オン: 通知をクリックで編集画面を開く。"_s, u"自動起動時、既存の編集画面を残して新しい編集画面を開く"_s,
          u"通知経由で開くときはこの設定は使われません。"_s, u"[起動設定]"_s, u"ログイン時に自動起動"_s, loginCaption,
          u"[更新]"_s, u"アップデートを自動的に確認"_s, u"最終確認"_s, u"未確認"_s, u"バージョン"_s,
          u"1.2.0 (不明)"_s, u"今すぐ確認"_s, u"[メモ]"_s,
          u"スクリーンショットは指定フォルダに自動保存され、同時にクリップボードにコピーされます。"_s})
        QVERIFY2(texts.contains(expected), qPrintable(expected));
    QCOMPARE(texts.count(u"有効なキー"_s), 2);
    QCOMPARE(texts.count(u"⌘"_s), 2);
}

void QtSettingsWindowTest::shortcutRowsShowTheCombos()
{
    Fixture f;
    f.widget().show();
    ShortcutSettingsRows *capture = f.form().captureShortcut();
    QCOMPARE(capture->keyField()->width(), 60);
    QCOMPARE(capture->displayLabel()->text(), u"⇧⌘S"_s);
    // ⌘ ⌥ ⌃ ⇧ in order. Typing keys and switching these, each row on its own, the end-to-end test does.
    const QList<QToolButton *> &toggles = capture->modifierButtons();
    QCOMPARE(toggles.size(), 4);
    QVERIFY(toggles.at(0)->isChecked() && !toggles.at(1)->isChecked() && !toggles.at(2)->isChecked()
            && toggles.at(3)->isChecked());
    toggles.at(2)->click();
    QCOMPARE(capture->displayLabel()->text(), u"⌃⇧⌘S"_s);

    // Each row follows the store when it changes elsewhere.
    ShortcutSettingsRows *repeat = f.form().repeatShortcut();
    ShortcutKeyCombo combo = f.settings.repeatHotKeyCombo();
    combo.key = u"J"_s;
    f.settings.setRepeatHotKeyCombo(combo);
    QCOMPARE(repeat->keyField()->text(), u"J"_s);

    // What binds them shows once there is guidance, and follows the registrar.
    QVERIFY(capture->bindingLabel()->isHidden());
    FakeHotKeyRegistrar registrar;
    registrar.currentBinder = HotKeyRegistrar::Binder::Nobody;
    FakeUserNotifier notifier;
    FakeCustomKeybindingStore gnomeKeybindings;
    ShortcutGuidance guidance(registrar, f.settings, notifier, shortcutguidance::Desktop::Sway, &gnomeKeybindings);
    guidance.start();
    f.window.showShortcutBindings(guidance);
    QVERIFY(capture->bindingLabel()->isVisible());
    QVERIFY(f.form().desktopBindingButton()->isHidden());
    QCOMPARE(repeat->bindingLabel()->text(),
             u"未登録: sway の設定に「bindsym Shift+Mod4+j exec vistrel repeat」を追加してください"_s);
    registrar.reportBinder(HotKeyRegistrar::Binder::Portal);
    QCOMPARE(capture->bindingLabel()->text(), u"デスクトップのポータル"_s);

    // On GNOME with nothing binding them, one click binds both there, and the rows say so.
    registrar.currentBinder = HotKeyRegistrar::Binder::Nobody;
    ShortcutGuidance gnome(registrar, f.settings, notifier, shortcutguidance::Desktop::Gnome, &gnomeKeybindings);
    gnome.start();
    f.window.showShortcutBindings(gnome);
    QPushButton *bind = f.form().desktopBindingButton();
    QVERIFY(bind->isVisible());
    QCOMPARE(bind->text(), u"GNOME に登録"_s);
    bind->click();
    QCOMPARE(gnomeKeybindings.writes, 1);
    QCOMPARE(gnomeKeybindings.writtenEntries.value(1).binding, u"<Shift><Super>j"_s);
    QCOMPARE(f.form().desktopBindingStatus()->text(), u"GNOME のカスタムショートカットに登録しました。"_s);
    QCOMPARE(repeat->bindingLabel()->text(), u"GNOME のカスタムショートカット"_s);
    registrar.reportBinder(HotKeyRegistrar::Binder::Portal);
    QVERIFY(bind->isHidden());
}

void QtSettingsWindowTest::savingSection()
{
    Fixture f;
    f.widget().show();
    QTest::keyClicks(f.form().prefixField(), u"Shot"_s);
    QCOMPARE(f.settings.filenamePrefix(), u"VistrelShot"_s);
    f.settings.setFilenamePrefix(u"Elsewhere"_s);
    QCOMPARE(f.form().prefixField()->text(), u"Elsewhere"_s);

    QLineEdit *folder = f.form().folderField();
    folder->clear();
    QTest::keyClicks(folder, u"/tmp/shots"_s);
    QCOMPARE(f.settings.saveFolderPath(), u"/tmp/shots"_s);
    const int syncs = f.store.syncCount;
    QTest::keyClick(folder, Qt::Key_Return);
    QCOMPARE(f.store.syncCount, syncs + 1);
    QCOMPARE(f.form().currentFolderCaption()->fullText(), u"現在の保存先: /tmp/shots"_s);

    // The button asks the chooser (where it starts and what it says, the form's test checks).
    f.chooser.answer = u"/tmp/after"_s;
    f.form().changeFolderButton()->click();
    QCOMPARE(folder->text(), u"/tmp/after"_s);

    // A long path is shortened in the middle; the prefix stays whole.
    const QString deep = u"/home/someone/Pictures/"_s + QString(u"very-long-folder-name/"_s).repeated(12) + u"end"_s;
    f.settings.setSaveFolderPath(deep);
    const QString shown = f.form().currentFolderCaption()->text();
    QVERIFY(shown.startsWith(u"現在の保存先: /home"_s));
    QVERIFY(shown.endsWith(u"end"_s));
    QVERIFY(shown.contains(u'…'));
    QCOMPARE(f.form().currentFolderCaption()->toolTip(), u"現在の保存先: "_s + deep);
}

void QtSettingsWindowTest::editorAndLoginToggles()
{
    // Clicking them, and the notification caption that follows, the end-to-end test does.
    Fixture f;
    f.settings.setOpenEditorViaNotification(false);
    QVERIFY(!f.form().notificationToggle()->isChecked());
    QVERIFY(f.form().keepWindowToggle()->isEnabled());
    QCOMPARE(f.form().keepWindowCaption()->text(), u"オン: 常に新規ウィンドウで開く。オフ: 既存ウィンドウを再利用する。"_s);
    f.settings.setOpenEditorViaNotification(true);
    QVERIFY(f.form().notificationToggle()->isChecked());
    QVERIFY(!f.form().keepWindowToggle()->isEnabled());

    // A refusal leaves the toggle showing what the system says.
    f.loginItem.failure = u"denied"_s;
    f.form().loginToggle()->click();
    QVERIFY(!f.settings.launchAtLoginEnabled());
    QVERIFY(!f.form().loginToggle()->isChecked());
}

void QtSettingsWindowTest::updateSection()
{
    Fixture f;
    UpdateSettingsSection *section = f.form().updateSection();
    QVERIFY(section->automaticToggle()->isChecked());
    section->automaticToggle()->click();
    QVERIFY(!f.updater.automatic);
    QVERIFY(section->checkNowButton()->isEnabled());
    QVERIFY(section->unavailableCaption()->isHidden());

    // While a check runs the button waits; when it ends the date is shown.
    f.updater.setCanCheck(false);
    QVERIFY(!section->checkNowButton()->isEnabled());
    f.updater.lastCheck = QDateTime(QDate(2024, 5, 1), QTime(9, 30));
    f.updater.setCanCheck(true);
    QVERIFY(section->checkNowButton()->isEnabled());
    QCOMPARE(section->lastCheckLabel()->text(), updatesection::lastCheckDescription(f.updater.lastCheck));
    section->checkNowButton()->click();
    QCOMPARE(f.application.activateCount, 1);
}

void QtSettingsWindowTest::framesInTheGlobalSpaceAndClosingHides()
{
    Fixture f;
    f.window.makeKeyAndOrderFront();
    QVERIFY(QTest::qWaitForWindowExposed(&f.widget()));
    const QRect primary = QGuiApplication::primaryScreen()->geometry();
    // y up from the primary display's bottom: a window at the top-left of the display.
    f.window.setFrame(Rect(0, primary.height() - 400, 500, 400));
    QCOMPARE(f.widget().frameGeometry(), QRect(0, 0, 500, 400));
    QCOMPARE(f.window.frame(), Rect(0, primary.height() - 400, 500, 400));
    const std::optional<Rect> visible = f.window.screenVisibleFrame();
    QVERIFY(visible);
    QCOMPARE(visible->height(), double(QGuiApplication::primaryScreen()->availableGeometry().height()));

    // That Ctrl+Q closes it and Vistrel goes on, the end-to-end test shows; which keys close it, the rules' table.
    QVERIFY(f.widget().close());
    QVERIFY(!f.window.isVisible());
    // The same window comes back, as it was left.
    f.settings.setFilenamePrefix(u"Again"_s);
    f.window.makeKeyAndOrderFront();
    QVERIFY(f.window.isVisible());
    QCOMPARE(f.form().prefixField()->text(), u"Again"_s);
}

QTEST_MAIN(QtSettingsWindowTest)
#include "tst_qtsettingswindow.moc"
