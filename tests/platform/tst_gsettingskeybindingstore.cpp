// GNOME's custom shortcuts written and read through the real gsettings program, on a private keyfile
// backend under a temporary XDG_CONFIG_HOME, with the media-keys schema that GNOME installs.
#include "GVariantText.h"
#include "GsettingsKeybindingStore.h"

#include "app/GnomeShortcutRules.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using Keybinding = CustomKeybindingStore::Keybinding;

namespace {

QString gsettings(const QStringList &arguments)
{
    QProcess process;
    process.start(u"gsettings"_s, arguments);
    process.waitForFinished();
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

QString entryAt(const QString &path)
{
    return GsettingsKeybindingStore::entrySchema + u':' + path;
}

CustomKeybindingStore::Listing readAll(GsettingsKeybindingStore &store)
{
    std::optional<CustomKeybindingStore::Listing> result;
    store.read([&result](const CustomKeybindingStore::Listing &listing) { result = listing; });
    if (!QTest::qWaitFor([&result] { return result.has_value(); }, 10000))
        return {{}, u"no answer"_s};
    return *result;
}

} // namespace

class GsettingsKeybindingStoreTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void values_data();
    void values();
    void bindsBesideTheUsersOwn();
    void missingSchemaIsAFailure();

private:
    std::unique_ptr<QTemporaryDir> m_config;
};

void GsettingsKeybindingStoreTest::init()
{
    m_config = std::make_unique<QTemporaryDir>();
    qputenv("XDG_CONFIG_HOME", m_config->path().toUtf8());
    qputenv("GSETTINGS_BACKEND", "keyfile");
}

void GsettingsKeybindingStoreTest::values_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << u"vistrel select"_s;
    QTest::newRow("single quote and backslash") << u"It's a \\ \"test\""_s;
    QTest::newRow("Japanese") << u"Vistrel: スクリーンショットを撮る"_s;
    QTest::newRow("empty") << QString();
}

void GsettingsKeybindingStoreTest::values()
{
    QFETCH(QString, text);
    // What we write is what gsettings stores, and what it prints we read back.
    const QString path = gnomeshortcuts::entryFolder + u"custom9/"_s;
    QVERIFY(QProcess::execute(u"gsettings"_s, {u"set"_s, entryAt(path), u"name"_s, gvarianttext::quoted(text)}) == 0);
    const QString printed = gsettings({u"get"_s, entryAt(path), u"name"_s});
    QCOMPARE(gvarianttext::parseString(printed), text);
    QCOMPARE(gvarianttext::parseStringArray(gvarianttext::stringArray({text, u"b"_s})), (QStringList{text, u"b"_s}));
    QCOMPARE(gvarianttext::parseStringArray(u"@as []"), QStringList());
    QCOMPARE(gvarianttext::parseString(u"'\\u00e9\\n' x"), std::nullopt);
    QCOMPARE(gvarianttext::parseString(u"'\\u00e9\\n'"), u"é\n"_s);
}

void GsettingsKeybindingStoreTest::bindsBesideTheUsersOwn()
{
    const QString own = gnomeshortcuts::entryFolder + u"custom0/"_s;
    QProcess::execute(u"gsettings"_s, {u"set"_s, entryAt(own), u"name"_s, u"\"Bob's terminal\""_s});
    QProcess::execute(u"gsettings"_s, {u"set"_s, entryAt(own), u"command"_s, u"'kgx'"_s});
    QProcess::execute(u"gsettings"_s, {u"set"_s, entryAt(own), u"binding"_s, u"'<Super>t'"_s});
    QProcess::execute(u"gsettings"_s, {u"set"_s, GsettingsKeybindingStore::listSchema, u"custom-keybindings"_s,
                                       u"['"_s + own + u"']"_s});
    GsettingsKeybindingStore store;
    const CustomKeybindingStore::Listing before = readAll(store);
    QCOMPARE(before.error, std::nullopt);
    QCOMPARE(before.keybindings, (QList<Keybinding>{{own, u"Bob's terminal"_s, u"kgx"_s, u"<Super>t"_s}}));

    const std::optional<gnomeshortcuts::Plan> plan = gnomeshortcuts::plan(
        before.keybindings, {u"S"_s, ShortcutKeyCombo::Shift | ShortcutKeyCombo::Command},
        {u"R"_s, ShortcutKeyCombo::Shift | ShortcutKeyCombo::Command});
    QVERIFY(plan);
    std::optional<std::optional<QString>> written;
    store.write(plan->entries, plan->paths, [&written](std::optional<QString> error) { written = error; });
    QVERIFY(QTest::qWaitFor([&written] { return written.has_value(); }, 10000));
    QCOMPARE(*written, std::nullopt);

    // Read back by gsettings itself, as GNOME's settings daemon would.
    const QString custom1 = gnomeshortcuts::entryFolder + u"custom1/"_s;
    const QString custom2 = gnomeshortcuts::entryFolder + u"custom2/"_s;
    QCOMPARE(gsettings({u"get"_s, GsettingsKeybindingStore::listSchema, u"custom-keybindings"_s}),
             u"['"_s + own + u"', '"_s + custom1 + u"', '"_s + custom2 + u"']"_s);
    QCOMPARE(gsettings({u"get"_s, entryAt(custom1), u"command"_s}), u"'vistrel select'"_s);
    QCOMPARE(gsettings({u"get"_s, entryAt(custom1), u"binding"_s}), u"'<Shift><Super>s'"_s);
    QCOMPARE(gsettings({u"get"_s, entryAt(custom2), u"command"_s}), u"'vistrel repeat'"_s);
    QCOMPARE(gsettings({u"get"_s, entryAt(custom2), u"binding"_s}), u"'<Shift><Super>r'"_s);
    QCOMPARE(gsettings({u"get"_s, entryAt(custom2), u"name"_s}), u"'Vistrel: 繰り返し撮影'"_s);
    QCOMPARE(gsettings({u"get"_s, entryAt(own), u"binding"_s}), u"'<Super>t'"_s);

    // A second click finds its own entries and lists nothing twice.
    const std::optional<gnomeshortcuts::Plan> again = gnomeshortcuts::plan(
        readAll(store).keybindings, {u"4"_s, ShortcutKeyCombo::Control}, {u"R"_s, ShortcutKeyCombo::Control});
    QVERIFY(again);
    QCOMPARE(again->paths, (QStringList{own, custom1, custom2}));
}

void GsettingsKeybindingStoreTest::missingSchemaIsAFailure()
{
    // No schema anywhere: gsettings says so, and nothing is read.
    QTemporaryDir empty;
    const QByteArray dataDirs = qgetenv("XDG_DATA_DIRS");
    qputenv("XDG_DATA_DIRS", empty.path().toUtf8());
    GsettingsKeybindingStore store;
    const CustomKeybindingStore::Listing listing = readAll(store);
    qputenv("XDG_DATA_DIRS", dataDirs);
    QCOMPARE(listing.error, u"gsettings: No schemas installed"_s);
    QVERIFY(listing.keybindings.isEmpty());

    std::optional<QString> failure;
    GsettingsKeybindingStore absent(u"/nonexistent/gsettings"_s);
    absent.write({}, {}, [&failure](std::optional<QString> error) { failure = error.value_or(u"none"_s); });
    QVERIFY(QTest::qWaitFor([&failure] { return failure.has_value(); }, 10000));
    QVERIFY2(failure->startsWith(u"gsettings を起動できません"_s), qPrintable(*failure));
}

QTEST_GUILESS_MAIN(GsettingsKeybindingStoreTest)
#include "tst_gsettingskeybindingstore.moc"
