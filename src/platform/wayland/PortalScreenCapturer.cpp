#include "PortalScreenCapturer.h"

#include "DesktopSpace.h"
#include "PortalRequest.h"
#include "WaylandDisplayProvider.h"
#include "platform/SystemLog.h"

#include <QDBusMessage>
#include <QFile>
#include <QFileInfo>
#include <QCoreApplication>
#include <QUrl>

#include <future>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString screenshotInterface = u"org.freedesktop.portal.Screenshot"_s;
constexpr int offerTimeoutMs = 5000;
// Long enough for the other displays of one freeze, whose requests follow each other through the
// event loop; short enough that a capture the user starts later never gets an old image.
constexpr std::chrono::milliseconds reuseWindow(500);
// File times come from the kernel's coarse clock, which may lag the clock we read by a tick.
constexpr int fileClockSlackMs = 20;

// A rectangle of Qt's logical space to the pixels of the image of the layout, each corner by its own
// display, rounded outward. At mixed scales the image has the highest one; where the layout is in
// pixels, a point is several layout units.
QRect imagePixels(const QRectF &logical, const QList<DesktopScreen> &screens, const QRectF &bounds,
                  const QImage &image)
{
    const double perUnit = image.width() / bounds.width();
    return desktopspace::logicalToLayout(logical, screens, perUnit).translated(-(bounds.topLeft() * perUnit).toPoint());
}

} // namespace

PortalScreenCapturer::PortalScreenCapturer(const QDBusConnection &bus, const WaylandDisplayProvider &displays,
                                           SystemLog &log)
    : m_bus(bus), m_displays(displays), m_log(log)
{
    // Before the scheduler waits for its workers at quit (it is made later), so none waits on us.
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, [this] { m_quitting = true; });
}

PortalScreenCapturer::~PortalScreenCapturer()
{
    m_quitting = true;
}

bool PortalScreenCapturer::isOffered(const QDBusConnection &bus)
{
    QDBusMessage call = QDBusMessage::createMethodCall(PortalRequest::service, PortalRequest::path,
                                                       u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call << screenshotInterface << u"version"_s;
    return bus.call(call, QDBus::Block, offerTimeoutMs).type() == QDBusMessage::ReplyMessage;
}

void PortalScreenCapturer::shareableDisplays(ContentCompletion completion)
{
    completion(m_displays.shareableDisplays(), std::nullopt);
}

void PortalScreenCapturer::captureDisplay(quint32 displayID, const Rect &sourceRect, QSize outputSize,
                                          ImageCompletion completion)
{
    const QString name = m_displays.outputName(displayID).value_or(QString());
    withLayout(displayID, [displayID, name, sourceRect, outputSize, completion](const Layout &layout) {
        if (layout.image.isNull()) {
            completion({}, layout.error);
            return;
        }
        for (const DesktopScreen &screen : layout.screens) {
            if (screen.name != name)
                continue;
            // A display of a lower scale than the image's is brought back to its own pixels.
            const QList<DesktopScreen> own{screen};
            const QRectF area = sourceRect.toQRectF().translated(screen.logical.topLeft());
            const QRect part = imagePixels(area, own, layout.bounds, layout.image)
                                   .intersected(imagePixels(QRectF(screen.logical), own, layout.bounds, layout.image));
            QImage image = layout.image.copy(part);
            if (!image.isNull() && image.size() != outputSize)
                image = image.scaled(outputSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
            completion(std::move(image), std::nullopt);
            return;
        }
        completion({}, u"display %1 is not connected"_s.arg(displayID));
    });
}

bool PortalScreenCapturer::takeImageAndWait()
{
    auto answer = std::make_shared<std::promise<bool>>();
    std::future<bool> granted = answer->get_future();
    QMetaObject::invokeMethod(this, [this, answer] {
        withLayout(std::nullopt, [answer](const Layout &layout) { answer->set_value(!layout.image.isNull()); });
    }, Qt::QueuedConnection);
    // The user may take a while over the desktop's dialog.
    while (granted.wait_for(std::chrono::milliseconds(100)) != std::future_status::ready) {
        if (m_quitting)
            return false;
    }
    return granted.get();
}

void PortalScreenCapturer::captureRect(const Rect &globalRect, ImageCompletion completion)
{
    withLayout(std::nullopt, [globalRect, completion](const Layout &layout) {
        if (layout.image.isNull()) {
            completion({}, layout.error);
            return;
        }
        const QRectF area = desktopspace::fromTopLeftGlobal(globalRect, layout.screens.first().logical);
        const QRect part = imagePixels(area, layout.screens, layout.bounds, layout.image);
        if (!part.intersects(layout.image.rect())) {
            completion({}, u"the rectangle lies on no output"_s);
            return;
        }
        // What lies outside the layout is black, as in a copy of the outputs.
        completion(layout.image.copy(part), std::nullopt);
    });
}

void PortalScreenCapturer::withLayout(std::optional<quint32> displayID, LayoutUse use)
{
    if (!m_waiting.isEmpty()) {
        m_waiting.append({displayID, std::move(use)});
        return;
    }
    if (m_last && std::chrono::steady_clock::now() - m_last->arrived < reuseWindow
        && !(displayID && m_last->servedDisplays.contains(*displayID))) {
        if (displayID)
            m_last->servedDisplays.insert(*displayID);
        const Layout last = *m_last;
        use(last);
        return;
    }
    m_last.reset();
    m_waiting.append({displayID, std::move(use)});
    ask();
}

void PortalScreenCapturer::ask()
{
    QDBusMessage call = QDBusMessage::createMethodCall(PortalRequest::service, PortalRequest::path,
                                                       screenshotInterface, u"Screenshot"_s);
    call << QString();
    m_askedAt = QDateTime::currentDateTimeUtc();
    PortalRequest::send(m_bus, call, {{u"interactive"_s, false}}, this,
                        [this](uint response, const QVariantMap &results, const QString &error) {
                            answered(response, results, error);
                        });
}

void PortalScreenCapturer::answered(uint response, const QVariantMap &results, const QString &error)
{
    Layout layout;
    layout.arrived = std::chrono::steady_clock::now();
    layout.screens = DesktopSpace::current().screens();
    for (const DesktopScreen &screen : std::as_const(layout.screens))
        layout.bounds |= QRectF(screen.layoutRect());
    if (response == 0) {
        const QString uri = results.value(u"uri"_s).toString();
        const QImage image = takeFile(uri);
        if (image.isNull())
            layout.error = u"the Screenshot portal's file %1 could not be read"_s.arg(uri);
        else if (layout.bounds.isEmpty())
            layout.error = u"Qt lists no screens"_s;
        else
            layout.image = image;
    } else if (response == 1) {
        layout.error = u"the Screenshot portal request was cancelled"_s;
    } else {
        layout.error = u"the Screenshot portal refused the request"_s % (error.isEmpty() ? QString() : u": "_s % error);
    }
    if (!layout.error.isEmpty())
        m_log.log(u"Vistrel: no screen image: "_s % layout.error);

    const QList<Waiting> waiting = std::exchange(m_waiting, {});
    for (const Waiting &request : waiting) {
        if (request.displayID)
            layout.servedDisplays.insert(*request.displayID);
    }
    m_last = layout;
    for (const Waiting &request : waiting)
        request.use(layout);
}

QImage PortalScreenCapturer::takeFile(const QString &uri)
{
    const QUrl url(uri);
    if (!url.isLocalFile())
        return {};
    const QString path = url.toLocalFile();
    const QImage image(path);
    // Only a file the portal made for this request goes: never one that was there before it was asked.
    const QFileInfo info(path);
    const QDateTime made = info.birthTime().isValid() ? info.birthTime() : info.lastModified();
    if (made.isValid() && made >= m_askedAt.addMSecs(-fileClockSlackMs))
        QFile::remove(path);
    return image.convertToFormat(QImage::Format_RGB32);
}
