#pragma once

#include "FakeClock.h"
#include "FakeCursor.h"
#include "FakeDiagnosticsLog.h"
#include "FakeDisplayProvider.h"
#include "FakeEditorHandOff.h"
#include "FakeKeyEventMonitor.h"
#include "FakeKeyValueStore.h"
#include "FakeLoginItemService.h"
#include "FakePasteboard.h"
#include "FakePngWriter.h"
#include "FakeScheduler.h"
#include "FakeScreenCapturePermission.h"
#include "FakeScreenCapturer.h"
#include "FakeSelectionWindowFactory.h"
#include "FakeSoundPlayer.h"
#include "FakeSystemLog.h"
#include "FakeWindowList.h"
#include "FakeWorkspace.h"

#include "capture/CaptureParts.h"
#include "capture/CaptureServices.h"
#include "capture/SelectionView.h"
#include "settings/AppSettings.h"

#include <QTemporaryDir>

#include <cmath>

// The capture flow's parts on fakes, with the helpers most capture tests need. Captures are saved into a
// temporary folder; the PNG writer only records.
struct CaptureFixture
{
    QStringList journal;
    FakeDiagnosticsLog diagnostics;
    FakeSystemLog systemLog;
    FakeScheduler scheduler;
    FakeClock clock;
    FakeDisplayProvider displays;
    FakeScreenCapturer capturer{&journal};
    FakeScreenCapturePermission permission;
    FakeWindowList windowList;
    FakePasteboard pasteboard{&journal};
    FakeSoundPlayer sounds{&journal};
    FakeWorkspace workspace;
    FakeCursor cursor;
    FakeKeyEventMonitor keyMonitor;
    FakeSelectionWindowFactory windowFactory{displays};
    FakePngWriter pngWriter;
    FakeEditorHandOff editor{&journal};
    FakeKeyValueStore store;
    FakeLoginItemService loginItem;
    AppSettings settings{store, loginItem, systemLog};
    QTemporaryDir saveFolder;
    CaptureServices services{settings, diagnostics, systemLog, scheduler, clock, displays, capturer, permission,
                             windowList, pasteboard, sounds, workspace, cursor, keyMonitor, windowFactory,
                             pngWriter};
    CaptureParts parts{services};
    CaptureState &state = parts.state;
    SelectionSession &session = parts.session;
    CaptureExecution &execution = parts.execution;
    CaptureSaver &saver = parts.saver;

    CaptureFixture()
    {
        settings.setSaveFolderPath(saveFolder.path());
        saver.setEditorHandOff(&editor);
    }
    explicit CaptureFixture(const QList<DisplayInfo> &screens) : CaptureFixture() { setDisplays(screens); }

    // The displays, and the same displays as the capture service lists them, at their pixel size.
    void setDisplays(const QList<DisplayInfo> &screens)
    {
        displays.displays = screens;
        QList<ScreenCapturer::ShareableDisplay> shareable;
        for (const DisplayInfo &screen : screens) {
            if (screen.id)
                shareable.append({*screen.id, int(std::lround(screen.frame.width() * screen.backingScale)),
                                  int(std::lround(screen.frame.height() * screen.backingScale))});
        }
        capturer.shareable = shareable;
    }

    // Starts a selection and runs it until the overlay is up (permission already granted).
    void showOverlay()
    {
        session.startSelection();
        scheduler.runUntilIdle();
    }

    FakeSelectionWindow *window(int index) const { return windowFactory.windows.value(index); }
    SelectionView *view(int index) const { return window(index) ? window(index)->contentView : nullptr; }

    // A drag from `from` to `to` in the view of window `index`, released at `to`.
    void drag(int index, QPointF from, QPointF to)
    {
        SelectionView *v = view(index);
        v->mouseDown(from);
        v->mouseDragged(to);
        v->mouseUp(to);
    }

    // A whole interactive capture of `rect` on display `index`, run to its end (saving included).
    void captureRegion(int index, const Rect &rect)
    {
        showOverlay();
        drag(index, rect.origin(), QPointF(rect.maxX(), rect.maxY()));
        scheduler.advance(1);
        scheduler.runBackgroundTasks();
    }

    QStringList lines() const { return diagnostics.lines(); }
    QStringList linesStartingWith(const QString &prefix) const
    {
        QStringList found = lines();
        found.removeIf([&prefix](const QString &line) { return !line.startsWith(prefix); });
        return found;
    }
};
