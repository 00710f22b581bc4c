#include "FakeScheduler.h"

#include "editor/EditorDropTargetView.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

using DropItem = EditorDropTargetView::DropItem;
Q_DECLARE_METATYPE(QList<EditorDropTargetView::DropItem>)

namespace {

DropItem file(const QString &path)
{
    return {QUrl::fromLocalFile(path)};
}

} // namespace

class EditorDropTargetTest : public QObject
{
    Q_OBJECT

private slots:
    void drops_data();
    void drops();
    void panelIsTintedWhileAFileHovers();
    void buttonsAndTexts();
};

void EditorDropTargetTest::drops_data()
{
    QTest::addColumn<QList<DropItem>>("items");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QString>("opened"); // empty: nothing
    QTest::newRow("one file") << QList{file(u"/shots/a.png"_s)} << true << u"/shots/a.png"_s;
    QTest::newRow("several files open only the first")
        << QList{file(u"/shots/a.png"_s), file(u"/shots/b.png"_s)} << true << u"/shots/a.png"_s;
    QTest::newRow("a non-image file is left to the opening") << QList{file(u"/notes.txt"_s)} << true << u"/notes.txt"_s;
    QTest::newRow("text without a URL") << QList{DropItem{}} << false << QString();
    QTest::newRow("a web address is no file")
        << QList{DropItem{QUrl(u"https://example.com/a.png"_s)}} << false << QString();
    QTest::newRow("a file behind a first item without one")
        << QList{DropItem{}, file(u"/shots/a.png"_s)} << false << QString();
    QTest::newRow("nothing") << QList<DropItem>() << false << QString();
}

void EditorDropTargetTest::drops()
{
    QFETCH(QList<DropItem>, items);
    QFETCH(bool, accepted);
    QFETCH(QString, opened);
    FakeScheduler scheduler;
    EditorDropTargetView view(scheduler);
    QStringList openedPaths;
    view.onOpenURL = [&](const QUrl &url) { openedPaths.append(url.toLocalFile()); };

    QCOMPARE(view.performDrop(items), accepted);
    QVERIFY(openedPaths.isEmpty()); // on the main thread, after the drop
    scheduler.runUntilIdle();
    QCOMPARE(openedPaths, opened.isEmpty() ? QStringList() : QStringList{opened});
    QVERIFY(!view.isTargeted());
}

void EditorDropTargetTest::panelIsTintedWhileAFileHovers()
{
    FakeScheduler scheduler;
    EditorDropTargetView view(scheduler);
    QSignalSpy changes(&view, &EditorDropTargetView::isTargetedChanged);
    using Role = EditorDropTargetView::FillRole;
    QCOMPARE(view.panelFill().role, Role::Secondary);
    QCOMPARE(view.panelFill().opacity, 0.08);

    QVERIFY(!view.dragEntered({DropItem{}}));
    QVERIFY(!view.isTargeted());
    QVERIFY(view.dragEntered({DropItem{}, file(u"/a.png"_s)}));
    QCOMPARE(view.panelFill().role, Role::Accent);
    QCOMPARE(view.panelFill().opacity, 0.18);
    view.dragExited();
    QCOMPARE(view.panelFill().role, Role::Secondary);
    QCOMPARE(changes.size(), 2);
}

void EditorDropTargetTest::buttonsAndTexts()
{
    FakeScheduler scheduler;
    EditorDropTargetView view(scheduler);
    QStringList calls;
    view.onPickFile = [&] { calls.append(u"pick"_s); };
    view.onPasteImage = [&] { calls.append(u"paste"_s); };
    view.onCancel = [&] { calls.append(u"cancel"_s); };

    QCOMPARE(EditorDropTargetView::heading(), u"画像をドラッグ＆ドロップ"_s);
    QCOMPARE(EditorDropTargetView::explanation(), u"または「画像を選択」から開いて編集"_s);
    const QList<EditorDropTargetView::Button> buttons = EditorDropTargetView::buttons();
    QStringList titles;
    for (const EditorDropTargetView::Button &button : buttons) {
        titles.append(button.title);
        view.trigger(button.role);
    }
    QCOMPARE(titles, (QStringList{u"画像を選択"_s, u"クリップボードから貼り付け"_s, u"キャンセル"_s}));
    QCOMPARE(calls, (QStringList{u"pick"_s, u"paste"_s, u"cancel"_s}));
    QVERIFY(buttons.at(0).isDefault);
    QVERIFY(!buttons.at(1).isDefault && !buttons.at(2).isDefault);
    QCOMPARE(buttons.at(1).shortcut, QKeySequence(Qt::CTRL | Qt::Key_V));
    QVERIFY(buttons.at(0).shortcut.isEmpty() && buttons.at(2).shortcut.isEmpty());
}

QTEST_GUILESS_MAIN(EditorDropTargetTest)
#include "tst_editordroptarget.moc"
