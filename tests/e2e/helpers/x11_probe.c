// Small X11 probes for the end-to-end tests (C: the XKB header does not compile as C++).
//
//   x11_probe cursor-blank           prints 1 when the shown cursor has no visible pixel, else 0
//   x11_probe grab-key KEYSYM MODS   holds a passive grab of the key (every lock variant) on the root
//                                    window, prints "grabbed", and keeps it until killed
//   x11_probe count-bells            prints "watching", then one line "bell" per ring of the display
//                                    bell (XKB bell events), until killed

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xfixes.h>
#include <xcb/xkb.h>

static int cursor_blank(xcb_connection_t *c)
{
    xcb_xfixes_query_version_reply_t *version =
        xcb_xfixes_query_version_reply(c, xcb_xfixes_query_version(c, 4, 0), NULL);
    free(version);
    xcb_xfixes_get_cursor_image_reply_t *image =
        xcb_xfixes_get_cursor_image_reply(c, xcb_xfixes_get_cursor_image(c), NULL);
    if (!image)
        return 2;
    const uint32_t *pixels = xcb_xfixes_get_cursor_image_cursor_image(image);
    int length = xcb_xfixes_get_cursor_image_cursor_image_length(image);
    int visible = 0;
    for (int i = 0; i < length; ++i)
        visible |= (pixels[i] >> 24) != 0;
    printf("%d\n", visible ? 0 : 1);
    free(image);
    return 0;
}

static int grab_key(xcb_connection_t *c, const char *keysym_text, const char *modifiers_text)
{
    xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    xcb_key_symbols_t *symbols = xcb_key_symbols_alloc(c);
    xcb_keycode_t *codes = xcb_key_symbols_get_keycode(symbols, (xcb_keysym_t)strtoul(keysym_text, NULL, 0));
    uint16_t modifiers = (uint16_t)strtoul(modifiers_text, NULL, 0);
    if (!codes || codes[0] == XCB_NO_SYMBOL)
        return 2;
    const uint16_t variants[] = {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2, XCB_MOD_MASK_2 | XCB_MOD_MASK_LOCK};
    for (unsigned i = 0; i < sizeof variants / sizeof variants[0]; ++i) {
        xcb_generic_error_t *error = xcb_request_check(
            c, xcb_grab_key_checked(c, 1, root, modifiers | variants[i], codes[0], XCB_GRAB_MODE_ASYNC,
                                    XCB_GRAB_MODE_ASYNC));
        if (error) {
            free(error);
            return 3;
        }
    }
    free(codes);
    printf("grabbed\n");
    fflush(stdout);
    for (;;)
        pause();
}

static int count_bells(xcb_connection_t *c)
{
    xcb_xkb_use_extension_reply_t *use =
        xcb_xkb_use_extension_reply(c, xcb_xkb_use_extension(c, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION), NULL);
    if (!use || !use->supported)
        return 3;
    free(use);
    const uint8_t xkb_event = xcb_get_extension_data(c, &xcb_xkb_id)->first_event;
    xcb_generic_error_t *error = xcb_request_check(
        c, xcb_xkb_select_events_checked(c, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_BELL_NOTIFY, 0,
                                         XCB_XKB_EVENT_TYPE_BELL_NOTIFY, 0, 0, NULL));
    if (error) {
        free(error);
        return 3;
    }
    printf("watching\n");
    fflush(stdout);
    xcb_generic_event_t *event;
    while ((event = xcb_wait_for_event(c))) {
        // XKB events share one event code; the second byte tells their kind.
        if ((event->response_type & 0x7f) == xkb_event && event->pad0 == XCB_XKB_BELL_NOTIFY) {
            printf("bell\n");
            fflush(stdout);
        }
        free(event);
    }
    return 0;
}

int main(int argc, char **argv)
{
    xcb_connection_t *c = xcb_connect(NULL, NULL);
    if (xcb_connection_has_error(c))
        return 4;
    if (argc == 2 && strcmp(argv[1], "cursor-blank") == 0)
        return cursor_blank(c);
    if (argc == 4 && strcmp(argv[1], "grab-key") == 0)
        return grab_key(c, argv[2], argv[3]);
    if (argc == 2 && strcmp(argv[1], "count-bells") == 0)
        return count_bells(c);
    fprintf(stderr, "usage: x11_probe cursor-blank | grab-key KEYSYM MODIFIERS | count-bells\n");
    return 2;
}
