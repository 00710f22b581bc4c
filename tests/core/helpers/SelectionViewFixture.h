#pragma once

#include "FakeCursor.h"
#include "FakeDisplayProvider.h"
#include "FakeSelectionWindowFactory.h"

#include "capture/SelectionView.h"
#include "capture/SelectionViewDelegate.h"
#include "capture/SelectionWindowPool.h"
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

// Overlay windows over `screens` with their views, shown as a selection session shows them.
struct OverlayFixture
{
    explicit OverlayFixture(const QList<DisplayInfo> &screens)
    {
        displays.displays = screens;
        pool.growTo(int(screens.size()));
        for (int i = 0; i < screens.size(); ++i) {
            pool.at(i).window->setFrame(screens.at(i).frame);
            pool.setView(i, std::make_unique<SelectionView>(capturegeometry::localBounds(screens.at(i).frame),
                                                            &delegate, cursor, displays));
        }
        pool.setShownCount(int(screens.size()));
    }

    SelectionView &viewAt(int index) { return *pool.at(index).view; }
    // The window an X server with our grab sends an event at `global` to: the overlay under the
    // pointer, else the grabbing first one.
    SelectionView &viewUnder(QPointF global)
    {
        for (int i = 0; i < pool.size(); ++i) {
            if (pool.at(i).window->frame().contains(global))
                return viewAt(i);
        }
        return viewAt(0);
    }

    FakeDisplayProvider displays;
    FakeCursor cursor;
    RecordingDelegate delegate;
    FakeSelectionWindowFactory factory{displays};
    SelectionWindowPool pool{factory};
};

// One view of `size` on a display of scale 2.
struct ViewFixture : OverlayFixture
{
    explicit ViewFixture(QSizeF viewSize = QSizeF(1000, 800))
        : OverlayFixture({FakeDisplayProvider::display(7, Rect(QPointF(0, 0), viewSize), 2)}), size(viewSize)
    {
    }

    // A 2x screen image of one colour behind the view.
    void showFrozenScreen(QColor color)
    {
        QImage image(size.toSize() * 2, QImage::Format_RGB32);
        image.fill(color);
        view.setFrozenBackgroundImage(image);
    }

    QSizeF size;
    SelectionView &view = viewAt(0);
    FakeSelectionWindow &window = *factory.windows.first();
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
