// The rules of the macOS adapters that need no macOS: click kinds, login-item states, the numbers of
// the user defaults, the log folder and the updater's availability.
#include "MacMappings.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

using Type = StatusItem::ClickEvent::Type;
using Status = LoginItemService::Status;
using macmappings::NumberKind;

Q_DECLARE_METATYPE(Type)
Q_DECLARE_METATYPE(Status)
Q_DECLARE_METATYPE(NumberKind)
Q_DECLARE_METATYPE(std::optional<NumberKind>)
Q_DECLARE_METATYPE(std::optional<QString>)

namespace {
// NSEventType values of events that are no mouse-up.
constexpr quint64 leftMouseDown = 1;
constexpr quint64 keyDown = 10;
// NSEventModifierFlags other than Control.
constexpr quint64 shift = quint64(1) << 17;
constexpr quint64 option = quint64(1) << 19;
constexpr quint64 command = quint64(1) << 20;
} // namespace

class MacMappingsTest : public QObject
{
    Q_OBJECT

private slots:
    void clickEventFromTheCurrentEvent_data();
    void clickEventFromTheCurrentEvent();
    void loginItemStatusFromTheServiceStatus_data();
    void loginItemStatusFromTheServiceStatus();
    void storedNumbersKeepTheirKind_data();
    void storedNumbersKeepTheirKind();
    void valuesBecomeNumbersOfTheirKind_data();
    void valuesBecomeNumbersOfTheirKind();
    void diagnosticsFolderIsUnderLibraryLogs_data();
    void diagnosticsFolderIsUnderLibraryLogs();
    void updatesNeedFrameworkFeedAndKey_data();
    void updatesNeedFrameworkFeedAndKey();
};

void MacMappingsTest::clickEventFromTheCurrentEvent_data()
{
    QTest::addColumn<quint64>("eventType");
    QTest::addColumn<quint64>("modifiers");
    QTest::addColumn<Type>("type");
    QTest::addColumn<bool>("controlHeld");
    const quint64 left = macmappings::leftMouseUpEventType;
    const quint64 right = macmappings::rightMouseUpEventType;
    const quint64 control = macmappings::controlModifierFlag;
    QTest::newRow("plain left click") << left << quint64(0) << Type::LeftMouseUp << false;
    QTest::newRow("left click with control") << left << control << Type::LeftMouseUp << true;
    QTest::newRow("control among other modifiers")
        << left << (shift | control | command) << Type::LeftMouseUp << true;
    QTest::newRow("command, shift and option are no control")
        << left << (shift | option | command) << Type::LeftMouseUp << false;
    QTest::newRow("right click") << right << quint64(0) << Type::RightMouseUp << false;
    QTest::newRow("right click with control") << right << control << Type::RightMouseUp << true;
    QTest::newRow("mouse-down is another event") << leftMouseDown << control << Type::Other << true;
    QTest::newRow("a key is another event") << keyDown << quint64(0) << Type::Other << false;
}

void MacMappingsTest::clickEventFromTheCurrentEvent()
{
    QFETCH(quint64, eventType);
    QFETCH(quint64, modifiers);
    QFETCH(Type, type);
    QFETCH(bool, controlHeld);
    const StatusItem::ClickEvent click = macmappings::statusItemClick(eventType, modifiers);
    QCOMPARE(click.type, type);
    QCOMPARE(click.controlHeld, controlHeld);
}

void MacMappingsTest::loginItemStatusFromTheServiceStatus_data()
{
    QTest::addColumn<qint64>("raw");
    QTest::addColumn<Status>("status");
    QTest::newRow("notRegistered") << qint64(0) << Status::NotRegistered;
    QTest::newRow("enabled") << qint64(1) << Status::Enabled;
    QTest::newRow("requiresApproval") << qint64(2) << Status::RequiresApproval;
    QTest::newRow("notFound") << qint64(3) << Status::NotFound;
    QTest::newRow("a status of a later system") << qint64(4) << Status::Unknown;
    QTest::newRow("negative") << qint64(-1) << Status::Unknown;
}

void MacMappingsTest::loginItemStatusFromTheServiceStatus()
{
    QFETCH(qint64, raw);
    QTEST(macmappings::loginItemStatus(raw), "status");
}

void MacMappingsTest::storedNumbersKeepTheirKind_data()
{
    QTest::addColumn<char>("objCType");
    QTest::addColumn<bool>("booleanSingleton");
    QTest::addColumn<NumberKind>("kind");
    QTest::newRow("@YES is a boolean, whatever its type") << 'c' << true << NumberKind::Boolean;
    QTest::newRow("a C++ bool") << 'B' << false << NumberKind::Boolean;
    QTest::newRow("a char that is no boolean is a number") << 'c' << false << NumberKind::SignedInteger;
    QTest::newRow("int") << 'i' << false << NumberKind::SignedInteger;
    QTest::newRow("long long (property-list integers)") << 'q' << false << NumberKind::SignedInteger;
    QTest::newRow("unsigned long long beyond the signed range") << 'Q' << false << NumberKind::UnsignedInteger;
    QTest::newRow("unsigned int") << 'I' << false << NumberKind::UnsignedInteger;
    QTest::newRow("double") << 'd' << false << NumberKind::Real;
    QTest::newRow("float") << 'f' << false << NumberKind::Real;
}

void MacMappingsTest::storedNumbersKeepTheirKind()
{
    QFETCH(char, objCType);
    QFETCH(bool, booleanSingleton);
    QTEST(macmappings::numberKind(objCType, booleanSingleton), "kind");
}

void MacMappingsTest::valuesBecomeNumbersOfTheirKind_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<std::optional<NumberKind>>("kind");
    QTest::newRow("modifier word") << QVariant(quint64(0x120000)) << std::optional(NumberKind::UnsignedInteger);
    QTest::newRow("largest unsigned 64-bit")
        << QVariant(std::numeric_limits<quint64>::max()) << std::optional(NumberKind::UnsignedInteger);
    QTest::newRow("unsigned int") << QVariant(uint(7)) << std::optional(NumberKind::UnsignedInteger);
    QTest::newRow("negative") << QVariant(qint64(-1)) << std::optional(NumberKind::SignedInteger);
    QTest::newRow("int") << QVariant(3) << std::optional(NumberKind::SignedInteger);
    QTest::newRow("false stays a boolean") << QVariant(false) << std::optional(NumberKind::Boolean);
    QTest::newRow("double") << QVariant(0.5) << std::optional(NumberKind::Real);
    QTest::newRow("text is no number") << QVariant(u"S"_s) << std::optional<NumberKind>();
    QTest::newRow("invalid is no number") << QVariant() << std::optional<NumberKind>();
}

void MacMappingsTest::valuesBecomeNumbersOfTheirKind()
{
    QFETCH(QVariant, value);
    QTEST(macmappings::numberKindOf(value), "kind");
}

void MacMappingsTest::diagnosticsFolderIsUnderLibraryLogs_data()
{
    QTest::addColumn<std::optional<QString>>("library");
    QTest::addColumn<QString>("home");
    QTest::addColumn<QString>("folder");
    QTest::newRow("the user's Library") << std::optional(u"/Users/mika/Library"_s) << u"/Users/mika"_s
                                        << u"/Users/mika/Library/Logs/Vistrel"_s;
    QTest::newRow("trailing slash") << std::optional(u"/Users/mika/Library/"_s) << u"/Users/mika"_s
                                    << u"/Users/mika/Library/Logs/Vistrel"_s;
    QTest::newRow("no Library named: the home folder's")
        << std::optional<QString>() << u"/Users/mika"_s << u"/Users/mika/Library/Logs/Vistrel"_s;
    QTest::newRow("an empty name counts as none")
        << std::optional(QString()) << u"/var/root"_s << u"/var/root/Library/Logs/Vistrel"_s;
}

void MacMappingsTest::diagnosticsFolderIsUnderLibraryLogs()
{
    QFETCH(std::optional<QString>, library);
    QFETCH(QString, home);
    QTEST(macmappings::diagnosticsLogFolder(library, home), "folder");
}

void MacMappingsTest::updatesNeedFrameworkFeedAndKey_data()
{
    QTest::addColumn<bool>("framework");
    QTest::addColumn<QString>("feed");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("reasonMentions");
    const QString feed = u"https://example.org/vistrel/appcast.xml"_s;
    const QString key = u"pfIShU4dEXqPd5ObYNfDBiQWcXozk7estwzTnF9BamQ="_s;
    QTest::newRow("everything there") << true << feed << key << QString();
    QTest::newRow("no framework, whatever the bundle says") << false << feed << key << u"Sparkle"_s;
    QTest::newRow("no feed") << true << QString() << key << u"配信元"_s;
    QTest::newRow("blank key") << true << feed << u"  "_s << u"署名鍵"_s;
}

void MacMappingsTest::updatesNeedFrameworkFeedAndKey()
{
    QFETCH(bool, framework);
    QFETCH(QString, feed);
    QFETCH(QString, key);
    QFETCH(QString, reasonMentions);
    const std::optional<QString> reason = macmappings::updaterUnavailableReason(framework, feed, key);
    QCOMPARE(reason.has_value(), !reasonMentions.isEmpty());
    if (reason)
        QVERIFY2(reason->contains(reasonMentions), qPrintable(*reason));
}

QTEST_GUILESS_MAIN(MacMappingsTest)
#include "tst_macmappings.moc"
