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
Q_DECLARE_METATYPE(std::optional<Kind>)
Q_DECLARE_METATYPE(std::optional<PngWriter::Failure::Kind>)

namespace {

// Lines naming their failure, so that each row shows which lines were picked and how they were filled.
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
    void writing_data();
    void writing();
    void troubleLeavesNothingAndTheNextWritePasses_data();
    void troubleLeavesNothingAndTheNextWritePasses();
    void backgroundWriteOutlivesItsWriter();
};

void ImageWriterTest::writing_data()
{
    QTest::addColumn<QString>("folder"); // relative to the temporary folder
    QTest::addColumn<bool>("nullImage");
    QTest::addColumn<std::optional<PngWriter::Failure::Kind>>("pngFailure");
    QTest::addColumn<std::optional<Kind>>("failure");
    QTest::addColumn<QString>("systemLog"); // %1 is the temporary folder
    QTest::addColumn<QString>("diagnostics");
    using Png = PngWriter::Failure::Kind;
    const std::optional<Png> writes;
    QTest::newRow("an existing folder") << u"shots"_s << false << writes << std::optional<Kind>() << QString()
                                        << u"d written %1/shots/a.png"_s;
    QTest::newRow("a missing folder is made with its parents")
        << u"new/deeper"_s << false << writes << std::optional<Kind>() << QString()
        << u"d written %1/new/deeper/a.png"_s;
    QTest::newRow("no pixels, after the folder is made")
        << u"new"_s << true << writes << std::optional(Kind::NoPixels) << u"no pixels %1/new/a.png"_s << QString();
    QTest::newRow("the file cannot be created")
        << u"shots"_s << false << std::optional(Png::CannotCreateDestination)
        << std::optional(Kind::CannotCreateDestination)
        << u"no destination %1/shots/a.png: refused"_s << u"d no destination %1/shots/a.png"_s;
    QTest::newRow("the file cannot be written")
        << u"shots"_s << false << std::optional(Png::CannotWrite) << std::optional(Kind::CannotWrite)
        << u"not written %1/shots/a.png: refused"_s << u"d not written %1/shots/a.png"_s;
}

void ImageWriterTest::writing()
{
    QFETCH(QString, folder);
    QFETCH(bool, nullImage);
    QFETCH(std::optional<PngWriter::Failure::Kind>, pngFailure);
    QFETCH(std::optional<Kind>, failure);
    QFETCH(QString, systemLog);
    QFETCH(QString, diagnostics);
    WriterFixture f;
    QDir(f.root).mkdir(u"shots"_s);
    if (pngFailure)
        f.pngWriter.failure = PngWriter::Failure{*pngFailure, u"refused"_s};
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::red);

    const QString path = f.root + u'/' + folder;
    const ImageWriter::Outcome outcome =
        f.writer->write({nullImage ? QImage() : image, path, u"a.png"_s, markedTexts});
    QCOMPARE(outcome.filePath, path + u"/a.png"_s);
    QCOMPARE(outcome.failure ? std::optional(outcome.failure->kind) : std::nullopt, failure);
    QCOMPARE(f.systemLog.messages(), systemLog.isEmpty() ? QStringList() : QStringList{systemLog.arg(f.root)});
    QCOMPARE(f.diagnostics.lines(), diagnostics.isEmpty() ? QStringList() : QStringList{diagnostics.arg(f.root)});
    const bool reachesTheEncoder = !nullImage && (!failure || pngFailure);
    QCOMPARE(f.pngWriter.paths, reachesTheEncoder ? QStringList{outcome.filePath} : QStringList());
    QVERIFY(QFileInfo(path).isDir());
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
