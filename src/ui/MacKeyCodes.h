#pragma once

#include <optional>

// Qt's key numbers as the macOS virtual key codes (US ANSI layout) the core speaks: Escape 53, Space 49,
// letters and digits through the shortcut key table. Nothing for keys without a code.
namespace mackeycodes {

std::optional<int> fromQtKey(int qtKey);

} // namespace mackeycodes
