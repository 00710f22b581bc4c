#include "FakeKeyValueStore.h"
#include "FakeLegacyPreferencesSource.h"
#include "FakeLoginItemService.h"
#include "FakeSystemLog.h"

#include "settings/AppSettings.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString keyKey = u"VistrelHotKeyKey"_s;
const QString modifiersKey = u"VistrelHotKeyModifiers"_s;
const QString repeatKeyKey = u"VistrelRepeatHotKeyKey"_s;
const QString prefixKey = u"VistrelFilenamePrefix"_s;
const QString folderKey = u"VistrelSaveFolderPath"_s;
const QString includeDateKey = u"VistrelIncludeDate"_s;
const QString notificationKey = u"VistrelOpenEditorViaNotification"_s;
const QString keepWindowKey = u"VistrelKeepExistingEditorWindowOnAutoOpen"_s;
const QString loginKey = u"VistrelLaunchAtLoginEnabled"_s;

// A store, its services, and a count of the change announcements.
struct Fixture
{
    FakeKeyValueStore store;
    FakeLoginItemService loginItem;
    FakeSystemLog systemLog;
    int announcements = 0;
    // What the database held (as last synced) at each announcement.
    QList<QMap<QString, QVariant>> storedAtAnnouncement;

    std::unique_ptr<AppSettings> make(const LegacyPreferencesSource *legacy = nullptr)
    {
        auto settings = std::make_unique<AppSettings>(store, loginItem, systemLog, legacy);
        QObject::connect(settings.get(), &AppSettings::settingsDidChange, [this] {
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
    void defaultsAreReadAndWrittenInFull();
    void storedValuesAreConverted_data();
    void storedValuesAreConverted();
    void storedKeyIsNormalizedOnlyWhenWrittenBack();
    void systemLoginStatusWinsAtStart_data();
    void systemLoginStatusWinsAtStart();
    void saveTimingPerProperty_data();
    void saveTimingPerProperty();
    void loginItemRegistration_data();
    void loginItemRegistration();
    void legacyMigration();
};

void AppSettingsTest::defaultsAreReadAndWrittenInFull()
{
    Fixture f;
    auto settings = f.make();
    QCOMPARE(settings->hotKeyCombo().displayText(), u"⇧⌘S"_s);
    QCOMPARE(settings->repeatHotKeyCombo().displayText(), u"⇧⌘R"_s);
    // Only the login truth is written at start, and nothing is announced.
    QCOMPARE(f.store.synced, (QMap<QString, QVariant>{{loginKey, false}}));
    QCOMPARE(f.announcements, 0);
    QVERIFY(f.loginItem.calls.isEmpty());

    settings->setOpenEditorViaNotification(false);
    const QMap<QString, QVariant> expected = {
        {keyKey, u"S"_s},
        {modifiersKey, quint64(0x120000)},
        {repeatKeyKey, u"R"_s},
        {u"VistrelRepeatHotKeyModifiers"_s, quint64(0x120000)},
        {folderKey, AppSettings::defaultSaveFolderPath()},
        {prefixKey, u"Vistrel"_s},
        {includeDateKey, true},
        {notificationKey, false},
        {keepWindowKey, false},
        {loginKey, false},
    };
    QCOMPARE(f.store.synced, expected);
    QCOMPARE(f.announcements, 1);
}

void AppSettingsTest::storedValuesAreConverted_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("bool as number 0") << notificationKey << QVariant(qint64(0)) << u"notification"_s << QVariant(false);
    QTest::newRow("bool as text yes") << keepWindowKey << QVariant(u"YES"_s) << u"keepWindow"_s << QVariant(true);
    QTest::newRow("bool as text false") << includeDateKey << QVariant(u"false"_s) << u"includeDate"_s << QVariant(false);
    QTest::newRow("modifiers as whole double") << modifiersKey << QVariant(1048576.0) << u"modifiers"_s << QVariant(quint64(0x100000));
    QTest::newRow("modifiers as text fall back") << modifiersKey << QVariant(u"262144"_s) << u"modifiers"_s << QVariant(quint64(0x120000));
    QTest::newRow("negative modifiers fall back") << modifiersKey << QVariant(qint64(-5)) << u"modifiers"_s << QVariant(quint64(0x120000));
    QTest::newRow("fractional modifiers fall back") << modifiersKey << QVariant(1.5) << u"modifiers"_s << QVariant(quint64(0x120000));
    QTest::newRow("modifiers as bool fall back") << modifiersKey << QVariant(true) << u"modifiers"_s << QVariant(quint64(0x120000));
    QTest::newRow("empty prefix is kept") << prefixKey << QVariant(QString()) << u"prefix"_s << QVariant(QString());
    QTest::newRow("numeric prefix reads as text") << prefixKey << QVariant(qint64(42)) << u"prefix"_s << QVariant(u"42"_s);
    QTest::newRow("prefix of the wrong type falls back") << prefixKey << QVariant(true) << u"prefix"_s << QVariant(u"Vistrel"_s);
    QTest::newRow("folder") << folderKey << QVariant(u"/srv/shots"_s) << u"folder"_s << QVariant(u"/srv/shots"_s);
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
        {u"includeDate"_s, s->includeDate()},
        {u"keepWindow"_s, s->keepExistingEditorWindowOnAutoOpen()},
        {u"notification"_s, s->openEditorViaNotification()},
        {u"modifiers"_s, QVariant(s->hotKeyCombo().modifiers)},
        {u"prefix"_s, s->filenamePrefix()},
        {u"folder"_s, s->saveFolderPath()},
    };
    QCOMPARE(actual.value(property), expected);
}

void AppSettingsTest::storedKeyIsNormalizedOnlyWhenWrittenBack()
{
    Fixture f;
    f.store.values.insert(keyKey, u" x "_s);
    auto settings = f.make();
    QCOMPARE(settings->hotKeyCombo().key, u" x "_s);
    QCOMPARE(settings->hotKeyCombo().displayText(), u"⇧⌘X"_s);
    QCOMPARE(f.store.values.value(keyKey), QVariant(u" x "_s)); // not rewritten at start
    settings->setSaveFolderPath(u"/tmp/x"_s);
    QCOMPARE(f.store.synced.value(keyKey), QVariant(u"X"_s));
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
    const ShortcutKeyCombo combo{u"Z"_s, ShortcutKeyCombo::Control};
    QString key;
    QVariant newValue;
    if (property == u"repeat") {
        s->setRepeatHotKeyCombo(combo), key = repeatKeyKey, newValue = u"Z"_s;
    } else if (property == u"folder") {
        s->setSaveFolderPath(u"/new"_s), key = folderKey, newValue = u"/new"_s;
    } else if (property == u"notification") {
        s->setOpenEditorViaNotification(false), key = notificationKey, newValue = false;
    } else if (property == u"keepWindow") {
        s->setKeepExistingEditorWindowOnAutoOpen(true), key = keepWindowKey, newValue = true;
    } else if (property == u"hotKey") {
        s->setHotKeyCombo(combo), key = keyKey, newValue = u"Z"_s;
    } else if (property == u"prefix") {
        s->setFilenamePrefix(u"Shot"_s), key = prefixKey, newValue = u"Shot"_s;
    } else if (property == u"includeDate") {
        s->setIncludeDate(false), key = includeDateKey, newValue = false;
    }
    QCOMPARE(f.announcements, 1);
    QCOMPARE(f.storedAtAnnouncement.first().value(key) == newValue, savesNewValue);
    // Whatever the timing, the property itself holds the new value, and the next save writes it.
    s->setRepeatHotKeyCombo(s->repeatHotKeyCombo());
    QCOMPARE(f.store.synced.value(key), newValue);
}

void AppSettingsTest::loginItemRegistration_data()
{
    QTest::addColumn<QString>("failure");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<QList<bool>>("seen");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("registered, then unregistered")
        << QString() << QStringList{u"register"_s, u"unregister"_s} << QList<bool>{true, false} << QStringList{};
    // A failed registration snaps the switch back and logs why; the switch-back is not a second attempt.
    QTest::newRow("a failure snaps back")
        << u"Operation not permitted"_s << QStringList{u"register"_s} << QList<bool>{true, false}
        << QStringList{u"Vistrel: 自動起動設定の反映に失敗しました: Operation not permitted"_s};
}

void AppSettingsTest::loginItemRegistration()
{
    QFETCH(QString, failure);
    QFETCH(QStringList, calls);
    QFETCH(QList<bool>, seen);
    QFETCH(QStringList, messages);
    Fixture f;
    auto s = f.make();
    if (!failure.isEmpty())
        f.loginItem.failure = failure;
    QList<bool> changes;
    connect(s.get(), &AppSettings::launchAtLoginEnabledChanged, this, [&] { changes.append(s->launchAtLoginEnabled()); });
    s->setLaunchAtLoginEnabled(true);
    if (failure.isEmpty())
        s->setLaunchAtLoginEnabled(false);
    QCOMPARE(f.loginItem.calls, calls);
    QCOMPARE(changes, seen);
    QCOMPARE(f.systemLog.messages(), messages);
    QCOMPARE(f.announcements, calls.size());
    QCOMPARE(f.storedAtAnnouncement.first().value(loginKey), QVariant(failure.isEmpty()));
    QCOMPARE(f.store.synced.value(loginKey), QVariant(false));
}

void AppSettingsTest::legacyMigration()
{
    const QString container =
        u"/Users/tester/Library/Containers/com.example.Vistrel/Data/Library/Preferences/com.example.Vistrel.plist"_s;
    const QString plain = u"/Users/tester/Library/Preferences/com.example.Vistrel.plist"_s;
    {
        Fixture f;
        FakeLegacyPreferencesSource legacy;
        legacy.files.insert(container, {{prefixKey, u"Old"_s}, {u"NSWindow Frame"_s, 1}});
        legacy.files.insert(plain, {{prefixKey, u"Older"_s}, {includeDateKey, false}});
        f.store.values.insert(u"VistrelEditorStrokeColor.red"_s, 0.5);
        auto s = f.make(&legacy);
        QCOMPARE(s->filenamePrefix(), u"Old"_s);
        QVERIFY(!s->includeDate());
        QVERIFY(!f.store.values.contains(u"NSWindow Frame"_s));
        QCOMPARE(f.systemLog.messages(), QStringList{u"Vistrel: Debug/旧環境から設定を移行しました（2件）"_s});
    }
    {
        // A database that already has one of the main keys is left alone.
        Fixture f;
        FakeLegacyPreferencesSource legacy;
        legacy.files.insert(plain, {{prefixKey, u"Older"_s}});
        f.store.values.insert(folderKey, u"/kept"_s);
        auto s = f.make(&legacy);
        QCOMPARE(s->filenamePrefix(), u"Vistrel"_s);
        QVERIFY(f.systemLog.messages().isEmpty());
    }
    {
        // Without a bundle identifier there is nothing to look for.
        Fixture f;
        FakeLegacyPreferencesSource legacy;
        legacy.bundleID.reset();
        legacy.files.insert(plain, {{prefixKey, u"Older"_s}});
        auto s = f.make(&legacy);
        QCOMPARE(s->filenamePrefix(), u"Vistrel"_s);
    }
}

QTEST_GUILESS_MAIN(AppSettingsTest)
#include "tst_appsettings.moc"
