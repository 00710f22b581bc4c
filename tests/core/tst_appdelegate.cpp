#include "FakeApplicationControl.h"
#include "FakeCommands.h"
#include "FakeDiagnosticsLog.h"
#include "FakeDisplayProvider.h"
#include "FakeHotKeyRegistrar.h"
#include "FakeKeyValueStore.h"
#include "FakeLoginItemService.h"
#include "FakeScheduler.h"
#include "FakeSettingsWindow.h"
#include "FakeStatusItem.h"
#include "FakeSystemLog.h"
#include "FakeUserNotifier.h"
#include "TestPrinters.h"

#include "app/AppDelegate.h"
#include "platform/WindowRules.h"
#include "settings/AppSettings.h"

#include <QTest>

using namespace Qt::StringLiterals;
using ClickType = StatusItem::ClickEvent::Type;

namespace {

struct Fixture
{
    QStringList journal;
    FakeDiagnosticsLog diagnostics{&journal};
    FakeApplicationControl application{&journal};
    FakeStatusItem statusItem{&journal};
    FakeHotKeyRegistrar hotKeys;
    FakeUserNotifier notifier{&journal};
    FakeSystemLog systemLog;
    FakeScheduler scheduler;
    FakeDisplayProvider displays;
    FakeKeyValueStore store;
    FakeLoginItemService loginItem;
    AppSettings settings{store, loginItem, systemLog};
    FakeCommands commands;
    FakeSettingsWindow *settingsWindow = nullptr;
    int settingsWindowsMade = 0;
    // A build without a settings window gets none from its factory.
    bool hasSettingsWindow = true;

    AppDelegate delegate{{diagnostics, application, statusItem, hotKeys, notifier, systemLog, scheduler, displays,
                          settings, commands, commands,
                          [this]() -> UpdateCommands & {
                              journal.append(u"updater"_s);
                              return commands;
                          },
                          [this]() -> std::unique_ptr<SettingsWindow> {
                              if (!hasSettingsWindow)
                                  return nullptr;
                              ++settingsWindowsMade;
                              auto window = std::make_unique<FakeSettingsWindow>();
                              settingsWindow = window.get();
                              return window;
                          }}};
};

} // namespace

class AppDelegateTest : public QObject
{
    Q_OBJECT

private slots:
    void launchRunsInOrder();
    void statusItemClicks_data();
    void statusItemClicks();
    void menuActionsReachTheSubsystems();
    void settingsChangeReRegistersAndSyncsTheToggle();
    void refusedAuthorizationIsLogged();
    void notificationResponses();
    void settingsWindowIsFittedWhenShownFromHidden_data();
    void settingsWindowIsFittedWhenShownFromHidden();
    void settingsWithoutAWindowOnlyLog();
    void closeWindowShortcut_data();
    void closeWindowShortcut();
};

void AppDelegateTest::launchRunsInOrder()
{
    Fixture f;
    f.delegate.applicationDidFinishLaunching();
    QCOMPARE(f.journal, (QStringList{u"diagnostics.install"_s, u"application.setAccessory"_s, u"statusItem.show"_s,
                                     u"notifier.requestAuthorization"_s, u"notifier.setCategories"_s, u"updater"_s,
                                     u"diagnostics: applicationDidFinishLaunching completed"_s}));
    QCOMPARE(f.hotKeys.registrations.size(), 2);
    QCOMPARE(f.notifier.categories, QStringList{u"VistrelEditCategory"_s});
    QCOMPARE(f.statusItem.appearance.symbolName, u"camera"_s);
    QCOMPARE(f.statusItem.appearance.accessibilityDescription, u"Vistrel"_s);
    QVERIFY(f.statusItem.appearance.isTemplate);
    QVERIFY(f.statusItem.toggleChecked); // notification mode is on by default

    f.delegate.applicationWillTerminate();
    QVERIFY(f.hotKeys.registrations.isEmpty());
    QVERIFY(f.hotKeys.handlers.isEmpty());
}

void AppDelegateTest::statusItemClicks_data()
{
    QTest::addColumn<std::optional<StatusItem::ClickEvent>>("event");
    QTest::addColumn<bool>("showsMenu");
    using Event = StatusItem::ClickEvent;
    QTest::newRow("no current event counts as primary") << std::optional<Event>() << false;
    QTest::newRow("left click") << std::optional(Event{ClickType::LeftMouseUp, false}) << false;
    QTest::newRow("control-left click") << std::optional(Event{ClickType::LeftMouseUp, true}) << true;
    QTest::newRow("right click") << std::optional(Event{ClickType::RightMouseUp, false}) << true;
    QTest::newRow("other event") << std::optional(Event{ClickType::Other, true}) << false;
}

void AppDelegateTest::statusItemClicks()
{
    QFETCH(std::optional<StatusItem::ClickEvent>, event);
    QFETCH(bool, showsMenu);
    Fixture f;
    f.delegate.applicationDidFinishLaunching();
    // The setting changes behind the menu's back; a secondary click must show the fresh state.
    f.settings.setOpenEditorViaNotification(false);
    f.statusItem.toggleChecked = true;
    f.statusItem.onClick(event);
    QCOMPARE(f.statusItem.popUpCount, showsMenu ? 1 : 0);
    QCOMPARE(f.commands.calls, showsMenu ? QStringList{} : QStringList{u"openEditorLauncher"_s});
    if (showsMenu)
        QVERIFY(!f.statusItem.checkedWhenLastShown);
}

void AppDelegateTest::menuActionsReachTheSubsystems()
{
    Fixture f;
    f.delegate.applicationDidFinishLaunching();
    f.diagnostics.clear();
    f.statusItem.onAction(StatusItem::Action::TriggerScreenshot);
    f.statusItem.onAction(StatusItem::Action::OpenEditorLauncher);
    f.statusItem.onAction(StatusItem::Action::CheckForUpdates);
    f.statusItem.onAction(StatusItem::Action::TerminateApp);
    QCOMPARE(f.diagnostics.lines(), QStringList{u"triggerScreenshot invoked"_s});
    QCOMPARE(f.commands.calls, (QStringList{u"startSelection"_s, u"openEditorLauncher"_s, u"checkForUpdates"_s}));
    QCOMPARE(f.application.terminateCount, 1);

    // The notification toggle flips the setting, saves it, and the menu shows it.
    f.statusItem.onAction(StatusItem::Action::ToggleOpenEditorViaNotification);
    QCOMPARE(f.store.synced.value(u"VistrelOpenEditorViaNotification"_s), QVariant(false));
    f.statusItem.onClick(StatusItem::ClickEvent{ClickType::RightMouseUp, false});
    QVERIFY(!f.statusItem.checkedWhenLastShown);
    f.statusItem.onAction(StatusItem::Action::ToggleOpenEditorViaNotification);
    f.statusItem.onClick(StatusItem::ClickEvent{ClickType::RightMouseUp, false});
    QVERIFY(f.statusItem.checkedWhenLastShown);
}

void AppDelegateTest::settingsChangeReRegistersAndSyncsTheToggle()
{
    Fixture f;
    f.delegate.applicationDidFinishLaunching();
    const int before = f.hotKeys.registerCalls;
    f.settings.setRepeatHotKeyCombo({u"T"_s, ShortcutKeyCombo::Command});
    QCOMPARE(f.hotKeys.registerCalls, before + 2);
    QCOMPARE(f.hotKeys.registrationsFor(2).first().keyCode, quint32(17));
    f.settings.setOpenEditorViaNotification(false);
    QVERIFY(!f.statusItem.toggleChecked);
    // A new capture shortcut is saved, and so registered, only with the save after it.
    f.settings.setHotKeyCombo({u"A"_s, ShortcutKeyCombo::Command});
    QCOMPARE(f.hotKeys.registrationsFor(1).first().keyCode, quint32(1));
    f.settings.setIncludeDate(false);
    QCOMPARE(f.hotKeys.registrationsFor(1).first().keyCode, quint32(0));
    // Each save replaced the shortcuts: one handler and one of each remain, and a press acts once.
    QCOMPARE(f.hotKeys.handlers.size(), 1);
    QCOMPARE(f.hotKeys.registrationsFor(1).size(), 1);
    QCOMPARE(f.hotKeys.registrationsFor(2).size(), 1);
    f.hotKeys.press(HotKeyRegistrar::Identifier{CaptureHotKeys::signature, CaptureHotKeys::captureHotKeyID});
    QCOMPARE(f.commands.calls, QStringList{u"startSelection"_s});
}

void AppDelegateTest::refusedAuthorizationIsLogged()
{
    // The granted and the failed request the end-to-end tests read in the system log.
    Fixture f;
    f.delegate.applicationDidFinishLaunching();
    f.notifier.pendingAuthorization(false, std::nullopt);
    QCOMPARE(f.systemLog.messages(), QStringList{u"Vistrel: ユーザーが通知許可を拒否しました"_s});
    QVERIFY(f.settings.openEditorViaNotification()); // a refusal changes no setting
}

void AppDelegateTest::notificationResponses()
{
    Fixture f;
    f.delegate.applicationDidFinishLaunching();
    f.notifier.onResponse(u"SomethingElse"_s);
    f.notifier.onResponse(u"VistrelEditCategory"_s);
    QVERIFY(f.commands.calls.isEmpty()); // deferred to the main queue
    f.scheduler.runUntilIdle();
    QCOMPARE(f.commands.calls, QStringList{u"openEditor(reuse)"_s});

    // The guidance on binding the shortcuts opens the settings, whose rows then tell what binds them.
    f.notifier.onResponse(u"VistrelShortcutGuidanceCategory"_s);
    QCOMPARE(f.settingsWindowsMade, 0);
    f.scheduler.runUntilIdle();
    QCOMPARE(f.settingsWindowsMade, 1);
    QCOMPARE(f.settingsWindow->orderFrontCount, 1);
    QCOMPARE(f.settingsWindow->shortcutGuidance, &f.delegate.shortcutGuidance());
}

void AppDelegateTest::settingsWindowIsFittedWhenShownFromHidden_data()
{
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<Rect>("windowFrame");
    QTest::addColumn<bool>("windowHasScreen");
    QTest::addColumn<bool>("hasMain");
    QTest::addColumn<bool>("hasScreens");
    QTest::addColumn<Rect>("expected");
    // A window taller than the visible area is shrunk to it: the end-to-end test's short screen.
    QTest::newRow("fits: only centred") << true << Rect(0, 0, 560, 600) << true << true << true << Rect(440, 150, 560, 600);
    QTest::newRow("off-screen window uses the main screen")
        << true << Rect(5000, 5000, 560, 860) << false << true << true << Rect(2440, 205, 560, 860);
    QTest::newRow("no main screen uses the first")
        << true << Rect(5000, 5000, 560, 860) << false << false << true << Rect(3040, 110, 560, 860);
    QTest::newRow("no screen at all leaves the frame")
        << true << Rect(5000, 5000, 560, 860) << false << false << false << Rect(5000, 5000, 560, 860);
    QTest::newRow("a visible window is left where it is")
        << false << Rect(7, 9, 560, 860) << true << true << true << Rect(7, 9, 560, 860);
}

void AppDelegateTest::settingsWindowIsFittedWhenShownFromHidden()
{
    QFETCH(bool, hidden);
    QFETCH(Rect, windowFrame);
    QFETCH(bool, windowHasScreen);
    QFETCH(bool, hasMain);
    QFETCH(bool, hasScreens);
    QFETCH(Rect, expected);
    Fixture f;
    const DisplayInfo mainDisplay{2u, Rect(1440, 0, 2560, 1270), Rect(1440, 0, 2560, 1270), 1};
    const DisplayInfo firstDisplay{1u, Rect(2560, 0, 1520, 1080), Rect(2560, 0, 1520, 1080), 1};
    if (hasMain)
        f.displays.main = mainDisplay;
    if (hasScreens)
        f.displays.displays = {firstDisplay, mainDisplay};
    f.delegate.showSettings();
    QVERIFY(f.settingsWindow);
    f.settingsWindow->visible = !hidden;
    f.settingsWindow->currentFrame = windowFrame;
    // The window's own screen has a menu bar and a dock.
    if (windowHasScreen)
        f.settingsWindow->screenFrame = Rect(0, 25, 1440, 850);
    f.delegate.showSettings();
    QCOMPARE(f.settingsWindow->frame(), expected);
    QVERIFY(f.settingsWindow->isVisible());
    QCOMPARE(f.settingsWindow->orderFrontCount, 2);
    QCOMPARE(f.settingsWindowsMade, 1); // the same window comes back
    QCOMPARE(f.application.activateCount, 2);
}

void AppDelegateTest::settingsWithoutAWindowOnlyLog()
{
    Fixture f;
    f.hasSettingsWindow = false;
    f.delegate.perform(StatusItem::Action::ShowSettings);
    QVERIFY(f.diagnostics.lines().contains(u"showSettings skipped: no settings window in this build"_s));
    QCOMPARE(f.application.activateCount, 0);
    QVERIFY(!f.delegate.settingsWindow());
}

void AppDelegateTest::closeWindowShortcut_data()
{
    QTest::addColumn<bool>("keyDown");
    QTest::addColumn<bool>("command");
    QTest::addColumn<QString>("characters");
    QTest::addColumn<bool>("closes");
    QTest::newRow("command-q") << true << true << u"q"_s << true;
    QTest::newRow("command-shift-q") << true << true << u"Q"_s << true;
    QTest::newRow("q alone") << true << false << u"q"_s << false;
    QTest::newRow("key up") << false << true << u"q"_s << false;
    QTest::newRow("command-w") << true << true << u"w"_s << false;
}

void AppDelegateTest::closeWindowShortcut()
{
    QFETCH(bool, keyDown);
    QFETCH(bool, command);
    QFETCH(QString, characters);
    QFETCH(bool, closes);
    QCOMPARE(windowrules::isCloseWindowShortcut({keyDown, command, characters}), closes);
}

QTEST_GUILESS_MAIN(AppDelegateTest)
#include "tst_appdelegate.moc"
