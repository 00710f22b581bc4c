#include "TrayStatusItem.h"

#include "CameraIcon.h"
#include "app/AppDelegate.h"

#include <QApplication>
#include <QMenu>
#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(QSystemTrayIcon::ActivationReason)

namespace {
using Action = StatusItem::Action;
using Type = StatusItem::ClickEvent::Type;
} // namespace

class TrayStatusItemTest : public QObject
{
    Q_OBJECT

private slots:
    void menuShowsTheEntriesAndReportsTheirActions();
    void activationBecomesAClick_data();
    void activationBecomesAClick();
    void withoutATrayHostNothingFails();
    void cameraIsDrawnInsideTransparentCorners();
};

void TrayStatusItemTest::menuShowsTheEntriesAndReportsTheirActions()
{
    TrayStatusItem item;
    QList<Action> chosen;
    item.setMenu(AppDelegate::statusMenuEntries(), [&](Action action) { chosen.append(action); });
    QStringList shown;
    for (QAction *action : item.menu()->actions()) {
        QString line = action->isSeparator() ? u"---"_s : action->text();
        if (!action->shortcut().isEmpty())
            line += u"\t"_s + action->shortcut().toString(QKeySequence::PortableText);
        if (action->isCheckable())
            line += u" [check]"_s;
        shown.append(line);
        QVERIFY(action->isShortcutVisibleInContextMenu() || action->isSeparator());
        if (!action->isSeparator())
            action->trigger();
    }
    QCOMPARE(shown, (QStringList{u"スクリーンショットを撮る\tCtrl+S"_s, u"画像を開いて編集...\tCtrl+E"_s,
                                 u"設定...\tCtrl+,"_s, u"アップデートを確認..."_s, u"---"_s,
                                 u"通知を出す [check]"_s, u"---"_s, u"終了\tCtrl+Q"_s}));
    QCOMPARE(chosen, (QList<Action>{Action::TriggerScreenshot, Action::OpenEditorLauncher, Action::ShowSettings,
                                    Action::CheckForUpdates, Action::ToggleOpenEditorViaNotification,
                                    Action::TerminateApp}));

    // The toggle shows the state it is given, also in a menu built again.
    item.setToggleChecked(false);
    QVERIFY(!item.menu()->actions().at(5)->isChecked());
    item.setMenu(AppDelegate::statusMenuEntries(), [](Action) {});
    item.setToggleChecked(true);
    QVERIFY(item.menu()->actions().at(5)->isChecked());
}

void TrayStatusItemTest::activationBecomesAClick_data()
{
    QTest::addColumn<QSystemTrayIcon::ActivationReason>("reason");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<bool>("isClick");
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("controlHeld");
    QTest::newRow("control-left click is a left click with control")
        << QSystemTrayIcon::Trigger << Qt::KeyboardModifiers(Qt::ControlModifier) << true << int(Type::LeftMouseUp)
        << true;
    QTest::newRow("right click") << QSystemTrayIcon::Context << Qt::KeyboardModifiers() << true
                                 << int(Type::RightMouseUp) << false;
    QTest::newRow("second half of a double click is none")
        << QSystemTrayIcon::DoubleClick << Qt::KeyboardModifiers() << false << 0 << false;
}

void TrayStatusItemTest::activationBecomesAClick()
{
    QFETCH(QSystemTrayIcon::ActivationReason, reason);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(bool, isClick);
    const std::optional<StatusItem::ClickEvent> click = trayclick::clickEventFor(reason, modifiers);
    QCOMPARE(click.has_value(), isClick);
    if (!isClick)
        return;
    QFETCH(int, type);
    QFETCH(bool, controlHeld);
    QCOMPARE(int(click->type), type);
    QCOMPARE(click->controlHeld, controlHeld);
}

void TrayStatusItemTest::withoutATrayHostNothingFails()
{
    QVERIFY(!QSystemTrayIcon::isSystemTrayAvailable());
    TrayStatusItem item;
    int clicks = 0;
    item.show({u"camera"_s, u"Vistrel"_s, true}, [&](std::optional<StatusItem::ClickEvent>) { ++clicks; });
    item.popUpMenu();
    item.setMenu(AppDelegate::statusMenuEntries(), [](Action) {});
    item.popUpMenu();
    QTRY_VERIFY(item.menu()->isVisible());
    item.menu()->close();
    QCOMPARE(item.trayIcon()->toolTip(), u"Vistrel"_s);
    QCOMPARE(clicks, 0);
}

void TrayStatusItemTest::cameraIsDrawnInsideTransparentCorners()
{
    for (const int size : {16, 22, 64, 256}) {
        const QImage image = cameraicon::render(size);
        QCOMPARE(image.size(), QSize(size, size));
        QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
        QCOMPARE(qAlpha(image.pixel(size - 1, size - 1)), 0);
        // The lens at the centre is opaque blue.
        const QRgb lens = image.pixel(size / 2, size * 33 / 64);
        QCOMPARE(qAlpha(lens), 255);
        QVERIFY2(qBlue(lens) > qRed(lens) + 60, qPrintable(QString::number(lens, 16)));
    }
}

QTEST_MAIN(TrayStatusItemTest)
#include "tst_traystatusitem.moc"
