#include "DesktopSession.h"
#include "TestMain.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

using Choice = std::variant<desktopsession::Kind, QString>;
Q_DECLARE_METATYPE(Choice)

class DesktopSessionTest : public QObject
{
    Q_OBJECT

private slots:
    void sessionIsChosen_data();
    void sessionIsChosen();
    void onlyADisplayWithoutServerIsNamed();
};

void DesktopSessionTest::sessionIsChosen_data()
{
    using desktopsession::Kind;
    QTest::addColumn<QString>("display");
    QTest::addColumn<QString>("waylandDisplay");
    QTest::addColumn<QString>("sessionType");
    QTest::addColumn<QString>("forced");
    QTest::addColumn<Choice>("choice");
    const QString neither = u"Neither DISPLAY nor WAYLAND_DISPLAY is set: Vistrel needs a desktop session. Start it "
                            "from one, or set DISPLAY (for example DISPLAY=:0) or WAYLAND_DISPLAY."_s;
    const QString none;
    QTest::newRow("X11 session") << u":0"_s << none << u"x11"_s << none << Choice(Kind::X11);
    // Xwayland's DISPLAY must not win: its grabs see neither the screen nor the keyboard.
    QTest::newRow("Wayland with Xwayland") << u":1"_s << u"wayland-0"_s << u"wayland"_s << none
                                           << Choice(Kind::Wayland);
    QTest::newRow("Wayland socket without session type") << none << u"wayland-1"_s << none << none
                                                         << Choice(Kind::Wayland);
    QTest::newRow("forced X11 under Xwayland") << u":1"_s << u"wayland-0"_s << u"wayland"_s << u"X11"_s
                                               << Choice(Kind::X11);
    QTest::newRow("forced Wayland without a socket")
        << u":0"_s << none << u"x11"_s << u"wayland"_s
        << Choice(u"VISTREL_SESSION=wayland, but WAYLAND_DISPLAY is not set: set it to the compositor's socket (for "
                  "example WAYLAND_DISPLAY=wayland-0)."_s);
    QTest::newRow("forced X11 without a display")
        << none << u"wayland-0"_s << none << u"x11"_s
        << Choice(u"VISTREL_SESSION=x11, but DISPLAY is not set: set DISPLAY to the X display to use (for example "
                  "DISPLAY=:0)."_s);
    QTest::newRow("unknown forced session") << u":0"_s << none << none << u"mir"_s
                                            << Choice(u"VISTREL_SESSION=mir is not a session Vistrel knows: use x11 "
                                                      "or wayland."_s);
    QTest::newRow("blank variables count as unset") << u"  "_s << u" "_s << u"x11"_s << none << Choice(neither);
    QTest::newRow("Wayland named only by the session type")
        << u":0"_s << none << u"wayland"_s << none
        << Choice(u"This is a Wayland session (XDG_SESSION_TYPE=wayland), but WAYLAND_DISPLAY is not set: start "
                  "Vistrel from the desktop session, or set WAYLAND_DISPLAY (for example "
                  "WAYLAND_DISPLAY=wayland-0)."_s);
    QTest::newRow("text console") << none << none << u"tty"_s << none
                                  << Choice(u"Neither DISPLAY nor WAYLAND_DISPLAY is set: this is a text console "
                                            "session (XDG_SESSION_TYPE=tty). Start Vistrel from a desktop session."_s);
}

void DesktopSessionTest::sessionIsChosen()
{
    QFETCH(QString, display);
    QFETCH(QString, waylandDisplay);
    QFETCH(QString, sessionType);
    QFETCH(QString, forced);
    QFETCH(Choice, choice);
    QProcessEnvironment environment;
    const std::pair<QString, QString> variables[] = {{u"DISPLAY"_s, display},
                                                     {u"WAYLAND_DISPLAY"_s, waylandDisplay},
                                                     {u"XDG_SESSION_TYPE"_s, sessionType},
                                                     {u"VISTREL_SESSION"_s, forced}};
    for (const auto &[name, value] : variables) {
        if (!value.isNull())
            environment.insert(name, value);
    }
    QVERIFY(desktopsession::choose(environment) == choice);
}

void DesktopSessionTest::onlyADisplayWithoutServerIsNamed()
{
    VISTREL_REQUIRE_X();
    QCOMPARE(desktopsession::unreachableDisplayMessage(testsupport::xvfb()->display()), std::nullopt);
    // A display number no server uses: its socket does not exist.
    QCOMPARE(desktopsession::unreachableDisplayMessage(u":4711"_s),
             std::optional<QString>(u"Cannot open the X display \":4711\": no X server answers there, or this user may "
                                    "not connect to it (check DISPLAY and XAUTHORITY)."_s));
}

VISTREL_TEST_MAIN_ON_XVFB(DesktopSessionTest, QCoreApplication)
#include "tst_desktopsession.moc"
