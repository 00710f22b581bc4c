#pragma once

#include "editor/Overlay.h"
#include "geometry/Rect.h"

#include <QList>
#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QTransform>

#include <functional>
#include <memory>

class ImageEditorModel;
class Scheduler;

// The canvas of an editor view: the image with a margin of canvasPadding image points on every side,
// scaled by zoomScale and shown in a scroll area that scrolls both ways. Image points are the points
// the picture covered on screen (its pixels over its device pixel ratio), so a HiDPI capture shows at
// its on-screen size at 100 %. The overlays live in image pixels: the conversions go between view
// points and those pixels. It also runs the zoom controls and centres the scroll area on the image when
// the view first appears. Main thread only.
class EditorViewport final : public QObject
{
    Q_OBJECT

public:
    static constexpr double canvasPadding = 500.0;
    static const QList<double> &zoomPresets();

    struct ZoomButton
    {
        QString title;
        double zoomScale;
    };
    struct ZoomControls
    {
        QString heading;
        QString resetTitle;
        bool isResetEnabled;
        QList<ZoomButton> presets;
        double sliderMinimum;
        double sliderMaximum;
        double sliderStep;
        double sliderValue;
    };

    EditorViewport(const ImageEditorModel &model, Scheduler &scheduler, QObject *parent = nullptr);
    ~EditorViewport() override;

    double zoomScale() const { return m_zoomScale; }
    // Changes only the view; the document is untouched.
    void setZoomScale(double zoom);
    ZoomControls zoomControls() const;
    // "100%に戻す".
    void resetZoom() { setZoomScale(1.0); }
    // The slider's value, kept to its range and steps.
    void setZoomFromSlider(double value);

    // How far one image pixel reaches on the canvas.
    double viewPointsPerImagePixel() const { return m_zoomScale / pixelRatio(); }
    // The canvas rectangle, in image points. It follows the image alone, so it stays put while a drag runs.
    Rect baseCanvasImageRect() const;
    QSizeF zoomedCanvasSize() const;
    QRectF imageFrameInCanvas() const;
    // View points to overlay coordinates (image pixels, y up) and back.
    QPointF convertToImagePoint(QPointF viewPoint) const;
    QPointF convertToViewPoint(QPointF imagePoint) const;
    QRectF overlayRectInView(const Overlay &overlay) const;
    // For a painter drawing overlays in image pixels onto the canvas.
    QTransform imageToViewTransform() const;
    // The centre of the image on the canvas: what the scroll area centres on.
    QPointF imageCenterAnchor() const;

    // Called whenever the scroll area appears or its geometry changes, while the first layout passes
    // settle: schedules up to four scrolls to the image centre, 0.05 s × n after the n-th call.
    // `scrollToAnchor` is given the anchor in canvas view points and centres the scroll area on it.
    void performInitialCentering(std::function<void(QPointF anchor)> scrollToAnchor);

signals:
    // The zoom changed: the canvas has a new size and mapping.
    void geometryChanged();

private:
    // In image points.
    QSizeF imageSize() const;
    // Image pixels per image point: 2 for a capture from a HiDPI display, 1 for files and the clipboard.
    double pixelRatio() const;

    const ImageEditorModel &m_model;
    Scheduler &m_scheduler;
    double m_zoomScale = 1.0;
    bool m_hasCenteredInitialViewport = false;
    int m_initialCenteringAttempt = 0;
    // Scheduled scrolls check that the viewport still exists.
    std::shared_ptr<char> m_lifetime = std::make_shared<char>();
};
