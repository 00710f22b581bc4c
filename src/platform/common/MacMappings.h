#pragma once

#include "platform/LoginItemService.h"
#include "platform/StatusItem.h"

#include <QString>
#include <QVariant>

#include <optional>

// The values the macOS adapters read from the system, turned into the core's terms. Plain numbers and
// texts in, so these rules are tested on every system; the Objective-C++ adapters only read the values
// and hand them here.
namespace macmappings {

// NSEventType and NSEventModifierFlags values of the event behind a status-item click.
inline constexpr quint64 leftMouseUpEventType = 2;
inline constexpr quint64 rightMouseUpEventType = 4;
inline constexpr quint64 controlModifierFlag = quint64(1) << 18;

StatusItem::ClickEvent statusItemClick(quint64 eventType, quint64 modifierFlags);

// SMAppServiceStatus: notRegistered 0, enabled 1, requiresApproval 2, notFound 3; anything newer is
// unknown to us.
LoginItemService::Status loginItemStatus(qint64 appServiceStatus);

// The kinds of number a property list or the user defaults hold.
enum class NumberKind { Boolean, SignedInteger, UnsignedInteger, Real };
// An NSNumber's kind from its objCType ("q", "Q", "d"…) and whether it is one of the two boolean
// singletons (kCFBooleanTrue/False).
NumberKind numberKind(char objCType, bool isBooleanSingleton);
// The NSNumber a value becomes when it is stored; nothing when it is no number. Unsigned values stay
// unsigned 64-bit, so a large modifier word never wraps into a negative number.
std::optional<NumberKind> numberKindOf(const QVariant &value);

// ~/Library/Logs/Vistrel: under the user's Library folder, or under "Library" in the home folder when
// the system names none.
QString diagnosticsLogFolder(const std::optional<QString> &libraryFolder, const QString &homeFolder);

// Why update checks cannot work in this build: no Sparkle framework, or no feed or signing key in the
// bundle's Info.plist. Nothing when they can.
std::optional<QString> updaterUnavailableReason(bool hasFramework, const QString &feedURL, const QString &publicEDKey);

// What the settings window says under the login toggle on macOS.
QString loginItemCaption();

} // namespace macmappings
