#include "TestPrinters.h"
#include "helpers/CaptureFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// Every pixel names its own position: x and y in red and green, their high bits in blue.
QImage positionPattern(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = qRgb(x & 0xff, y & 0xff, ((x >> 8) & 0xf) | (((y >> 8) & 0xf) << 4));
    }
    return image;
}

QPoint positionOf(QRgb pixel)
{
    return QPoint(qRed(pixel) | ((qBlue(pixel) & 0xf) << 8), qGreen(pixel) | ((qBlue(pixel) >> 4) << 8));
}

// One row of the layout table.
struct Row
{
    QList<DisplayInfo> screens;
    QList<QSize> pixels;
    QList<DisplayInfo> screensLater;
    int window;
    QPointF dragFrom;
    QPointF dragTo;
    QString traceLine;

    static Row current()
    {
        QFETCH(QList<DisplayInfo>, screens);
        QFETCH(QList<QSize>, pixels);
        QFETCH(QList<DisplayInfo>, screensLater);
        QFETCH(int, window);
        QFETCH(QPointF, dragFrom);
        QFETCH(QPointF, dragTo);
        QFETCH(QString, traceLine);
        return {screens, pixels, screensLater, window, dragFrom, dragTo, traceLine};
    }
};

DisplayInfo display(quint32 id, Rect frame, double scale)
{
    return FakeDisplayProvider::display(id, frame, scale);
}

} // namespace

// One table for the whole path from a drag in a selection window to the captured pixels, across
// display layouts: the trace line, the pixels cut from the frozen image, and the live capture's source
// rectangle, pixel size and desktop rectangle.
class MultiDisplayCaptureTest : public QObject
{
    Q_OBJECT

private slots:
    void layouts_data();
    void frozenCapture_data() { layouts_data(); }
    void frozenCapture();
    void liveCapture_data() { layouts_data(); }
    void liveCapture();
};

void MultiDisplayCaptureTest::layouts_data()
{
    QTest::addColumn<QList<DisplayInfo>>("screens");
    // The pixel size of each display's image as the capture service delivers it.
    QTest::addColumn<QList<QSize>>("pixels");
    // The displays after freezing, when they changed meanwhile (else empty).
    QTest::addColumn<QList<DisplayInfo>>("screensLater");
    QTest::addColumn<int>("window");
    QTest::addColumn<QPointF>("dragFrom");
    QTest::addColumn<QPointF>("dragTo");
    QTest::addColumn<QString>("traceLine");
    QTest::addColumn<QRect>("frozenPixels");
    QTest::addColumn<Rect>("sourceRect");
    QTest::addColumn<QSize>("outputSize");
    QTest::addColumn<Rect>("globalRect");

    const QList<DisplayInfo> sideBySide{display(1, Rect(0, 0, 1920, 1080), 1), display(2, Rect(1920, 0, 1512, 982), 2)};
    const QList<QSize> sideBySidePixels{QSize(1920, 1080), QSize(3024, 1964)};
    QTest::newRow("side by side, on the 2x display, fractional drag")
        << sideBySide << sideBySidePixels << QList<DisplayInfo>{} << 1 << QPointF(100.25, 200.5) << QPointF(400.25, 350.75)
        << u"capture localRect={{100, 200.5}, {300.5, 150.5}} appKitScreenRect={{2020, 200.5}, {300.5, 150.5}} "
           u"cgGlobalRect={{2020, 729}, {300.5, 150.5}} screenFrame={{1920, 0}, {1512, 982}} displayID=2"_s
        << QRect(200, 1262, 601, 301) << Rect(100, 631, 300.5, 150.5) << QSize(601, 301)
        << Rect(2020, 729, 300.5, 150.5);
    QTest::newRow("side by side, on the 1x display, fractional drag")
        << sideBySide << sideBySidePixels << QList<DisplayInfo>{} << 0 << QPointF(100.25, 200.5) << QPointF(400.25, 350.75)
        << u"capture localRect={{100, 200}, {301, 151}} appKitScreenRect={{100, 200}, {301, 151}} "
           u"cgGlobalRect={{100, 729}, {301, 151}} screenFrame={{0, 0}, {1920, 1080}} displayID=1"_s
        << QRect(100, 729, 301, 151) << Rect(100, 729, 301, 151) << QSize(301, 151) << Rect(100, 729, 301, 151);

    QTest::newRow("negative origins, left of and below the primary display")
        << QList<DisplayInfo>{display(1, Rect(0, 0, 1440, 900), 2), display(2, Rect(-1280, -200, 1280, 1024), 1)}
        << QList<QSize>{QSize(2880, 1800), QSize(1280, 1024)} << QList<DisplayInfo>{} << 1 << QPointF(10, 20)
        << QPointF(110, 70)
        << u"capture localRect={{10, 20}, {100, 50}} appKitScreenRect={{-1270, -180}, {100, 50}} "
           u"cgGlobalRect={{-1270, 1030}, {100, 50}} screenFrame={{-1280, -200}, {1280, 1024}} displayID=2"_s
        << QRect(10, 954, 100, 50) << Rect(10, 954, 100, 50) << QSize(100, 50) << Rect(-1270, 1030, 100, 50);

    QTest::newRow("vertical stacking, on the upper 2x display at its top edge")
        << QList<DisplayInfo>{display(1, Rect(0, 0, 1920, 1080), 1), display(2, Rect(0, 1080, 2560, 1440), 2)}
        << QList<QSize>{QSize(1920, 1080), QSize(5120, 2880)} << QList<DisplayInfo>{} << 1 << QPointF(100, 1400)
        << QPointF(300, 1440)
        << u"capture localRect={{100, 1400}, {200, 40}} appKitScreenRect={{100, 2480}, {200, 40}} "
           u"cgGlobalRect={{100, -1440}, {200, 40}} screenFrame={{0, 1080}, {2560, 1440}} displayID=2"_s
        << QRect(200, 0, 400, 80) << Rect(100, 0, 200, 40) << QSize(400, 80) << Rect(100, -1440, 200, 40);

    QTest::newRow("portrait display, drag running off its top")
        << QList<DisplayInfo>{display(1, Rect(0, 0, 1920, 1080), 1), display(2, Rect(1920, -420, 1080, 1920), 1)}
        << QList<QSize>{QSize(1920, 1080), QSize(1080, 1920)} << QList<DisplayInfo>{} << 1 << QPointF(50, 1800)
        << QPointF(550, 2100)
        << u"capture localRect={{50, 1800}, {500, 120}} appKitScreenRect={{1970, 1380}, {500, 120}} "
           u"cgGlobalRect={{1970, -420}, {500, 120}} screenFrame={{1920, -420}, {1080, 1920}} displayID=2"_s
        << QRect(50, 0, 500, 120) << Rect(50, 0, 500, 120) << QSize(500, 120) << Rect(1970, -420, 500, 120);

    QTest::newRow("three displays at 2x, 1x and 1.5x, on the 1.5x one")
        << QList<DisplayInfo>{display(1, Rect(0, 0, 1512, 982), 2), display(2, Rect(1512, 0, 1920, 1080), 1),
                              display(3, Rect(3432, 0, 1280, 720), 1.5)}
        << QList<QSize>{QSize(3024, 1964), QSize(1920, 1080), QSize(1920, 1080)} << QList<DisplayInfo>{} << 2
        << QPointF(10.2, 10.2) << QPointF(109.8, 109.8)
        << u"capture localRect={{10, 10}, {100, 100}} appKitScreenRect={{3442, 10}, {100, 100}} "
           u"cgGlobalRect={{3442, 872}, {100, 100}} screenFrame={{3432, 0}, {1280, 720}} displayID=3"_s
        << QRect(15, 915, 150, 150) << Rect(10, 610, 100, 100) << QSize(150, 150) << Rect(3442, 872, 100, 100);

    QTest::newRow("frame changed after freezing: cropped in the frozen proportions")
        << QList<DisplayInfo>{display(1, Rect(0, 0, 1440, 900), 2)} << QList<QSize>{QSize(2880, 1800)}
        << QList<DisplayInfo>{display(1, Rect(0, 0, 1920, 1200), 2)} << 0 << QPointF(100, 100) << QPointF(300, 200)
        << u"capture localRect={{100, 100}, {200, 100}} appKitScreenRect={{100, 100}, {200, 100}} "
           u"cgGlobalRect={{100, 1000}, {200, 100}} screenFrame={{0, 0}, {1920, 1200}} displayID=1"_s
        << QRect(200, 1400, 400, 200) << Rect(100, 1000, 200, 100) << QSize(400, 200) << Rect(100, 1000, 200, 100);

    QTest::newRow("snapshot pixels not a whole multiple of the frame")
        << QList<DisplayInfo>{display(1, Rect(0, 0, 1000, 800), 2)} << QList<QSize>{QSize(2500, 1400)}
        << QList<DisplayInfo>{} << 0 << QPointF(100, 100) << QPointF(301, 201)
        << u"capture localRect={{100, 100}, {201, 101}} appKitScreenRect={{100, 100}, {201, 101}} "
           u"cgGlobalRect={{100, 599}, {201, 101}} screenFrame={{0, 0}, {1000, 800}} displayID=1"_s
        << QRect(250, 1048, 503, 177) << Rect(100, 599, 201, 101) << QSize(503, 202) << Rect(100, 599, 201, 101);
}

void MultiDisplayCaptureTest::frozenCapture()
{
    const Row row = Row::current();
    QFETCH(QRect, frozenPixels);

    CaptureFixture f(row.screens);
    for (const QSize &size : row.pixels)
        f.capturer.displayOutcomes.append({positionPattern(size), std::nullopt});
    f.showOverlay();
    if (!row.screensLater.isEmpty())
        f.setDisplays(row.screensLater);
    f.drag(row.window, row.dragFrom, row.dragTo);

    // Done within the release itself, before the overlay has left (the clipboard needs it focused on GNOME).
    QCOMPARE(f.linesStartingWith(u"capture localRect="_s), QStringList{row.traceLine});
    QVERIFY(f.scheduler.requestedDelays().isEmpty());
    QCOMPARE(f.pasteboard.contents.size(), 1);
    const QImage captured = f.pasteboard.contents.first();
    QCOMPARE(captured.size(), frozenPixels.size());
    QCOMPARE(positionOf(captured.pixel(0, 0)), frozenPixels.topLeft());
    QCOMPARE(positionOf(captured.pixel(captured.width() - 1, captured.height() - 1)), frozenPixels.bottomRight());
    // Live capture was never needed; the frozen images go with the capture, the region stays for a repeat.
    QCOMPARE(f.capturer.displayCalls.size(), row.pixels.size());
    QVERIFY(!f.window(row.window)->isVisible);
    QVERIFY(!f.state.isBusy());
    QVERIFY(f.state.frozenDisplaySnapshots.isEmpty());
    QVERIFY(f.state.lastSelectionRegion);
}

void MultiDisplayCaptureTest::liveCapture()
{
    const Row row = Row::current();
    QFETCH(Rect, sourceRect);
    QFETCH(QSize, outputSize);
    QFETCH(Rect, globalRect);

    CaptureFixture f;
    f.state.useFrozenBackground = false;
    f.setDisplays(row.screens);
    f.showOverlay();
    const QList<DisplayInfo> current = row.screensLater.isEmpty() ? row.screens : row.screensLater;
    f.setDisplays(current);
    // The capture service reports each display at the pixel size of its images.
    for (int i = 0; i < row.pixels.size() && i < current.size(); ++i)
        (*f.capturer.shareable)[i] = {*current.at(i).id, row.pixels.at(i).width(), row.pixels.at(i).height()};
    if (!row.screensLater.isEmpty())
        (*f.capturer.shareable)[0] = {1, 3840, 2400};
    // The display capture fails, so the desktop rectangle is tried too.
    f.capturer.displayOutcomes = {{QImage(), u"stopped"_s}};
    f.drag(row.window, row.dragFrom, row.dragTo);
    f.scheduler.advance(1);

    QCOMPARE(f.linesStartingWith(u"capture localRect="_s), QStringList{row.traceLine});
    QCOMPARE(f.capturer.displayCalls.size(), 1);
    QCOMPARE(f.capturer.displayCalls.first().sourceRect, sourceRect);
    QCOMPARE(f.capturer.displayCalls.first().outputSize, outputSize);
    QCOMPARE(f.capturer.rectCalls, QList<Rect>{globalRect});
    QCOMPARE(f.pasteboard.contents.size(), 1);
}

QTEST_MAIN(MultiDisplayCaptureTest)
#include "tst_multidisplaycapture.moc"
