#pragma once

#include "../../core/helpers/EditorViewFixture.h"

#include "EditorCanvasWidget.h"
#include "EditorToolbarWidget.h"
#include "ImageEditorWidget.h"
#include "OverlayTextField.h"

#include <QScrollArea>
#include <QToolButton>
#include <QTest>
#include <QWindow>

#include <memory>

// An editor widget on a 400 × 300 picture, shown in its own active window, with the pointer driven
// through Qt's test events in image points.
struct EditorWidgetFixture
{
    EditorWidgetFixture()
    {
        widget.resize(1000, 800);
        widget.show();
        widget.activateWindow();
    }

    bool isReady() { return QTest::qWaitForWindowActive(&widget); }

    FakeKeyValueStore store;
    FakeScheduler scheduler;
    FakeSystemLog systemLog;
    std::shared_ptr<ImageEditorModel> model = std::make_shared<ImageEditorModel>(EditorViewFixture::picture(), store);
    std::shared_ptr<ImageEditorView> view = std::make_shared<ImageEditorView>(model, ImageEditorView::Services{systemLog, scheduler});
    ImageEditorWidget widget{view};

    EditorCanvasWidget *canvas() const { return widget.canvas(); }

    // Where an image point is on the canvas widget now.
    QPoint at(QPointF imagePoint) const { return view->viewport().convertToViewPoint(imagePoint).toPoint(); }

    // A press at the first point, moves through the others, a release at the last (image points).
    void drag(const QList<QPointF> &path)
    {
        QTest::mousePress(canvas(), Qt::LeftButton, {}, at(path.first()));
        for (qsizetype i = 1; i < path.size(); ++i)
            QTest::mouseMove(canvas(), at(path.at(i)));
        QTest::mouseRelease(canvas(), Qt::LeftButton, {}, at(path.last()));
        scheduler.runUntilIdle();
    }

    // A text box made by a press of the text tool at `imagePoint`, and its field.
    OverlayTextField *addTextBox(QPointF imagePoint)
    {
        widget.toolbar()->toolButton(EditorTool::Text)->click();
        drag({imagePoint});
        return model->overlays().isEmpty() ? nullptr : canvas()->textField(model->overlays().last().id);
    }

    // A key as the desktop delivers it: to the window first.
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(widget.windowHandle(), key, modifiers);
        scheduler.runUntilIdle();
    }
};
