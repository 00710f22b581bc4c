#pragma once

#include "FakeAlertPresenter.h"
#include "FakeApplicationControl.h"
#include "FakeClock.h"
#include "FakeDiagnosticsLog.h"
#include "FakeDisplayProvider.h"
#include "FakeEditorWindowFactory.h"
#include "FakeKeyValueStore.h"
#include "FakeLoginItemService.h"
#include "FakeOpenPanel.h"
#include "FakePasteboard.h"
#include "FakePngWriter.h"
#include "FakeScheduler.h"
#include "FakeSystemLog.h"
#include "FakeUserNotifier.h"

#include "editor/EditorDropTargetView.h"
#include "editor/ImageEditorManager.h"
#include "editor/ImageEditorModel.h"
#include "editor/ImageEditorView.h"
#include "settings/AppSettings.h"

#include <QTemporaryDir>

// A window manager on fakes. The PNG writer and the window factory are the ones given (recording
// fakes unless a test needs real files or real windows); the capture folder is a temporary folder.
struct EditorManagerFixture
{
    explicit EditorManagerFixture(const PngWriter *writer = nullptr, EditorWindowFactory *windowFactory = nullptr)
        : pngWriter(writer ? *writer : fakeWriter), windowFactory(windowFactory ? *windowFactory : windows)
    {
        settings.setSaveFolderPath(captureFolder.path());
    }
    // Windows released after an event go while the factory that tracks them is still there.
    ~EditorManagerFixture() { scheduler.runUntilIdle(); }

    FakeKeyValueStore store;
    FakeLoginItemService loginItem;
    FakeSystemLog systemLog;
    FakeDiagnosticsLog diagnostics;
    AppSettings settings{store, loginItem, systemLog};
    FakeScheduler scheduler;
    FakeClock clock;
    FakeDisplayProvider displays;
    FakeApplicationControl application;
    FakeUserNotifier notifier;
    FakePasteboard pasteboard;
    FakePngWriter fakeWriter;
    const PngWriter &pngWriter;
    FakeEditorWindowFactory windows;
    EditorWindowFactory &windowFactory;
    FakeAlertPresenter alerts;
    FakeOpenPanel openPanel;
    QTemporaryDir captureFolder;
    ImageEditorManager manager{ImageEditorServices{settings, store, diagnostics, systemLog, scheduler, clock, displays,
                                                   application, notifier, pasteboard, pngWriter, windowFactory,
                                                   alerts, openPanel}};

    static QImage picture(int width = 40, int height = 30, QColor color = Qt::darkCyan)
    {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(color);
        return image;
    }

    FakeEditorWindow *primary() const { return static_cast<FakeEditorWindow *>(manager.editorWindow()); }
    FakeEditorWindow *lastWindow() const { return windows.windows.isEmpty() ? nullptr : windows.windows.last(); }

    void openWithoutNotification(bool keepExistingWindow)
    {
        settings.setOpenEditorViaNotification(false);
        settings.setKeepExistingEditorWindowOnAutoOpen(keepExistingWindow);
    }

    // The hand-off after a capture, run until what it posted has happened.
    void handOff(const QImage &image, const QUrl &source)
    {
        manager.scheduleEditNotification(image, source);
        scheduler.runUntilIdle();
    }

    // The picture saved as a capture is, in the capture folder; the click on its notification reads it.
    QUrl saved(const QImage &image, const QString &name = QStringLiteral("capture.png"))
    {
        const QString path = captureFolder.filePath(name);
        image.save(path, "PNG");
        return QUrl::fromLocalFile(path);
    }

    // A capture handed over and opened by a click on its notification.
    void openCapture(const QImage &image, bool inNewWindow = false)
    {
        settings.setOpenEditorViaNotification(true);
        manager.scheduleEditNotification(image, saved(image));
        manager.openEditor(inNewWindow);
    }

    // The drop target the launcher shows in the primary window.
    std::shared_ptr<EditorDropTargetView> openLauncher()
    {
        manager.openEditorLauncher();
        return primary()->contentAs<EditorDropTargetView>();
    }

    // A picture without a source file, pasted into the launcher; the primary window shows it.
    FakeEditorWindow *openPasted(const QImage &image)
    {
        pasteboard.image = image;
        openLauncher()->trigger(EditorDropTargetView::ButtonRole::PasteImage);
        return primary();
    }

    // A picture from `source` in an extra window beside the primary one.
    FakeEditorWindow *openDetached(const QImage &image, const QUrl &source)
    {
        openWithoutNotification(true);
        if (!primary())
            handOff(picture(), source);
        handOff(image, source);
        return lastWindow();
    }
};
