/* A virtual pointer for the Wayland end-to-end tests: puts the seat's pointer at exact positions of the
 * output layout (logical pixels) and presses buttons, through wlr-virtual-pointer. The seat has a
 * pointer only while a virtual pointer exists, so this runs until standard input ends and takes one
 * command per line, answering "ok" once the compositor has handled it ("error: ..." otherwise):
 *
 *   move X Y                     the pointer to layout position (X, Y)
 *   down [BUTTON] / up [BUTTON]  press / release left (the default), middle or right
 *
 * It prints "ready W H" (the layout's size) first. The layout is the union of the outputs' xdg-output
 * logical rectangles, kept current from their events, so scale changes at run time are followed. */
#include <linux/input-event-codes.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <wayland-client.h>

#include "wlr-virtual-pointer-unstable-v1-client-protocol.h"
#include "xdg-output-unstable-v1-client-protocol.h"

enum { MAX_OUTPUTS = 16 };

struct output {
    uint32_t global;
    struct wl_output *wl;
    struct zxdg_output_v1 *xdg;
    int32_t x, y, width, height;
};

static struct wl_display *display;
static struct wl_seat *seat;
static struct zwlr_virtual_pointer_manager_v1 *manager;
static struct zxdg_output_manager_v1 *xdg_manager;
static struct zwlr_virtual_pointer_v1 *pointer;
static struct output outputs[MAX_OUTPUTS];

static void logical_position(void *data, struct zxdg_output_v1 *xdg, int32_t x, int32_t y)
{
    (void)xdg;
    struct output *output = data;
    output->x = x;
    output->y = y;
}

static void logical_size(void *data, struct zxdg_output_v1 *xdg, int32_t width, int32_t height)
{
    (void)xdg;
    struct output *output = data;
    output->width = width;
    output->height = height;
}

static void ignore_done(void *data, struct zxdg_output_v1 *xdg) { (void)data, (void)xdg; }
static void ignore_text(void *data, struct zxdg_output_v1 *xdg, const char *text) { (void)data, (void)xdg, (void)text; }

static const struct zxdg_output_v1_listener xdg_listener = {
    logical_position, logical_size, ignore_done, ignore_text, ignore_text};

/* Outputs may be announced before or after the xdg-output manager. */
static void watch_outputs(void)
{
    for (int i = 0; i < MAX_OUTPUTS; ++i) {
        if (xdg_manager && outputs[i].wl && !outputs[i].xdg) {
            outputs[i].xdg = zxdg_output_manager_v1_get_xdg_output(xdg_manager, outputs[i].wl);
            zxdg_output_v1_add_listener(outputs[i].xdg, &xdg_listener, &outputs[i]);
        }
    }
}

static void global_added(void *data, struct wl_registry *registry, uint32_t name, const char *interface,
                         uint32_t version)
{
    (void)data;
    if (strcmp(interface, wl_seat_interface.name) == 0 && !seat) {
        seat = wl_registry_bind(registry, name, &wl_seat_interface, 1);
    } else if (strcmp(interface, zwlr_virtual_pointer_manager_v1_interface.name) == 0) {
        manager = wl_registry_bind(registry, name, &zwlr_virtual_pointer_manager_v1_interface, version < 2 ? version : 2);
    } else if (strcmp(interface, zxdg_output_manager_v1_interface.name) == 0) {
        xdg_manager = wl_registry_bind(registry, name, &zxdg_output_manager_v1_interface, version < 3 ? version : 3);
    } else if (strcmp(interface, wl_output_interface.name) == 0) {
        for (int i = 0; i < MAX_OUTPUTS; ++i) {
            if (!outputs[i].wl) {
                outputs[i] = (struct output){.global = name, .wl = wl_registry_bind(registry, name, &wl_output_interface, 1)};
                break;
            }
        }
    }
    watch_outputs();
}

static void global_removed(void *data, struct wl_registry *registry, uint32_t name)
{
    (void)data, (void)registry;
    for (int i = 0; i < MAX_OUTPUTS; ++i) {
        if (outputs[i].wl && outputs[i].global == name) {
            if (outputs[i].xdg)
                zxdg_output_v1_destroy(outputs[i].xdg);
            wl_output_destroy(outputs[i].wl);
            outputs[i] = (struct output){0};
        }
    }
}

static const struct wl_registry_listener registry_listener = {global_added, global_removed};

/* The layout's bounding box, as the compositor maps absolute motion onto it. */
static int layout(int32_t *x, int32_t *y, int32_t *width, int32_t *height)
{
    int32_t left = INT32_MAX, top = INT32_MAX, right = INT32_MIN, bottom = INT32_MIN;
    for (int i = 0; i < MAX_OUTPUTS; ++i) {
        const struct output *o = &outputs[i];
        if (!o->xdg || o->width <= 0 || o->height <= 0)
            continue;
        left = o->x < left ? o->x : left;
        top = o->y < top ? o->y : top;
        right = o->x + o->width > right ? o->x + o->width : right;
        bottom = o->y + o->height > bottom ? o->y + o->height : bottom;
    }
    if (left > right)
        return 0;
    *x = left, *y = top, *width = right - left, *height = bottom - top;
    return 1;
}

static uint32_t now_ms(void)
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return (uint32_t)(ts.tv_sec * 1000 + ts.tv_nsec / 1000000);
}

static const char *move(int x, int y)
{
    int32_t left, top, width, height;
    if (!layout(&left, &top, &width, &height))
        return "no outputs";
    if (x < left || y < top || x > left + width || y > top + height)
        return "outside the layout";
    zwlr_virtual_pointer_v1_motion_absolute(pointer, now_ms(), (uint32_t)(x - left), (uint32_t)(y - top),
                                            (uint32_t)width, (uint32_t)height);
    zwlr_virtual_pointer_v1_frame(pointer);
    return NULL;
}

static const char *button(const char *name, enum wl_pointer_button_state state)
{
    uint32_t code = BTN_LEFT;
    if (strcmp(name, "middle") == 0)
        code = BTN_MIDDLE;
    else if (strcmp(name, "right") == 0)
        code = BTN_RIGHT;
    else if (name[0] && strcmp(name, "left") != 0)
        return "unknown button";
    zwlr_virtual_pointer_v1_button(pointer, now_ms(), code, state);
    zwlr_virtual_pointer_v1_frame(pointer);
    return NULL;
}

static const char *run(const char *line)
{
    char verb[16] = "", name[16] = "";
    int a, b;
    if (sscanf(line, "%15s", verb) != 1)
        return "empty command";
    if (strcmp(verb, "move") == 0 && sscanf(line, "%*s %d %d", &a, &b) == 2)
        return move(a, b);
    if (strcmp(verb, "down") == 0 || strcmp(verb, "up") == 0) {
        sscanf(line, "%*s %15s", name);
        return button(name, verb[0] == 'd' ? WL_POINTER_BUTTON_STATE_PRESSED : WL_POINTER_BUTTON_STATE_RELEASED);
    }
    return "unknown command";
}

int main(void)
{
    setvbuf(stdout, NULL, _IOLBF, 0);
    display = wl_display_connect(NULL);
    if (!display) {
        fprintf(stderr, "wl_pointer: no Wayland display\n");
        return 1;
    }
    wl_registry_add_listener(wl_display_get_registry(display), &registry_listener, NULL);
    wl_display_roundtrip(display);
    wl_display_roundtrip(display);
    int32_t left, top, width, height;
    if (!manager || !seat || !xdg_manager || !layout(&left, &top, &width, &height)) {
        fprintf(stderr, "wl_pointer: the compositor offers no virtual pointer, seat or xdg-output\n");
        return 1;
    }
    pointer = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(manager, seat);
    if (wl_display_roundtrip(display) < 0)
        return 1;
    printf("ready %d %d\n", width, height);

    char line[256];
    while (fgets(line, sizeof line, stdin)) {
        /* The first roundtrip brings the layout up to date, the second waits for the command's effect. */
        const char *error = wl_display_roundtrip(display) < 0 ? NULL : run(line);
        if (wl_display_roundtrip(display) < 0) {
            fprintf(stderr, "wl_pointer: the compositor closed the connection\n");
            return 1;
        }
        if (error)
            printf("error: %s\n", error);
        else
            printf("ok\n");
    }
    zwlr_virtual_pointer_v1_destroy(pointer);
    wl_display_roundtrip(display);
    wl_display_disconnect(display);
    return 0;
}
