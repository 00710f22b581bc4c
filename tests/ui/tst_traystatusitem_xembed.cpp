// The tray icon in a real XEmbed tray (trayer) on a private Xvfb, clicked with xdotool.
#include "TestMain.h"
#include "TrayStatusItem.h"

#include "app/AppDelegate.h"

#include <QApplication>
#include <QMenu>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace {
using Type = StatusItem::ClickEvent::Type;

bool clickAt(QPoint point, int button)
{
    return QProcess::execute(u"xdotool"_s, {u"mousemove"_s, QString::number(point.x()), QString::number(point.y()),
                                            u"click"_s, QString::number(button)}) == 0;
}
} // namespace

class TrayStatusItemXEmbedTest : public QObject
{
    Q_OBJECT

private slots:
    void leftAndRightClicksArriveApart();
};

void TrayStatusItemXEmbedTest::leftAndRightClicksArriveApart()
{
    VISTREL_REQUIRE_X();
    QVERIFY(ChildProcess::exists(u"trayer"_s));
    ChildProcess trayer;
    QVERIFY(trayer.start(u"trayer"_s, {u"--edge"_s, u"top"_s, u"--align"_s, u"left"_s, u"--height"_s, u"32"_s,
                                       u"--widthtype"_s, u"pixel"_s, u"--width"_s, u"200"_s}));
    QTRY_VERIFY_WITH_TIMEOUT(QSystemTrayIcon::isSystemTrayAvailable(), 10000);

    TrayStatusItem item;
    QList<std::optional<StatusItem::ClickEvent>> clicks;
    item.show({u"camera"_s, u"Vistrel"_s, true},
              [&](std::optional<StatusItem::ClickEvent> click) { clicks.append(click); });
    item.setMenu(AppDelegate::statusMenuEntries(), [](StatusItem::Action) {});
    QTRY_VERIFY_WITH_TIMEOUT(!item.trayIcon()->geometry().isEmpty(), 10000);
    const QPoint centre = item.trayIcon()->geometry().center();

    QVERIFY(clickAt(centre, 1));
    QTRY_COMPARE(clicks.size(), 1);
    QVERIFY(clicks[0]);
    QCOMPARE(clicks[0]->type, Type::LeftMouseUp);
    QVERIFY(!clicks[0]->controlHeld);

    QVERIFY(clickAt(centre, 3));
    QTRY_COMPARE(clicks.size(), 2);
    QVERIFY(clicks[1]);
    QCOMPARE(clicks[1]->type, Type::RightMouseUp);
    // Nothing opens by itself: the menu is the core's decision.
    QVERIFY(!item.menu()->isVisible());

    item.popUpMenu();
    QTRY_VERIFY(item.menu()->isVisible());
    QVERIFY(item.menu()->geometry().adjusted(-2, -2, 2, 2).contains(QCursor::pos()));
    QCOMPARE(QProcess::execute(u"xdotool"_s, {u"key"_s, u"Escape"_s}), 0);
    QTRY_VERIFY(!item.menu()->isVisible());
}

VISTREL_TEST_MAIN_ON_XVFB(TrayStatusItemXEmbedTest, QApplication)
#include "tst_traystatusitem_xembed.moc"
