#define _GNU_SOURCE
#include "probe_x11.h"

#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/inotify.h>
#include <time.h>
#include <unistd.h>

#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

xcb_connection_t *connection;
xcb_window_t root;

int connectToDisplay(void)
{
    connection = xcb_connect(NULL, NULL);
    if (xcb_connection_has_error(connection))
        return 0;
    root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    return 1;
}

double nowMs(void)
{
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

int fail(const char *message)
{
    fprintf(stderr, "latency_probe: %s\n", message);
    return 2;
}

int parsePoint(const char *text, int *x, int *y)
{
    return sscanf(text, "%d,%d", x, y) == 2;
}

void printFigure(const char *name, double ms)
{
    if (ms < 0)
        printf("%s=none", name);
    else
        printf("%s=%.1f", name, ms);
}

static xcb_keysym_t keysymOf(const char *name)
{
    static const struct {
        const char *name;
        xcb_keysym_t keysym;
    } named[] = {{"shift", 0xffe1}, {"ctrl", 0xffe3},  {"alt", 0xffe9},   {"super", 0xffeb},
                 {"escape", 0xff1b}, {"return", 0xff0d}, {"space", 0x20}};
    for (size_t i = 0; i < sizeof named / sizeof named[0]; ++i) {
        if (strcmp(name, named[i].name) == 0)
            return named[i].keysym;
    }
    if (strlen(name) == 1 && ((name[0] >= 'a' && name[0] <= 'z') || (name[0] >= '0' && name[0] <= '9')))
        return (xcb_keysym_t)name[0];
    return 0;
}

int keyCodes(const char *combination, xcb_keycode_t *codes)
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

void fake(uint8_t type, uint8_t detail, int x, int y)
{
    xcb_test_fake_input(connection, type, detail, XCB_CURRENT_TIME, type == XCB_MOTION_NOTIFY ? root : XCB_NONE,
                        (int16_t)x, (int16_t)y, 0);
}

void sendKeys(const xcb_keycode_t *codes, int count)
{
    for (int i = 0; i < count; ++i)
        fake(XCB_KEY_PRESS, codes[i], 0, 0);
    for (int i = count - 1; i >= 0; --i)
        fake(XCB_KEY_RELEASE, codes[i], 0, 0);
    xcb_flush(connection);
}

void syncWithServer(void)
{
    free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), NULL));
}

// The area's pixels as the screen shows them now, or NULL; the caller frees the reply.
static xcb_get_image_reply_t *readArea(const Area *area, const uint8_t **pixels)
{
    xcb_get_image_reply_t *reply = xcb_get_image_reply(
        connection,
        xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root, (int16_t)area->x, (int16_t)area->y,
                      (uint16_t)area->width, (uint16_t)area->height, ~0u),
        NULL);
    if (!reply)
        return NULL;
    if (xcb_get_image_data_length(reply) < area->width * area->height * 4) {
        free(reply);
        return NULL;
    }
    *pixels = xcb_get_image_data(reply);
    return reply;
}

int recordArea(Area *area, int x, int y, int width, int height)
{
    *area = (Area){x, y, width, height, malloc((size_t)width * height * 4)};
    const uint8_t *pixels;
    xcb_get_image_reply_t *reply = area->pixels ? readArea(area, &pixels) : NULL;
    if (!reply)
        return 0;
    memcpy(area->pixels, pixels, (size_t)width * height * 4);
    free(reply);
    return 1;
}

void freeArea(Area *area)
{
    free(area->pixels);
    area->pixels = NULL;
}

int areaChanged(const Area *area)
{
    const uint8_t *pixels;
    xcb_get_image_reply_t *reply = readArea(area, &pixels);
    if (!reply)
        return -1;
    const int changed = memcmp(pixels, area->pixels, (size_t)area->width * area->height * 4) != 0;
    free(reply);
    return changed;
}

int areaShowsColor(const Area *area, uint32_t rgb)
{
    const uint8_t *pixels;
    xcb_get_image_reply_t *reply = readArea(area, &pixels);
    if (!reply)
        return -1;
    int found = 0;
    for (int i = 0; i < area->width * area->height && !found; ++i) {
        const uint8_t *p = pixels + i * 4;
        found = p[2] == (rgb >> 16 & 0xff) && p[1] == (rgb >> 8 & 0xff) && p[0] == (rgb & 0xff);
    }
    free(reply);
    return found;
}

int watchFolder(const char *folder)
{
    const int watch = inotify_init1(IN_NONBLOCK);
    if (watch >= 0 && inotify_add_watch(watch, folder, IN_CLOSE_WRITE | IN_MOVED_TO | IN_CREATE) >= 0)
        return watch;
    if (watch >= 0)
        close(watch);
    return -1;
}

double waitForPng(int watch, double t0, double timeoutMs)
{
    while (nowMs() - t0 < timeoutMs) {
        struct pollfd fd = {watch, POLLIN, 0};
        poll(&fd, 1, 100);
        char buffer[4096] __attribute__((aligned(__alignof__(struct inotify_event))));
        const ssize_t length = read(watch, buffer, sizeof buffer);
        for (ssize_t at = 0; at < length;) {
            const struct inotify_event *event = (const struct inotify_event *)(buffer + at);
            const size_t nameLength = event->len ? strlen(event->name) : 0;
            // A file created empty is not saved yet: only its closing after writing or its rename counts.
            if (nameLength > 4 && strcmp(event->name + nameLength - 4, ".png") == 0 && !(event->mask & IN_CREATE))
                return nowMs() - t0;
            at += (ssize_t)(sizeof *event + event->len);
        }
    }
    return -1;
}
