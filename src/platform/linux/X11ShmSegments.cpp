#include "X11ShmSegments.h"

#include <cstdlib>

#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/shm.h>

struct X11ShmSegments::Segment
{
    xcb_shm_seg_t id = 0;
    void *address = nullptr;
    size_t size = 0;
    // How much of the segment this process has mapped in already.
    size_t mappedBytes = 0;
    // The server's pixmap over part of the segment, and what it covers.
    xcb_pixmap_t pixmap = 0;
    size_t pixmapOffset = 0;
    QSize pixmapSize;
};

X11ShmSegments::X11ShmSegments(xcb_connection_t *connection) : m_connection(connection)
{
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(connection, &xcb_shm_id);
    m_isAvailable = extension && extension->present;
}

X11ShmSegments::~X11ShmSegments()
{
    // A segment still read by an image outlives us, attached, until the process ends.
    trim(0);
}

std::shared_ptr<X11ShmSegments::Segment> X11ShmSegments::create(size_t bytes)
{
    const int shmId = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    if (shmId < 0)
        return nullptr;
    void *address = shmat(shmId, nullptr, 0);
    auto segment = std::make_shared<Segment>();
    segment->id = xcb_generate_id(m_connection);
    xcb_generic_error_t *error = nullptr;
    if (address != reinterpret_cast<void *>(-1))
        error = xcb_request_check(m_connection, xcb_shm_attach_checked(m_connection, segment->id, shmId, 0));
    // Marked for removal at once: the kernel frees it when both sides have detached, even after a crash.
    shmctl(shmId, IPC_RMID, nullptr);
    if (address == reinterpret_cast<void *>(-1))
        return nullptr;
    if (error) {
        std::free(error);
        shmdt(address);
        m_isAvailable = false;
        return nullptr;
    }
    segment->address = address;
    segment->size = bytes;
    return segment;
}

std::shared_ptr<X11ShmSegments::Segment> X11ShmSegments::acquire(size_t bytes)
{
    std::shared_ptr<Segment> best;
    for (const std::shared_ptr<Segment> &segment : m_segments) {
        if (segment.use_count() == 1 && segment->size >= bytes && (!best || segment->size < best->size))
            best = segment;
    }
    if (best)
        return best;
    best = create(bytes);
    if (best)
        m_segments.push_back(best);
    return best;
}

ScreenPixels X11ShmSegments::grab(xcb_drawable_t drawable, const QRect &rect)
{
    if (!m_isAvailable || rect.isEmpty())
        return {};
    const size_t stride = size_t(rect.width()) * 4;
    std::shared_ptr<Segment> segment = acquire(stride * size_t(rect.height()));
    if (!segment)
        return {};
    xcb_generic_error_t *error = nullptr;
    xcb_shm_get_image_reply_t *reply = xcb_shm_get_image_reply(
        m_connection,
        xcb_shm_get_image(m_connection, drawable, qint16(rect.x()), qint16(rect.y()), quint16(rect.width()),
                          quint16(rect.height()), ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP, segment->id, 0),
        &error);
    std::free(error);
    if (!reply)
        return {};
    std::free(reply);
    // The first read of freshly written pages would fault them in one by one; one call maps them all.
    const size_t bytes = stride * size_t(rect.height());
    if (bytes > segment->mappedBytes) {
        madvise(segment->address, bytes, MADV_POPULATE_READ);
        segment->mappedBytes = bytes;
    }
    // The pixels hold a reference to their segment; dropping the last copy of them lets it go.
    return {segment, static_cast<const uchar *>(segment->address), rect.width(), rect.height(), qsizetype(stride)};
}

bool X11ShmSegments::sharesPixmaps()
{
    if (!m_isAvailable)
        return false;
    if (!m_sharesPixmaps) {
        xcb_shm_query_version_reply_t *version =
            xcb_shm_query_version_reply(m_connection, xcb_shm_query_version(m_connection), nullptr);
        m_sharesPixmaps = version && version->shared_pixmaps && version->pixmap_format == XCB_IMAGE_FORMAT_Z_PIXMAP;
        std::free(version);
    }
    return *m_sharesPixmaps;
}

xcb_pixmap_t X11ShmSegments::pixmapOver(const uchar *data, QSize size, xcb_drawable_t root, quint8 depth)
{
    if (size.isEmpty() || !sharesPixmaps())
        return 0;
    const size_t bytes = size_t(size.width()) * 4 * size_t(size.height());
    for (const std::shared_ptr<Segment> &segment : m_segments) {
        const auto *start = static_cast<const uchar *>(segment->address);
        if (data < start || data + bytes > start + segment->size)
            continue;
        const size_t offset = size_t(data - start);
        if (segment->pixmap && (segment->pixmapOffset != offset || segment->pixmapSize != size))
            freePixmap(*segment);
        if (!segment->pixmap) {
            const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
            // Checked, once per segment and size: a server that refuses is not asked again.
            if (xcb_generic_error_t *error = xcb_request_check(
                    m_connection, xcb_shm_create_pixmap_checked(m_connection, pixmap, root, quint16(size.width()),
                                                                quint16(size.height()), depth, segment->id,
                                                                quint32(offset)))) {
                std::free(error);
                m_sharesPixmaps = false;
                return 0;
            }
            segment->pixmap = pixmap;
            segment->pixmapOffset = offset;
            segment->pixmapSize = size;
        }
        return segment->pixmap;
    }
    return 0;
}

void X11ShmSegments::freePixmap(Segment &segment)
{
    if (!segment.pixmap)
        return;
    xcb_free_pixmap(m_connection, segment.pixmap);
    segment.pixmap = 0;
}

void X11ShmSegments::trim(size_t count)
{
    size_t unused = 0;
    for (auto it = m_segments.begin(); it != m_segments.end();) {
        if ((*it).use_count() == 1 && ++unused > count) {
            freePixmap(**it);
            xcb_shm_detach(m_connection, (*it)->id);
            shmdt((*it)->address);
            it = m_segments.erase(it);
        } else {
            ++it;
        }
    }
    xcb_flush(m_connection);
}
