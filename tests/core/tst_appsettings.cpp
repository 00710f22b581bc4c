#include "FakeKeyValueStore.h"
#include "FakeLegacyPreferencesSource.h"
#include "FakeLoginItemService.h"
#include "FakeSystemLog.h"

#include "app/NotificationCenter.h"
#include "settings/AppSettings.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString keyKey = QStringLiteral("VistrelHotKeyKey");
const QString modifiersKey = QStringLiteral("VistrelHotKeyModifiers");
const QString repeatKeyKey = QStringLiteral("VistrelRepeatHotKeyKey");
const QString prefixKey = QStringLiteral("VistrelFilenamePrefix");
const QString folderKey = QStringLiteral("VistrelSaveFolderPath");
const QString includeDateKey = QStringLiteral("VistrelIncludeDate");
const QString notificationKey = QStringLiteral("VistrelOpenEditorViaNotification");
const QString keepWindowKey = QStringLiteral("VistrelKeepExistingEditorWindowOnAutoOpen");
const QString loginKey = QStringLiteral("VistrelLaunchAtLoginEnabled");

// A store, its services, and a count of the change announcements.
struct Fixture
{
    FakeKeyValueStore store;
    FakeLoginItemService loginItem;
    FakeSystemLog systemLog;
    NotificationCenter notifications;
    int announcements = 0;
    // What the database held (as last synced) at each announcement.
    QList<QMap<QString, QVariant>> storedAtAnnouncement;

    std::unique_ptr<AppSettings> make(const LegacyPreferencesSource *legacy = nullptr)
    {
        auto settings = std::make_unique<AppSettings>(store, loginItem, systemLog, notifications, legacy);
        notifications.addObserver(AppSettings::settingsDidChangeNotification, &notifications, [this] {
            ++announcements;
            storedAtAnnouncement.append(store.synced);
        });
        return settings;
    }
};

} // namespace

class AppSettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void firstStartUsesDefaults();
    void storedValuesAreConverted_data();
    void storedValuesAreConverted();
    void storedKeyIsNormalizedOnlyWhenWrittenBack();
    void systemLoginStatusWinsAtStart_data();
    void systemLoginStatusWinsAtStart();
    void saveWritesAllTenKeys();
    void saveTimingPerProperty_data();
    void saveTimingPerProperty();
    void prefixAssignedTwiceLeavesTheFirstInTheDatabase();
    void captureShortcutReachesObserversOneSaveLate();
    void loginItemRegistration();
    void loginItemFailureSnapsBack();
    void legacyMigration();
};

void AppSettingsTest::firstStartUsesDefaults()
{
    Fixture f;
    auto settings = f.make();
    QCOMPARE(settings->hotKeyCombo().displayText(), QStringLiteral("⇧⌘S"));
    QCOMPARE(settings->repeatHotKeyCombo().displayText(), QStringLiteral("⇧⌘R"));
    QCOMPARE(settings->hotKeyCombo().modifiers, quint64(0x120000));
    QCOMPARE(settings->filenamePrefix(), QStringLiteral("Vistrel"));
    QCOMPARE(settings->saveFolderPath(), AppSettings::defaultSaveFolderPath());
    QVERIFY(settings->includeDate());
    QVERIFY(settings->openEditorViaNotification());
    QVERIFY(!settings->keepExistingEditorWindowOnAutoOpen());
    QVERIFY(!settings->launchAtLoginEnabled());
    QCOMPARE(settings->hotKeyCode(), std::optional<quint32>(1));
    QCOMPARE(settings->carbonModifierFlags(), quint32(0x300));
    QCOMPARE(settings->repeatHotKeyCode(), std::optional<quint32>(15));
    // Only the login truth is written at start, and nothing is announced.
    QCOMPARE(f.store.synced.keys(), QStringList{loginKey});
    QCOMPARE(f.store.synced.value(loginKey), QVariant(false));
    QCOMPARE(f.announcements, 0);
    QVERIFY(f.loginItem.calls.isEmpty());
}

void AppSettingsTest::storedValuesAreConverted_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("stored false stays false") << includeDateKey << QVariant(false) << u"includeDate"_s << QVariant(false);
    QTest::newRow("stored true") << keepWindowKey << QVariant(true) << u"keepWindow"_s << QVariant(true);
    QTest::newRow("bool as number 0") << notificationKey << QVariant(qint64(0)) << u"notification"_s << QVariant(false);
    QTest::newRow("bool as text yes") << keepWindowKey << QVariant(QStringLiteral("YES")) << u"keepWindow"_s << QVariant(true);
    QTest::newRow("bool as text false") << includeDateKey << QVariant(QStringLiteral("false")) << u"includeDate"_s << QVariant(false);
    QTest::newRow("modifiers as number") << modifiersKey << QVariant(quint64(0x40000)) << u"modifiers"_s << QVariant(quint64(0x40000));
    QTest::newRow("modifiers as whole double") << modifiersKey << QVariant(1048576.0) << u"modifiers"_s << QVariant(quint64(0x100000));
    QTest::newRow("modifiers as text fall back") << modifiersKey << QVariant(QStringLiteral("262144")) << u"modifiers"_s << QVariant(quint64(0x120000));
    QTest::newRow("negative modifiers fall back") << modifiersKey << QVariant(qint64(-5)) << u"modifiers"_s << QVariant(quint64(0x120000));
    QTest::newRow("fractional modifiers fall back") << modifiersKey << QVariant(1.5) << u"modifiers"_s << QVariant(quint64(0x120000));
    QTest::newRow("modifiers as bool fall back") << modifiersKey << QVariant(true) << u"modifiers"_s << QVariant(quint64(0x120000));
    QTest::newRow("empty prefix is kept") << prefixKey << QVariant(QString()) << u"prefix"_s << QVariant(QString());
    QTest::newRow("numeric prefix reads as text") << prefixKey << QVariant(qint64(42)) << u"prefix"_s << QVariant(QStringLiteral("42"));
    QTest::newRow("prefix of the wrong type falls back") << prefixKey << QVariant(true) << u"prefix"_s << QVariant(QStringLiteral("Vistrel"));
    QTest::newRow("folder") << folderKey << QVariant(QStringLiteral("/srv/shots")) << u"folder"_s << QVariant(QStringLiteral("/srv/shots"));
}

void AppSettingsTest::storedValuesAreConverted()
{
    QFETCH(QString, key);
    QFETCH(QVariant, stored);
    QFETCH(QString, property);
    QFETCH(QVariant, expected);
    Fixture f;
    f.store.values.insert(key, stored);
    auto s = f.make();
    const QMap<QString, QVariant> actual = {
        {QStringLiteral("includeDate"), s->includeDate()},
        {QStringLiteral("keepWindow"), s->keepExistingEditorWindowOnAutoOpen()},
        {QStringLiteral("notification"), s->openEditorViaNotification()},
        {QStringLiteral("modifiers"), QVariant(s->hotKeyCombo().modifiers)},
        {QStringLiteral("prefix"), s->filenamePrefix()},
        {QStringLiteral("folder"), s->saveFolderPath()},
    };
    QCOMPARE(actual.value(property), expected);
}

void AppSettingsTest::storedKeyIsNormalizedOnlyWhenWrittenBack()
{
    Fixture f;
    f.store.values.insert(keyKey, QStringLiteral(" x "));
    auto settings = f.make();
    QCOMPARE(settings->hotKeyCombo().key, QStringLiteral(" x "));
    QCOMPARE(settings->hotKeyCombo().displayText(), QStringLiteral("⇧⌘X"));
    QCOMPARE(f.store.values.value(keyKey), QVariant(QStringLiteral(" x "))); // not rewritten at start
    settings->setSaveFolderPath(QStringLiteral("/tmp/x"));
    QCOMPARE(f.store.synced.value(keyKey), QVariant(QStringLiteral("X")));
}

void AppSettingsTest::systemLoginStatusWinsAtStart_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("stored");
    QTest::addColumn<bool>("expected");
    using S = LoginItemService::Status;
    QTest::newRow("enabled overrides stored false") << int(S::Enabled) << false << true;
    QTest::newRow("not registered overrides stored true") << int(S::NotRegistered) << true << false;
    QTest::newRow("requires approval is off") << int(S::RequiresApproval) << true << false;
    QTest::newRow("not found is off") << int(S::NotFound) << true << false;
    QTest::newRow("unknown keeps stored true") << int(S::Unknown) << true << true;
    QTest::newRow("unknown keeps stored false") << int(S::Unknown) << false << false;
}

void AppSettingsTest::systemLoginStatusWinsAtStart()
{
    QFETCH(int, status);
    QFETCH(bool, stored);
    QFETCH(bool, expected);
    Fixture f;
    f.loginItem.currentStatus = LoginItemService::Status(status);
    f.store.values.insert(loginKey, stored);
    auto settings = f.make();
    QCOMPARE(settings->launchAtLoginEnabled(), expected);
    QCOMPARE(f.store.synced.value(loginKey), QVariant(expected));
    QVERIFY(f.loginItem.calls.isEmpty()); // corrected in the database, never (un)registered
    QCOMPARE(f.announcements, 0);
}

void AppSettingsTest::saveWritesAllTenKeys()
{
    Fixture f;
    auto settings = f.make();
    settings->setOpenEditorViaNotification(false);
    const QMap<QString, QVariant> expected = {
        {keyKey, QStringLiteral("S")},
        {modifiersKey, quint64(0x120000)},
        {repeatKeyKey, QStringLiteral("R")},
        {QStringLiteral("VistrelRepeatHotKeyModifiers"), quint64(0x120000)},
        {folderKey, AppSettings::defaultSaveFolderPath()},
        {prefixKey, QStringLiteral("Vistrel")},
        {includeDateKey, true},
        {notificationKey, false},
        {keepWindowKey, false},
        {loginKey, false},
    };
    QCOMPARE(f.store.synced, expected);
    QCOMPARE(f.announcements, 1);
}

void AppSettingsTest::saveTimingPerProperty_data()
{
    // Each row assigns one property and says whether the save it starts already holds the new value.
    QTest::addColumn<QString>("property");
    QTest::addColumn<bool>("savesNewValue");
    QTest::newRow("repeatHotKeyCombo after") << u"repeat"_s << true;
    QTest::newRow("saveFolderPath after") << u"folder"_s << true;
    QTest::newRow("openEditorViaNotification after") << u"notification"_s << true;
    QTest::newRow("keepExistingEditorWindowOnAutoOpen after") << u"keepWindow"_s << true;
    QTest::newRow("hotKeyCombo before") << u"hotKey"_s << false;
    QTest::newRow("filenamePrefix before") << u"prefix"_s << false;
    QTest::newRow("includeDate before") << u"includeDate"_s << false;
}

void AppSettingsTest::saveTimingPerProperty()
{
    QFETCH(QString, property);
    QFETCH(bool, savesNewValue);
    Fixture f;
    auto s = f.make();
    const ShortcutKeyCombo combo{QStringLiteral("Z"), ShortcutKeyCombo::Control};
    QString key;
    QVariant newValue;
    if (property == u"repeat") {
        s->setRepeatHotKeyCombo(combo), key = repeatKeyKey, newValue = QStringLiteral("Z");
    } else if (property == u"folder") {
        s->setSaveFolderPath(QStringLiteral("/new")), key = folderKey, newValue = QStringLiteral("/new");
    } else if (property == u"notification") {
        s->setOpenEditorViaNotification(false), key = notificationKey, newValue = false;
    } else if (property == u"keepWindow") {
        s->setKeepExistingEditorWindowOnAutoOpen(true), key = keepWindowKey, newValue = true;
    } else if (property == u"hotKey") {
        s->setHotKeyCombo(combo), key = keyKey, newValue = QStringLiteral("Z");
    } else if (property == u"prefix") {
        s->setFilenamePrefix(QStringLiteral("Shot")), key = prefixKey, newValue = QStringLiteral("Shot");
    } else if (property == u"includeDate") {
        s->setIncludeDate(false), key = includeDateKey, newValue = false;
    }
    QCOMPARE(f.announcements, 1);
    QCOMPARE(f.storedAtAnnouncement.first().value(key) == newValue, savesNewValue);
    // Whatever the timing, the property itself holds the new value, and the next save writes it.
    s->setRepeatHotKeyCombo(s->repeatHotKeyCombo());
    QCOMPARE(f.store.synced.value(key), newValue);
}

void AppSettingsTest::prefixAssignedTwiceLeavesTheFirstInTheDatabase()
{
    Fixture f;
    auto s = f.make();
    s->setFilenamePrefix(QStringLiteral("First"));
    s->setFilenamePrefix(QStringLiteral("Second"));
    QCOMPARE(s->filenamePrefix(), QStringLiteral("Second"));
    QCOMPARE(f.store.synced.value(prefixKey), QVariant(QStringLiteral("First")));
    QCOMPARE(f.announcements, 2);
}

void AppSettingsTest::captureShortcutReachesObserversOneSaveLate()
{
    Fixture f;
    auto s = f.make();
    QList<std::optional<quint32>> seenCodes;
    f.notifications.addObserver(AppSettings::settingsDidChangeNotification, &f.notifications,
                                [&] { seenCodes.append(s->hotKeyCode()); });
    s->setHotKeyCombo({QStringLiteral("A"), ShortcutKeyCombo::Command});
    s->setIncludeDate(false);
    QCOMPARE(seenCodes, (QList<std::optional<quint32>>{1u, 0u}));
}

void AppSettingsTest::loginItemRegistration()
{
    Fixture f;
    auto s = f.make();
    s->setLaunchAtLoginEnabled(true);
    s->setLaunchAtLoginEnabled(false);
    QCOMPARE(f.loginItem.calls, (QStringList{QStringLiteral("register"), QStringLiteral("unregister")}));
    QCOMPARE(f.announcements, 2);
    QCOMPARE(f.storedAtAnnouncement.first().value(loginKey), QVariant(true));
    QVERIFY(f.systemLog.messages().isEmpty());
}

void AppSettingsTest::loginItemFailureSnapsBack()
{
    Fixture f;
    auto s = f.make();
    f.loginItem.failure = QStringLiteral("Operation not permitted");
    QList<bool> seen;
    connect(s.get(), &AppSettings::launchAtLoginEnabledChanged, this, [&] { seen.append(s->launchAtLoginEnabled()); });
    s->setLaunchAtLoginEnabled(true);
    QCOMPARE(f.loginItem.calls, QStringList{QStringLiteral("register")}); // no second attempt
    QCOMPARE(seen, (QList<bool>{true, false}));
    QVERIFY(!s->launchAtLoginEnabled());
    QCOMPARE(f.systemLog.messages(),
             QStringList{QStringLiteral("Vistrel: 自動起動設定の反映に失敗しました: Operation not permitted")});
    QCOMPARE(f.announcements, 1);
    QCOMPARE(f.store.synced.value(loginKey), QVariant(false));
}

void AppSettingsTest::legacyMigration()
{
    const QString container =
        QStringLiteral("/Users/tester/Library/Containers/com.example.Vistrel/Data/Library/Preferences/com.example.Vistrel.plist");
    const QString plain = QStringLiteral("/Users/tester/Library/Preferences/com.example.Vistrel.plist");
    {
        Fixture f;
        FakeLegacyPreferencesSource legacy;
        legacy.files.insert(container, {{prefixKey, QStringLiteral("Old")}, {QStringLiteral("NSWindow Frame"), 1}});
        legacy.files.insert(plain, {{prefixKey, QStringLiteral("Older")}, {includeDateKey, false}});
        f.store.values.insert(QStringLiteral("VistrelEditorStrokeColor.red"), 0.5);
        auto s = f.make(&legacy);
        QCOMPARE(s->filenamePrefix(), QStringLiteral("Old"));
        QVERIFY(!s->includeDate());
        QVERIFY(!f.store.values.contains(QStringLiteral("NSWindow Frame")));
        QCOMPARE(f.systemLog.messages(), QStringList{QStringLiteral("Vistrel: Debug/旧環境から設定を移行しました（2件）")});
    }
    {
        // A database that already has one of the main keys is left alone.
        Fixture f;
        FakeLegacyPreferencesSource legacy;
        legacy.files.insert(plain, {{prefixKey, QStringLiteral("Older")}});
        f.store.values.insert(folderKey, QStringLiteral("/kept"));
        auto s = f.make(&legacy);
        QCOMPARE(s->filenamePrefix(), QStringLiteral("Vistrel"));
        QVERIFY(f.systemLog.messages().isEmpty());
    }
    {
        // Without a bundle identifier there is nothing to look for.
        Fixture f;
        FakeLegacyPreferencesSource legacy;
        legacy.bundleID.reset();
        legacy.files.insert(plain, {{prefixKey, QStringLiteral("Older")}});
        auto s = f.make(&legacy);
        QCOMPARE(s->filenamePrefix(), QStringLiteral("Vistrel"));
    }
}

QTEST_GUILESS_MAIN(AppSettingsTest)
#include "tst_appsettings.moc"
