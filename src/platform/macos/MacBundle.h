#pragma once

#include <QString>

#include <optional>

// The application's bundle and the user's folders, as Foundation reports them. Plain C++, so the
// platform set can use it; any thread.
namespace macbundle {

// Nothing when the program runs outside an application bundle.
std::optional<QString> bundleIdentifier();
// A text entry of the bundle's Info.plist; nothing when it is missing or not text.
std::optional<QString> infoString(const QString &key);
// The first Library folder of the user domain; nothing when the system names none.
std::optional<QString> userLibraryFolder();
QString homeFolder();

} // namespace macbundle
