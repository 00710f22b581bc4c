#include "QtApplicationControl.h"

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QWidget>

class QtApplicationControlTest : public QObject
{
    Q_OBJECT

private slots:
    void agentOutlivesItsLastWindowUntilTerminated();
    void activateBringsOurVisibleWindowForward();
};

void QtApplicationControlTest::agentOutlivesItsLastWindowUntilTerminated()
{
    QtApplicationControl application;
    application.setAccessoryActivationPolicy();
    QWidget window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    bool ranAfterClose = false;
    QTimer::singleShot(0, &window, [&] { window.close(); });
    QTimer::singleShot(100, &window, [&] {
        ranAfterClose = true;
        application.terminate();
    });
    QCOMPARE(QApplication::exec(), 0);
    QVERIFY(ranAfterClose);
}

void QtApplicationControlTest::activateBringsOurVisibleWindowForward()
{
    QtApplicationControl application;
    QWidget hidden;
    QWidget shown;
    shown.show();
    QVERIFY(QTest::qWaitForWindowExposed(&shown));
    // Another window takes the focus and goes away, as a dialog would.
    QWidget other;
    other.show();
    other.activateWindow();
    QTRY_VERIFY(other.isActiveWindow());
    other.hide();
    QTRY_VERIFY(!other.isActiveWindow());
    QVERIFY(!shown.isActiveWindow());

    application.activate();
    QTRY_VERIFY(shown.isActiveWindow());
    QVERIFY(!hidden.isVisible());
}

QTEST_MAIN(QtApplicationControlTest)
#include "tst_qtapplicationcontrol.moc"
