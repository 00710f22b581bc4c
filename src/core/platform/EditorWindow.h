#pragma once

#include "platform/WindowRules.h"

#include <QHash>
#include <QSizeF>
#include <QString>

#include <functional>
#include <memory>
#include <variant>

class EditorDropTargetView;
class ImageEditorView;

// What an editor window shows: the drop target of the empty editor, or the editor of one document.
// Shared with the window manager, which may replace it from within one of its own callbacks; the
// widgets keep their reference until they are gone.
using EditorRootView = std::variant<std::shared_ptr<EditorDropTargetView>, std::shared_ptr<ImageEditorView>>;

// One editor window (an NSWindow on macOS, a top-level widget elsewhere): titled, closable,
// minimisable and resizable. Closing hides it and keeps it usable: the window manager may give it new
// content and show it again. The manager may release the object from within one of its callbacks, so
// the adapter defers destroying its widgets (deleteLater). Main thread only.
class EditorWindow
{
public:
    struct Configuration
    {
        QString title;
        QSizeF contentSize;
        QSizeF minimumSize;
    };
    using ObserverToken = int;

    virtual ~EditorWindow() = default;

    // Builds the widgets for `content`, replacing what the window showed.
    virtual void setContent(const EditorRootView &content) = 0;
    virtual void setContentSize(QSizeF size) = 0;
    virtual void setMinimumSize(QSizeF size) = 0;
    // Centres the window on the screen it is on (the main screen before it is first shown).
    virtual void center() = 0;
    // Shows the window in front and makes it the key window.
    virtual void makeKeyAndOrderFront() = 0;
    // Closes the window, which calls windowWillClose() like any other way of closing it.
    virtual void close() = 0;

    // Called for Command-Q (with any further modifiers): closes this window instead of quitting.
    std::function<void()> onQuitShortcut;
    // The adapter offers every key equivalent (a key with Command, Control on Linux) here first; true
    // when it was handled and must go no further.
    bool performKeyEquivalent(const windowrules::KeyEquivalentEvent &event);

    // Observers of the window closing, by whatever means; each runs on the main thread.
    ObserverToken addWillCloseObserver(std::function<void()> observer);
    void removeWillCloseObserver(ObserverToken token);

protected:
    // The adapter calls this when the window is about to close (close(), the close button, the system).
    void windowWillClose();

private:
    QHash<ObserverToken, std::function<void()>> m_willCloseObservers;
    ObserverToken m_nextToken = 1;
};
