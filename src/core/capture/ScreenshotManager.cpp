#include "capture/ScreenshotManager.h"

ScreenshotManager::ScreenshotManager(const CaptureServices &services) : m_services(services), m_parts(m_services) {}

ScreenshotManager::~ScreenshotManager() = default;
