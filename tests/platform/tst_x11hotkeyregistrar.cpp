// Grabs real shortcuts on a private Xvfb and presses them through XTEST (xdotool).
#include "TestMain.h"
#include "X11HotKeyRegistrar.h"

#include "settings/KeyTable.h"

#include <QGuiApplication>
#include <QProcess>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

using namespace Qt::StringLiterals;

namespace {
constexpr quint32 signature = 0x5653544c;
constexpr quint32 shiftCommand = keytable::CarbonShift | keytable::CarbonCommand;
constexpr quint32 keyS = 1;
constexpr quint32 keyR = 15;

bool xdotool(const QStringList &arguments)
{
    return QProcess::execute(u"xdotool"_s, arguments) == 0;
}

bool pressKeys(const QString &keys)
{
    return xdotool({u"key"_s, keys});
}

xcb_connection_t *qtConnection()
{
    auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

using Connection = std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)>;

// Another client's connection that grabbed Shift+Super+S exactly (without lock keys), or none when the
// grab failed.
Connection grabAsAnotherClient()
{
    Connection other(xcb_connect(qPrintable(testsupport::xvfb()->display()), nullptr), &xcb_disconnect);
    if (xcb_connection_has_error(other.get()))
        return Connection(nullptr, &xcb_disconnect);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(other.get())).data->root;
    const xcb_keycode_t keycodeOfS = 39;
    const xcb_void_cookie_t grab =
        xcb_grab_key_checked(other.get(), 1, root, 0x41, keycodeOfS, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_generic_error_t *error = xcb_request_check(other.get(), grab);
    if (!error)
        return other;
    std::free(error);
    return Connection(nullptr, &xcb_disconnect);
}
} // namespace

class X11HotKeyRegistrarTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void pressReachesTheHandler_data();
    void pressReachesTheHandler();
    void otherKeysAndUnregisteredKeysDoNotTrigger();
    void keyHeldByAnotherClientFailsAndIsLeftAlone();
    void sameCombinationTwiceIsRefused();
    void grabFollowsAKeyboardMappingChange();

private:
    // A registrar whose presses go to m_received.
    std::unique_ptr<X11HotKeyRegistrar> listeningRegistrar();
    // Presses the repeat shortcut and waits for it: every press sent before it has been handled then.
    bool flushWith(X11HotKeyRegistrar &registrar);

    QList<HotKeyRegistrar::Identifier> m_received;
};

void X11HotKeyRegistrarTest::init()
{
    VISTREL_REQUIRE_X();
    QVERIFY(ChildProcess::exists(u"xdotool"_s));
    m_received.clear();
}

std::unique_ptr<X11HotKeyRegistrar> X11HotKeyRegistrarTest::listeningRegistrar()
{
    auto registrar = std::make_unique<X11HotKeyRegistrar>(qtConnection());
    registrar->installHandler([this](std::optional<HotKeyRegistrar::Identifier> id) { m_received.append(*id); });
    return registrar;
}

bool X11HotKeyRegistrarTest::flushWith(X11HotKeyRegistrar &registrar)
{
    const HotKeyRegistrar::Result marker = registrar.registerHotKey(keyR, shiftCommand, {signature, 99});
    if (marker.status != HotKeyRegistrar::noErr || !pressKeys(u"shift+super+r"_s))
        return false;
    const bool arrived = QTest::qWaitFor([&] { return !m_received.isEmpty() && m_received.last().id == 99; });
    registrar.unregisterHotKey(marker.handle);
    if (arrived)
        m_received.removeLast();
    return arrived;
}

void X11HotKeyRegistrarTest::pressReachesTheHandler_data()
{
    QTest::addColumn<QString>("lockKeys");
    QTest::newRow("no lock key") << QString();
    QTest::newRow("caps lock on") << u"Caps_Lock"_s;
    QTest::newRow("num lock on") << u"Num_Lock"_s;
    QTest::newRow("caps and num lock on") << u"Caps_Lock Num_Lock"_s;
}

void X11HotKeyRegistrarTest::pressReachesTheHandler()
{
    QFETCH(QString, lockKeys);
    const auto registrar = listeningRegistrar();
    QCOMPARE(registrar->registerHotKey(keyS, shiftCommand, {signature, 1}).status, HotKeyRegistrar::noErr);

    const QStringList locks = lockKeys.split(u' ', Qt::SkipEmptyParts);
    for (const QString &lock : locks)
        QVERIFY(pressKeys(lock));
    QVERIFY(pressKeys(u"shift+super+s"_s));
    QTRY_COMPARE(m_received.size(), 1);
    for (const QString &lock : locks)
        QVERIFY(pressKeys(lock));
    QCOMPARE(m_received.first().signature, signature);
    QCOMPARE(m_received.first().id, 1u);
}

void X11HotKeyRegistrarTest::otherKeysAndUnregisteredKeysDoNotTrigger()
{
    const auto registrar = listeningRegistrar();
    const HotKeyRegistrar::Result result = registrar->registerHotKey(keyS, shiftCommand, {signature, 1});
    QCOMPARE(result.status, HotKeyRegistrar::noErr);
    for (const QString &keys : {u"super+s"_s, u"ctrl+shift+s"_s, u"shift+super+alt+s"_s, u"shift+super+d"_s})
        QVERIFY(pressKeys(keys));
    QVERIFY(flushWith(*registrar));
    QVERIFY(m_received.isEmpty());

    registrar->unregisterHotKey(result.handle);
    QVERIFY(pressKeys(u"shift+super+s"_s));
    QVERIFY(flushWith(*registrar));
    QVERIFY(m_received.isEmpty());
    // Released means another client can take it now.
    QVERIFY(grabAsAnotherClient());
}

void X11HotKeyRegistrarTest::keyHeldByAnotherClientFailsAndIsLeftAlone()
{
    const Connection other = grabAsAnotherClient();
    QVERIFY(other);
    const auto registrar = listeningRegistrar();
    // BadAccess
    QCOMPARE(registrar->registerHotKey(keyS, shiftCommand, {signature, 1}).status, HotKeyRegistrar::Status(10));

    // The lock-key variants we did get were given back: with Caps Lock on, nobody takes the press.
    QVERIFY(pressKeys(u"Caps_Lock"_s));
    QVERIFY(pressKeys(u"shift+super+s"_s));
    QVERIFY(pressKeys(u"Caps_Lock"_s));
    QVERIFY(flushWith(*registrar));
    QVERIFY(m_received.isEmpty());
}

void X11HotKeyRegistrarTest::sameCombinationTwiceIsRefused()
{
    X11HotKeyRegistrar registrar(qtConnection());
    QCOMPARE(registrar.registerHotKey(keyS, shiftCommand, {signature, 1}).status, HotKeyRegistrar::noErr);
    QCOMPARE(registrar.registerHotKey(keyS, shiftCommand, {signature, 2}).status,
             X11HotKeyRegistrar::eventHotKeyExistsErr);
    QCOMPARE(registrar.registerHotKey(999, shiftCommand, {signature, 2}).status, X11HotKeyRegistrar::paramErr);
}

void X11HotKeyRegistrarTest::grabFollowsAKeyboardMappingChange()
{
    const auto registrar = listeningRegistrar();
    QCOMPARE(registrar->registerHotKey(keyS, shiftCommand, {signature, 1}).status, HotKeyRegistrar::noErr);

    // The letter s moves to another key, as a layout switch would move it.
    QCOMPARE(QProcess::execute(u"xmodmap"_s, {u"-e"_s, u"keycode 39 = NoSymbol"_s, u"-e"_s, u"keycode 250 = s S"_s}), 0);
    auto restore = qScopeGuard([] {
        QProcess::execute(u"xmodmap"_s, {u"-e"_s, u"keycode 250 = NoSymbol"_s, u"-e"_s, u"keycode 39 = s S"_s});
    });
    // Let the mapping change reach us before pressing the moved key.
    QTest::qWait(300);
    QVERIFY(pressKeys(u"shift+super+s"_s));
    QTRY_COMPARE(m_received.size(), 1);
    QCOMPARE(m_received.first().id, 1u);
}

VISTREL_TEST_MAIN_ON_XVFB(X11HotKeyRegistrarTest, QGuiApplication)
#include "tst_x11hotkeyregistrar.moc"
