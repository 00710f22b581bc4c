#pragma once

#include "FakeKeyValueStore.h"
#include "FakeScheduler.h"
#include "FakeSystemLog.h"

#include "editor/ImageEditorModel.h"
#include "editor/ImageEditorView.h"
#include "editor/ViewportGeometry.h"

#include <QList>
#include <QPointF>

#include <memory>

// An editor view on a 400 × 300 picture at zoom 1, with the pointer scripted in image points.
struct EditorViewFixture
{
    static QImage picture(int width = 400, int height = 300)
    {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(QColor(90, 120, 150));
        return image;
    }
    // A picture with some structure, so that mosaics and misplaced drawing show; `ratio` pixels per point.
    static QImage pattern(double ratio = 1)
    {
        QImage image(200, 120, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, qRgb((x * 5) % 256, (y * 7) % 256, ((x + y) * 3) % 256));
        image.setDevicePixelRatio(ratio);
        return image;
    }

    FakeKeyValueStore store;
    FakeScheduler scheduler;
    FakeSystemLog systemLog;
    std::shared_ptr<ImageEditorModel> model = std::make_shared<ImageEditorModel>(picture(), store);
    ImageEditorView view{model, {systemLog, scheduler}};

    CanvasInteraction &interaction() { return view.interaction(); }

    // Where an image pixel is on the canvas.
    QPointF at(double x, double y) const
    {
        return viewportgeometry::convertToViewPoint(QPointF(x, y) / model->image().devicePixelRatio(),
                                                    view.viewport().baseCanvasImageRect(),
                                                    view.viewport().zoomScale());
    }

    // A press, moves through each point, and a release at the last: all in view points.
    void drag(const QList<QPointF> &path)
    {
        view.pointerPressed(path.first());
        for (qsizetype i = 1; i < path.size(); ++i)
            view.pointerMoved(path.at(i));
        view.pointerReleased(path.last());
    }
    void click(QPointF point) { drag({point}); }

    // A finished overlay, added the way a draw-mode drag adds it (one undo step).
    Overlay add(EditorTool tool, QPointF start, QPointF end)
    {
        model->setSelectedTool(tool);
        interaction().setDrawMode(true);
        drag({at(start.x(), start.y()), at(end.x(), end.y())});
        return model->overlays().last();
    }

    // An overlay put straight into the document, as drawn from `start` to `end` (one undo step).
    Overlay place(EditorTool tool, QPointF start, QPointF end)
    {
        const Overlay overlay = model->makeOverlay(tool, start, end, Qt::red, QString());
        model->appendOverlay(overlay);
        return overlay;
    }

    void editMode()
    {
        interaction().setDrawMode(false);
        scheduler.runUntilIdle();
    }

    qsizetype undoSteps() const { return model->undoStack().size(); }
};

