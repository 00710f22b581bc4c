#pragma once

#include "DBusSession.h"
#include "XvfbServer.h"

#include <QTest>

namespace testsupport {
// The X server the test program runs on, or nullptr when Xvfb could not start (the program then runs
// on the offscreen platform, and tests that need X skip).
XvfbServer *xvfb();
void setXvfb(XvfbServer *server);
} // namespace testsupport

// Like QTEST_MAIN, but the application connects to a private Xvfb started before it, and its session
// bus is a private one (Qt would otherwise find the user's, or have libdbus start one that outlives
// the test). Tests that need X begin with VISTREL_REQUIRE_X().
#define VISTREL_TEST_MAIN_ON_XVFB(TestObject, Application)                                                      \
    int main(int argc, char **argv)                                                                            \
    {                                                                                                          \
        XvfbServer server;                                                                                     \
        DBusSession bus;                                                                                       \
        if (bus.isRunning())                                                                                   \
            qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toLocal8Bit());                                  \
        if (server.isRunning()) {                                                                              \
            qputenv("DISPLAY", server.display().toLocal8Bit());                                                \
            qputenv("QT_QPA_PLATFORM", "xcb");                                                                 \
            testsupport::setXvfb(&server);                                                                     \
        }                                                                                                      \
        Application app(argc, argv);                                                                           \
        TestObject test;                                                                                       \
        return QTest::qExec(&test, argc, argv);                                                                \
    }

#define VISTREL_REQUIRE_X()                                                                                    \
    do {                                                                                                       \
        if (!testsupport::xvfb())                                                                              \
            QSKIP("Xvfb could not be started, so there is no X server to test against");                       \
    } while (false)
