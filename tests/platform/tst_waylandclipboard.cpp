// The Wayland clipboard against a real headless sway (run-in-wayland-session.sh), with no window of ours
// focused: readers that stall or vanish, clearing, and reading what another application copied. (That
// each capture is served to wl-paste is the capture flow test's to show.)
#include "WaylandClipboard.h"

#include <QGuiApplication>
#include <QPainter>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// Every pixel different from its neighbours, so a shift, a flip or a lost channel shows.
QImage pattern(int width, int height, quint32 seed)
{
    QImage image(width, height, QImage::Format_RGB32);
    QRandomGenerator random(seed);
    for (int y = 0; y < height; ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            row[x] = 0xff000000u | (random.generate() & 0xffffffu);
    }
    return image;
}

// Runs a clipboard tool while the event loop turns, as our side is served from it.
struct Run
{
    int status = -1;
    QByteArray output;
};

Run run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    Run result;
    if (!process.waitForStarted())
        return result;
    QDeadlineTimer deadline(20000);
    while (process.state() != QProcess::NotRunning && !deadline.hasExpired())
        QTest::qWait(10);
    result.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.output = process.readAllStandardOutput();
    return result;
}

QImage pasted()
{
    return QImage::fromData(run(u"wl-paste"_s, {u"-t"_s, u"image/png"_s}).output, "PNG")
        .convertToFormat(QImage::Format_RGB32);
}

} // namespace

class WaylandClipboardTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void stalledAndVanishingReadersLeaveOthersServed();
    void clearingLeavesNothingToPaste();
    void readsWhatAnotherApplicationCopied();

private:
    std::unique_ptr<WaylandClipboard> m_clipboard;
};

void WaylandClipboardTest::initTestCase()
{
    if (QGuiApplication::platformName() != "wayland"_L1)
        QSKIP("needs a Wayland session (run-in-wayland-session.sh)");
    m_clipboard = WaylandClipboard::create();
    QVERIFY2(m_clipboard, "sway offers data-control, so the clipboard must come up");
}

void WaylandClipboardTest::stalledAndVanishingReadersLeaveOthersServed()
{
    // Several megabytes of noise: far more than the pipes between us and a reader hold.
    const QImage image = pattern(1600, 1000, 3);
    QVERIFY(m_clipboard->writeImage(image));

    // A reader whose output nobody reads: wl-paste writes into a FIFO held open and never drained.
    QTemporaryDir dir;
    const QByteArray fifo = dir.filePath(u"stalled"_s).toLocal8Bit();
    QCOMPARE(mkfifo(fifo.constData(), 0600), 0);
    const int drain = open(fifo.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    QVERIFY(drain >= 0);
    QProcess stalled;
    stalled.start(u"sh"_s, {u"-c"_s, u"exec wl-paste -t image/png > \"$0\""_s, QString::fromLocal8Bit(fifo)});
    QVERIFY(stalled.waitForStarted());

    QCOMPARE(pasted(), image);

    // The stalled reader goes away half way; its end of our pipe breaks under the writer.
    close(drain);
    QTRY_VERIFY_WITH_TIMEOUT(stalled.state() == QProcess::NotRunning, 20000);
    QCOMPARE(pasted(), image);
}

void WaylandClipboardTest::clearingLeavesNothingToPaste()
{
    QVERIFY(m_clipboard->writeImage(pattern(8, 8, 4)));
    m_clipboard->clearContents();
    const Run listed = run(u"wl-paste"_s, {u"--list-types"_s});
    QVERIFY(listed.status != 0);
    QCOMPARE(listed.output, QByteArray());
}

void WaylandClipboardTest::readsWhatAnotherApplicationCopied()
{
    QCOMPARE(run(u"wl-copy"_s, {u"--type"_s, u"text/plain"_s, u"copied elsewhere"_s}).status, 0);
    QVERIFY(m_clipboard->availableTypes().contains(u"text/plain"_s));
    QCOMPARE(m_clipboard->readData(u"text/plain"_s), std::optional<QByteArray>("copied elsewhere"));
    QVERIFY(!m_clipboard->readData(u"image/png"_s));
    QVERIFY(!m_clipboard->readImage());

    // Our own image reads back too (wl-copy, replaced, leaves).
    const QImage ours = pattern(33, 17, 5);
    QVERIFY(m_clipboard->writeImage(ours));
    QCOMPARE(m_clipboard->availableTypes(), QStringList{u"image/png"_s});
    const std::optional<QImage> readBack = m_clipboard->readImage();
    QVERIFY(readBack);
    QCOMPARE(readBack->convertToFormat(QImage::Format_RGB32), ours);
}

QTEST_MAIN(WaylandClipboardTest)
#include "tst_waylandclipboard.moc"
