#include "FakeDiagnosticsLog.h"
#include "FakePngWriter.h"
#include "FakeScheduler.h"
#include "FakeSystemLog.h"
#include "helpers/SaveTrouble.h"

#include "FastPngWriter.h"

#include "output/ImageWriter.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

using Kind = ImageWriter::Failure::Kind;

namespace {

// Lines naming their failure, so that a test sees which line was picked and how it was filled. Which
// line each failure picks, with the real texts, the capture and the edited-image save tests show.
const ImageWriter::Texts markedTexts{
    {u"folder not made {path}: {reason}"_s, u"d folder not made {path}"_s},
    {u"no folder {path}: {reason}"_s, u"d no folder {path}"_s},
    {u"no pixels {path}"_s, {}},
    {u"no destination {path}: {reason}"_s, u"d no destination {path}"_s},
    {u"not written {path}: {reason}"_s, u"d not written {path}"_s},
    u"d written {path}"_s};

} // namespace

// A writer on fakes, writing into a temporary folder.
struct WriterFixture
{
    QTemporaryDir folder;
    const QString root = QFileInfo(folder.path()).canonicalFilePath();
    FakePngWriter pngWriter;
    FakeSystemLog systemLog;
    FakeDiagnosticsLog diagnostics;
    FakeScheduler scheduler;
    std::unique_ptr<ImageWriter> writer =
        std::make_unique<ImageWriter>(ImageWriter::Services{pngWriter, systemLog, diagnostics, scheduler});
};

class ImageWriterTest : public QObject
{
    Q_OBJECT

private slots:
    void noPixelsAfterTheFolderIsMade();
    void troubleLeavesNothingAndTheNextWritePasses_data();
    void troubleLeavesNothingAndTheNextWritePasses();
    void backgroundWriteOutlivesItsWriter();
};

// The folder is made before the picture is looked at; a picture without pixels never reaches the encoder.
void ImageWriterTest::noPixelsAfterTheFolderIsMade()
{
    WriterFixture f;
    const QString folder = f.root + u"/new"_s;
    const ImageWriter::Outcome outcome = f.writer->write({QImage(), folder, u"a.png"_s, markedTexts});
    QVERIFY(outcome.failure);
    QCOMPARE(outcome.failure->kind, Kind::NoPixels);
    QCOMPARE(f.systemLog.messages(), QStringList{u"no pixels "_s + folder + u"/a.png"_s});
    QVERIFY(f.pngWriter.paths.isEmpty());
    QVERIFY(QFileInfo(folder).isDir());
}

void ImageWriterTest::troubleLeavesNothingAndTheNextWritePasses_data()
{
    QTest::addColumn<SaveTrouble::Kind>("trouble");
    QTest::newRow("file size limit reached midway") << SaveTrouble::Kind::FileSizeLimit;
    QTest::newRow("disk full midway") << SaveTrouble::Kind::DiskFull;
}

// Real files and real failures midway: the write fails, no file or temporary is left, and the same write
// passes once the trouble is gone.
void ImageWriterTest::troubleLeavesNothingAndTheNextWritePasses()
{
    QFETCH(SaveTrouble::Kind, trouble);
    WriterFixture f;
    const FastPngWriter png;
    f.pngWriter.writer = &png;
    SaveTrouble cause(trouble, f.root);
    if (!cause.skipReason.isEmpty())
        QSKIP(qPrintable(cause.skipReason));
    const ImageWriter::Request request{SaveTrouble::incompressible(), cause.folder, u"a.png"_s, markedTexts, true};

    ImageWriter::Outcome outcome = f.writer->write(request);
    QVERIFY(outcome.failure);
    QCOMPARE(outcome.failure->kind, Kind::CannotWrite);
    QVERIFY(outcome.fileBytes.isEmpty());
    for (QDirIterator it(f.root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); it.hasNext();)
        QFAIL(qPrintable(u"left behind: "_s + it.next()));

    cause.lift();
    outcome = f.writer->write(request);
    QVERIFY(!outcome.failure);
    QCOMPARE(QImage(outcome.filePath).convertToFormat(QImage::Format_RGB32), request.image);
    QFile file(outcome.filePath);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(outcome.fileBytes, file.readAll());
}

// The file is written on the worker and the outcome comes back on the main thread; when its writer is
// gone by then (the window or the app closed meanwhile), the file is still written and nobody is called.
void ImageWriterTest::backgroundWriteOutlivesItsWriter()
{
    WriterFixture f;
    const QImage image(4, 4, QImage::Format_RGB32);
    QStringList written;
    const auto record = [&written](const ImageWriter::Outcome &outcome) { written.append(outcome.filePath); };

    f.writer->writeInBackground({image, f.root, u"a.png"_s, markedTexts}, record);
    QVERIFY(f.pngWriter.paths.isEmpty());
    f.scheduler.runBackgroundTasks();
    QCOMPARE(written, QStringList{f.root + u"/a.png"_s});

    f.writer->writeInBackground({image, f.root, u"b.png"_s, markedTexts}, record);
    f.writer.reset();
    f.scheduler.runBackgroundTasks();
    QCOMPARE(f.pngWriter.paths.last(), f.root + u"/b.png"_s);
    QCOMPARE(written.size(), 1);
}

QTEST_MAIN(ImageWriterTest)
#include "tst_imagewriter.moc"
