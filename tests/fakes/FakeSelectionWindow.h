#pragma once

#include "FakeDisplayProvider.h"

#include "platform/SelectionWindow.h"

#include <QList>

// A window that only keeps its frame, content and visibility. Its screen is the display of
// `displays` that holds most of its frame, as on macOS, unless a test sets `screenOverride`.
class FakeSelectionWindow final : public SelectionWindow
{
public:
    explicit FakeSelectionWindow(const FakeDisplayProvider &displays) : m_displays(displays) {}

    Rect frame() const override { return m_frame; }
    void setFrame(const Rect &frame) override { m_frame = frame; }
    std::optional<DisplayInfo> screen() const override
    {
        if (screenOverride)
            return *screenOverride;
        std::optional<DisplayInfo> best;
        double bestArea = 0;
        for (const DisplayInfo &display : m_displays.displays) {
            const Rect overlap = display.frame.intersected(m_frame);
            const double area = overlap.isNull() ? 0 : overlap.width() * overlap.height();
            if (area > bestArea) {
                bestArea = area;
                best = display;
            }
        }
        return best;
    }
    Rect convertRectToScreen(const Rect &rect) const override { return rect.translated(m_frame.x(), m_frame.y()); }
    QPointF convertPointFromScreen(QPointF point) const override { return point - m_frame.origin(); }
    void setContentView(SelectionView *view) override { contentView = view; }
    void setPointerRouter(SelectionPointerRouter *) override {}
    void setNeedsDisplay() override { ++needsDisplayCount; }
    void setNeedsDisplayInRect(const Rect &rect) override
    {
        ++needsDisplayCount;
        dirtyRects.append(rect);
    }
    void displayIfNeeded() override { ++displayCount; }
    void makeKeyAndOrderFront() override
    {
        isVisible = true;
        isKey = true;
    }
    void orderFront() override { isVisible = true; }
    void orderOut() override
    {
        isVisible = false;
        isKey = false;
    }

    std::optional<std::optional<DisplayInfo>> screenOverride;
    SelectionView *contentView = nullptr;
    bool isVisible = false;
    bool isKey = false;
    int needsDisplayCount = 0;
    // What setNeedsDisplayInRect was given, in order.
    QList<Rect> dirtyRects;
    int displayCount = 0;

private:
    const FakeDisplayProvider &m_displays;
    Rect m_frame;
};
