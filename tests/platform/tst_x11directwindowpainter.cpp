// The overlay's direct painter on a private Xvfb: the server lays a frozen display into a window with the
// same pixels the backing-store path paints, pixels put in land exactly (also those too many for one
// request), only images still in a shared segment are drawn by the server, and only losses after a
// drawing are reported.
#include "PixelDifference.h"
#include "TestMain.h"
#include "X11DirectWindowPainter.h"
#include "X11DisplayProvider.h"
#include "X11ScreenCapturer.h"

#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>

#include <algorithm>

namespace {

xcb_connection_t *qtConnection()
{
    return qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

// A window outside the window manager whose pixels no one but the test draws.
std::unique_ptr<QWindow> bareWindow(const QRect &geometry)
{
    auto window = std::make_unique<QWindow>();
    window->setFlags(Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint);
    window->setGeometry(geometry);
    return window;
}

// Shows a pattern where neighbouring pixels differ in every channel.
class PatternWindow final : public QRasterWindow
{
protected:
    void paintEvent(QPaintEvent *) override
    {
        QImage pattern(size(), QImage::Format_RGB32);
        for (int y = 0; y < pattern.height(); ++y) {
            for (int x = 0; x < pattern.width(); ++x)
                pattern.setPixel(x, y, qRgb((x * 7) & 0xff, (y * 13) & 0xff, (x * 3 + y * 5) & 0xff));
        }
        QPainter(this).drawImage(0, 0, pattern);
    }
};

} // namespace

class X11DirectWindowPainterTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void drawsOnlyFramesStillInASegment();
    void drawsWhatTheBackingStorePathPaints();
    void putsPicturesTallerThanOneRequest();
    void reportsOnlyLossesAfterDrawing();

private:
    QImage screen() const;

    std::unique_ptr<X11DisplayProvider> m_displays;
    std::unique_ptr<X11ScreenCapturer> m_capturer;
    std::unique_ptr<X11DirectWindowPainter> m_painter;
    PatternWindow m_pattern;
    QRect m_screen;
};

void X11DirectWindowPainterTest::initTestCase()
{
    VISTREL_REQUIRE_X();
    m_displays = std::make_unique<X11DisplayProvider>(qtConnection());
    m_capturer = std::make_unique<X11ScreenCapturer>(qtConnection(), *m_displays);
    m_painter = X11DirectWindowPainter::make(qtConnection(), *m_capturer);
    QVERIFY2(m_painter, "Xvfb shares pixmaps and has Render");
    m_screen = QRect(QPoint(0, 0), m_displays->screens().first().frame.size().toSize());
    m_pattern.setFlags(Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint);
    m_pattern.setGeometry(m_screen);
    m_pattern.show();
    QVERIFY(QTest::qWaitForWindowExposed(&m_pattern));
    QTest::qWait(100);
}

QImage X11DirectWindowPainterTest::screen() const
{
    X11ScreenCapturer reader(qtConnection(), *m_displays, X11ScreenCapturer::Transfer::GetImageOnly);
    return reader.grabRoot(m_screen, false).image.convertToFormat(QImage::Format_RGB32);
}

void X11DirectWindowPainterTest::drawsOnlyFramesStillInASegment()
{
    auto window = bareWindow(m_screen);
    window->create();
    const X11ScreenCapturer::Grab kept = m_capturer->grabRoot(m_screen, true);
    const X11ScreenCapturer::Grab copied = m_capturer->grabRoot(m_screen, false);
    QVERIFY(m_painter->canDrawFrame(*window, kept.image));
    // Its pixels live in our memory only, or a copy does.
    QVERIFY(!m_painter->canDrawFrame(*window, copied.image));
    QVERIFY(!m_painter->canDrawFrame(*window, kept.image.copy()));
    QVERIFY(!m_painter->canDrawFrame(*window, QImage()));
}

void X11DirectWindowPainterTest::drawsWhatTheBackingStorePathPaints()
{
    const X11ScreenCapturer::Grab frozen = m_capturer->grabRoot(m_screen, true);
    QVERIFY(!frozen.image.isNull());
    auto window = bareWindow(m_screen);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));

    const QColor dimming = QColor::fromRgbF(0, 0, 0, 0.25);
    const QRegion dimmed = QRegion(0, 0, m_screen.width(), m_screen.height()) - QRect(300, 200, 150, 120);
    m_painter->drawFrame(*window, frozen.image, dimmed, dimming);
    QImage decoration(150, 120, QImage::Format_RGB32);
    decoration.fill(qRgb(10, 200, 30));
    decoration.setPixel(0, 0, qRgb(255, 0, 255));
    decoration.setPixel(149, 119, qRgb(0, 255, 255));
    m_painter->putPixels(*window, decoration, QPoint(300, 200));

    QImage painted = frozen.image.copy();
    {
        QPainter painter(&painted);
        painter.fillRect(painted.rect(), dimming);
    }
    const QImage shown = screen();
    QCOMPARE(shown.copy(300, 200, 150, 120), decoration);
    for (const QRect &rect : dimmed)
        QVERIFY2(testsupport::largestChannelDifference(shown.copy(rect), painted.copy(rect)) <= 1, "dimmed as Qt dims");
}

void X11DirectWindowPainterTest::putsPicturesTallerThanOneRequest()
{
    auto window = bareWindow(m_screen);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    // More bytes than any X request may carry (16 MiB with BIG-REQUESTS), every row its own colour; put
    // so that the screen shows its last rows, where one request's rows end and the next one's begin.
    QImage tall(m_screen.width(), 3500, QImage::Format_RGB32);
    for (int y = 0; y < tall.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(tall.scanLine(y));
        std::fill_n(row, tall.width(), qRgb(y & 0xff, (y >> 8) & 0xff, 77));
    }
    const int hidden = tall.height() - m_screen.height();
    m_painter->putPixels(*window, tall, QPoint(0, -hidden));
    QCOMPARE(screen(), tall.copy(0, hidden, m_screen.width(), m_screen.height()));
}

void X11DirectWindowPainterTest::reportsOnlyLossesAfterDrawing()
{
    const X11ScreenCapturer::Grab frozen = m_capturer->grabRoot(m_screen, true);
    auto window = bareWindow(m_screen);
    QRegion lost;
    window->create();
    m_painter->watchLosses(*window, [&lost](const QRegion &region) { lost |= region; });
    // The Expose the map brings arrives after the drawing that covers it: nothing is lost.
    window->show();
    m_painter->drawFrame(*window, frozen.image, QRegion(m_screen), Qt::transparent);
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    QTest::qWait(100);
    QCOMPARE(lost, QRegion());

    // A window shown over part of it and taken away again: that part is lost.
    const QRect over(100, 80, 200, 150);
    auto cover = bareWindow(over);
    cover->show();
    QVERIFY(QTest::qWaitForWindowExposed(cover.get()));
    cover->hide();
    QTRY_VERIFY((QRegion(over) - lost).isEmpty());
    QCOMPARE(lost, QRegion(over));

    lost = QRegion();
    m_painter->watchLosses(*window, {});
    cover->show();
    QVERIFY(QTest::qWaitForWindowExposed(cover.get()));
    cover->hide();
    QTest::qWait(100);
    QCOMPARE(lost, QRegion());
}

VISTREL_TEST_MAIN_ON_XVFB(X11DirectWindowPainterTest, QGuiApplication)
#include "tst_x11directwindowpainter.moc"
