// Measures a screenshot tool from outside, as a user sees it: the time from the trigger (a shortcut sent
// through XTEST, a click, or a command started) to the first MapNotify of a top-level window and to the
// first change of the screen's pixels at the probe points, polled every millisecond. Also the time
// from releasing the mouse button at the end of a drag, or from a key, to the PNG file appearing in a
// folder, and the time from each pointer motion of a drag to the pixels at the new point changing.
//
//   latency_probe trigger (--keys K[+K...] | --click X,Y | --exec PROGRAM [ARG...] --) --probe X,Y...
//                 [--area W,H] [--color RRGGBB] [--timeout-ms N] [--dismiss K[+K...]]
//       prints "map_ms=M pixels_ms=P" (a figure is "none" when it did not happen in time). A probe is
//       the W x H pixels from its point (24 x 1 unless given); with --color, pixels_ms is when a probe
//       first shows a pixel of that colour rather than when one first changes. With --dismiss, then
//       sends those keys and waits until the probe points show what they showed before.
//   latency_probe drag X1,Y1,X2,Y2 [--watch DIRECTORY] [--timeout-ms N]
//       presses at the first point, moves to the second and releases; with --watch, prints "save_ms=S"
//       from the release to the first PNG file closed after writing or moved into DIRECTORY.
//   latency_probe keys K[+K...] [--watch DIRECTORY] [--timeout-ms N]
//       presses and releases the keys (modifiers first); with --watch, prints "save_ms=S" as drag does.
//   latency_probe stroke ...           see probe_stroke.c
//
// Keys are names: shift, ctrl, alt, super, escape, return, space, or a letter or digit.
#define _GNU_SOURCE
#include "probe_x11.h"

#include <poll.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

enum { maxProbes = 16 };

int stroke(int argc, char **argv);

// True when any probe shows something else than its recorded pixels (`changed`), or when every probe
// shows its recorded pixels again (!`changed`); with a colour, when any probe shows that colour.
static int probesShow(const Area *probes, int count, int changed, long color)
{
    int same = 0;
    for (int i = 0; i < count; ++i) {
        if (color >= 0) {
            if (areaShowsColor(&probes[i], (uint32_t)color) == 1)
                return 1;
            continue;
        }
        same += areaChanged(&probes[i]) == 0;
    }
    if (color >= 0)
        return 0;
    return changed ? same < count : same == count;
}

static void drainEvents(double t0, double *mapMs)
{
    xcb_generic_event_t *event;
    while ((event = xcb_poll_for_event(connection))) {
        if ((event->response_type & 0x7f) == XCB_MAP_NOTIFY && *mapMs < 0)
            *mapMs = nowMs() - t0;
        free(event);
    }
}

// Waits up to `ms` for X traffic, so a MapNotify is seen as soon as it arrives.
static void waitForTraffic(double ms)
{
    struct pollfd fd = {xcb_get_file_descriptor(connection), POLLIN, 0};
    if (ms > 0)
        poll(&fd, 1, (int)(ms + 0.999));
}

static int trigger(int argc, char **argv)
{
    int points[maxProbes][2];
    int probeCount = 0, areaWidth = 24, areaHeight = 1;
    long color = -1;
    xcb_keycode_t keys[maxKeys], dismiss[maxKeys];
    int keyCount = 0, dismissCount = 0, clickX = -1, clickY = -1;
    char **command = NULL;
    double timeoutMs = 3000;
    for (int i = 0; i < argc; ++i) {
        if (strcmp(argv[i], "--keys") == 0 && i + 1 < argc) {
            keyCount = keyCodes(argv[++i], keys);
        } else if (strcmp(argv[i], "--dismiss") == 0 && i + 1 < argc) {
            dismissCount = keyCodes(argv[++i], dismiss);
        } else if (strcmp(argv[i], "--click") == 0 && i + 1 < argc) {
            if (!parsePoint(argv[++i], &clickX, &clickY))
                return fail("--click takes X,Y");
        } else if (strcmp(argv[i], "--probe") == 0 && i + 1 < argc && probeCount < maxProbes) {
            if (!parsePoint(argv[++i], &points[probeCount][0], &points[probeCount][1]))
                return fail("--probe takes X,Y");
            ++probeCount;
        } else if (strcmp(argv[i], "--area") == 0 && i + 1 < argc) {
            if (!parsePoint(argv[++i], &areaWidth, &areaHeight) || areaWidth < 1 || areaHeight < 1)
                return fail("--area takes W,H");
        } else if (strcmp(argv[i], "--color") == 0 && i + 1 < argc) {
            color = strtol(argv[++i], NULL, 16);
        } else if (strcmp(argv[i], "--timeout-ms") == 0 && i + 1 < argc) {
            timeoutMs = atof(argv[++i]);
        } else if (strcmp(argv[i], "--exec") == 0 && i + 1 < argc) {
            // The command runs up to "--" or to the end.
            command = argv + ++i;
            while (i < argc && strcmp(argv[i], "--") != 0)
                ++i;
            if (i < argc)
                argv[i] = NULL;
        } else {
            return fail("unknown or incomplete argument");
        }
    }
    if (keyCount < 0 || dismissCount < 0)
        return fail("unknown key name");
    if (probeCount == 0 || (keyCount == 0 && clickX < 0 && !command))
        return fail("a trigger (--keys, --click or --exec) and at least one --probe are needed");
    Area probes[maxProbes];
    for (int i = 0; i < probeCount; ++i) {
        if (!recordArea(&probes[i], points[i][0], points[i][1], areaWidth, areaHeight))
            return fail("cannot read the screen at a probe point");
    }

    const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &mask);
    if (clickX >= 0) {
        fake(XCB_MOTION_NOTIFY, 0, clickX, clickY);
        xcb_flush(connection);
        usleep(50000);
    }
    // Everything before the trigger is done and its events are read.
    double before = -1;
    syncWithServer();
    drainEvents(nowMs(), &before);

    const double t0 = nowMs();
    pid_t child = -1;
    if (keyCount > 0) {
        sendKeys(keys, keyCount);
    } else if (clickX >= 0) {
        fake(XCB_BUTTON_PRESS, 1, 0, 0);
        fake(XCB_BUTTON_RELEASE, 1, 0, 0);
        xcb_flush(connection);
    } else if (posix_spawnp(&child, command[0], NULL, NULL, command, environ) != 0) {
        return fail("cannot start the command");
    }

    double mapMs = -1, pixelsMs = -1;
    double nextPoll = t0;
    while (nowMs() - t0 < timeoutMs && (mapMs < 0 || pixelsMs < 0)) {
        waitForTraffic(nextPoll - nowMs());
        drainEvents(t0, &mapMs);
        if (pixelsMs < 0 && nowMs() >= nextPoll) {
            if (probesShow(probes, probeCount, 1, color))
                pixelsMs = nowMs() - t0;
            nextPoll += 1;
        }
    }
    printFigure("map_ms", mapMs);
    printf(" ");
    printFigure("pixels_ms", pixelsMs);
    printf("\n");
    fflush(stdout);

    if (dismissCount > 0) {
        sendKeys(dismiss, dismissCount);
        const double start = nowMs();
        while (nowMs() - start < timeoutMs && !probesShow(probes, probeCount, 0, -1))
            usleep(5000);
    }
    for (int i = 0; i < probeCount; ++i)
        freeArea(&probes[i]);
    if (child > 0)
        waitpid(child, NULL, 0);
    return pixelsMs < 0 ? 1 : 0;
}

// The optional "--watch DIRECTORY" and "--timeout-ms N" after a drag or keys; 0 on a bad argument.
static int watchOptions(int argc, char **argv, const char **folder, double *timeoutMs)
{
    for (int i = 0; i < argc; ++i) {
        if (strcmp(argv[i], "--watch") == 0 && i + 1 < argc)
            *folder = argv[++i];
        else if (strcmp(argv[i], "--timeout-ms") == 0 && i + 1 < argc)
            *timeoutMs = atof(argv[++i]);
        else
            return 0;
    }
    return 1;
}

// Waits for the PNG after an input sent at `t0`, when a folder is watched.
static int reportSave(int watch, double t0, double timeoutMs)
{
    if (watch < 0) {
        syncWithServer();
        return 0;
    }
    const double saveMs = waitForPng(watch, t0, timeoutMs);
    printFigure("save_ms", saveMs);
    printf("\n");
    return saveMs < 0 ? 1 : 0;
}

static int drag(int argc, char **argv)
{
    int x1, y1, x2, y2;
    const char *folder = NULL;
    double timeoutMs = 10000;
    if (argc < 1 || sscanf(argv[0], "%d,%d,%d,%d", &x1, &y1, &x2, &y2) != 4)
        return fail("drag takes X1,Y1,X2,Y2");
    if (!watchOptions(argc - 1, argv + 1, &folder, &timeoutMs))
        return fail("unknown or incomplete argument");
    const int watch = folder ? watchFolder(folder) : -1;
    if (folder && watch < 0)
        return fail("cannot watch the folder");

    fake(XCB_MOTION_NOTIFY, 0, x1, y1);
    xcb_flush(connection);
    usleep(30000);
    fake(XCB_BUTTON_PRESS, 1, 0, 0);
    xcb_flush(connection);
    for (int step = 1; step <= 10; ++step) {
        usleep(15000);
        fake(XCB_MOTION_NOTIFY, 0, x1 + (x2 - x1) * step / 10, y1 + (y2 - y1) * step / 10);
        xcb_flush(connection);
    }
    usleep(50000);
    syncWithServer();

    const double t0 = nowMs();
    fake(XCB_BUTTON_RELEASE, 1, 0, 0);
    xcb_flush(connection);
    return reportSave(watch, t0, timeoutMs);
}

static int keys(int argc, char **argv)
{
    xcb_keycode_t codes[maxKeys];
    const char *folder = NULL;
    double timeoutMs = 10000;
    const int count = argc >= 1 ? keyCodes(argv[0], codes) : -1;
    if (count < 0)
        return fail("unknown key name");
    if (!watchOptions(argc - 1, argv + 1, &folder, &timeoutMs))
        return fail("unknown or incomplete argument");
    const int watch = folder ? watchFolder(folder) : -1;
    if (folder && watch < 0)
        return fail("cannot watch the folder");
    syncWithServer();
    const double t0 = nowMs();
    sendKeys(codes, count);
    return reportSave(watch, t0, timeoutMs);
}

int main(int argc, char **argv)
{
    if (argc < 2)
        return fail("usage: latency_probe trigger|drag|keys|stroke ...");
    if (!connectToDisplay())
        return fail("cannot connect to the X server");
    if (strcmp(argv[1], "trigger") == 0)
        return trigger(argc - 2, argv + 2);
    if (strcmp(argv[1], "drag") == 0)
        return drag(argc - 2, argv + 2);
    if (strcmp(argv[1], "keys") == 0)
        return keys(argc - 2, argv + 2);
    if (strcmp(argv[1], "stroke") == 0)
        return stroke(argc - 2, argv + 2);
    return fail("usage: latency_probe trigger|drag|keys|stroke ...");
}
