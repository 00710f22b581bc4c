#include "helpers/EditorManagerFixture.h"

#include "editor/EditedImageSaver.h"

#include "FastPngWriter.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(std::optional<PngWriter::Failure::Kind>)

namespace {

const QString noDirectoryMessage = u"Vistrel: 保存先がディレクトリではありません: "_s;
const QPair<QString, QString> unreadableFileAlert{u"画像を開けませんでした"_s, u"対応している画像ファイルを選択してください。"_s};
const QPair<QString, QString> emptyClipboardAlert{u"クリップボードに画像がありません"_s,
                                                  u"画像をコピーしてから、もう一度貼り付けてください。"_s};

QByteArray encoded(const QImage &image, const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

class EditedImagesTest : public QObject
{
    Q_OBJECT

private slots:
    void editedNames_data();
    void editedNames();
    void savingBesideTheSourceOverwritesAndCopies();
    void savingWithoutSourceCreatesTheCaptureFolder();
    void saveFailures_data();
    void saveFailures();
    void savesEndingAfterTheirWindowChanged();
    void unreadableFileLeavesTheLauncher();
    void pastingFromTheClipboard_data();
    void pastingFromTheClipboard();
    void openPanelOpensTheChosenImage();
};

void EditedImagesTest::editedNames_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("expected");
    QTest::newRow("png") << u"/shots/Shot.png"_s << u"/shots/Shot_edited.png"_s;
    QTest::newRow("only the last extension goes") << u"/shots/a.b.png"_s << u"/shots/a.b_edited.png"_s;
    QTest::newRow("another format becomes png") << u"/photos/IMG 0001.JPG"_s << u"/photos/IMG 0001_edited.png"_s;
    QTest::newRow("no extension") << u"/shots/Shot"_s << u"/shots/Shot_edited.png"_s;
    QTest::newRow("Japanese name") << u"/画像/画面_1.png"_s << u"/画像/画面_1_edited.png"_s;
    QTest::newRow("hidden file keeps its name") << u"/shots/.png"_s << u"/shots/.png_edited.png"_s;
}

void EditedImagesTest::editedNames()
{
    QFETCH(QString, source);
    QFETCH(QString, expected);
    QCOMPARE(EditedImageSaver::makeEditedURL(QUrl::fromLocalFile(source)), QUrl::fromLocalFile(expected));
}

void EditedImagesTest::savingBesideTheSourceOverwritesAndCopies()
{
    FastPngWriter writer;
    EditorManagerFixture f(&writer);
    QTemporaryDir folder;
    writeFile(folder.filePath(u"a.b_edited.png"_s), "an older file");
    // A picture with see-through pixels (as opened from a PNG), and a rectangle reaching past its left
    // edge into the margin.
    QImage source(33, 21, QImage::Format_ARGB32);
    source.fill(QColor(200, 10, 90));
    source.setPixelColor(20, 5, QColor(0, 0, 255, 0));
    source.setPixelColor(21, 5, QColor(0, 200, 0, 128));
    FakeEditorWindow *window = f.openDetached(source, QUrl::fromLocalFile(folder.filePath(u"a.b.png"_s)));
    const auto view = window->contentAs<ImageEditorView>();
    view->model().appendOverlay(Overlay(EditorTool::Rectangle, QPointF(-12, 4), QPointF(10, 15), Qt::blue, {}, {}));
    const QImage edited = view->model().renderEditedImage();
    view->save();
    f.scheduler.runBackgroundTasks();

    // The file keeps the canvas's alpha channel and every pixel of it, the margin included.
    const QImage written(folder.filePath(u"a.b_edited.png"_s));
    QVERIFY(written.hasAlphaChannel());
    QCOMPARE(written.size(), QSize(33 + 14, 21));
    QCOMPARE(written.convertToFormat(QImage::Format_ARGB32), edited.convertToFormat(QImage::Format_ARGB32));
    QCOMPARE(written.pixelColor(0, 0), QColor(Qt::white)); // the margin
    // Painted onto white, the transparent pixel comes out white and the half-transparent one mixed.
    QCOMPARE(written.pixelColor(14 + 20, 5), QColor(Qt::white));
    QCOMPARE(written.pixelColor(14 + 21, 5).alpha(), 255);
    QCOMPARE(f.pasteboard.contents, QList<QImage>{edited});
    QVERIFY(f.systemLog.messages().isEmpty());
    QVERIFY(!f.windows.isAlive(window)); // closed once the file is written
    QVERIFY(f.manager.detachedEditorWindows().isEmpty());
}

// A pasted picture has no file of its own: it goes to the capture folder under a capture-style name
// (how the prefix and the date make that name, the capture's file name table shows).
void EditedImagesTest::savingWithoutSourceCreatesTheCaptureFolder()
{
    EditorManagerFixture f;
    const QString folder = f.captureFolder.filePath(u"new/deeper"_s);
    f.settings.setSaveFolderPath(folder);
    FakeEditorWindow *window = f.openPasted(EditorManagerFixture::picture());
    window->contentAs<ImageEditorView>()->save();
    QCOMPARE(window->closeCount, 0); // not before the file is written
    f.scheduler.runBackgroundTasks();
    QCOMPARE(f.fakeWriter.paths, QStringList{folder + u"/Vistrel_2024-05-01_13-07-42_edited.png"_s});
    QVERIFY(QFileInfo(folder).isDir());
    QCOMPARE(window->closeCount, 1);
}

void EditedImagesTest::saveFailures_data()
{
    QTest::addColumn<QString>("source"); // relative to the capture folder; empty for a clipboard image
    QTest::addColumn<QString>("saveFolder"); // relative to the capture folder
    QTest::addColumn<bool>("nullImage");
    QTest::addColumn<std::optional<PngWriter::Failure::Kind>>("writerFailure");
    QTest::addColumn<QString>("message"); // %1 is the capture folder
    using Kind = PngWriter::Failure::Kind;
    const std::optional<Kind> writes;
    QTest::newRow("capture folder is a file") << QString() << u"file.txt"_s << false << writes
                                              << noDirectoryMessage + u"%1/file.txt"_s;
    QTest::newRow("source folder is a file") << u"file.txt/a.png"_s << QString() << false << writes
                                             << u"Vistrel: 編集画像の保存に失敗しました: Not a directory"_s;
    QTest::newRow("source folder cannot be made") << u"file.txt/sub/a.png"_s << QString() << false << writes
                                                  << u"Vistrel: 編集画像の保存に失敗しました: Not a directory"_s;
    QTest::newRow("no pixels") << u"a.png"_s << QString() << true << writes
                               << u"Vistrel: 編集画像のCGImage変換に失敗しました。"_s;
    QTest::newRow("destination cannot be created")
        << u"a.png"_s << QString() << false << std::optional(Kind::CannotCreateDestination)
        << u"Vistrel: 編集画像の書き込み先生成に失敗しました。"_s;
    QTest::newRow("writing fails") << u"a.png"_s << QString() << false << std::optional(Kind::CannotWrite)
                                   << u"Vistrel: 編集画像PNGの書き込みに失敗しました。"_s;
}

void EditedImagesTest::saveFailures()
{
    QFETCH(QString, source);
    QFETCH(QString, saveFolder);
    QFETCH(bool, nullImage);
    QFETCH(std::optional<PngWriter::Failure::Kind>, writerFailure);
    QFETCH(QString, message);
    EditorManagerFixture f;
    const QDir base(f.captureFolder.path());
    writeFile(base.filePath(u"file.txt"_s), "not a folder");
    if (!saveFolder.isEmpty())
        f.settings.setSaveFolderPath(base.filePath(saveFolder));
    if (writerFailure)
        f.fakeWriter.failure = PngWriter::Failure{*writerFailure, u"refused"_s};
    const std::optional<QUrl> sourceURL =
        source.isEmpty() ? std::nullopt : std::optional(QUrl::fromLocalFile(base.filePath(source)));

    // Through the editor's own save action, so that the window is seen to stay open.
    const QImage picture = EditorManagerFixture::picture();
    FakeEditorWindow *window = sourceURL ? f.openDetached(picture, *sourceURL) : f.openPasted(picture);
    if (nullImage)
        window->contentAs<ImageEditorView>()->onSave(QImage());
    else
        window->contentAs<ImageEditorView>()->save();
    f.scheduler.runBackgroundTasks();

    QCOMPARE(f.systemLog.messages(), QStringList{message.replace(u"%1"_s, f.captureFolder.path())});
    QCOMPARE(window->closeCount, 0);
    QVERIFY(f.pasteboard.contents.isEmpty());
}

// Pictures are written on a worker. A window closed meanwhile stays closed, and a primary window
// showing another document by then stays open; the files are written all the same. The extra window
// saves beside its own source; the primary one reads the prepared source when it saves, and the
// capture handed to the extra window cleared that.
void EditedImagesTest::savesEndingAfterTheirWindowChanged()
{
    EditorManagerFixture f;
    f.settings.setIncludeDate(false);
    const QDir shots(f.captureFolder.path());
    FakeEditorWindow *detached =
        f.openDetached(EditorManagerFixture::picture(), QUrl::fromLocalFile(shots.filePath(u"A.png"_s)));
    FakeEditorWindow *primary = f.primary();
    detached->contentAs<ImageEditorView>()->save();
    primary->contentAs<ImageEditorView>()->save();
    QVERIFY(f.fakeWriter.paths.isEmpty());

    detached->userCloses();
    f.settings.setKeepExistingEditorWindowOnAutoOpen(false);
    f.handOff(EditorManagerFixture::picture(), QUrl::fromLocalFile(shots.filePath(u"B.png"_s)));
    f.scheduler.runBackgroundTasks();
    QCOMPARE(f.fakeWriter.paths,
             (QStringList{shots.filePath(u"A_edited.png"_s), shots.filePath(u"Vistrel_edited.png"_s)}));
    QVERIFY(!f.windows.isAlive(detached));
    QCOMPARE(f.manager.editorWindow(), primary);
    QCOMPARE(primary->closeCount, 0);
}

// A file that does not decode, dropped on the launcher, is said and leaves the drop target shown.
void EditedImagesTest::unreadableFileLeavesTheLauncher()
{
    EditorManagerFixture f;
    const QString path = f.captureFolder.filePath(u"picture.png"_s);
    const QByteArray png = encoded(EditorManagerFixture::picture(50, 20), "PNG");
    writeFile(path, png.left(png.size() / 2));
    const std::shared_ptr<EditorDropTargetView> launcher = f.openLauncher();
    launcher->onOpenURL(QUrl::fromLocalFile(path));
    QCOMPARE(f.alerts.alerts, QList{unreadableFileAlert});
    QCOMPARE(f.diagnostics.lines().size(), 1);
    QCOMPARE(f.primary()->contentAs<EditorDropTargetView>(), launcher);
}

void EditedImagesTest::pastingFromTheClipboard_data()
{
    QTest::addColumn<bool>("systemImage");
    QTest::addColumn<QStringList>("types");
    QTest::addColumn<QList<QByteArray>>("data");
    QTest::addColumn<QColor>("expected"); // invalid: the alert
    const QImage red = EditorManagerFixture::picture(8, 8, Qt::red);
    const QImage blue = EditorManagerFixture::picture(8, 8, Qt::blue);
    QTest::newRow("the system's image") << true << QStringList() << QList<QByteArray>() << QColor(Qt::green);
    QTest::newRow("raw PNG data") << false << QStringList{u"image/png"_s} << QList{encoded(red, "PNG")}
                                  << QColor(Qt::red);
    QTest::newRow("PNG is preferred to what is offered first")
        << false << QStringList{u"image/bmp"_s, u"image/png"_s} << QList{encoded(blue, "BMP"), encoded(red, "PNG")}
        << QColor(Qt::red);
    QTest::newRow("undecodable data falls to the next type")
        << false << QStringList{u"image/png"_s, u"image/bmp"_s} << QList{QByteArray("broken"), encoded(blue, "BMP")}
        << QColor(Qt::blue);
    QTest::newRow("text only") << false << QStringList{u"text/plain"_s} << QList{QByteArray("hello")} << QColor();
    QTest::newRow("empty clipboard") << false << QStringList() << QList<QByteArray>() << QColor();
    QTest::newRow("corrupt image data") << false << QStringList{u"image/png"_s} << QList{QByteArray(64, 'x')}
                                        << QColor();
}

void EditedImagesTest::pastingFromTheClipboard()
{
    QFETCH(bool, systemImage);
    QFETCH(QStringList, types);
    QFETCH(QList<QByteArray>, data);
    QFETCH(QColor, expected);
    EditorManagerFixture f;
    if (systemImage)
        f.pasteboard.image = EditorManagerFixture::picture(8, 8, Qt::green);
    for (qsizetype i = 0; i < types.size(); ++i)
        f.pasteboard.data.append({types.at(i), data.at(i)});
    f.openLauncher()->trigger(EditorDropTargetView::ButtonRole::PasteImage);
    if (!expected.isValid()) {
        QCOMPARE(f.alerts.alerts, QList{emptyClipboardAlert});
        QVERIFY(f.primary()->contentAs<EditorDropTargetView>());
        return;
    }
    QVERIFY(f.alerts.alerts.isEmpty());
    const QImage shown = f.primary()->contentAs<ImageEditorView>()->model().image();
    QCOMPARE(shown.pixelColor(3, 3), expected);
}

void EditedImagesTest::openPanelOpensTheChosenImage()
{
    EditorManagerFixture f;
    const std::shared_ptr<EditorDropTargetView> launcher = f.openLauncher();
    launcher->trigger(EditorDropTargetView::ButtonRole::PickFile);
    QCOMPARE(f.openPanel.requests.size(), 1);
    const OpenPanel::Request request = f.openPanel.requests.first();
    QCOMPARE(request.prompt, u"開く"_s);
    QVERIFY(!request.allowsMultipleSelection);
    QVERIFY(!request.canChooseDirectories);
    QVERIFY(request.canChooseFiles);
    QVERIFY(request.allowedContentTypes.contains(u"image/png"_s));
    QVERIFY(request.allowedContentTypes.contains(u"image/jpeg"_s));
    QVERIFY(f.primary()->contentAs<EditorDropTargetView>()); // cancelled

    const QString path = f.captureFolder.filePath(u"chosen.png"_s);
    writeFile(path, encoded(EditorManagerFixture::picture(12, 34), "PNG"));
    f.openPanel.chosen = QUrl::fromLocalFile(path);
    launcher->trigger(EditorDropTargetView::ButtonRole::PickFile);
    const std::shared_ptr<ImageEditorView> view = f.primary()->contentAs<ImageEditorView>();
    QCOMPARE(view->model().image().size(), QSize(12, 34));
    view->save(); // beside the chosen file
    f.scheduler.runBackgroundTasks();
    QCOMPARE(f.fakeWriter.paths, QStringList{f.captureFolder.filePath(u"chosen_edited.png"_s)});
}

QTEST_MAIN(EditedImagesTest)
#include "tst_editedimages.moc"
