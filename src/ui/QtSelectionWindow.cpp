#include "QtSelectionWindow.h"

#include "DesktopSpace.h"
#include "InputGrab.h"
#include "SelectionOverlayWidget.h"

#include "platform/DisplayProvider.h"

#include <QTimer>
#include <QWindow>

namespace {
// Repaints at once whenever the compositor exposes the window again. Qt 6.4 acknowledges a new size or
// state of a Wayland window without drawing it anew, and sway holds every output's next frame until it
// gives up waiting for that drawing (200 ms): the overlays would show that much later.
class ExposeRepaint final : public QObject
{
public:
    explicit ExposeRepaint(QWidget *widget) : QObject(widget), m_widget(widget) {}
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Expose && m_widget->windowHandle()->isExposed())
            QTimer::singleShot(0, m_widget, [w = m_widget] { w->repaint(); });
        return false;
    }

private:
    QWidget *m_widget;
};
} // namespace

QtSelectionWindow::QtSelectionWindow(SelectionOverlayWidget *widget, const DisplayProvider &displays,
                                     InputGrab &grab, bool fillsScreen)
    : m_widget(widget), m_displays(displays), m_grab(grab), m_fillsScreen(fillsScreen)
{
}

QtSelectionWindow::~QtSelectionWindow()
{
    QObject::disconnect(m_screenWatch);
    if (m_holdsGrab && m_widget)
        m_grab.release();
}

Rect QtSelectionWindow::frame() const
{
    if (!m_widget)
        return Rect();
    if (m_fillsScreen && m_frame)
        return *m_frame;
    return DesktopSpace::current().toGlobal(QRectF(m_widget->geometry()));
}

void QtSelectionWindow::setFrame(const Rect &frame)
{
    if (!m_widget)
        return;
    m_frame = frame;
    const DesktopSpace space = DesktopSpace::current();
    const QRect logical = space.fromGlobal(frame).toAlignedRect();
    // The window takes the scale of the display it covers; Qt would otherwise keep the display it
    // was made on, and displays of other scales would get a window of the wrong pixel size.
    if (const DesktopScreen *display = desktopspace::screenAtLogical(QRectF(logical).center(), space.screens())) {
        if (QScreen *screen = DesktopSpace::qscreen(display->name)) {
            m_widget->winId();
            m_screen = screen;
            m_widget->windowHandle()->setScreen(screen);
        }
    }
    m_widget->setGeometry(logical);
    m_widget->displayIfNeeded();
}

std::optional<DisplayInfo> QtSelectionWindow::screen() const
{
    const Rect own = frame();
    std::optional<DisplayInfo> best;
    double bestArea = 0;
    for (const DisplayInfo &display : m_displays.screens()) {
        const Rect overlap = own.intersected(display.frame);
        const double area = overlap.isNull() ? 0 : overlap.width() * overlap.height();
        if (area > bestArea) {
            bestArea = area;
            best = display;
        }
    }
    return best;
}

Rect QtSelectionWindow::convertRectToScreen(const Rect &rect) const
{
    const Rect own = frame();
    return rect.translated(own.minX(), own.minY());
}

QPointF QtSelectionWindow::convertPointFromScreen(QPointF point) const
{
    const Rect own = frame();
    return point - QPointF(own.minX(), own.minY());
}

void QtSelectionWindow::setContentView(SelectionView *view)
{
    if (m_widget)
        m_widget->setView(view);
}

void QtSelectionWindow::setPointerRouter(SelectionPointerRouter *router)
{
    if (m_widget)
        m_widget->setPointerRouter(router);
}

void QtSelectionWindow::setNeedsDisplay()
{
    if (m_widget)
        m_widget->setNeedsDisplay();
}

void QtSelectionWindow::setNeedsDisplayInRect(const Rect &rect)
{
    if (m_widget)
        m_widget->setNeedsDisplayInRect(rect.toQRectF());
}

void QtSelectionWindow::displayIfNeeded()
{
    if (m_widget)
        m_widget->displayIfNeeded();
}

void QtSelectionWindow::makeKeyAndOrderFront()
{
    orderFront();
    if (!m_widget)
        return;
    m_grab.grab(*m_widget->windowHandle());
    m_holdsGrab = true;
    m_widget->setFocus(Qt::ActiveWindowFocusReason);
}

void QtSelectionWindow::orderFront()
{
    if (!m_widget)
        return;
    if (m_fillsScreen) {
        // The native window has its screen already (setFrame): a widget placed by its geometry alone
        // may stay undrawn on a second output until the pointer crosses it (sway).
        if (!m_widget->findChild<ExposeRepaint *>()) {
            m_widget->winId();
            m_widget->windowHandle()->installEventFilter(new ExposeRepaint(m_widget));
            // When its display goes, Qt hands the window to another one, where the compositor would show
            // it full screen over that display's own overlay: it goes with its display instead.
            m_screenWatch = QObject::connect(m_widget->windowHandle(), &QWindow::screenChanged, m_widget,
                                             [this](QScreen *screen) {
                if (m_widget && m_screen != screen)
                    m_widget->hide();
            });
        }
        m_widget->showFullScreen();
        return;
    }
    m_widget->show();
    m_widget->raise();
}

void QtSelectionWindow::orderOut()
{
    if (!m_widget)
        return;
    if (m_holdsGrab) {
        m_grab.release();
        m_holdsGrab = false;
    }
    m_widget->hide();
}
