#include "QtSettingsWindow.h"

#include "DesktopSpace.h"
#include "KeyEquivalentFilter.h"
#include "SettingsFormWidget.h"
#include "WindowFrame.h"

#include "app/SettingsForm.h"
#include "app/SettingsFormTexts.h"

#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include <chrono>
#include <utility>

namespace {

// How long to wait for the window manager's frame: 2 s.
constexpr int refitTries = 100;
constexpr std::chrono::milliseconds refitInterval{20};
constexpr int nudgeEvery = 10;

// Between Qt's desktop and the global bottom-left space of the displays.
Rect toGlobal(const QRect &logical)
{
    return DesktopSpace::current().toGlobal(QRectF(logical));
}

QRect fromGlobal(const Rect &global)
{
    return DesktopSpace::current().fromGlobal(global).toAlignedRect();
}

} // namespace

QtSettingsWindow::QtSettingsWindow(const Dependencies &dependencies)
    : m_form(std::make_unique<SettingsForm>(dependencies.settings, dependencies.folderChooser,
                                            dependencies.loginCaption))
{
    // A plain widget: closing hides it, and it is not deleted on close.
    m_widget = new QWidget;
    m_widget->setWindowTitle(settingsform::windowTitle);
    m_widget->setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint
                             | Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint);
    m_widget->setAttribute(Qt::WA_QuitOnClose, false);
    m_formWidget = new SettingsFormWidget(dependencies.settings, *m_form, dependencies.updater, dependencies.version,
                                          m_widget);
    auto *layout = new QVBoxLayout(m_widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_formWidget);
    m_widget->setMinimumSize(minimumContentSize);
    m_widget->resize(contentSize);
    new KeyEquivalentFilter(m_widget, [widget = m_widget](const windowrules::KeyEquivalentEvent &event) {
        if (!windowrules::isCloseWindowShortcut(event))
            return false;
        if (widget)
            widget->close();
        return true;
    });
}

QtSettingsWindow::~QtSettingsWindow()
{
    delete m_widget;
}

bool QtSettingsWindow::isVisible() const
{
    // Minimized, it is out of sight and comes back as from hidden.
    return m_widget && m_widget->isVisible() && !m_widget->isMinimized();
}

Rect QtSettingsWindow::frame() const
{
    return m_widget ? toGlobal(m_widget->frameGeometry()) : Rect();
}

std::optional<Rect> QtSettingsWindow::screenVisibleFrame() const
{
    const QScreen *screen = m_widget ? m_widget->screen() : nullptr;
    if (!screen)
        return std::nullopt;
    return toGlobal(screen->availableGeometry());
}

void QtSettingsWindow::setFrame(const Rect &frame)
{
    if (!m_widget)
        return;
    const QRect wanted = fromGlobal(frame);
    windowframe::setFrameGeometry(*m_widget, wanted);
    if (windowframe::decorationMargins(*m_widget).isNull())
        m_unframedFrame = wanted;
    else
        m_unframedFrame.reset();
}

void QtSettingsWindow::refitWhenFramed(int triesLeft)
{
    if (!m_widget || !m_unframedFrame || !m_widget->isVisible())
        return;
    if (windowframe::decorationMargins(*m_widget).isNull()) {
        // Qt learns the frame's extents only with a configure notification, and none need come when
        // the frame arrives without moving the inside: now and then a one-pixel resize brings one.
        // Look again shortly, for a while; a window manager that draws no frame gets the size back.
        if (triesLeft == 0) {
            windowframe::setFrameGeometry(*m_widget, *std::exchange(m_unframedFrame, std::nullopt));
            return;
        }
        if (triesLeft % nudgeEvery == 0)
            m_widget->resize(m_widget->width(), m_widget->height() - 1);
        QTimer::singleShot(refitInterval, m_widget, [this, triesLeft] { refitWhenFramed(triesLeft - 1); });
        return;
    }
    windowframe::setFrameGeometry(*m_widget, *std::exchange(m_unframedFrame, std::nullopt));
}

void QtSettingsWindow::makeKeyAndOrderFront()
{
    if (!m_widget)
        return;
    m_widget->showNormal();
    refitWhenFramed(refitTries);
    m_widget->raise();
    m_widget->activateWindow();
}

void QtSettingsWindow::showShortcutBindings(const ShortcutGuidance &guidance)
{
    m_form->setShortcutGuidance(guidance);
}
