#include "helpers/EditorManagerFixture.h"

#include "platform/NullAlertPresenter.h"
#include "platform/NullEditorWindowFactory.h"
#include "platform/NullOpenPanel.h"

#include <QFile>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(std::optional<QSizeF>)
using DropItem = EditorDropTargetView::DropItem;
Q_DECLARE_METATYPE(QList<EditorDropTargetView::DropItem>)

namespace {

const QUrl shotA = QUrl::fromLocalFile(u"/captures/A.png"_s);
const QUrl shotB = QUrl::fromLocalFile(u"/captures/B.png"_s);

DropItem file(const QString &path)
{
    return {QUrl::fromLocalFile(path)};
}

} // namespace

class EditorWindowsTest : public QObject
{
    Q_OBJECT

private slots:
    void notificationCarriesTheEditInvitation();
    void clickReadsTheSavedFile_data();
    void clickReadsTheSavedFile();
    void failedNotificationOpensTheEditorDirectly();
    void directOpening_data();
    void directOpening();
    void contentSize_data();
    void contentSize();
    void detachedWindowsAreForgottenWhenTheyClose();
    void primaryWindowClosesAndIsMadeAgain_data();
    void primaryWindowClosesAndIsMadeAgain();
    void withoutWindowsTheEditorSaysWhatItCannotShow();
    void dropTargetOpensTheFirstFile_data();
    void dropTargetOpensTheFirstFile();
    void dropTargetIsTintedWhileAFileHovers();
};

void EditorWindowsTest::notificationCarriesTheEditInvitation()
{
    EditorManagerFixture f;
    f.handOff(EditorManagerFixture::picture(), shotA);
    f.handOff(EditorManagerFixture::picture(20, 20, Qt::blue), shotB);

    QCOMPARE(f.notifier.requests.size(), 2);
    const UserNotifier::Request request = f.notifier.requests.first();
    QCOMPARE(request.title, u"Vistrel: 編集できます"_s);
    QCOMPARE(request.body, u"通知をクリックして編集画面を開きます。"_s);
    QCOMPARE(request.categoryIdentifier, u"VistrelEditCategory"_s);
    QVERIFY(request.playsDefaultSound);
    QCOMPARE(request.triggerDelaySeconds, 0.8);
    const QRegularExpression uuid(u"^[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}$"_s);
    QVERIFY2(uuid.match(request.identifier).hasMatch(), qPrintable(request.identifier));
    QVERIFY(request.identifier != f.notifier.requests.last().identifier);
    f.notifier.pendingAdds.first()(std::nullopt);
    QVERIFY(f.systemLog.messages().isEmpty()); // posted back to the main thread first
    f.scheduler.runUntilIdle();
    QCOMPARE(f.systemLog.messages(), QStringList{u"Vistrel: 通知スケジュール成功"_s});
    // The document waits for the click; nothing is shown yet.
    QVERIFY(f.windows.windows.isEmpty());
}

void EditorWindowsTest::clickReadsTheSavedFile_data()
{
    QTest::addColumn<bool>("deleted");
    QTest::addColumn<bool>("inNewWindow");
    QTest::newRow("the file as saved, at its on-screen size") << false << false;
    QTest::newRow("the same in an extra window") << false << true;
    QTest::newRow("deleted since: said, and nothing opens") << true << false;
}

// Between the capture and the click only the saved file of the last capture is kept, not its frame.
void EditorWindowsTest::clickReadsTheSavedFile()
{
    QFETCH(bool, deleted);
    QFETCH(bool, inNewWindow);
    EditorManagerFixture f;
    QImage frame = EditorManagerFixture::picture(64, 48, Qt::magenta);
    frame.setPixel(3, 2, qRgb(1, 2, 3));
    const QUrl url = f.saved(frame);
    frame.setDevicePixelRatio(2);
    f.handOff(EditorManagerFixture::picture(), shotA);
    f.handOff(frame, url);
    QVERIFY(frame.isDetached());
    if (deleted)
        QVERIFY(QFile::remove(url.toLocalFile()));

    f.manager.openEditor(inNewWindow);
    if (deleted) {
        QVERIFY(f.windows.windows.isEmpty());
        QCOMPARE(f.alerts.alerts, (QList<QPair<QString, QString>>{
                                      {u"画像を開けませんでした"_s, u"対応している画像ファイルを選択してください。"_s}}));
        QCOMPARE(f.diagnostics.lines(), QStringList{u"openImageFile failed url="_s + url.toString()
                                                    + u" error=No such file or directory"_s});
        return;
    }
    FakeEditorWindow *window = inNewWindow ? f.lastWindow() : f.primary();
    QVERIFY(window && window->isVisible && window->centerCount >= 1);
    QCOMPARE(f.application.activateCount, 1);
    const QImage shown = window->contentAs<ImageEditorView>()->model().image();
    QCOMPARE(shown, frame);
    QCOMPARE(shown.deviceIndependentSize(), QSizeF(32, 24));
    QCOMPARE(f.manager.detachedEditorWindows().size(), inNewWindow ? 1 : 0);
}

void EditorWindowsTest::failedNotificationOpensTheEditorDirectly()
{
    EditorManagerFixture f;
    const QImage image = EditorManagerFixture::picture(64, 48);
    f.handOff(image, f.saved(image));
    f.notifier.pendingAdds.first()(u"Notifications are not allowed"_s);
    f.scheduler.runUntilIdle();
    QCOMPARE(f.systemLog.messages(),
             QStringList{u"Vistrel: 通知スケジュール失敗: Notifications are not allowed"_s});
    QVERIFY(f.primary() && f.primary()->isVisible);
    const std::shared_ptr<ImageEditorView> view = f.primary()->contentAs<ImageEditorView>();
    QVERIFY(view);
    QCOMPARE(view->model().image(), image);
}

void EditorWindowsTest::directOpening_data()
{
    QTest::addColumn<bool>("keepExisting");
    QTest::addColumn<bool>("primaryOpen");
    QTest::addColumn<bool>("expectDetached");
    QTest::newRow("first capture opens the primary window") << false << false << false;
    QTest::newRow("next capture replaces what the primary window shows") << false << true << false;
    QTest::newRow("keeping windows with none open uses the primary window") << true << false << false;
    QTest::newRow("keeping windows opens an extra window") << true << true << true;
}

void EditorWindowsTest::directOpening()
{
    QFETCH(bool, keepExisting);
    QFETCH(bool, primaryOpen);
    QFETCH(bool, expectDetached);
    EditorManagerFixture f;
    f.openWithoutNotification(keepExisting);
    if (primaryOpen)
        f.handOff(EditorManagerFixture::picture(10, 10, Qt::red), shotA);
    const std::shared_ptr<ImageEditorView> firstView =
        primaryOpen ? f.primary()->contentAs<ImageEditorView>() : nullptr;

    const QImage second = EditorManagerFixture::picture(20, 20, Qt::blue);
    f.manager.scheduleEditNotification(second, shotB);
    const qsizetype windowsBefore = f.windows.windows.size();
    QCOMPARE(f.manager.detachedEditorWindows().size(), 0); // shown only after the current event
    f.scheduler.runUntilIdle();

    QVERIFY(f.notifier.requests.isEmpty());
    QVERIFY(f.primary());
    if (expectDetached) {
        QCOMPARE(f.manager.detachedEditorWindows().size(), 1);
        FakeEditorWindow *extra = f.lastWindow();
        QCOMPARE(extra->contentAs<ImageEditorView>()->model().image(), second);
        QVERIFY(extra->isVisible);
        // The primary window keeps its document; the prepared one went to the extra window.
        QCOMPARE(f.primary()->contentChanges, 1);
        QCOMPARE(f.primary()->contentAs<ImageEditorView>(), firstView);
        // A late click on the notification finds no document left and offers the launcher.
        f.manager.openEditor(false);
        QVERIFY(f.primary()->contentAs<EditorDropTargetView>());
    } else {
        QCOMPARE(f.windows.windows.size(), qsizetype(1));
        QCOMPARE(windowsBefore, qsizetype(primaryOpen ? 1 : 0));
        QCOMPARE(f.primary()->contentAs<ImageEditorView>()->model().image(), second);
        QCOMPARE(f.manager.detachedEditorWindows().size(), 0);
    }
}

void EditorWindowsTest::contentSize_data()
{
    QTest::addColumn<std::optional<QSizeF>>("visibleSize");
    QTest::addColumn<std::optional<QSizeF>>("imageSize");
    QTest::addColumn<double>("ratio");
    QTest::addColumn<QSizeF>("expected");
    const std::optional<QSizeF> laptop = QSizeF(1440, 875);
    const std::optional<QSizeF> wide = QSizeF(2560, 1415);
    QTest::newRow("small image keeps the minimum width") << laptop << std::optional(QSizeF(200, 100)) << 1.0 << QSizeF(1000, 875);
    QTest::newRow("large image is held to the screen") << laptop << std::optional(QSizeF(3000, 2000)) << 1.0 << QSizeF(1440, 875);
    QTest::newRow("room for the margin and the bars") << wide << std::optional(QSizeF(700, 400)) << 1.0 << QSizeF(1200, 1080);
    // Sized by the points it covered on screen, not by its pixels.
    QTest::newRow("HiDPI capture") << wide << std::optional(QSizeF(700, 400)) << 2.0 << QSizeF(1200, 1080);
    QTest::newRow("no screen and no image") << std::optional<QSizeF>() << std::optional<QSizeF>() << 1.0 << QSizeF(1000, 1000);
    QTest::newRow("no image on a small screen") << std::optional(QSizeF(800, 600)) << std::optional<QSizeF>() << 1.0 << QSizeF(800, 600);
    QTest::newRow("no screen with an image") << std::optional<QSizeF>() << std::optional(QSizeF(900, 900)) << 1.0 << QSizeF(1000, 1000);
}

void EditorWindowsTest::contentSize()
{
    QFETCH(std::optional<QSizeF>, visibleSize);
    QFETCH(std::optional<QSizeF>, imageSize);
    QFETCH(double, ratio);
    QFETCH(QSizeF, expected);
    EditorManagerFixture f;
    if (visibleSize) {
        DisplayInfo screen = FakeDisplayProvider::display(1, Rect(0, 0, visibleSize->width(), visibleSize->height() + 25));
        screen.visibleFrame = Rect(0, 0, visibleSize->width(), visibleSize->height());
        f.displays.main = screen;
    }
    if (!imageSize) {
        f.manager.openEditorLauncher();
        QCOMPARE(f.primary()->contentSize, expected);
        return;
    }
    // The windows opened for such a capture, primary and extra.
    QImage capture = EditorManagerFixture::picture(int(imageSize->width() * ratio), int(imageSize->height() * ratio));
    capture.setDevicePixelRatio(ratio);
    f.openWithoutNotification(true);
    f.handOff(capture, shotA);
    f.handOff(capture, shotB);
    QCOMPARE(f.windows.windows.size(), qsizetype(2));
    for (const auto &window : f.windows.windows)
        QCOMPARE(window->contentSize, expected);
}

void EditorWindowsTest::detachedWindowsAreForgottenWhenTheyClose()
{
    EditorManagerFixture f;
    f.openWithoutNotification(true);
    f.handOff(EditorManagerFixture::picture(), shotA);
    f.handOff(EditorManagerFixture::picture(), shotB);
    f.handOff(EditorManagerFixture::picture(), shotB);
    QCOMPARE(f.manager.detachedEditorWindows().size(), 2);
    FakeEditorWindow *first = f.windows.windows.at(1);
    FakeEditorWindow *second = f.windows.windows.at(2);

    first->userCloses();
    QCOMPARE(f.manager.detachedEditorWindows(), QList<EditorWindow *>{second});
    QVERIFY(f.windows.isAlive(first)); // not from inside its own close
    f.scheduler.runUntilIdle();
    QVERIFY(!f.windows.isAlive(first));

    second->contentAs<ImageEditorView>()->cancel();
    QCOMPARE(second->closeCount, 1);
    QVERIFY(f.manager.detachedEditorWindows().isEmpty());
    f.scheduler.runUntilIdle();
    QVERIFY(!f.windows.isAlive(second));
}

void EditorWindowsTest::primaryWindowClosesAndIsMadeAgain_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("cancel in the editor") << 0;
    QTest::newRow("quit shortcut") << 1;
    QTest::newRow("close button of the title bar") << 2;
}

// However it closes, the primary window goes, and the document it showed with it: a 4K picture and its
// undo history do not wait in memory for the next capture.
void EditorWindowsTest::primaryWindowClosesAndIsMadeAgain()
{
    QFETCH(int, way);
    EditorManagerFixture f;
    f.openWithoutNotification(false);
    const QImage picture = EditorManagerFixture::picture(64, 48, Qt::magenta);
    f.handOff(picture, f.saved(picture));
    FakeEditorWindow *first = f.primary();
    QVERIFY(!picture.isDetached()); // the document shares the picture's pixels
    if (way == 0)
        first->contentAs<ImageEditorView>()->cancel();
    else if (way == 1)
        first->onQuitShortcut();
    else
        first->userCloses();
    QVERIFY(!f.manager.editorWindow());
    QCOMPARE(first->closeCount, 1);
    QVERIFY(f.windows.isAlive(first)); // not from inside its own close
    f.scheduler.runUntilIdle();
    QVERIFY(!f.windows.isAlive(first));
    QVERIFY(picture.isDetached());
    // A late click on the capture's notification opens the same picture again, read from its file.
    f.manager.openEditor(false);
    const std::shared_ptr<ImageEditorView> again = f.primary()->contentAs<ImageEditorView>();
    QVERIFY(again);
    QCOMPARE(again->model().image(), picture);
    f.primary()->onQuitShortcut();
    // A capture handed over while the window closes is not what it showed, and still opens.
    f.handOff(EditorManagerFixture::picture(), shotA);
    f.manager.scheduleEditNotification(picture, shotB);
    f.primary()->userCloses();
    f.scheduler.runUntilIdle();
    const std::shared_ptr<ImageEditorView> next = f.primary()->contentAs<ImageEditorView>();
    QVERIFY(next);
    QCOMPARE(next->model().image(), picture);
    f.primary()->onQuitShortcut();

    // The launcher forgets a document prepared for a click and offers the drop target, which cancels too.
    f.settings.setOpenEditorViaNotification(true);
    f.handOff(EditorManagerFixture::picture(), shotA);
    f.manager.openEditorLauncher();
    QVERIFY(f.primary()->isVisible);
    const std::shared_ptr<EditorDropTargetView> dropTarget = f.primary()->contentAs<EditorDropTargetView>();
    QVERIFY(dropTarget);
    dropTarget->trigger(EditorDropTargetView::ButtonRole::Cancel);
    QVERIFY(!f.manager.editorWindow());
}

void EditorWindowsTest::withoutWindowsTheEditorSaysWhatItCannotShow()
{
    EditorManagerFixture f;
    NullEditorWindowFactory windows(f.diagnostics);
    NullAlertPresenter alerts(f.systemLog);
    NullOpenPanel openPanel(f.diagnostics);
    ImageEditorManager manager(ImageEditorServices{f.settings, f.store, f.diagnostics, f.systemLog, f.scheduler, f.clock,
                                                   f.displays, f.application, f.notifier, f.pasteboard, f.pngWriter,
                                                   windows, alerts, openPanel});
    manager.openEditorLauncher();
    QVERIFY(!openPanel.runModal({}));
    alerts.runModalAlert(u"クリップボードに画像がありません"_s, u"画像をコピーしてから、もう一度貼り付けてください。"_s);
    QCOMPARE(f.diagnostics.lines(),
             (QStringList{u"editor window not shown: this platform set has no editor windows (size {1000, 1000})"_s,
                          u"open panel not shown: this platform set has no file-open panel"_s}));
    QCOMPARE(f.systemLog.messages(),
             QStringList{u"Vistrel: クリップボードに画像がありません 画像をコピーしてから、もう一度貼り付けてください。"_s});
    manager.editorWindow()->onQuitShortcut();
    QVERIFY(!manager.editorWindow());
}

void EditorWindowsTest::dropTargetOpensTheFirstFile_data()
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

void EditorWindowsTest::dropTargetOpensTheFirstFile()
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

void EditorWindowsTest::dropTargetIsTintedWhileAFileHovers()
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

QTEST_MAIN(EditorWindowsTest)
#include "tst_editorwindows.moc"
