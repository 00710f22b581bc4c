#include "TestMain.h"

namespace testsupport {
namespace {
XvfbServer *currentServer = nullptr;
}

XvfbServer *xvfb()
{
    return currentServer;
}

void setXvfb(XvfbServer *server)
{
    currentServer = server;
}
} // namespace testsupport
