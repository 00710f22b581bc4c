#include "settings/AppSettings.h"
#include "settings/KeyTable.h"
#include "settings/ShortcutKeyCombo.h"

#include <QTest>

using namespace Qt::StringLiterals;

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
    QTest::newRow("default capture") << u"s"_s << (command | shift) << u"⇧⌘S"_s;
    QTest::newRow("all four in fixed order") << u"K"_s << (command | shift | option | control)
                                             << u"⌃⌥⇧⌘K"_s;
    QTest::newRow("empty key and no modifiers") << QString() << quint64(0) << u"未設定"_s;
    QTest::newRow("blank key counts as empty") << u"  \n"_s << quint64(0) << u"未設定"_s;
    QTest::newRow("empty key with command") << QString() << command << u"⌘"_s;
    QTest::newRow("padded lower case") << u" a "_s << quint64(0) << u"A"_s;
    QTest::newRow("bare multi-letter name") << u"space"_s << quint64(0) << u"SPACE"_s;
    QTest::newRow("caps lock bit ignored") << u"r"_s << (capsLock | command) << u"⌘R"_s;
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
    QTest::newRow("padded a") << u" a "_s << true << 0;
    QTest::newRow("lower-case enter direct") << u"enter"_s << false << -1;
    QTest::newRow("lower-case enter normalized") << u"enter"_s << true << 36;
    // The code of every name, the X11 key table test checks against a table of its own.
    QTest::newRow("F1 is not registrable") << u"F1"_s << true << -1;
    QTest::newRow("ESC is not registrable") << u"ESC"_s << true << -1;
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
}

void ShortcutKeyComboTest::carbonModifiers_data()
{
    QTest::addColumn<quint64>("modifiers");
    QTest::addColumn<quint32>("expected");
    QTest::newRow("none") << quint64(0) << quint32(0);
    QTest::newRow("all") << (command | shift | option | control) << quint32(0x1B00);
    QTest::newRow("other bits add nothing") << (capsLock | 0x800000 | command) << quint32(0x100);
}

void ShortcutKeyComboTest::carbonModifiers()
{
    QFETCH(quint64, modifiers);
    QFETCH(quint32, expected);
    QCOMPARE(AppSettings::carbonModifierFlags(ShortcutKeyCombo{u"S"_s, modifiers}), expected);
}

QTEST_GUILESS_MAIN(ShortcutKeyComboTest)
#include "tst_shortcutkeycombo.moc"
