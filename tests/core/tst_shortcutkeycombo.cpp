#include "settings/AppSettings.h"
#include "settings/KeyTable.h"
#include "settings/ShortcutKeyCombo.h"

#include <QTest>

namespace {
constexpr quint64 command = ShortcutKeyCombo::Command;
constexpr quint64 shift = ShortcutKeyCombo::Shift;
constexpr quint64 option = ShortcutKeyCombo::Option;
constexpr quint64 control = ShortcutKeyCombo::Control;
constexpr quint64 capsLock = 0x10000;
} // namespace

class ShortcutKeyComboTest : public QObject
{
    Q_OBJECT

private slots:
    void displayText_data();
    void displayText();
    void keyCodeLookup_data();
    void keyCodeLookup();
    void tableHasExactlyTheFiftyNames();
    void carbonModifiers_data();
    void carbonModifiers();
};

void ShortcutKeyComboTest::displayText_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<quint64>("modifiers");
    QTest::addColumn<QString>("expected");
    QTest::newRow("default capture") << QStringLiteral("s") << (command | shift) << QStringLiteral("⇧⌘S");
    QTest::newRow("all four in fixed order") << QStringLiteral("K") << (command | shift | option | control)
                                             << QStringLiteral("⌃⌥⇧⌘K");
    QTest::newRow("empty key and no modifiers") << QString() << quint64(0) << QStringLiteral("未設定");
    QTest::newRow("blank key counts as empty") << QStringLiteral("  \n") << quint64(0) << QStringLiteral("未設定");
    QTest::newRow("empty key with command") << QString() << command << QStringLiteral("⌘");
    QTest::newRow("padded lower case") << QStringLiteral(" a ") << quint64(0) << QStringLiteral("A");
    QTest::newRow("bare multi-letter name") << QStringLiteral("space") << quint64(0) << QStringLiteral("SPACE");
    QTest::newRow("caps lock bit ignored") << QStringLiteral("r") << (capsLock | command) << QStringLiteral("⌘R");
}

void ShortcutKeyComboTest::displayText()
{
    QFETCH(QString, key);
    QFETCH(quint64, modifiers);
    QFETCH(QString, expected);
    QCOMPARE((ShortcutKeyCombo{key, modifiers}.displayText()), expected);
}

void ShortcutKeyComboTest::keyCodeLookup_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("throughNormalizedKey");
    QTest::addColumn<int>("expected"); // -1 for absent
    QTest::newRow("padded a") << QStringLiteral(" a ") << true << 0;
    QTest::newRow("S") << QStringLiteral("S") << false << 1;
    QTest::newRow("R") << QStringLiteral("R") << false << 15;
    QTest::newRow("lower-case enter direct") << QStringLiteral("enter") << false << -1;
    QTest::newRow("lower-case enter normalized") << QStringLiteral("enter") << true << 36;
    QTest::newRow("RETURN shares the Return key") << QStringLiteral("RETURN") << false << 36;
    QTest::newRow("backslash") << QStringLiteral("\\") << false << 42;
    QTest::newRow("apostrophe") << QStringLiteral("'") << false << 39;
    QTest::newRow("5 is not 23-1") << QStringLiteral("5") << false << 23;
    QTest::newRow("SPACE") << QStringLiteral("SPACE") << false << 49;
    QTest::newRow("TAB") << QStringLiteral("TAB") << false << 48;
    QTest::newRow("F1 is not registrable") << QStringLiteral("F1") << true << -1;
    QTest::newRow("ESC is not registrable") << QStringLiteral("ESC") << true << -1;
    QTest::newRow("empty") << QString() << true << -1;
}

void ShortcutKeyComboTest::keyCodeLookup()
{
    QFETCH(QString, key);
    QFETCH(bool, throughNormalizedKey);
    QFETCH(int, expected);
    const QString name = throughNormalizedKey ? ShortcutKeyCombo{key, 0}.normalizedKey() : key;
    const std::optional<quint32> code = AppSettings::keyCode(name);
    QCOMPARE(code.has_value(), expected >= 0);
    if (code)
        QCOMPARE(int(*code), expected);
}

void ShortcutKeyComboTest::tableHasExactlyTheFiftyNames()
{
    const QList<keytable::Entry> &entries = keytable::entries();
    QCOMPARE(entries.size(), 50);
    QSet<QString> names;
    for (const keytable::Entry &entry : entries)
        names.insert(entry.name);
    QCOMPARE(names.size(), 50);
    // Spot checks across the table's columns against the US ANSI virtual key codes.
    const QList<QPair<QString, quint32>> samples = {
        {QStringLiteral("Z"), 6}, {QStringLiteral("Q"), 12}, {QStringLiteral("0"), 29}, {QStringLiteral("9"), 25},
        {QStringLiteral("-"), 27}, {QStringLiteral("="), 24}, {QStringLiteral("["), 33}, {QStringLiteral("]"), 30},
        {QStringLiteral(";"), 41}, {QStringLiteral(","), 43}, {QStringLiteral("."), 47}, {QStringLiteral("/"), 44},
        {QStringLiteral("M"), 46}, {QStringLiteral("N"), 45}, {QStringLiteral("J"), 38}, {QStringLiteral("K"), 40},
    };
    for (const auto &[name, code] : samples)
        QCOMPARE(keytable::keyCode(name), std::optional<quint32>(code));
}

void ShortcutKeyComboTest::carbonModifiers_data()
{
    QTest::addColumn<quint64>("modifiers");
    QTest::addColumn<quint32>("expected");
    QTest::newRow("none") << quint64(0) << quint32(0);
    QTest::newRow("command shift") << (command | shift) << quint32(0x300);
    QTest::newRow("control option") << (control | option) << quint32(0x1800);
    QTest::newRow("all") << (command | shift | option | control) << quint32(0x1B00);
    QTest::newRow("other bits add nothing") << (capsLock | 0x800000 | command) << quint32(0x100);
}

void ShortcutKeyComboTest::carbonModifiers()
{
    QFETCH(quint64, modifiers);
    QFETCH(quint32, expected);
    QCOMPARE(AppSettings::carbonModifierFlags(ShortcutKeyCombo{QStringLiteral("S"), modifiers}), expected);
}

QTEST_GUILESS_MAIN(ShortcutKeyComboTest)
#include "tst_shortcutkeycombo.moc"
