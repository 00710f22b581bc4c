// The wallpaper of the headless KWin session, which has no desktop shell of its own: one frameless full
// screen window per output showing the PNG in VISTREL_E2E_BACKGROUND_<OUTPUT> (the output's name in
// capitals, '-' as '_') at the output's own pixels. Prints "ready" once every window has painted.
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QRasterWindow>
#include <QScreen>

#include <cstdio>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

class Wallpaper final : public QRasterWindow
{
public:
    Wallpaper(QScreen *screen, QImage image, int *unpainted) : m_image(std::move(image)), m_unpainted(unpainted)
    {
        setScreen(screen);
        setFlags(Qt::FramelessWindowHint);
        setGeometry(screen->geometry());
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        QImage image = m_image;
        // One image pixel to one output pixel, whatever the output's scale.
        image.setDevicePixelRatio(devicePixelRatio());
        painter.drawImage(QPoint(0, 0), image);
        if (!m_painted) {
            m_painted = true;
            if (--*m_unpainted == 0) {
                std::puts("ready");
                std::fflush(stdout);
            }
        }
    }

private:
    QImage m_image;
    int *m_unpainted;
    bool m_painted = false;
};

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    std::vector<std::unique_ptr<Wallpaper>> windows;
    int unpainted = 0;
    for (QScreen *screen : QGuiApplication::screens()) {
        const QString variable = u"VISTREL_E2E_BACKGROUND_"_s + screen->name().toUpper().replace(u'-', u'_');
        const QImage image(qEnvironmentVariable(variable.toUtf8().constData()));
        if (image.isNull()) {
            std::fprintf(stderr, "kwin_wallpaper: no image in %s\n", qPrintable(variable));
            return 1;
        }
        ++unpainted;
        windows.push_back(std::make_unique<Wallpaper>(screen, image, &unpainted));
    }
    for (const auto &window : windows)
        window->showFullScreen();
    return app.exec();
}
