#pragma once

#include "FakeEditorWindow.h"

#include "platform/EditorWindowFactory.h"

#include <QList>

// Keeps a pointer to each window it made; `alive` tells whether the manager still holds it.
class FakeEditorWindowFactory final : public EditorWindowFactory
{
public:
    std::unique_ptr<EditorWindow> makeEditorWindow(const EditorWindow::Configuration &configuration) override
    {
        auto window = std::make_unique<Tracked>(configuration, this);
        windows.append(window.get());
        return window;
    }

    bool isAlive(const FakeEditorWindow *window) const { return windows.contains(window) && !released.contains(window); }

    QList<FakeEditorWindow *> windows;
    QList<const FakeEditorWindow *> released;

private:
    class Tracked final : public FakeEditorWindow
    {
    public:
        Tracked(const EditorWindow::Configuration &configuration, FakeEditorWindowFactory *factory)
            : FakeEditorWindow(configuration), m_factory(factory)
        {
        }
        ~Tracked() override { m_factory->released.append(this); }

    private:
        FakeEditorWindowFactory *m_factory;
    };
};
