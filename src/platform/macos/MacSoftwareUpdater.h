#pragma once

#include <memory>

class SoftwareUpdater;
class SystemLog;

// The updater of this build. With Sparkle (the build found Sparkle.framework through SPARKLE_DIR) it
// is Sparkle's standard updater controller; without it, an updater that reports updates as unavailable
// and says why. CMake compiles exactly one of the two definitions.
std::unique_ptr<SoftwareUpdater> makeMacSoftwareUpdater(SystemLog &systemLog);
