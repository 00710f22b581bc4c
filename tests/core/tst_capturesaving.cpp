#include "TestPrinters.h"
#include "helpers/CaptureFixture.h"
#include "helpers/SaveTrouble.h"

#include "FastPngWriter.h"

#include "capture/FileNaming.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QScopeGuard>
#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(std::optional<PngWriter::Failure::Kind>)

class CaptureSavingTest : public QObject
{
    Q_OBJECT

private slots:
    void fileNames_data();
    void fileNames();
    void saving_data();
    void saving();
    void symbolicLinksInTheFolderAreResolved();
    void completeCaptureRunsInOrder();
    void failedSaveStopsBeforeTheEditor();
    void troubleWhileSavingLeavesNothingAndPasses_data();
    void troubleWhileSavingLeavesNothingAndPasses();
    void shutterSound_data();
    void shutterSound();
};

void CaptureSavingTest::fileNames_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<bool>("includeDate");
    QTest::addColumn<QString>("expected");
    QTest::newRow("default") << u"Vistrel"_s << true << u"Vistrel_2024-05-01_13-07-42.png"_s;
    QTest::newRow("blank prefix falls back") << u"   "_s << true << u"Vistrel_2024-05-01_13-07-42.png"_s;
    QTest::newRow("prefix trimmed of spaces and new lines") << u"\n Shot \t"_s << true << u"Shot_2024-05-01_13-07-42.png"_s;
    QTest::newRow("Japanese prefix") << u"画面"_s << true << u"画面_2024-05-01_13-07-42.png"_s;
    QTest::newRow("no date") << u"Shot"_s << false << u"Shot.png"_s;
    QTest::newRow("no date and blank prefix") << QString() << false << u"Vistrel.png"_s;
}

void CaptureSavingTest::fileNames()
{
    QFETCH(QString, prefix);
    QFETCH(bool, includeDate);
    QFETCH(QString, expected);
    CaptureFixture f;
    f.settings.setFilenamePrefix(prefix);
    f.settings.setIncludeDate(includeDate);
    QCOMPARE(f.manager.makeFileName(), expected);
    // A user locale with other digits does not change the name.
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    const auto restoreLocale = qScopeGuard([] { QLocale::setDefault(QLocale::c()); });
    QCOMPARE(f.manager.makeFileName(), expected);
}

void CaptureSavingTest::saving_data()
{
    QTest::addColumn<QString>("folder"); // relative to a temporary folder
    QTest::addColumn<std::optional<PngWriter::Failure::Kind>>("writerFailure");
    QTest::addColumn<QStringList>("systemLog");
    QTest::addColumn<QStringList>("diagnostics");
    QTest::addColumn<bool>("saved");
    using Kind = PngWriter::Failure::Kind;
    QTest::newRow("an existing folder")
        << u"shots"_s << std::optional<Kind>() << QStringList{}
        << QStringList{u"saveImage success path=%1/shots/Vistrel_2024-05-01_13-07-42.png"_s} << true;
    QTest::newRow("a missing folder is created with its parents")
        << u"new/deeper/shots"_s << std::optional<Kind>() << QStringList{}
        << QStringList{u"saveImage success path=%1/new/deeper/shots/Vistrel_2024-05-01_13-07-42.png"_s} << true;
    QTest::newRow("a regular file is no folder")
        << u"file.txt"_s << std::optional<Kind>()
        << QStringList{u"Vistrel: 保存先がディレクトリではありません: %1/file.txt"_s}
        << QStringList{u"saveImage failed: destination is not directory path=%1/file.txt"_s} << false;
    QTest::newRow("a folder that cannot be created")
        << u"file.txt/shots"_s << std::optional<Kind>()
        << QStringList{u"Vistrel: ファイル保存に失敗しました: Not a directory"_s}
        << QStringList{u"saveImage failed path=%1/file.txt/shots error=Not a directory"_s} << false;
    QTest::newRow("the file cannot be created")
        << u"shots"_s << std::optional<Kind>(Kind::CannotCreateDestination)
        << QStringList{u"Vistrel: 画像書き込み先の生成に失敗しました。"_s}
        << QStringList{u"saveImage failed: CGImageDestinationCreateWithURL path=%1/shots/Vistrel_2024-05-01_13-07-42.png"_s}
        << false;
    QTest::newRow("the image cannot be written")
        << u"shots"_s << std::optional<Kind>(Kind::CannotWrite)
        << QStringList{u"Vistrel: PNGデータの書き込みに失敗しました。"_s}
        << QStringList{u"saveImage failed: CGImageDestinationFinalize path=%1/shots/Vistrel_2024-05-01_13-07-42.png"_s}
        << false;
}

void CaptureSavingTest::saving()
{
    QFETCH(QString, folder);
    QFETCH(std::optional<PngWriter::Failure::Kind>, writerFailure);
    QFETCH(QStringList, systemLog);
    QFETCH(QStringList, diagnostics);
    QFETCH(bool, saved);
    CaptureFixture f;
    const QString root = QFileInfo(f.saveFolder.path()).canonicalFilePath();
    QDir(root).mkdir(u"shots"_s);
    QFile marker(root + u"/file.txt"_s);
    QVERIFY(marker.open(QIODevice::WriteOnly));
    marker.close();
    f.settings.setSaveFolderPath(root + u'/' + folder);
    if (writerFailure)
        f.pngWriter.failure = PngWriter::Failure{*writerFailure, u"disk full"_s};

    const std::optional<QString> path = f.manager.saveImage(FakeScreenCapturer::filled(QSize(4, 4)));
    for (QString &line : systemLog)
        line = line.arg(root);
    for (QString &line : diagnostics)
        line = line.arg(root);
    QCOMPARE(f.systemLog.messages(), systemLog);
    QCOMPARE(f.lines(), diagnostics);
    QCOMPARE(path.has_value(), saved);
    if (saved)
        QCOMPARE(*path, f.pngWriter.paths.first());
    if (!folder.startsWith(u"file.txt"_s))
        QVERIFY(QFileInfo(root + u'/' + folder).isDir());
    else
        QVERIFY(f.pngWriter.paths.isEmpty());
}

void CaptureSavingTest::symbolicLinksInTheFolderAreResolved()
{
    CaptureFixture f;
    const QString root = QFileInfo(f.saveFolder.path()).canonicalFilePath();
    QDir(root).mkdir(u"real"_s);
    QVERIFY(QFile::link(root + u"/real"_s, root + u"/link"_s));
    f.settings.setSaveFolderPath(root + u"/link/./sub/../"_s);
    const std::optional<QString> path = f.manager.saveImage(FakeScreenCapturer::filled(QSize(4, 4)));
    QCOMPARE(path, std::optional<QString>(root + u"/real/Vistrel_2024-05-01_13-07-42.png"_s));
}

void CaptureSavingTest::completeCaptureRunsInOrder()
{
    CaptureFixture f;
    const QImage image = FakeScreenCapturer::filled(QSize(200, 100));
    f.manager.completeCapture(image, QSizeF(100, 50));
    QCOMPARE(f.journal, (QStringList{u"sound.file:" + CaptureSaver::shutterSoundPath, u"pasteboard.clearContents"_s,
                                     u"pasteboard.writeImage"_s}));
    QVERIFY(f.pngWriter.paths.isEmpty()); // saving waits for the worker
    QCOMPARE(f.scheduler.pendingBackgroundTasks(), 1);

    f.scheduler.runBackgroundTasks();
    const QString path = QFileInfo(f.saveFolder.path()).canonicalFilePath() + u"/Vistrel_2024-05-01_13-07-42.png"_s;
    QCOMPARE(f.journal.last(), u"editor.scheduleEditNotification "_s + path);
    QCOMPARE(f.lines(), (QStringList{u"saveImage success path="_s + path,
                                     u"capture saved and scheduleEditNotification"_s}));
    QCOMPARE(f.editor.urls, QList<QUrl>{QUrl::fromLocalFile(path)});

    // One set of pixels everywhere; the clipboard and the editor see it at its on-screen size.
    const QImage offered = f.editor.images.first();
    QCOMPARE(offered.deviceIndependentSize(), QSizeF(100, 50));
    QCOMPARE(f.pasteboard.contents.first().deviceIndependentSize(), QSizeF(100, 50));
    QCOMPARE(offered.constBits(), image.constBits());
    QCOMPARE(f.pngWriter.images.first().constBits(), image.constBits());
    QCOMPARE(f.pngWriter.images.first().size(), QSize(200, 100));
}

void CaptureSavingTest::failedSaveStopsBeforeTheEditor()
{
    CaptureFixture f;
    f.pngWriter.failure = PngWriter::Failure{PngWriter::Failure::Kind::CannotWrite, u"disk full"_s};
    f.manager.completeCapture(FakeScreenCapturer::filled(QSize(20, 10)), QSizeF(20, 10));
    f.scheduler.runBackgroundTasks();
    QVERIFY(f.editor.urls.isEmpty());
    QVERIFY(!f.lines().contains(u"capture saved and scheduleEditNotification"_s));
    QCOMPARE(f.pasteboard.contents.size(), 1);
    QCOMPARE(f.sounds.played.size(), 1);
}

void CaptureSavingTest::troubleWhileSavingLeavesNothingAndPasses_data()
{
    QTest::addColumn<SaveTrouble::Kind>("trouble");
    QTest::addColumn<QString>("message"); // %1 is the save folder
    const QString writeFailed = u"Vistrel: PNGデータの書き込みに失敗しました。"_s;
    QTest::newRow("file size limit reached midway") << SaveTrouble::Kind::FileSizeLimit << writeFailed;
    QTest::newRow("disk full midway") << SaveTrouble::Kind::DiskFull << writeFailed;
    QTest::newRow("folder is a file") << SaveTrouble::Kind::FolderIsAFile
                                      << u"Vistrel: 保存先がディレクトリではありません: %1"_s;
    QTest::newRow("folder cannot be created") << SaveTrouble::Kind::FolderNotCreatable
                                              << u"Vistrel: ファイル保存に失敗しました: Not a directory"_s;
}

// Real files and real failures: the user is told, the capture is still on the clipboard, no file or
// temporary is left, and the next capture is saved once the trouble is gone.
void CaptureSavingTest::troubleWhileSavingLeavesNothingAndPasses()
{
    QFETCH(SaveTrouble::Kind, trouble);
    QFETCH(QString, message);
    CaptureFixture f;
    const FastPngWriter writer;
    f.pngWriter.writer = &writer;
    const QString root = QFileInfo(f.saveFolder.path()).canonicalFilePath();
    SaveTrouble cause(trouble, root);
    if (!cause.skipReason.isEmpty())
        QSKIP(qPrintable(cause.skipReason));
    f.settings.setSaveFolderPath(cause.folder);
    const QImage capture = SaveTrouble::incompressible();

    f.manager.completeCapture(capture, QSizeF(capture.size()));
    f.scheduler.runBackgroundTasks();
    QCOMPARE(f.systemLog.messages(), QStringList{message.replace(u"%1"_s, cause.folder)});
    QCOMPARE(f.pasteboard.contents, QList<QImage>{capture});
    QVERIFY(f.editor.urls.isEmpty());
    for (QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); it.hasNext();)
        QCOMPARE(it.next(), root + u"/file.txt"_s);

    cause.lift();
    f.manager.completeCapture(capture, QSizeF(capture.size()));
    f.scheduler.runBackgroundTasks();
    const QString saved = cause.folder + u"/Vistrel_2024-05-01_13-07-42.png"_s;
    QCOMPARE(f.editor.urls, QList<QUrl>{QUrl::fromLocalFile(saved)});
    QCOMPARE(QImage(saved).convertToFormat(QImage::Format_RGB32), capture);
    QCOMPARE(f.systemLog.messages().size(), 1);
}

void CaptureSavingTest::shutterSound_data()
{
    QTest::addColumn<bool>("fileWorks");
    QTest::addColumn<bool>("namedWorks");
    QTest::addColumn<QStringList>("expected");
    const QString file = u"file:"_s + CaptureSaver::shutterSoundPath;
    QTest::newRow("the sound file") << true << true << QStringList{file};
    QTest::newRow("the named sound when the file is missing") << false << true << QStringList{file, u"named:Shutter"_s};
    QTest::newRow("the beep when neither plays")
        << false << false << QStringList{file, u"named:Shutter"_s, u"beep"_s};
}

void CaptureSavingTest::shutterSound()
{
    QFETCH(bool, fileWorks);
    QFETCH(bool, namedWorks);
    QFETCH(QStringList, expected);
    CaptureFixture f;
    f.sounds.fileWorks = fileWorks;
    f.sounds.namedWorks = namedWorks;
    f.manager.playShutterSound();
    QCOMPARE(f.sounds.played, expected);
}

QTEST_MAIN(CaptureSavingTest)
#include "tst_capturesaving.moc"
