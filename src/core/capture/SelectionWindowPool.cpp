#include "capture/SelectionWindowPool.h"

#include "capture/SelectionView.h"
#include "platform/SelectionWindowFactory.h"

SelectionWindowPool::SelectionWindowPool(SelectionWindowFactory &factory) : m_factory(factory) {}

SelectionWindowPool::~SelectionWindowPool()
{
    // The controller that delegates for the views is going away too: the views show the pointer
    // again without reporting it, and the windows, which may outlive the pool, stop routing to it.
    for (Entry &entry : m_entries) {
        entry.window->setContentView(nullptr);
        entry.window->setPointerRouter(nullptr);
        if (entry.view) {
            entry.view->setDelegate(nullptr);
            entry.view->setWindow(nullptr);
        }
    }
}

void SelectionWindowPool::growTo(int count)
{
    while (size() < count) {
        m_entries.push_back({m_factory.makeSelectionWindow(), nullptr});
        m_entries.back().window->setPointerRouter(&m_router);
    }
}

void SelectionWindowPool::setView(int index, std::unique_ptr<SelectionView> view)
{
    Entry &entry = at(index);
    if (entry.view)
        entry.view->setWindow(nullptr);
    entry.view = std::move(view);
    entry.window->setContentView(entry.view.get());
    if (entry.view)
        entry.view->setWindow(entry.window.get());
}

int SelectionWindowPool::indexOfView(const SelectionView *view) const
{
    for (size_t i = 0; i < m_entries.size(); ++i) {
        if (view && m_entries[i].view.get() == view)
            return int(i);
    }
    return -1;
}

SelectionWindow *SelectionWindowPool::firstWindowContaining(QPointF point) const
{
    for (const Entry &entry : m_entries) {
        if (entry.window->frame().contains(point))
            return entry.window.get();
    }
    return nullptr;
}

void SelectionWindowPool::setShownCount(int count)
{
    m_shownCount = count;
    m_router.reset();
}
