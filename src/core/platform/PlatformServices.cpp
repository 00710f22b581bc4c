#include "platform/PlatformServices.h"

#include <QtGlobal>

namespace {
PlatformServices installedServices;
bool isInstalled = false;
} // namespace

void PlatformServices::install(const PlatformServices &services)
{
    installedServices = services;
    isInstalled = true;
}

const PlatformServices &PlatformServices::shared()
{
    if (!isInstalled)
        qFatal("PlatformServices::shared() used before main() installed the platform set");
    return installedServices;
}
