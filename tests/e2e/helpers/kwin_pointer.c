/* A pointer for the KWin end-to-end tests, through KWin's org_kde_kwin_fake_input: puts the pointer at
 * exact positions of the output layout (logical pixels) and presses the left button. KWin offers the
 * interface only to an executable whose desktop entry lists it in X-KDE-Wayland-Interfaces. Takes one
 * command per line until standard input ends, answering "ok" once KWin has handled it ("error: ..."
 * otherwise); prints "ready" first.
 *
 *   move X Y      the pointer to layout position (X, Y)
 *   down / up     press / release the left button
 *   key CODE      press and release the key of evdev code CODE (KWin's interface version 4) */
#include <linux/input-event-codes.h>
#include <stdio.h>
#include <string.h>
#include <wayland-client.h>

#include "kde-fake-input-client-protocol.h"

static struct org_kde_kwin_fake_input *fake_input;
static uint32_t fake_input_version;

static void global_added(void *data, struct wl_registry *registry, uint32_t name, const char *interface,
                         uint32_t version)
{
    (void)data;
    if (strcmp(interface, org_kde_kwin_fake_input_interface.name) == 0 && version >= 3) {
        fake_input_version = version < 4 ? version : 4;
        fake_input = wl_registry_bind(registry, name, &org_kde_kwin_fake_input_interface, fake_input_version);
    }
}

static void global_removed(void *data, struct wl_registry *registry, uint32_t name)
{
    (void)data, (void)registry, (void)name;
}

static const struct wl_registry_listener registry_listener = {global_added, global_removed};

int main(void)
{
    struct wl_display *display = wl_display_connect(NULL);
    if (!display) {
        printf("error: no Wayland display\n");
        return 1;
    }
    wl_registry_add_listener(wl_display_get_registry(display), &registry_listener, NULL);
    wl_display_roundtrip(display);
    if (!fake_input) {
        printf("error: KWin offers this executable no org_kde_kwin_fake_input (version 3)\n");
        return 1;
    }
    org_kde_kwin_fake_input_authenticate(fake_input, "Vistrel tests", "end-to-end tests drive the pointer");
    wl_display_roundtrip(display);
    printf("ready\n");
    fflush(stdout);

    char line[256];
    while (fgets(line, sizeof line, stdin)) {
        double x, y;
        unsigned key;
        if (sscanf(line, "move %lf %lf", &x, &y) == 2) {
            org_kde_kwin_fake_input_pointer_motion_absolute(fake_input, wl_fixed_from_double(x), wl_fixed_from_double(y));
        } else if (strncmp(line, "down", 4) == 0 || strncmp(line, "up", 2) == 0) {
            org_kde_kwin_fake_input_button(fake_input, BTN_LEFT, line[0] == 'd' ? 1 : 0);
        } else if (sscanf(line, "key %u", &key) == 1 && fake_input_version >= 4) {
            org_kde_kwin_fake_input_keyboard_key(fake_input, key, 1);
            org_kde_kwin_fake_input_keyboard_key(fake_input, key, 0);
        } else {
            printf("error: unknown command %s", line);
            fflush(stdout);
            continue;
        }
        printf(wl_display_roundtrip(display) < 0 ? "error: the connection broke\n" : "ok\n");
        fflush(stdout);
    }
    wl_display_disconnect(display);
    return 0;
}
