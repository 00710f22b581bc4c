// The X side of latency_probe: one connection to the display, fake input through XTEST, reading
// small areas of the root window, and waiting for a PNG file to land in a folder. Single-threaded.
#pragma once

#include <stdint.h>

#include <xcb/xcb.h>

enum { maxKeys = 8 };

// A rectangle of the screen and the pixels it showed when it was last recorded (xcb's Z pixmap
// bytes: blue, green, red, unused).
typedef struct {
    int x, y, width, height;
    uint8_t *pixels;
} Area;

extern xcb_connection_t *connection;
extern xcb_window_t root;

int connectToDisplay(void);
double nowMs(void);
int fail(const char *message);
int parsePoint(const char *text, int *x, int *y);
void printFigure(const char *name, double ms);

// Resolves "shift+super+s" into key codes; the count, or -1.
int keyCodes(const char *combination, xcb_keycode_t *codes);
void fake(uint8_t type, uint8_t detail, int x, int y);
void sendKeys(const xcb_keycode_t *codes, int count);
// A round trip: everything sent before has been handled by the server.
void syncWithServer(void);

// Allocates the area's buffer and records what it shows now; 0 when the screen cannot be read.
int recordArea(Area *area, int x, int y, int width, int height);
void freeArea(Area *area);
// 1 when the area shows something else than it recorded, 0 when the same, -1 when unreadable.
int areaChanged(const Area *area);
// 1 when the area shows a pixel of that 0xRRGGBB colour now, 0 when not, -1 when unreadable.
int areaShowsColor(const Area *area, uint32_t rgb);

// An inotify descriptor that reports PNG files closed after writing, moved or linked into `folder`; -1 on failure.
int watchFolder(const char *folder);
// Milliseconds from `t0` to the first such PNG, or -1 after `timeoutMs`.
double waitForPng(int watch, double t0, double timeoutMs);
