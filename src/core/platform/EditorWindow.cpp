#include "platform/EditorWindow.h"

bool EditorWindow::performKeyEquivalent(const windowrules::KeyEquivalentEvent &event)
{
    if (!windowrules::isCloseWindowShortcut(event))
        return false;
    // A copy: the handler may close and release this window.
    const std::function<void()> handler = onQuitShortcut;
    if (handler)
        handler();
    return true;
}

EditorWindow::ObserverToken EditorWindow::addWillCloseObserver(std::function<void()> observer)
{
    const ObserverToken token = m_nextToken++;
    m_willCloseObservers.insert(token, std::move(observer));
    return token;
}

void EditorWindow::removeWillCloseObserver(ObserverToken token)
{
    m_willCloseObservers.remove(token);
}

void EditorWindow::windowWillClose()
{
    // Observers may remove themselves (or others) while they run.
    const QList<std::function<void()>> observers = m_willCloseObservers.values();
    for (const std::function<void()> &observer : observers)
        observer();
}
