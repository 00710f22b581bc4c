#pragma once

#include "capture/SelectionPointerRouter.h"

#include <QPointF>

#include <memory>
#include <vector>

class SelectionView;
class SelectionWindow;
class SelectionWindowFactory;

// The overlay windows, one per display, kept across sessions: the pool only grows, windows beyond the
// number of displays are ordered out and wait for the next layout, and each window keeps its view.
// Every window sends its pointer input to the pool's router. Main thread only.
class SelectionWindowPool final
{
public:
    struct Entry
    {
        std::unique_ptr<SelectionWindow> window;
        // Null until the window was first shown.
        std::unique_ptr<SelectionView> view;
    };

    explicit SelectionWindowPool(SelectionWindowFactory &factory);
    ~SelectionWindowPool();

    SelectionWindowPool(const SelectionWindowPool &) = delete;
    SelectionWindowPool &operator=(const SelectionWindowPool &) = delete;

    int size() const { return int(m_entries.size()); }
    // Makes windows until there are at least `count`.
    void growTo(int count);
    Entry &at(int index) { return m_entries.at(size_t(index)); }
    const std::vector<Entry> &entries() const { return m_entries; }
    // Makes `view` the content of the window at `index`.
    void setView(int index, std::unique_ptr<SelectionView> view);
    // The index of the window showing `view`, or -1.
    int indexOfView(const SelectionView *view) const;
    // The first window whose frame contains the point (global space).
    SelectionWindow *firstWindowContaining(QPointF point) const;

    // How many windows, from the first, cover a display now; zero while no overlay is up. A new count
    // ends any drag in progress.
    void setShownCount(int count);
    int shownCount() const { return m_shownCount; }
    SelectionPointerRouter &router() { return m_router; }

private:
    SelectionWindowFactory &m_factory;
    std::vector<Entry> m_entries;
    int m_shownCount = 0;
    SelectionPointerRouter m_router{*this};
};
