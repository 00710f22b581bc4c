#include "capture/SelectionWindowPool.h"

#include "capture/SelectionView.h"
#include "platform/SelectionWindowFactory.h"

SelectionWindowPool::SelectionWindowPool(SelectionWindowFactory &factory) : m_factory(factory) {}

SelectionWindowPool::~SelectionWindowPool()
{
    // The controller that delegates for the views is going away too: the views show the pointer
    // again without reporting it.
    for (Entry &entry : m_entries) {
        entry.window->setContentView(nullptr);
        if (entry.view) {
            entry.view->setDelegate(nullptr);
            entry.view->setWindow(nullptr);
        }
    }
}

void SelectionWindowPool::growTo(int count)
{
    while (size() < count)
        m_entries.push_back({m_factory.makeSelectionWindow(), nullptr});
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

SelectionWindow *SelectionWindowPool::firstWindowContaining(QPointF point) const
{
    for (const Entry &entry : m_entries) {
        if (entry.window->frame().contains(point))
            return entry.window.get();
    }
    return nullptr;
}
