#pragma once

#include <functional>
#include <memory>

class AppDelegate;
class QCoreApplication;
class SettingsWindow;

// The start of the application on every system, once main() installed its platform set: the controller
// over the process-wide instances (wired in core/app/SharedInstances.cpp). The controller's termination
// runs when the application is about to quit. Main thread.
namespace applaunch {

using SettingsWindowMaker = std::function<std::unique_ptr<SettingsWindow>()>;

std::unique_ptr<AppDelegate> makeDelegate(QCoreApplication &application, SettingsWindowMaker makeSettingsWindow);

} // namespace applaunch
