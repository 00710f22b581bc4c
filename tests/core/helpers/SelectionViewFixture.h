#pragma once

#include "FakeCursor.h"
#include "FakeDisplayProvider.h"
#include "FakeSelectionWindow.h"

#include "capture/SelectionView.h"
#include "capture/SelectionViewDelegate.h"
#include "geometry/TraceFormat.h"

#include <QImage>
#include <QPainter>
#include <QStringList>

// A selection view on a display of scale 2 in a fake window, and its painting as a window paints it.
class RecordingDelegate final : public SelectionViewDelegate
{
public:
    void capture(const Rect &rect, SelectionWindow *window) override
    {
        calls.append(QStringLiteral("capture ") + trace::rect(rect));
        lastWindow = window;
    }
    void captureWindowUnderCursor() override { calls.append(QStringLiteral("captureWindowUnderCursor")); }
    void cancelSelection() override { calls.append(QStringLiteral("cancelSelection")); }
    void selectionCursorDidHide() override { calls.append(QStringLiteral("cursorDidHide")); }
    void selectionCursorDidRestore() override { calls.append(QStringLiteral("cursorDidRestore")); }

    QStringList calls;
    SelectionWindow *lastWindow = nullptr;
};

// A view of `size` on a display of scale 2, hosted by a window.
struct ViewFixture
{
    explicit ViewFixture(QSizeF viewSize = QSizeF(1000, 800)) : size(viewSize)
    {
        displays.displays = {FakeDisplayProvider::display(7, Rect(QPointF(0, 0), size), 2)};
        window.setFrame(Rect(QPointF(0, 0), size));
        view.setWindow(&window);
        window.setContentView(&view);
    }

    // A 2x screen image of one colour behind the view.
    void showFrozenScreen(QColor color)
    {
        QImage image(size.toSize() * 2, QImage::Format_RGB32);
        image.fill(color);
        view.setFrozenBackgroundImage(image);
    }

    QSizeF size;
    FakeDisplayProvider displays;
    FakeCursor cursor;
    RecordingDelegate delegate;
    FakeSelectionWindow window{displays, 0, nullptr};
    SelectionView view{Rect(QPointF(0, 0), size), &delegate, cursor, displays};
};

// Paints the view into an image the way a window does: the painter flipped to the view's y-up space, on a
// canvas of `scale` device pixels per point.
inline QImage render(const SelectionView &view, QColor behind = QColor(200, 200, 200), double scale = 1)
{
    const Rect bounds = view.bounds();
    QImage canvas(QSize(int(bounds.width() * scale), int(bounds.height() * scale)),
                  QImage::Format_ARGB32_Premultiplied);
    canvas.setDevicePixelRatio(scale);
    canvas.fill(behind);
    QPainter painter(&canvas);
    painter.translate(0, bounds.height());
    painter.scale(1, -1);
    view.draw(painter);
    return canvas;
}
