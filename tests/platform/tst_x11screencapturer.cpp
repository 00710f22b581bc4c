// Screen reads on a private Xvfb: what a window shows comes back pixel for pixel through shared memory
// and through GetImage alike, rectangles land where the desktop space puts them, and segments are
// reused only once no image reads them any more.
#include "TestMain.h"
#include "X11DisplayProvider.h"
#include "X11ScreenCapturer.h"

#include <QApplication>
#include <QFile>
#include <QPainter>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace {

xcb_connection_t *qtConnection()
{
    return qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

// A pattern where every pixel differs from its neighbours, shown at the top-left of the screen outside
// the window manager.
class PatternWindow final : public QWidget
{
public:
    PatternWindow() : QWidget(nullptr, Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint)
    {
        m_pattern = QImage(QSize(257, 131), QImage::Format_RGB32);
        for (int y = 0; y < m_pattern.height(); ++y) {
            for (int x = 0; x < m_pattern.width(); ++x)
                m_pattern.setPixel(x, y, qRgb((x * 7) & 0xff, (y * 13) & 0xff, (x + y) & 0xff));
        }
        setGeometry(QRect(QPoint(40, 30), m_pattern.size()));
    }
    const QImage &pattern() const { return m_pattern; }

protected:
    void paintEvent(QPaintEvent *) override { QPainter(this).drawImage(0, 0, m_pattern); }

private:
    QImage m_pattern;
};

// The System V shared-memory segments this process has attached.
int attachedSegments()
{
    QFile maps(u"/proc/self/maps"_s);
    if (!maps.open(QIODevice::ReadOnly))
        return -1;
    return int(maps.readAll().count("/SYSV"));
}

// The image a capture call completes with (the calls complete before returning).
QImage capture(std::function<void(ScreenCapturer::ImageCompletion)> call)
{
    QImage result;
    call([&result](QImage image, std::optional<QString> error) {
        QVERIFY2(!image.isNull(), qPrintable(error.value_or(u"no error"_s)));
        result = std::move(image);
    });
    return result.convertToFormat(QImage::Format_RGB32);
}

} // namespace

class X11ScreenCapturerTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void readsWhatTheScreenShows_data();
    void readsWhatTheScreenShows();
    void segmentsAreReusedOnlyWhenFree();
    void preparedSegmentServesTheFirstFreeze();
    void rectangleOutsideTheScreenFails();

private:
    std::unique_ptr<PatternWindow> m_window;
    std::unique_ptr<X11DisplayProvider> m_displays;
};

void X11ScreenCapturerTest::initTestCase()
{
    VISTREL_REQUIRE_X();
    m_displays = std::make_unique<X11DisplayProvider>(qtConnection());
    m_window = std::make_unique<PatternWindow>();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QTest::qWait(100);
}

void X11ScreenCapturerTest::readsWhatTheScreenShows_data()
{
    QTest::addColumn<bool>("sharedMemory");
    QTest::newRow("shared memory") << true;
    QTest::newRow("GetImage") << false;
}

void X11ScreenCapturerTest::readsWhatTheScreenShows()
{
    QFETCH(bool, sharedMemory);
    X11ScreenCapturer capturer(qtConnection(), *m_displays,
                               sharedMemory ? X11ScreenCapturer::Transfer::SharedMemoryIfAvailable
                                            : X11ScreenCapturer::Transfer::GetImageOnly);
    QCOMPARE(capturer.usesSharedMemory(), sharedMemory);
    const QImage &pattern = m_window->pattern();

    // The desktop rectangle in the top-left global space, the same as the root's pixels at scale 1.
    const QImage rect = capture([&](auto done) { capturer.captureRect(Rect(40, 30, 257, 131), done); });
    QCOMPARE(rect, pattern);

    // Part of the display: display-local points from the top-left corner.
    const DisplayInfo display = m_displays->screens().first();
    const QImage part = capture([&](auto done) {
        capturer.captureDisplay(*display.id, Rect(50, 40, 100, 60), QSize(100, 60), done);
    });
    QCOMPARE(part, pattern.copy(10, 10, 100, 60));

    // The whole display, scaled only when asked to.
    const Rect whole(0, 0, display.frame.width(), display.frame.height());
    const QSize pixels(int(display.frame.width()), int(display.frame.height()));
    const QImage full = capture([&](auto done) { capturer.captureDisplay(*display.id, whole, pixels, done); });
    QCOMPARE(full.size(), pixels);
    QCOMPARE(full.copy(40, 30, 257, 131), pattern);
    const QImage half = capture([&](auto done) { capturer.captureDisplay(*display.id, whole, pixels / 2, done); });
    QCOMPARE(half.size(), pixels / 2);
}

void X11ScreenCapturerTest::segmentsAreReusedOnlyWhenFree()
{
    X11ScreenCapturer capturer(qtConnection(), *m_displays);
    QVERIFY(capturer.usesSharedMemory());
    const QRect screen(QPoint(0, 0), m_displays->screens().first().frame.size().toSize());
    X11ScreenCapturer::Grab first = capturer.grabRoot(screen, true);
    X11ScreenCapturer::Grab second = capturer.grabRoot(screen, true);
    QVERIFY(!first.image.isNull() && !second.image.isNull());
    const uchar *firstBits = first.image.constBits();
    // The first image still reads its segment, so the second got its own.
    QVERIFY(second.image.constBits() != firstBits);
    QCOMPARE(first.image.copy(40, 30, 257, 131), m_window->pattern());

    first.image = QImage();
    const X11ScreenCapturer::Grab third = capturer.grabRoot(screen, true);
    QCOMPARE(third.image.constBits(), firstBits);
    // A copied-out grab leaves its segment free at once.
    const X11ScreenCapturer::Grab copied = capturer.grabRoot(QRect(0, 0, 64, 64), false);
    QVERIFY(copied.image.constBits() != firstBits && copied.image.constBits() != second.image.constBits());
}

void X11ScreenCapturerTest::preparedSegmentServesTheFirstFreeze()
{
    X11ScreenCapturer capturer(qtConnection(), *m_displays);
    const int before = attachedSegments();
    capturer.prepare();
    QCOMPARE(attachedSegments(), before + int(m_displays->screens().size()));
    const QRect screen(QPoint(0, 0), m_displays->screens().first().frame.size().toSize());
    const X11ScreenCapturer::Grab frozen = capturer.grabRoot(screen, true);
    QCOMPARE(frozen.image.copy(40, 30, 257, 131), m_window->pattern());
    QCOMPARE(attachedSegments(), before + int(m_displays->screens().size()));
}

void X11ScreenCapturerTest::rectangleOutsideTheScreenFails()
{
    X11ScreenCapturer capturer(qtConnection(), *m_displays);
    std::optional<QString> error;
    bool nullImage = false;
    capturer.captureRect(Rect(100000, 100000, 10, 10), [&](QImage image, std::optional<QString> e) {
        nullImage = image.isNull();
        error = e;
    });
    QVERIFY(nullImage);
    QCOMPARE(error, std::optional<QString>(u"rectangle 100000,100000 10x10 is outside the screen"_s));
    capturer.captureDisplay(12345, Rect(0, 0, 10, 10), QSize(10, 10), [&](QImage image, std::optional<QString> e) {
        nullImage = image.isNull();
        error = e;
    });
    QVERIFY(nullImage);
    QCOMPARE(error, std::optional<QString>(u"display 12345 is not connected"_s));
}

VISTREL_TEST_MAIN_ON_XVFB(X11ScreenCapturerTest, QApplication)
#include "tst_x11screencapturer.moc"
