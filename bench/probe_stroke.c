// The drawing mode of latency_probe: how long an editor takes to show each step of a drag.
//
//   latency_probe stroke X,Y --step DX,DY --motions N [--radius R] [--pid PID] [--pause-ms P]
//                 [--timeout-ms T]
//       presses at X,Y, makes two unmeasured moves of one step (so any drag threshold is passed and the
//       annotation exists), then N measured moves of one step each and releases. For each measured move
//       the pixels from the previous point to the new one, R more on each side, are recorded, the motion
//       sent, and that box read every half millisecond until it changes. Prints
//       "stroke_ms=A,B,... missed=K cpu_ms=C scheduled_ms=S": the milliseconds of each move that showed
//       in time, the count that did not, the processor time (user and system, /proc/PID/stat) PID used
//       from the first measured move to P ms after the last, and the same time to the nanosecond, summed
//       over PID's threads (schedstat), where clock ticks are too coarse for a fast editor.
//
// The box reaches back to the previous point because a smoothed pen may draw each segment only when the
// next motion arrives: the editor's answer to a motion is then the segment before the pointer.
#define _GNU_SOURCE
#include "probe_x11.h"

#include <dirent.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

static const double pollIntervalMs = 0.5;

// User and system time of the process in milliseconds, or -1.
static double cpuMs(int pid)
{
    if (pid <= 0)
        return -1;
    char path[64], text[1024];
    snprintf(path, sizeof path, "/proc/%d/stat", pid);
    FILE *file = fopen(path, "r");
    if (!file)
        return -1;
    const size_t length = fread(text, 1, sizeof text - 1, file);
    fclose(file);
    text[length] = 0;
    // The command name may hold spaces and parentheses; the fields follow the last ')'.
    const char *fields = strrchr(text, ')');
    unsigned long user = 0, system = 0;
    if (!fields || sscanf(fields + 1, " %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %lu %lu", &user, &system) != 2)
        return -1;
    return (double)(user + system) * 1000.0 / (double)sysconf(_SC_CLK_TCK);
}

// Time on the processor of all the process's threads in milliseconds, to the nanosecond, or -1.
static double scheduledMs(int pid)
{
    char path[64];
    snprintf(path, sizeof path, "/proc/%d/task", pid);
    DIR *tasks = pid > 0 ? opendir(path) : NULL;
    if (!tasks)
        return -1;
    unsigned long long total = 0;
    for (struct dirent *task; (task = readdir(tasks));) {
        if (task->d_name[0] == '.')
            continue;
        char file[128];
        snprintf(file, sizeof file, "/proc/%d/task/%s/schedstat", pid, task->d_name);
        FILE *stat = fopen(file, "r");
        unsigned long long ns = 0;
        if (stat && fscanf(stat, "%llu", &ns) == 1)
            total += ns;
        if (stat)
            fclose(stat);
    }
    closedir(tasks);
    return (double)total / 1e6;
}

static void sleepMs(double ms)
{
    if (ms <= 0)
        return;
    const struct timespec duration = {(time_t)(ms / 1000), (long)((ms - (time_t)(ms / 1000) * 1000) * 1e6)};
    nanosleep(&duration, NULL);
}

static void moveTo(int x, int y)
{
    fake(XCB_MOTION_NOTIFY, 0, x, y);
    xcb_flush(connection);
}

// Milliseconds from the motion from `from` to `to` to a change of the box between them, or -1 after `timeoutMs`.
static double measuredMove(const int from[2], const int to[2], int radius, double timeoutMs)
{
    const int left = (from[0] < to[0] ? from[0] : to[0]) - radius, top = (from[1] < to[1] ? from[1] : to[1]) - radius;
    const int width = abs(to[0] - from[0]) + 2 * radius + 1, height = abs(to[1] - from[1]) + 2 * radius + 1;
    Area box;
    if (!recordArea(&box, left, top, width, height)) {
        freeArea(&box);
        return -1;
    }
    const double t0 = nowMs();
    moveTo(to[0], to[1]);
    double shownMs = -1;
    for (double nextPoll = t0 + pollIntervalMs; shownMs < 0 && nowMs() - t0 < timeoutMs;
         nextPoll += pollIntervalMs) {
        sleepMs(nextPoll - nowMs());
        if (areaChanged(&box) == 1)
            shownMs = nowMs() - t0;
    }
    freeArea(&box);
    return shownMs;
}

int stroke(int argc, char **argv)
{
    int x, y, dx = 0, dy = 0, motions = 0, radius = 3, pid = -1;
    double pauseMs = 10, timeoutMs = 1000;
    if (argc < 1 || !parsePoint(argv[0], &x, &y))
        return fail("stroke takes X,Y");
    for (int i = 1; i < argc; ++i) {
        const int hasValue = i + 1 < argc;
        if (strcmp(argv[i], "--step") == 0 && hasValue) {
            if (!parsePoint(argv[++i], &dx, &dy))
                return fail("--step takes DX,DY");
        } else if (strcmp(argv[i], "--motions") == 0 && hasValue) {
            motions = atoi(argv[++i]);
        } else if (strcmp(argv[i], "--radius") == 0 && hasValue) {
            radius = atoi(argv[++i]);
        } else if (strcmp(argv[i], "--pid") == 0 && hasValue) {
            pid = atoi(argv[++i]);
        } else if (strcmp(argv[i], "--pause-ms") == 0 && hasValue) {
            pauseMs = atof(argv[++i]);
        } else if (strcmp(argv[i], "--timeout-ms") == 0 && hasValue) {
            timeoutMs = atof(argv[++i]);
        } else {
            return fail("unknown or incomplete argument");
        }
    }
    if (motions < 1 || (dx == 0 && dy == 0) || radius < 0)
        return fail("a --step and a positive --motions are needed");

    moveTo(x, y);
    sleepMs(30);
    fake(XCB_BUTTON_PRESS, 1, 0, 0);
    xcb_flush(connection);
    for (int i = 1; i <= 2; ++i) {
        sleepMs(30);
        moveTo(x + i * dx, y + i * dy);
    }
    syncWithServer();
    sleepMs(100);

    double *samples = calloc((size_t)motions, sizeof *samples);
    int shown = 0;
    const double cpuBefore = cpuMs(pid), scheduledBefore = scheduledMs(pid);
    for (int i = 1; i <= motions; ++i) {
        const int from[2] = {x + (i + 1) * dx, y + (i + 1) * dy}, to[2] = {x + (i + 2) * dx, y + (i + 2) * dy};
        const double ms = measuredMove(from, to, radius, timeoutMs);
        if (ms >= 0)
            samples[shown++] = ms;
        // The rest of the frame lands before the next box is recorded.
        sleepMs(pauseMs);
    }
    const double cpuAfter = cpuMs(pid), scheduledAfter = scheduledMs(pid);
    fake(XCB_BUTTON_RELEASE, 1, 0, 0);
    syncWithServer();

    printf("stroke_ms=");
    for (int i = 0; i < shown; ++i)
        printf(i ? ",%.2f" : "%.2f", samples[i]);
    printf(" missed=%d ", motions - shown);
    printFigure("cpu_ms", cpuBefore >= 0 && cpuAfter >= 0 ? cpuAfter - cpuBefore : -1);
    printf(" ");
    printFigure("scheduled_ms", scheduledBefore >= 0 && scheduledAfter >= 0 ? scheduledAfter - scheduledBefore : -1);
    printf("\n");
    free(samples);
    return shown > 0 ? 0 : 1;
}
