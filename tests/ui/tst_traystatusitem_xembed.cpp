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

    // The tray may still move the icon while it lays out after docking it: click again where it is
    // now until one click has been reported.
    const auto clickUntilReported = [&](int button) {
        const qsizetype before = clicks.size();
        for (int attempt = 0; attempt < 5; ++attempt) {
            if (!clickAt(item.trayIcon()->geometry().center(), button))
                return false;
            if (QTest::qWaitFor([&] { return clicks.size() > before; }, 2000))
                return true;
        }
        return false;
    };
    QVERIFY(clickUntilReported(1));
    QVERIFY(clicks.last());
    QCOMPARE(clicks.last()->type, Type::LeftMouseUp);
    QVERIFY(!clicks.last()->controlHeld);

    QVERIFY(clickUntilReported(3));
    QVERIFY(clicks.last());
    QCOMPARE(clicks.last()->type, Type::RightMouseUp);
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
