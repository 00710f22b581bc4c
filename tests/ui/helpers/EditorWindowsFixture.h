#pragma once

#include "../../core/helpers/EditorManagerFixture.h"

#include "QtEditorWindow.h"
#include "QtEditorWindowFactory.h"

#include <QCoreApplication>
#include <QTest>

struct QtWindowFactoryHolder
{
    QtEditorWindowFactory qtWindows;
};

// The editor window manager with real Qt windows, on fakes for everything else.
struct EditorWindowsFixture : QtWindowFactoryHolder, EditorManagerFixture
{
    EditorWindowsFixture() : EditorManagerFixture(nullptr, &qtWindows) {}
    ~EditorWindowsFixture() { settle(); }

    static QImage picture(int width = 300, int height = 200)
    {
        return EditorManagerFixture::picture(width, height, QColor(30, 140, 90));
    }

    QtEditorWindow *primary() const { return static_cast<QtEditorWindow *>(manager.editorWindow()); }

    // What the event loop does after a click or a key: posted work, then widgets let go of.
    void settle()
    {
        scheduler.runUntilIdle();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void key(QtEditorWindow *window, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(window->widget()->windowHandle(), key, modifiers);
        settle();
    }
};
