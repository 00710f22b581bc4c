#include "WlrScreencopy.h"

#include "wlr-screencopy-unstable-v1-client-protocol.h"

#include <wayland-client.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace wlrscreencopy {

namespace {

struct Mapping
{
    void *data = MAP_FAILED;
    size_t size = 0;
    ~Mapping()
    {
        if (data != MAP_FAILED)
            munmap(data, size);
    }
};

// One frame in flight: what the compositor offered, the buffer given to it, and how it ended.
struct Frame
{
    zwlr_screencopy_frame_v1 *frame = nullptr;
    wl_buffer *buffer = nullptr;
    std::shared_ptr<Mapping> mapping;
    quint32 format = 0;
    int width = 0;
    int height = 0;
    int stride = 0;
    bool offered = false;
    bool yInverted = false;
    bool done = false;
    std::optional<QString> error;
    WaylandConnection *connection = nullptr;
};

// Formats that are 0x??RRGGBB words; the others (blue first) are turned into that order.
bool isRgbOrder(quint32 format)
{
    return format == WL_SHM_FORMAT_XRGB8888 || format == WL_SHM_FORMAT_ARGB8888;
}

bool isBgrOrder(quint32 format)
{
    return format == WL_SHM_FORMAT_XBGR8888 || format == WL_SHM_FORMAT_ABGR8888;
}

std::shared_ptr<Mapping> sharedMemory(size_t size, int *fd)
{
    *fd = memfd_create("vistrel-screencopy", MFD_CLOEXEC);
    if (*fd < 0)
        return nullptr;
    if (ftruncate(*fd, off_t(size)) != 0) {
        close(*fd);
        return nullptr;
    }
    auto mapping = std::make_shared<Mapping>();
    mapping->size = size;
    mapping->data = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, *fd, 0);
    if (mapping->data == MAP_FAILED) {
        close(*fd);
        return nullptr;
    }
    return mapping;
}

void startCopy(Frame &f)
{
    if (f.buffer || f.done)
        return;
    if (!f.offered || !(isRgbOrder(f.format) || isBgrOrder(f.format))) {
        f.error = u"the compositor offers no 32-bit RGB buffer for screen copies"_s;
        f.done = true;
        return;
    }
    int fd = -1;
    f.mapping = sharedMemory(size_t(f.stride) * size_t(f.height), &fd);
    if (!f.mapping) {
        f.error = u"cannot allocate shared memory: %1"_s.arg(QString::fromLocal8Bit(std::strerror(errno)));
        f.done = true;
        return;
    }
    wl_shm_pool *pool = wl_shm_create_pool(f.connection->shm(), fd, int32_t(f.mapping->size));
    f.buffer = wl_shm_pool_create_buffer(pool, 0, f.width, f.height, f.stride, f.format);
    wl_shm_pool_destroy(pool);
    close(fd);
    zwlr_screencopy_frame_v1_copy(f.frame, f.buffer);
}

void onBuffer(void *data, zwlr_screencopy_frame_v1 *, uint32_t format, uint32_t width, uint32_t height,
              uint32_t stride)
{
    auto &f = *static_cast<Frame *>(data);
    // The first offer of a format we read wins; later ones are alternatives.
    if (f.offered && (isRgbOrder(f.format) || isBgrOrder(f.format)))
        return;
    f.offered = true;
    f.format = format;
    f.width = int(width);
    f.height = int(height);
    f.stride = int(stride);
    // Before version 3 the single buffer event is all there is.
    if (zwlr_screencopy_frame_v1_get_version(f.frame) < 3)
        startCopy(f);
}

void onFlags(void *data, zwlr_screencopy_frame_v1 *, uint32_t flags)
{
    static_cast<Frame *>(data)->yInverted = flags & ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT;
}

void onReady(void *data, zwlr_screencopy_frame_v1 *, uint32_t, uint32_t, uint32_t)
{
    static_cast<Frame *>(data)->done = true;
}

void onFailed(void *data, zwlr_screencopy_frame_v1 *)
{
    auto &f = *static_cast<Frame *>(data);
    f.error = u"the compositor could not copy the output"_s;
    f.done = true;
}

void onDamage(void *, zwlr_screencopy_frame_v1 *, uint32_t, uint32_t, uint32_t, uint32_t) {}
void onDmabuf(void *, zwlr_screencopy_frame_v1 *, uint32_t, uint32_t, uint32_t) {}

void onBufferDone(void *data, zwlr_screencopy_frame_v1 *)
{
    startCopy(*static_cast<Frame *>(data));
}

const zwlr_screencopy_frame_v1_listener frameListener = {onBuffer, onFlags,  onReady,     onFailed,
                                                         onDamage, onDmabuf, onBufferDone};

// The copy as 0xffRRGGBB rows, top first, in the frame's own memory.
Pixels finish(Frame &f)
{
    auto *base = static_cast<uchar *>(f.mapping->data);
    if (f.yInverted) {
        std::vector<uchar> row(size_t(f.stride));
        for (int top = 0, bottom = f.height - 1; top < bottom; ++top, --bottom) {
            std::memcpy(row.data(), base + qsizetype(top) * f.stride, size_t(f.stride));
            std::memcpy(base + qsizetype(top) * f.stride, base + qsizetype(bottom) * f.stride, size_t(f.stride));
            std::memcpy(base + qsizetype(bottom) * f.stride, row.data(), size_t(f.stride));
        }
    }
    // Some renderers leave the unused byte at zero; Qt and the PNG writer want it opaque.
    const bool swap = isBgrOrder(f.format);
    for (int y = 0; y < f.height; ++y) {
        auto *p = reinterpret_cast<quint32 *>(base + qsizetype(y) * f.stride);
        for (int x = 0; x < f.width; ++x) {
            const quint32 v = p[x];
            p[x] = swap ? 0xff000000u | ((v & 0xffu) << 16) | (v & 0xff00u) | ((v >> 16) & 0xffu) : v | 0xff000000u;
        }
    }
    return Pixels{f.mapping, base, f.width, f.height, f.stride};
}

} // namespace

std::vector<Result> copy(WaylandConnection &connection, const std::vector<Request> &requests)
{
    std::vector<Result> results;
    if (!connection.screencopy() || !connection.shm()) {
        for (size_t i = 0; i < requests.size(); ++i)
            results.emplace_back(u"the compositor has no wlr-screencopy"_s);
        return results;
    }
    std::vector<std::unique_ptr<Frame>> frames;
    for (const Request &request : requests) {
        auto f = std::make_unique<Frame>();
        f->connection = &connection;
        if (!request.output) {
            f->error = u"the output is gone"_s;
            f->done = true;
        } else if (request.region) {
            const QRect &r = *request.region;
            f->frame = zwlr_screencopy_manager_v1_capture_output_region(
                connection.screencopy(), 0, request.output->output, r.x(), r.y(), r.width(), r.height());
        } else {
            f->frame = zwlr_screencopy_manager_v1_capture_output(connection.screencopy(), 0, request.output->output);
        }
        if (f->frame)
            zwlr_screencopy_frame_v1_add_listener(f->frame, &frameListener, f.get());
        frames.push_back(std::move(f));
    }
    const auto pending = [&frames] {
        return std::any_of(frames.begin(), frames.end(), [](const std::unique_ptr<Frame> &f) { return !f->done; });
    };
    // A frame comes within one refresh; a compositor that has not answered in two seconds will not.
    bool stalled = false;
    while (pending() && !stalled)
        stalled = !connection.dispatch(2000);
    for (const std::unique_ptr<Frame> &f : frames) {
        if (!f->done)
            f->error = u"the compositor did not answer a screen copy"_s;
        if (f->error)
            results.emplace_back(*f->error);
        else
            results.emplace_back(finish(*f));
        if (f->frame)
            zwlr_screencopy_frame_v1_destroy(f->frame);
        if (f->buffer)
            wl_buffer_destroy(f->buffer);
    }
    wl_display_flush(connection.display());
    return results;
}

} // namespace wlrscreencopy
