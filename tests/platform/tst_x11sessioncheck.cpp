#include "TestMain.h"
#include "X11SessionCheck.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

class X11SessionCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void missingDisplayIsNamed_data();
    void missingDisplayIsNamed();
    void onlyADisplayWithoutServerIsNamed();
};

void X11SessionCheckTest::missingDisplayIsNamed_data()
{
    QTest::addColumn<QString>("display");
    QTest::addColumn<QString>("waylandDisplay");
    QTest::addColumn<QString>("sessionType");
    QTest::addColumn<QString>("message");
    const QString unset = u"DISPLAY is not set: Vistrel needs an X11 display. Start it from an X11 desktop "
                          "session, or set DISPLAY to the display to use (for example DISPLAY=:0)."_s;
    QTest::newRow("X11 session") << u":0"_s << QString() << u"x11"_s << QString();
    QTest::newRow("Wayland session with Xwayland") << u":1"_s << u"wayland-0"_s << u"wayland"_s << QString();
    QTest::newRow("blank DISPLAY counts as unset") << u"  "_s << QString() << u"x11"_s << unset;
    QTest::newRow("Wayland without Xwayland")
        << QString() << u"wayland-0"_s << u"wayland"_s
        << u"Vistrel needs an X11 display, but this is a Wayland-only session (WAYLAND_DISPLAY is set, DISPLAY is "
           "not set). Log in to an X11 session, or enable Xwayland so that DISPLAY is set."_s;
    QTest::newRow("Wayland named only by the session type")
        << QString() << QString() << u"wayland"_s
        << u"Vistrel needs an X11 display, but this is a Wayland-only session (XDG_SESSION_TYPE=wayland, DISPLAY "
           "is not set). Log in to an X11 session, or enable Xwayland so that DISPLAY is set."_s;
    QTest::newRow("text console")
        << QString() << QString() << u"tty"_s
        << u"DISPLAY is not set: Vistrel needs an X11 display, and this is a text console session "
           "(XDG_SESSION_TYPE=tty). Start it from an X11 desktop session."_s;
}

void X11SessionCheckTest::missingDisplayIsNamed()
{
    QFETCH(QString, display);
    QFETCH(QString, waylandDisplay);
    QFETCH(QString, sessionType);
    QFETCH(QString, message);
    QProcessEnvironment environment;
    if (!display.isNull())
        environment.insert(u"DISPLAY"_s, display);
    if (!waylandDisplay.isNull())
        environment.insert(u"WAYLAND_DISPLAY"_s, waylandDisplay);
    if (!sessionType.isNull())
        environment.insert(u"XDG_SESSION_TYPE"_s, sessionType);
    const std::optional<QString> expected = message.isNull() ? std::nullopt : std::optional<QString>(message);
    QCOMPARE(x11session::missingDisplayMessage(environment), expected);
}

void X11SessionCheckTest::onlyADisplayWithoutServerIsNamed()
{
    VISTREL_REQUIRE_X();
    QCOMPARE(x11session::unreachableDisplayMessage(testsupport::xvfb()->display()), std::nullopt);
    // A display number no server uses: its socket does not exist.
    QCOMPARE(x11session::unreachableDisplayMessage(u":4711"_s),
             std::optional<QString>(u"Cannot open the X display \":4711\": no X server answers there, or this user may "
                                    "not connect to it (check DISPLAY and XAUTHORITY)."_s));
}

VISTREL_TEST_MAIN_ON_XVFB(X11SessionCheckTest, QCoreApplication)
#include "tst_x11sessioncheck.moc"
