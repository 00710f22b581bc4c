#pragma once

#include "FakeAlertPresenter.h"
#include "FakeApplicationControl.h"
#include "FakeClock.h"
#include "FakeDiagnosticsLog.h"
#include "FakeDisplayProvider.h"
#include "FakeKeyValueStore.h"
#include "FakeLoginItemService.h"
#include "FakeOpenPanel.h"
#include "FakePasteboard.h"
#include "FakePngWriter.h"
#include "FakeScheduler.h"
#include "FakeSystemLog.h"
#include "FakeUserNotifier.h"

#include "QtEditorWindow.h"
#include "QtEditorWindowFactory.h"

#include "app/NotificationCenter.h"
#include "editor/ImageEditorManager.h"
#include "settings/AppSettings.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTest>

// The editor window manager with real Qt windows, on fakes for everything else.
struct EditorWindowsFixture
{
    EditorWindowsFixture() { settings.setSaveFolderPath(folder.path()); }
    ~EditorWindowsFixture()
    {
        scheduler.runUntilIdle();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    FakeKeyValueStore store;
    FakeLoginItemService loginItem;
    FakeSystemLog systemLog;
    FakeDiagnosticsLog diagnostics;
    NotificationCenter notifications;
    AppSettings settings{store, loginItem, systemLog, notifications};
    FakeScheduler scheduler;
    FakeClock clock;
    FakeDisplayProvider displays;
    FakeApplicationControl application;
    FakeUserNotifier notifier;
    FakePasteboard pasteboard;
    FakePngWriter pngWriter;
    QtEditorWindowFactory windows;
    FakeAlertPresenter alerts;
    FakeOpenPanel openPanel;
    QTemporaryDir folder;
    ImageEditorManager manager{ImageEditorServices{settings, store, diagnostics, systemLog, scheduler, clock, displays,
                                                   application, notifier, pasteboard, pngWriter, windows, alerts,
                                                   openPanel}};

    static QImage picture(int width = 300, int height = 200)
    {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(QColor(30, 140, 90));
        return image;
    }

    QtEditorWindow *primary() const { return static_cast<QtEditorWindow *>(manager.editorWindow()); }

    // A PNG file of `image` in the temporary folder.
    QUrl writeFile(const QString &name, const QImage &image) const
    {
        const QString path = folder.filePath(name);
        image.save(path, "PNG");
        return QUrl::fromLocalFile(path);
    }

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
