/* The outside observer of the trigger -> overlay benchmark on a wlroots compositor. It reads a small
 * square of every output through wlr-screencopy, runs a command (the trigger: wtype pressing a bound key,
 * or `vistrel select`), and watches each square, frame by frame, until all of them differ from what they
 * showed before. Times come from the compositor: the ready event of a copy carries the time of the
 * frame it copied (CLOCK_MONOTONIC), so the resolution is the frame, not a polling interval.
 *
 *   wl_overlay_probe [--at X,Y] [--size N] [--timeout-ms MS] -- COMMAND [ARGUMENT...]
 *
 * The square is N x N logical pixels (default 16) at (X, Y) of each output (default 64,64). It prints one
 * line: "command_ms=... output0_ms=... output1_ms=... pixels_ms=...", times from just before the command
 * is started to its exit and to the first frame showing the change on each output, and the latest of
 * those ("none" where no change came before the timeout). Exit status 0 when every output changed. */
#define _GNU_SOURCE
#include <poll.h>
#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <wayland-client.h>

#include "wlr-screencopy-unstable-v1-client-protocol.h"

enum { MAX_OUTPUTS = 8 };

struct output {
    struct wl_output *wl;
    /* One copy at a time: its buffer, what it held first, and how the latest copy ended. */
    struct wl_buffer *buffer;
    uint8_t *data, *baseline;
    size_t size;
    int width, height, stride;
    uint32_t format;
    int busy, ready, failed;
    double frame_ms, changed_ms;
};

static struct wl_shm *shm;
static struct zwlr_screencopy_manager_v1 *manager;
static struct output outputs[MAX_OUTPUTS];
static int output_count;

static double now_ms(void)
{
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

static void global_added(void *data, struct wl_registry *registry, uint32_t name, const char *interface,
                         uint32_t version)
{
    (void)data;
    if (strcmp(interface, wl_shm_interface.name) == 0)
        shm = wl_registry_bind(registry, name, &wl_shm_interface, 1);
    else if (strcmp(interface, zwlr_screencopy_manager_v1_interface.name) == 0 && version >= 2)
        manager = wl_registry_bind(registry, name, &zwlr_screencopy_manager_v1_interface, version < 3 ? version : 3);
    else if (strcmp(interface, wl_output_interface.name) == 0 && output_count < MAX_OUTPUTS)
        outputs[output_count++].wl = wl_registry_bind(registry, name, &wl_output_interface, 1);
}

static void global_removed(void *data, struct wl_registry *registry, uint32_t name) { (void)data, (void)registry, (void)name; }

static const struct wl_registry_listener registry_listener = {global_added, global_removed};

/* The first copy (the baseline) is taken at once; later ones wait for a frame that changed something. */
static int with_damage;

static void start_copy(struct zwlr_screencopy_frame_v1 *frame, struct output *o)
{
    if (with_damage)
        zwlr_screencopy_frame_v1_copy_with_damage(frame, o->buffer);
    else
        zwlr_screencopy_frame_v1_copy(frame, o->buffer);
}

/* The buffer is made at the first offer and kept: every copy of the square has the same size. */
static void on_buffer(void *data, struct zwlr_screencopy_frame_v1 *frame, uint32_t format, uint32_t width,
                      uint32_t height, uint32_t stride)
{
    struct output *o = data;
    if (!o->buffer) {
        o->format = format, o->width = (int)width, o->height = (int)height, o->stride = (int)stride;
        o->size = (size_t)stride * height;
        int fd = memfd_create("wl-overlay-probe", MFD_CLOEXEC);
        if (fd < 0 || ftruncate(fd, (off_t)o->size) != 0)
            exit(3);
        o->data = mmap(NULL, o->size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
        struct wl_shm_pool *pool = wl_shm_create_pool(shm, fd, (int32_t)o->size);
        o->buffer = wl_shm_pool_create_buffer(pool, 0, (int32_t)width, (int32_t)height, (int32_t)stride, format);
        wl_shm_pool_destroy(pool);
        close(fd);
    }
    if (zwlr_screencopy_frame_v1_get_version(frame) < 3)
        start_copy(frame, o);
}

static void on_buffer_done(void *data, struct zwlr_screencopy_frame_v1 *frame)
{
    start_copy(frame, data);
}

static void on_ready(void *data, struct zwlr_screencopy_frame_v1 *frame, uint32_t sec_hi, uint32_t sec_lo,
                     uint32_t nsec)
{
    struct output *o = data;
    o->frame_ms = (double)(((uint64_t)sec_hi << 32) | sec_lo) * 1e3 + nsec / 1e6;
    o->ready = 1, o->busy = 0;
    zwlr_screencopy_frame_v1_destroy(frame);
}

static void on_failed(void *data, struct zwlr_screencopy_frame_v1 *frame)
{
    struct output *o = data;
    o->failed = 1, o->busy = 0;
    zwlr_screencopy_frame_v1_destroy(frame);
}

static void on_flags(void *d, struct zwlr_screencopy_frame_v1 *f, uint32_t flags) { (void)d, (void)f, (void)flags; }
static void on_damage(void *d, struct zwlr_screencopy_frame_v1 *f, uint32_t x, uint32_t y, uint32_t w, uint32_t h)
{
    (void)d, (void)f, (void)x, (void)y, (void)w, (void)h;
}
static void on_dmabuf(void *d, struct zwlr_screencopy_frame_v1 *f, uint32_t fmt, uint32_t w, uint32_t h)
{
    (void)d, (void)f, (void)fmt, (void)w, (void)h;
}

static const struct zwlr_screencopy_frame_v1_listener frame_listener = {
    on_buffer, on_flags, on_ready, on_failed, on_damage, on_dmabuf, on_buffer_done};

static int at_x = 64, at_y = 64, side = 16;

static void request(struct output *o)
{
    struct zwlr_screencopy_frame_v1 *frame =
        zwlr_screencopy_manager_v1_capture_output_region(manager, 0, o->wl, at_x, at_y, side, side);
    zwlr_screencopy_frame_v1_add_listener(frame, &frame_listener, o);
    o->busy = 1, o->ready = 0;
}

static void print_ms(const char *name, double value)
{
    if (value < 0)
        printf("%s=none", name);
    else
        printf("%s=%.1f", name, value);
}

int main(int argc, char **argv)
{
    int timeout_ms = 4000, first = argc;
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "--") == 0) {
            first = i + 1;
            break;
        } else if (strcmp(argv[i], "--at") == 0 && i + 1 < argc) {
            sscanf(argv[++i], "%d,%d", &at_x, &at_y);
        } else if (strcmp(argv[i], "--size") == 0 && i + 1 < argc) {
            side = atoi(argv[++i]);
        } else if (strcmp(argv[i], "--timeout-ms") == 0 && i + 1 < argc) {
            timeout_ms = atoi(argv[++i]);
        }
    }
    if (first >= argc) {
        fprintf(stderr, "usage: wl_overlay_probe [--at X,Y] [--size N] [--timeout-ms MS] -- COMMAND...\n");
        return 2;
    }
    struct wl_display *display = wl_display_connect(NULL);
    if (!display) {
        fprintf(stderr, "wl_overlay_probe: no Wayland display\n");
        return 2;
    }
    struct wl_registry *registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &registry_listener, NULL);
    wl_display_roundtrip(display);
    if (!shm || !manager || output_count == 0) {
        fprintf(stderr, "wl_overlay_probe: the compositor has no wlr-screencopy (version 2 or later)\n");
        return 2;
    }

    /* What each square shows before the trigger. */
    for (int i = 0; i < output_count; ++i)
        request(&outputs[i]);
    for (int i = 0; i < output_count; ++i) {
        while (outputs[i].busy)
            if (wl_display_dispatch(display) < 0)
                return 3;
        if (outputs[i].failed) {
            fprintf(stderr, "wl_overlay_probe: output %d could not be copied\n", i);
            return 3;
        }
        outputs[i].baseline = malloc(outputs[i].size);
        memcpy(outputs[i].baseline, outputs[i].data, outputs[i].size);
        outputs[i].changed_ms = -1;
    }
    with_damage = 1;
    for (int i = 0; i < output_count; ++i)
        request(&outputs[i]);
    wl_display_flush(display);

    const double start = now_ms();
    const pid_t child = fork();
    if (child == 0) {
        execvp(argv[first], argv + first);
        _exit(127);
    }
    const int child_fd = (int)syscall(SYS_pidfd_open, child, 0);
    double command_ms = -1;
    int pending = output_count;
    while (pending > 0 && now_ms() - start < timeout_ms) {
        struct pollfd fds[2] = {{wl_display_get_fd(display), POLLIN, 0}, {child_fd, POLLIN, 0}};
        while (wl_display_prepare_read(display) != 0)
            wl_display_dispatch_pending(display);
        wl_display_flush(display);
        poll(fds, command_ms < 0 && child_fd >= 0 ? 2 : 1, 50);
        if (fds[0].revents & POLLIN)
            wl_display_read_events(display);
        else
            wl_display_cancel_read(display);
        wl_display_dispatch_pending(display);
        if (command_ms < 0 && (child_fd < 0 || (fds[1].revents & POLLIN))) {
            int status;
            if (waitpid(child, &status, child_fd < 0 ? 0 : WNOHANG) == child)
                command_ms = now_ms() - start;
        }
        for (int i = 0; i < output_count; ++i) {
            struct output *o = &outputs[i];
            if (o->busy || o->changed_ms >= 0)
                continue;
            if (o->ready && memcmp(o->data, o->baseline, o->size) != 0) {
                o->changed_ms = o->frame_ms - start;
                --pending;
                continue;
            }
            request(o);
        }
    }
    if (command_ms < 0) {
        waitpid(child, NULL, 0);
        command_ms = now_ms() - start;
    }
    double latest = 0;
    print_ms("command_ms", command_ms);
    for (int i = 0; i < output_count; ++i) {
        char name[32];
        snprintf(name, sizeof name, " output%d_ms", i);
        print_ms(name, outputs[i].changed_ms);
        latest = outputs[i].changed_ms < 0 || latest < 0 ? -1 : (outputs[i].changed_ms > latest ? outputs[i].changed_ms : latest);
    }
    print_ms(" pixels_ms", latest);
    printf("\n");
    return latest < 0 ? 1 : 0;
}
