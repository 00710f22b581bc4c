#include "MacMappings.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace macmappings {

StatusItem::ClickEvent statusItemClick(quint64 eventType, quint64 modifierFlags)
{
    using Type = StatusItem::ClickEvent::Type;
    const bool controlHeld = (modifierFlags & controlModifierFlag) != 0;
    switch (eventType) {
    case leftMouseUpEventType: return {Type::LeftMouseUp, controlHeld};
    case rightMouseUpEventType: return {Type::RightMouseUp, controlHeld};
    default: return {Type::Other, controlHeld};
    }
}

LoginItemService::Status loginItemStatus(qint64 appServiceStatus)
{
    using Status = LoginItemService::Status;
    switch (appServiceStatus) {
    case 0: return Status::NotRegistered;
    case 1: return Status::Enabled;
    case 2: return Status::RequiresApproval;
    case 3: return Status::NotFound;
    default: return Status::Unknown;
    }
}

NumberKind numberKind(char objCType, bool isBooleanSingleton)
{
    if (isBooleanSingleton)
        return NumberKind::Boolean;
    switch (objCType) {
    case 'B': return NumberKind::Boolean;
    case 'f':
    case 'd': return NumberKind::Real;
    case 'C':
    case 'S':
    case 'I':
    case 'L':
    case 'Q': return NumberKind::UnsignedInteger;
    default: return NumberKind::SignedInteger;
    }
}

std::optional<NumberKind> numberKindOf(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool: return NumberKind::Boolean;
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::Char:
    case QMetaType::SChar: return NumberKind::SignedInteger;
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UShort:
    case QMetaType::UChar: return NumberKind::UnsignedInteger;
    case QMetaType::Double:
    case QMetaType::Float: return NumberKind::Real;
    default: return std::nullopt;
    }
}

QString diagnosticsLogFolder(const std::optional<QString> &libraryFolder, const QString &homeFolder)
{
    const QString library = libraryFolder && !libraryFolder->isEmpty() ? *libraryFolder
                                                                       : QDir(homeFolder).filePath(u"Library"_s);
    return QDir::cleanPath(library + u"/Logs/Vistrel"_s);
}

std::optional<QString> updaterUnavailableReason(bool hasFramework, const QString &feedURL, const QString &publicEDKey)
{
    if (!hasFramework)
        return u"このビルドにはSparkleが組み込まれていないため、アップデートを確認できません。"_s;
    if (feedURL.trimmed().isEmpty() || publicEDKey.trimmed().isEmpty())
        return u"このビルドにはアップデートの配信元または署名鍵が設定されていないため、アップデートを確認できません。"_s;
    return std::nullopt;
}

QString loginItemCaption()
{
    return u"macOSのログイン項目として登録し、サインイン時にVistrelを起動します。"_s;
}

} // namespace macmappings
