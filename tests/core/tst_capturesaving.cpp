#include "TestPrinters.h"
#include "helpers/CaptureFixture.h"

#include "output/FileNaming.h"

#include <QDir>
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
    void failedSave_data();
    void failedSave();
    void symbolicLinksInTheFolderAreResolved();
    void completeCaptureRunsInOrder();
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
}

void CaptureSavingTest::fileNames()
{
    QFETCH(QString, prefix);
    QFETCH(bool, includeDate);
    QFETCH(QString, expected);
    CaptureFixture f;
    f.settings.setFilenamePrefix(prefix);
    f.settings.setIncludeDate(includeDate);
    QCOMPARE(f.saver.makeFileName(f.saver.currentSaveSettings()), expected);
    // A user locale with other digits does not change the name.
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    const auto restoreLocale = qScopeGuard([] { QLocale::setDefault(QLocale::c()); });
    QCOMPARE(f.saver.makeFileName(f.saver.currentSaveSettings()), expected);
}

void CaptureSavingTest::failedSave_data()
{
    QTest::addColumn<QString>("folder"); // relative to a temporary folder
    QTest::addColumn<std::optional<PngWriter::Failure::Kind>>("writerFailure");
    QTest::addColumn<QString>("systemLog"); // %1 is the temporary folder
    QTest::addColumn<QString>("diagnostics");
    using Kind = PngWriter::Failure::Kind;
    QTest::newRow("a regular file is no folder")
        << u"file.txt"_s << std::optional<Kind>() << u"Vistrel: 保存先がディレクトリではありません: %1/file.txt"_s
        << u"saveImage failed: destination is not directory path=%1/file.txt"_s;
    QTest::newRow("a folder that cannot be created")
        << u"file.txt/shots"_s << std::optional<Kind>() << u"Vistrel: ファイル保存に失敗しました: Not a directory"_s
        << u"saveImage failed path=%1/file.txt/shots error=Not a directory"_s;
    QTest::newRow("the file cannot be created")
        << u"shots"_s << std::optional<Kind>(Kind::CannotCreateDestination)
        << u"Vistrel: 画像書き込み先の生成に失敗しました。"_s
        << u"saveImage failed: CGImageDestinationCreateWithURL path=%1/shots/Vistrel_2024-05-01_13-07-42.png"_s;
    QTest::newRow("the image cannot be written")
        << u"shots"_s << std::optional<Kind>(Kind::CannotWrite) << u"Vistrel: PNGデータの書き込みに失敗しました。"_s
        << u"saveImage failed: CGImageDestinationFinalize path=%1/shots/Vistrel_2024-05-01_13-07-42.png"_s;
}

// A failed save says why and stops before the editor; the sound and the clipboard came before it.
void CaptureSavingTest::failedSave()
{
    QFETCH(QString, folder);
    QFETCH(std::optional<PngWriter::Failure::Kind>, writerFailure);
    QFETCH(QString, systemLog);
    QFETCH(QString, diagnostics);
    CaptureFixture f;
    const QString root = QFileInfo(f.saveFolder.path()).canonicalFilePath();
    QFile marker(root + u"/file.txt"_s);
    QVERIFY(marker.open(QIODevice::WriteOnly));
    marker.close();
    f.settings.setSaveFolderPath(root + u'/' + folder);
    if (writerFailure)
        f.pngWriter.failure = PngWriter::Failure{*writerFailure, u"disk full"_s};

    f.saver.completeCapture(FakeScreenCapturer::filled(QSize(4, 4)), QSizeF(4, 4));
    f.scheduler.runBackgroundTasks();
    QCOMPARE(f.systemLog.messages(), QStringList{systemLog.arg(root)});
    QCOMPARE(f.lines(), QStringList{diagnostics.arg(root)});
    QVERIFY(f.editor.urls.isEmpty());
    QCOMPARE(f.pasteboard.contents.size(), 1);
    QCOMPARE(f.sounds.played.size(), 1);
}

void CaptureSavingTest::symbolicLinksInTheFolderAreResolved()
{
    CaptureFixture f;
    const QString root = QFileInfo(f.saveFolder.path()).canonicalFilePath();
    QDir(root).mkdir(u"real"_s);
    QVERIFY(QFile::link(root + u"/real"_s, root + u"/link"_s));
    f.settings.setSaveFolderPath(root + u"/link/./sub/../"_s);
    f.saver.completeCapture(FakeScreenCapturer::filled(QSize(4, 4)), QSizeF(4, 4));
    f.scheduler.runBackgroundTasks();
    QCOMPARE(f.editor.urls, QList<QUrl>{QUrl::fromLocalFile(root + u"/real/Vistrel_2024-05-01_13-07-42.png"_s)});
}

void CaptureSavingTest::completeCaptureRunsInOrder()
{
    CaptureFixture f;
    f.pngWriter.writesWithQt = true;
    const QImage image = FakeScreenCapturer::filled(QSize(200, 100));
    f.saver.completeCapture(image, QSizeF(100, 50));
    QCOMPARE(f.journal, (QStringList{u"sound.file:" + CaptureSaver::shutterSoundPath, u"pasteboard.clearContents"_s,
                                     u"pasteboard.writeImage"_s}));
    QVERIFY(f.pngWriter.paths.isEmpty()); // saving waits for the worker
    QCOMPARE(f.scheduler.pendingBackgroundTasks(), 1);
    QCOMPARE(f.pasteboard.contents.first().deviceIndependentSize(), QSizeF(100, 50));

    f.scheduler.runBackgroundTasks();
    const QString path = QFileInfo(f.saveFolder.path()).canonicalFilePath() + u"/Vistrel_2024-05-01_13-07-42.png"_s;
    QCOMPARE(f.journal.last(), u"editor.scheduleEditNotification "_s + path);
    QCOMPARE(f.lines(), (QStringList{u"saveImage success path="_s + path,
                                     u"capture saved and scheduleEditNotification"_s}));
    QCOMPARE(f.editor.urls, QList<QUrl>{QUrl::fromLocalFile(path)});

    // One set of pixels everywhere; the clipboard and the editor see it at its on-screen size.
    const QImage offered = f.editor.images.first();
    QCOMPARE(offered.deviceIndependentSize(), QSizeF(100, 50));
    QCOMPARE(offered.constBits(), image.constBits());
    QCOMPARE(f.pngWriter.images.first().constBits(), image.constBits());
    QCOMPARE(f.pngWriter.images.first().size(), QSize(200, 100));
    // Once saved, the clipboard offers the file's own bytes and keeps no frame.
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(f.pasteboard.png, file.readAll());
    QVERIFY(f.pasteboard.contents.isEmpty());
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
    f.saver.playShutterSound();
    QCOMPARE(f.sounds.played, expected);
}

QTEST_MAIN(CaptureSavingTest)
#include "tst_capturesaving.moc"
