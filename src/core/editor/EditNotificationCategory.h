#pragma once

#include <QString>

// The category of the notification that offers a capture for editing. The editor posts notifications of
// it; the application controller registers it at launch and hands its clicks back to the editor.
namespace editnotification {

inline const QString categoryIdentifier = QStringLiteral("VistrelEditCategory");

} // namespace editnotification
