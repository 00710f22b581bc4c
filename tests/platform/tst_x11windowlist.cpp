// The window list's own reading of X properties, and a real window listed on a private Xvfb (without a
// window manager, so the root's children stand in for the stacking list).
#include "TestMain.h"
#include "X11WindowList.h"

#include <QApplication>
#include <QWidget>

using namespace Qt::StringLiterals;

class X11WindowListTest : public QObject
{
    Q_OBJECT

private slots:
    void ownerIsTheClassOfWmClass_data();
    void ownerIsTheClassOfWmClass();
    void onlyNormalWindowsAndDialogsAreOnLayerZero_data();
    void onlyNormalWindowsAndDialogsAreOnLayerZero();
    void ourWindowIsListedAsVistrel();
};

void X11WindowListTest::ownerIsTheClassOfWmClass_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<std::optional<QString>>("owner");
    QTest::newRow("instance and class") << QByteArray("vistrel\0Vistrel\0", 16) << std::optional<QString>(u"Vistrel"_s);
    QTest::newRow("class without its final zero") << QByteArray("xterm\0XTerm", 11) << std::optional<QString>(u"XTerm"_s);
    QTest::newRow("empty class") << QByteArray("xterm\0\0", 7) << std::optional<QString>();
    QTest::newRow("instance only") << QByteArray("xterm") << std::optional<QString>();
    QTest::newRow("missing") << QByteArray() << std::optional<QString>();
}

void X11WindowListTest::ownerIsTheClassOfWmClass()
{
    QFETCH(QByteArray, value);
    QTEST(X11WindowList::classFromWmClass(value), "owner");
}

void X11WindowListTest::onlyNormalWindowsAndDialogsAreOnLayerZero_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<bool>("layerZero");
    QTest::newRow("normal") << QByteArray("_NET_WM_WINDOW_TYPE_NORMAL") << true;
    QTest::newRow("dialog") << QByteArray("_NET_WM_WINDOW_TYPE_DIALOG") << true;
    QTest::newRow("dock") << QByteArray("_NET_WM_WINDOW_TYPE_DOCK") << false;
    QTest::newRow("desktop") << QByteArray("_NET_WM_WINDOW_TYPE_DESKTOP") << false;
    QTest::newRow("popup menu") << QByteArray("_NET_WM_WINDOW_TYPE_POPUP_MENU") << false;
    QTest::newRow("notification") << QByteArray("_NET_WM_WINDOW_TYPE_NOTIFICATION") << false;
    QTest::newRow("utility") << QByteArray("_NET_WM_WINDOW_TYPE_UTILITY") << false;
}

void X11WindowListTest::onlyNormalWindowsAndDialogsAreOnLayerZero()
{
    QFETCH(QByteArray, type);
    QTEST(X11WindowList::layerForWindowType(type) == 0, "layerZero");
}

void X11WindowListTest::ourWindowIsListedAsVistrel()
{
    VISTREL_REQUIRE_X();
    // The name the application runs under becomes the class of its windows' WM_CLASS.
    QCoreApplication::setApplicationName(u"Vistrel"_s);
    QWidget window;
    window.setGeometry(120, 80, 300, 200);
    window.setWindowOpacity(0.5);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    X11WindowList list(qApp->nativeInterface<QNativeInterface::QX11Application>()->connection());
    const std::optional<QList<WindowList::Entry>> windows = list.onScreenWindows();
    QVERIFY(windows);
    const auto ours = std::find_if(windows->cbegin(), windows->cend(), [&](const WindowList::Entry &entry) {
        return entry.number == qint64(window.winId());
    });
    QVERIFY(ours != windows->cend());
    QCOMPARE(ours->ownerName, std::optional<QString>(u"Vistrel"_s));
    QCOMPARE(ours->bounds, std::optional<Rect>(Rect(120, 80, 300, 200)));
    QCOMPARE(ours->layer.value_or(0), 0);
    QVERIFY(ours->alpha && qAbs(*ours->alpha - 0.5) < 0.01);

    window.hide();
    QTest::qWait(50);
    const std::optional<QList<WindowList::Entry>> after = list.onScreenWindows();
    QVERIFY(std::none_of(after->cbegin(), after->cend(), [&](const WindowList::Entry &entry) {
        return entry.number == qint64(window.winId());
    }));
}

VISTREL_TEST_MAIN_ON_XVFB(X11WindowListTest, QApplication)
#include "tst_x11windowlist.moc"
