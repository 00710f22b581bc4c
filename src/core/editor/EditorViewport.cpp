#include "editor/EditorViewport.h"

#include "editor/ImageEditorModel.h"
#include "editor/ViewportGeometry.h"
#include "platform/Scheduler.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double sliderMinimum = 0.5;
constexpr double sliderMaximum = 3.0;
constexpr double sliderStep = 0.1;
constexpr int centeringAttempts = 4;
constexpr double centeringInterval = 0.05;

} // namespace

const QList<double> &EditorViewport::zoomPresets()
{
    static const QList<double> presets{0.5, 1.0, 1.5, 2.0};
    return presets;
}

EditorViewport::EditorViewport(const ImageEditorModel &model, Scheduler &scheduler, QObject *parent)
    : QObject(parent), m_model(model), m_scheduler(scheduler)
{
}

EditorViewport::~EditorViewport() = default;

void EditorViewport::setZoomScale(double zoom)
{
    if (zoom == m_zoomScale || std::isnan(zoom))
        return;
    m_zoomScale = zoom;
    emit geometryChanged();
}

EditorViewport::ZoomControls EditorViewport::zoomControls() const
{
    QList<ZoomButton> presets;
    for (double zoom : zoomPresets())
        presets.append({QString::number(std::lround(zoom * 100)) + u'%', zoom});
    return {u"ズーム"_s,
            u"100%に戻す"_s,
            std::abs(m_zoomScale - 1.0) >= 0.001,
            presets,
            sliderMinimum,
            sliderMaximum,
            sliderStep,
            m_zoomScale};
}

void EditorViewport::setZoomFromSlider(double value)
{
    const double clamped = std::clamp(value, sliderMinimum, sliderMaximum);
    // Whole steps from the minimum, with the binary noise of 0.1 taken out.
    const double steps = std::round((clamped - sliderMinimum) / sliderStep);
    setZoomScale(std::round((sliderMinimum + steps * sliderStep) * 10) / 10);
}

QSizeF EditorViewport::imageSize() const
{
    return QSizeF(m_model.image().size()) / pixelRatio();
}

double EditorViewport::pixelRatio() const
{
    const double ratio = m_model.image().devicePixelRatio();
    return ratio > 0 ? ratio : 1.0;
}

Rect EditorViewport::baseCanvasImageRect() const
{
    return viewportgeometry::baseCanvasImageRect(imageSize(), canvasPadding);
}

QSizeF EditorViewport::zoomedCanvasSize() const
{
    return viewportgeometry::zoomedCanvasSize(baseCanvasImageRect(), m_zoomScale);
}

QRectF EditorViewport::imageFrameInCanvas() const
{
    return viewportgeometry::imageFrameInCanvas(baseCanvasImageRect(), imageSize(), m_zoomScale);
}

QPointF EditorViewport::convertToImagePoint(QPointF viewPoint) const
{
    return viewportgeometry::convertToImagePoint(viewPoint, baseCanvasImageRect(), m_zoomScale) * pixelRatio();
}

QPointF EditorViewport::convertToViewPoint(QPointF imagePoint) const
{
    return viewportgeometry::convertToViewPoint(imagePoint / pixelRatio(), baseCanvasImageRect(), m_zoomScale);
}

QRectF EditorViewport::overlayRectInView(const Overlay &overlay) const
{
    const Rect pixels = overlay.rect();
    const double ratio = pixelRatio();
    const Rect points(pixels.minX() / ratio, pixels.minY() / ratio, pixels.width() / ratio, pixels.height() / ratio);
    return viewportgeometry::rectInView(points, baseCanvasImageRect(), m_zoomScale);
}

QTransform EditorViewport::imageToViewTransform() const
{
    const double pointsPerPixel = 1 / pixelRatio();
    return QTransform::fromScale(pointsPerPixel, pointsPerPixel)
           * viewportgeometry::imageToViewTransform(baseCanvasImageRect(), m_zoomScale);
}

QPointF EditorViewport::imageCenterAnchor() const
{
    return imageFrameInCanvas().center();
}

void EditorViewport::performInitialCentering(std::function<void(QPointF anchor)> scrollToAnchor)
{
    if (m_hasCenteredInitialViewport)
        return;
    if (m_initialCenteringAttempt >= centeringAttempts) {
        m_hasCenteredInitialViewport = true;
        return;
    }
    const int attempt = ++m_initialCenteringAttempt;
    m_scheduler.postToMainAfter(attempt * centeringInterval,
                                [this, alive = std::weak_ptr<char>(m_lifetime), scroll = std::move(scrollToAnchor)] {
                                    if (alive.expired())
                                        return;
                                    if (scroll)
                                        scroll(imageCenterAnchor());
                                    if (m_initialCenteringAttempt >= centeringAttempts)
                                        m_hasCenteredInitialViewport = true;
                                });
}
