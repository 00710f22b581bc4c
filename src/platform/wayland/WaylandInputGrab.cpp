#include "WaylandInputGrab.h"

#include "SwayIpc.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {
// The window is mapped a frame or two after it is shown; half a second covers a slow compositor.
constexpr int retryIntervalMs = 20;
constexpr int attempts = 25;
constexpr int replyTimeoutMs = 200;
} // namespace

WaylandInputGrab::WaylandInputGrab(QString swaySocket) : m_swaySocket(std::move(swaySocket))
{
    m_retry.setInterval(retryIntervalMs);
    connect(&m_retry, &QTimer::timeout, this, [this] {
        if (focusOnSway() || --m_attemptsLeft <= 0)
            m_retry.stop();
    });
}

void WaylandInputGrab::grab(QWindow &window)
{
    m_window = &window;
    if (m_swaySocket.isEmpty()) {
        window.requestActivate();
        return;
    }
    m_attemptsLeft = attempts;
    if (!focusOnSway())
        m_retry.start();
}

void WaylandInputGrab::release()
{
    m_retry.stop();
    m_window = nullptr;
}

bool WaylandInputGrab::focusOnSway()
{
    if (!m_window || !m_window->isVisible())
        return true;
    // Our process's window of that title; the overlays are the only windows titled so.
    const QString title = QRegularExpression::escape(m_window->title());
    const QByteArray command = u"[pid=%1 app_id=\"%2\" title=\"^%3$\"] focus"_s
                                   .arg(QCoreApplication::applicationPid())
                                   .arg(QRegularExpression::escape(QGuiApplication::desktopFileName()), title)
                                   .toUtf8();
    const std::optional<QByteArray> reply = swayipc::request(m_swaySocket, swayipc::runCommand, command, replyTimeoutMs);
    if (!reply)
        return true;
    // [{"success": false, ...}] while no window matches yet.
    const QJsonArray results = QJsonDocument::fromJson(*reply).array();
    return !results.isEmpty() && results.first().toObject().value("success"_L1).toBool();
}
