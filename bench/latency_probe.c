// Measures a screenshot tool from outside, as a user sees it: the time from the trigger (a shortcut sent
// through XTEST, a click, or a command started) to the first MapNotify of a top-level window and to the
// first change of the screen's pixels at the probe points, polled every millisecond. Also the time
// from releasing the mouse button at the end of a drag to the PNG file appearing in a folder.
//
//   latency_probe trigger (--keys K[+K...] | --click X,Y | --exec PROGRAM [ARG...] --) --probe X,Y...
//                 [--timeout-ms N] [--dismiss K[+K...]]
//       prints "map_ms=M pixels_ms=P" (a figure is "none" when it did not happen in time). With
//       --dismiss, then sends those keys and waits until the probe points show what they showed before.
//   latency_probe drag X1,Y1,X2,Y2 [--watch DIRECTORY] [--timeout-ms N]
//       presses at the first point, moves to the second and releases; with --watch, prints "save_ms=S"
//       from the release to the first PNG file closed, moved or linked into DIRECTORY.
//   latency_probe keys K[+K...]        presses and releases the keys (modifiers first)
//
// Keys are names: shift, ctrl, alt, super, escape, return, space, or a letter or digit.
#define _GNU_SOURCE
#include <poll.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

extern char **environ;

enum { maxProbes = 16, probeWidth = 24, maxKeys = 8 };

typedef struct {
    int x, y;
    uint8_t pixels[probeWidth * 4];
} Probe;

static xcb_connection_t *connection;
static xcb_window_t root;

static double nowMs(void)
{
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

static int fail(const char *message)
{
    fprintf(stderr, "latency_probe: %s\n", message);
    return 2;
}

static xcb_keysym_t keysymOf(const char *name)
{
    static const struct {
        const char *name;
        xcb_keysym_t keysym;
    } named[] = {{"shift", 0xffe1}, {"ctrl", 0xffe3}, {"alt", 0xffe9},     {"super", 0xffeb},
                 {"escape", 0xff1b}, {"return", 0xff0d}, {"space", 0x20}};
    for (size_t i = 0; i < sizeof named / sizeof named[0]; ++i) {
        if (strcmp(name, named[i].name) == 0)
            return named[i].keysym;
    }
    if (strlen(name) == 1 && ((name[0] >= 'a' && name[0] <= 'z') || (name[0] >= '0' && name[0] <= '9')))
        return (xcb_keysym_t)name[0];
    return 0;
}

// Resolves "shift+super+s" into key codes; the count, or -1.
static int keyCodes(const char *combination, xcb_keycode_t *codes)
{
    char copy[128];
    snprintf(copy, sizeof copy, "%s", combination);
    xcb_key_symbols_t *symbols = xcb_key_symbols_alloc(connection);
    int count = 0;
    for (char *save = NULL, *part = strtok_r(copy, "+", &save); part && count < maxKeys;
         part = strtok_r(NULL, "+", &save)) {
        const xcb_keysym_t keysym = keysymOf(part);
        xcb_keycode_t *found = keysym ? xcb_key_symbols_get_keycode(symbols, keysym) : NULL;
        if (!found || found[0] == XCB_NO_SYMBOL) {
            free(found);
            xcb_key_symbols_free(symbols);
            return -1;
        }
        codes[count++] = found[0];
        free(found);
    }
    xcb_key_symbols_free(symbols);
    return count;
}

static void fake(uint8_t type, uint8_t detail, int x, int y)
{
    xcb_test_fake_input(connection, type, detail, XCB_CURRENT_TIME, type == XCB_MOTION_NOTIFY ? root : XCB_NONE,
                        (int16_t)x, (int16_t)y, 0);
}

static void sendKeys(const xcb_keycode_t *codes, int count)
{
    for (int i = 0; i < count; ++i)
        fake(XCB_KEY_PRESS, codes[i], 0, 0);
    for (int i = count - 1; i >= 0; --i)
        fake(XCB_KEY_RELEASE, codes[i], 0, 0);
    xcb_flush(connection);
}

static int readProbe(const Probe *probe, uint8_t *out)
{
    xcb_get_image_reply_t *reply = xcb_get_image_reply(
        connection,
        xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root, (int16_t)probe->x, (int16_t)probe->y, probeWidth,
                      1, ~0u),
        NULL);
    if (!reply)
        return 0;
    const int length = xcb_get_image_data_length(reply);
    memcpy(out, xcb_get_image_data(reply), length < probeWidth * 4 ? (size_t)length : probeWidth * 4);
    free(reply);
    return 1;
}

// True when any probe shows something else than its recorded pixels (`changed`), or when every probe
// shows its recorded pixels again (!`changed`).
static int probesDiffer(const Probe *probes, int count, int changed)
{
    int same = 0;
    for (int i = 0; i < count; ++i) {
        uint8_t now[probeWidth * 4];
        if (!readProbe(&probes[i], now))
            continue;
        same += memcmp(now, probes[i].pixels, sizeof now) == 0;
    }
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

static void printFigure(const char *name, double ms)
{
    if (ms < 0)
        printf("%s=none", name);
    else
        printf("%s=%.1f", name, ms);
}

static int parsePoint(const char *text, int *x, int *y)
{
    return sscanf(text, "%d,%d", x, y) == 2;
}

static int trigger(int argc, char **argv)
{
    Probe probes[maxProbes];
    int probeCount = 0;
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
            if (!parsePoint(argv[++i], &probes[probeCount].x, &probes[probeCount].y))
                return fail("--probe takes X,Y");
            ++probeCount;
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
    for (int i = 0; i < probeCount; ++i) {
        if (!readProbe(&probes[i], probes[i].pixels))
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
    free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), NULL));
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
            if (probesDiffer(probes, probeCount, 1))
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
        while (nowMs() - start < timeoutMs && !probesDiffer(probes, probeCount, 0))
            usleep(5000);
    }
    if (child > 0)
        waitpid(child, NULL, 0);
    return pixelsMs < 0 ? 1 : 0;
}

static int drag(int argc, char **argv)
{
    int x1, y1, x2, y2;
    const char *folder = NULL;
    double timeoutMs = 10000;
    if (argc < 1 || sscanf(argv[0], "%d,%d,%d,%d", &x1, &y1, &x2, &y2) != 4)
        return fail("drag takes X1,Y1,X2,Y2");
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "--watch") == 0 && i + 1 < argc)
            folder = argv[++i];
        else if (strcmp(argv[i], "--timeout-ms") == 0 && i + 1 < argc)
            timeoutMs = atof(argv[++i]);
        else
            return fail("unknown or incomplete argument");
    }
    const int watch = folder ? inotify_init1(IN_NONBLOCK) : -1;
    if (folder && (watch < 0 || inotify_add_watch(watch, folder, IN_CLOSE_WRITE | IN_MOVED_TO | IN_CREATE) < 0))
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
    free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), NULL));

    const double t0 = nowMs();
    fake(XCB_BUTTON_RELEASE, 1, 0, 0);
    xcb_flush(connection);
    if (!folder) {
        free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), NULL));
        return 0;
    }
    double saveMs = -1;
    while (saveMs < 0 && nowMs() - t0 < timeoutMs) {
        struct pollfd fd = {watch, POLLIN, 0};
        poll(&fd, 1, 100);
        char buffer[4096] __attribute__((aligned(__alignof__(struct inotify_event))));
        const ssize_t length = read(watch, buffer, sizeof buffer);
        for (ssize_t at = 0; at < length;) {
            const struct inotify_event *event = (const struct inotify_event *)(buffer + at);
            const size_t nameLength = event->len ? strlen(event->name) : 0;
            if (nameLength > 4 && strcmp(event->name + nameLength - 4, ".png") == 0 && saveMs < 0)
                saveMs = nowMs() - t0;
            at += (ssize_t)(sizeof *event + event->len);
        }
    }
    printFigure("save_ms", saveMs);
    printf("\n");
    return saveMs < 0 ? 1 : 0;
}

int main(int argc, char **argv)
{
    if (argc < 2)
        return fail("usage: latency_probe trigger|drag|keys ...");
    connection = xcb_connect(NULL, NULL);
    if (xcb_connection_has_error(connection))
        return fail("cannot connect to the X server");
    root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    if (strcmp(argv[1], "trigger") == 0)
        return trigger(argc - 2, argv + 2);
    if (strcmp(argv[1], "drag") == 0)
        return drag(argc - 2, argv + 2);
    if (strcmp(argv[1], "keys") == 0 && argc == 3) {
        xcb_keycode_t keys[maxKeys];
        const int count = keyCodes(argv[2], keys);
        if (count < 0)
            return fail("unknown key name");
        sendKeys(keys, count);
        free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), NULL));
        return 0;
    }
    return fail("usage: latency_probe trigger|drag|keys ...");
}
