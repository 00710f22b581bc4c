#include "X11KeyTable.h"

#include "settings/KeyTable.h"

#include <QTest>

using namespace Qt::StringLiterals;

class X11KeyTableTest : public QObject
{
    Q_OBJECT

private slots:
    void everyShortcutKeyHasTheKeysymOfItsName_data();
    void everyShortcutKeyHasTheKeysymOfItsName();
    void codesOutsideTheTableHaveNoKeysym_data();
    void codesOutsideTheTableHaveNoKeysym();
    void modifierWordBecomesTheXMask_data();
    void modifierWordBecomesTheXMask();
};

void X11KeyTableTest::everyShortcutKeyHasTheKeysymOfItsName_data()
{
    QTest::addColumn<quint32>("code");
    QTest::addColumn<quint32>("keysym");
    for (const keytable::Entry &entry : keytable::entries()) {
        // Printable Latin-1 keysyms equal their character's code; letters are taken unshifted.
        quint32 keysym = 0;
        if (entry.name.size() == 1)
            keysym = entry.name.toLower().at(0).unicode();
        else if (entry.name == u"SPACE"_s)
            keysym = 0x20;
        else if (entry.name == u"ENTER"_s || entry.name == u"RETURN"_s)
            keysym = 0xff0d; // Return, not KP_Enter
        else if (entry.name == u"TAB"_s)
            keysym = 0xff09;
        QTest::addRow("%s", qPrintable(entry.name)) << entry.code << keysym;
    }
}

void X11KeyTableTest::everyShortcutKeyHasTheKeysymOfItsName()
{
    QFETCH(quint32, code);
    QFETCH(quint32, keysym);
    QVERIFY(keysym != 0);
    QCOMPARE(x11keys::keysymForMacKeyCode(code), std::optional<quint32>(keysym));
}

void X11KeyTableTest::codesOutsideTheTableHaveNoKeysym_data()
{
    QTest::addColumn<quint32>("code");
    QTest::newRow("ISO section key") << quint32(10);
    QTest::newRow("keypad enter") << quint32(76);
    QTest::newRow("F1") << quint32(122);
}

void X11KeyTableTest::codesOutsideTheTableHaveNoKeysym()
{
    QFETCH(quint32, code);
    QCOMPARE(x11keys::keysymForMacKeyCode(code), std::nullopt);
}

void X11KeyTableTest::modifierWordBecomesTheXMask_data()
{
    QTest::addColumn<quint32>("carbon");
    QTest::addColumn<quint16>("mask");
    QTest::newRow("none") << quint32(0) << quint16(0);
    QTest::newRow("command is Super (Mod4)") << quint32(0x100) << quint16(0x40);
    QTest::newRow("option is Alt (Mod1)") << quint32(0x800) << quint16(0x08);
    QTest::newRow("control is Control") << quint32(0x1000) << quint16(0x04);
    QTest::newRow("shift is Shift") << quint32(0x200) << quint16(0x01);
    QTest::newRow("all four") << quint32(0x1b00) << quint16(0x4d);
    QTest::newRow("caps lock and right-side bits add nothing") << quint32(0x400 | 0x2000 | 0x4000 | 0x200)
                                                                << quint16(0x01);
}

void X11KeyTableTest::modifierWordBecomesTheXMask()
{
    QFETCH(quint32, carbon);
    QTEST(x11keys::modifierMask(carbon), "mask");
}

QTEST_APPLESS_MAIN(X11KeyTableTest)
#include "tst_x11keytable.moc"
