// sway's layout tree read as the window list, from trees recorded on a headless sway 1.7 (two outputs:
// 1280x720 at 0,0 and 1920x1080 at scale 2 beside it), and the IPC request failing as a value; KWin's
// script report read the same way.
#include "KWinWindowList.h"
#include "SwayIpc.h"
#include "SwayTree.h"

#include <QFile>
#include <QRect>
#include <QTemporaryDir>
#include <QTest>

#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const swaytree::Identity identity{u"vistrel"_s, u"Vistrel"_s};
const QRect firstOutput(0, 0, 1280, 720);

QByteArray recordedTree(const QString &name)
{
    QFile file(QStringLiteral(SWAY_TREES "/sway-tree-%1.json").arg(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// "owner#id x,y wxh", front to back.
QStringList describe(const QList<WindowList::Entry> &entries)
{
    QStringList lines;
    for (const WindowList::Entry &entry : entries) {
        const QRectF r = entry.bounds.value_or(Rect()).toQRectF();
        lines << u"%1#%2 %3,%4 %5x%6"_s.arg(entry.ownerName.value_or(u"-"_s))
                     .arg(entry.number.value_or(0))
                     .arg(r.x())
                     .arg(r.y())
                     .arg(r.width())
                     .arg(r.height());
    }
    return lines;
}

} // namespace

class SwayWindowListTest : public QObject
{
    Q_OBJECT

private slots:
    void visibleWindowsFrontToBack_data();
    void visibleWindowsFrontToBack();
    void unreadableTreeIsNoList_data();
    void unreadableTreeIsNoList();
    void silentOrMissingSocketIsNoList();
    void kwinReportFrontToBack_data();
    void kwinReportFrontToBack();
};

void SwayWindowListTest::visibleWindowsFrontToBack_data()
{
    QTest::addColumn<QByteArray>("tree");
    QTest::addColumn<QRect>("primary");
    QTest::addColumn<QStringList>("windows");

    // Ours, then per output: floating top first, then tiles; the hidden workspace and the tab behind
    // are left out. Bounds take in the title bar (25) above sway's rect.
    QTest::newRow("tiles, tabs and floating windows")
        << recordedTree(u"tiles-tabs-floating"_s) << firstOutput
        << QStringList{u"Vistrel#11 640,0 640x720"_s, u"editor#10 0,0 640x720"_s, u"picker#16 1500,200 200x150"_s,
                       u"palette#15 1400,100 400x300"_s, u"tab-b#13 1280,0 960x540"_s};
    QTest::newRow("primary display to the right of the origin")
        << recordedTree(u"tiles-tabs-floating"_s) << QRect(1280, 0, 960, 540)
        << QStringList{u"Vistrel#11 -640,0 640x720"_s, u"editor#10 -1280,0 640x720"_s, u"picker#16 220,200 200x150"_s,
                       u"palette#15 120,100 400x300"_s, u"tab-b#13 0,0 960x540"_s};
    // The stack's two title rows belong to the shown child; a fullscreen window hides the floating ones.
    QTest::newRow("stack and a fullscreen window")
        << recordedTree(u"stack-fullscreen"_s) << firstOutput
        << QStringList{u"terminal#17 0,0 1280x720"_s, u"tab-b#13 1280,0 960x540"_s};
    // Our fullscreen overlay joined the stack: the child focused before it still counts as shown.
    QTest::newRow("our fullscreen overlay hides nothing")
        << recordedTree(u"own-overlay"_s) << firstOutput
        << QStringList{u"Vistrel#19 0,0 1280x720"_s, u"editor#10 0,0 1280x720"_s, u"tab-b#13 1280,0 960x540"_s};
    QTest::newRow("Xwayland window by its X11 class, nameless window without owner")
        << R"({"type":"root","nodes":[{"type":"output","name":"HEADLESS-1","current_workspace":"1","nodes":[
               {"type":"workspace","name":"1","layout":"splith","nodes":[
                 {"id":4,"type":"con","shell":"xwayland","app_id":null,"rect":{"x":0,"y":2,"width":640,"height":718},
                  "deco_rect":{"x":0,"y":0,"width":640,"height":2},"window_properties":{"class":"XTerm","instance":"xterm"},
                  "fullscreen_mode":0,"nodes":[]},
                 {"id":5,"type":"con","shell":"xdg_shell","app_id":"","rect":{"x":640,"y":0,"width":640,"height":720},
                  "fullscreen_mode":0,"nodes":[]}]}]}]})"_ba
        << firstOutput << QStringList{u"XTerm#4 0,0 640x720"_s, u"-#5 640,0 640x720"_s};
}

void SwayWindowListTest::visibleWindowsFrontToBack()
{
    QFETCH(QByteArray, tree);
    QFETCH(QRect, primary);
    QVERIFY(!tree.isEmpty());
    const std::optional<QList<WindowList::Entry>> windows = swaytree::windows(tree, primary, identity);
    QVERIFY(windows);
    QTEST(describe(*windows), "windows");
    for (const WindowList::Entry &entry : *windows)
        QCOMPARE(entry.layer, std::optional<qint64>(0));
}

void SwayWindowListTest::unreadableTreeIsNoList_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("cut short") << recordedTree(u"tiles-tabs-floating"_s).left(500);
    QTest::newRow("an array") << "[]"_ba;
    QTest::newRow("a workspace, not the root") << R"({"type":"workspace","nodes":[]})"_ba;
}

void SwayWindowListTest::unreadableTreeIsNoList()
{
    QFETCH(QByteArray, reply);
    QVERIFY(!swaytree::windows(reply, firstOutput, identity));
}

void SwayWindowListTest::silentOrMissingSocketIsNoList()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"ipc.sock"_s);
    QVERIFY(!swayipc::request(path, swayipc::getTree, {}, 300));
    QVERIFY(!swayipc::request(QString(), swayipc::getTree, {}, 300));

    // A listener that accepts and never answers.
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray encoded = path.toLocal8Bit();
    std::memcpy(address.sun_path, encoded.constData(), size_t(encoded.size()));
    QVERIFY(bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0);
    QVERIFY(listen(listener, 1) == 0);
    QVERIFY(!swayipc::request(path, swayipc::getTree, {}, 300));
    close(listener);
}

// Windows as KWin 5.27's script reports them: class, frame, stacking place, and what hides them.
QByteArray kwinWindow(const char *resourceClass, int x, int y, int stackingOrder, const char *extra = "")
{
    return u"{\"resourceClass\":\"%1\",\"x\":%2,\"y\":%3,\"width\":240,\"height\":160,\"stackingOrder\":%4,"
           "\"onCurrentDesktop\":true,\"ordinary\":true%5}"_s.arg(QString::fromUtf8(resourceClass)).arg(x).arg(y)
        .arg(stackingOrder).arg(QString::fromUtf8(extra)).toUtf8();
}

void SwayWindowListTest::kwinReportFrontToBack_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<QRect>("primary");
    QTest::addColumn<QStringList>("windows");
    QTest::addColumn<QList<qint64>>("layers");
    QTest::newRow("ours first, then the top of the stack; hidden ones left out")
        << "["_ba + kwinWindow("kwin_wallpaper", 0, 0, 0) + ","_ba + kwinWindow("drag_source", 520, 280, 1) + ","_ba
               + kwinWindow("vistrel", 0, 0, 6) + ","_ba + kwinWindow("gone", 10, 10, 3, R"(,"minimized":true)")
               + ","_ba + kwinWindow("away", 10, 10, 4, R"(,"onCurrentDesktop":false)") + ","_ba
               + kwinWindow("unmapped", 10, 10, 2, R"(,"hidden":true)") + ","_ba
               + kwinWindow("plasmashell", 0, 680, 5, R"(,"ordinary":false)") + "]"_ba
        << firstOutput
        << QStringList{u"Vistrel#6 0,0 240x160"_s, u"plasmashell#5 0,680 240x160"_s, u"drag_source#1 520,280 240x160"_s,
                       u"kwin_wallpaper#0 0,0 240x160"_s}
        << QList<qint64>{0, 1, 0, 0};
    QTest::newRow("moved to the primary display's corner")
        << "["_ba + kwinWindow("xterm", 1300, 20, 0) + "]"_ba << QRect(1280, 0, 640, 360)
        << QStringList{u"xterm#0 20,20 240x160"_s} << QList<qint64>{0};
}

void SwayWindowListTest::kwinReportFrontToBack()
{
    QFETCH(QByteArray, report);
    QFETCH(QRect, primary);
    const KWinWindowList::Identity kwinIdentity{u"vistrel"_s, u"Vistrel"_s};
    const std::optional<QList<WindowList::Entry>> windows = KWinWindowList::windows(report, primary, kwinIdentity);
    QVERIFY(windows);
    QTEST(describe(*windows), "windows");
    QList<qint64> layers;
    for (const WindowList::Entry &entry : *windows)
        layers << entry.layer.value_or(-1);
    QTEST(layers, "layers");
    QVERIFY(!KWinWindowList::windows(R"({"windows":[]})"_ba, primary, kwinIdentity));
}

QTEST_GUILESS_MAIN(SwayWindowListTest)
#include "tst_swaywindowlist.moc"
