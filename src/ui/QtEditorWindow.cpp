#include "QtEditorWindow.h"

#include "DesktopSpace.h"
#include "EditorDropTargetWidget.h"
#include "ImageEditorWidget.h"
#include "KeyEquivalentFilter.h"
#include "WindowFrame.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

class QtEditorWindow::Widget final : public QWidget
{
public:
    explicit Widget(QtEditorWindow &owner) : m_owner(&owner)
    {
        m_fitTimer.setInterval(fitCheckInterval);
        QObject::connect(&m_fitTimer, &QTimer::timeout, this, [this] { fitOnScreen(); });
    }
    void forgetOwner() { m_owner = nullptr; }
    // The size asked for is the inside; once the window manager has put its title bar and borders
    // around it (shortly after showing, and Qt hears of them only when it asks), the whole frame is
    // made to fit on the screen, shrunk and centred as the window rules fit windows.
    void fitOnScreenWhenFramed()
    {
        m_fitChecksLeft = fitChecks;
        m_fitTimer.start();
    }

protected:
    void closeEvent(QCloseEvent *event) override
    {
        // Accepted: the widget is only hidden (not deleted on close), and refusing would also refuse
        // the application's quit.
        QWidget::closeEvent(event);
        if (m_owner)
            m_owner->windowWillClose();
    }

private:
    static constexpr int fitCheckInterval = 50;
    static constexpr int fitChecks = 20;

    void fitOnScreen()
    {
        const QMargins decoration = windowframe::decorationMargins(*this);
        if (--m_fitChecksLeft <= 0 || !isVisible())
            m_fitTimer.stop();
        if (!isVisible() || !screen() || decoration.isNull())
            return;
        m_fitTimer.stop();
        const QRect frame = frameGeometry();
        const QRect available = screen()->availableGeometry();
        if (available.contains(frame))
            return;
        const DesktopSpace space = DesktopSpace::current();
        const QRect fitted =
            space.fromGlobal(windowrules::fittedFrame(space.toGlobal(frame), space.toGlobal(available))).toAlignedRect();
        setMinimumSize(minimumSize().boundedTo(fitted.marginsRemoved(decoration).size()));
        windowframe::setFrameGeometry(*this, fitted);
    }

    QtEditorWindow *m_owner;
    QTimer m_fitTimer;
    int m_fitChecksLeft = 0;
};

namespace {

// The screen the window is on, or will be on when it is first shown.
QScreen *screenOf(const QWidget &widget)
{
    return widget.isVisible() && widget.screen() ? widget.screen() : QGuiApplication::primaryScreen();
}

} // namespace

QtEditorWindow::QtEditorWindow(const Configuration &configuration)
{
    auto *widget = new Widget(*this);
    m_widget = widget;
    widget->setWindowTitle(configuration.title);
    widget->setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint
                           | Qt::WindowCloseButtonHint);
    widget->setAttribute(Qt::WA_QuitOnClose, false);
    auto *layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    new KeyEquivalentFilter(widget, [this](const windowrules::KeyEquivalentEvent &event) {
        return performKeyEquivalent(event);
    });
    setMinimumSize(configuration.minimumSize);
    setContentSize(configuration.contentSize);
}

QtEditorWindow::~QtEditorWindow()
{
    // The window manager may let go of us from inside one of the widget's own events.
    if (m_widget) {
        static_cast<Widget *>(m_widget.data())->forgetOwner();
        m_widget->hide();
        m_widget->deleteLater();
    }
}

void QtEditorWindow::setContent(const EditorRootView &content)
{
    if (!m_widget)
        return;
    if (m_content) {
        // Replaced from within one of its own buttons, perhaps: hidden now, deleted later.
        m_content->hide();
        m_widget->layout()->removeWidget(m_content);
        m_content->deleteLater();
    }
    if (const auto *dropTarget = std::get_if<std::shared_ptr<EditorDropTargetView>>(&content); dropTarget && *dropTarget)
        m_content = new EditorDropTargetWidget(*dropTarget, m_widget);
    else if (const auto *editor = std::get_if<std::shared_ptr<ImageEditorView>>(&content); editor && *editor)
        m_content = new ImageEditorWidget(*editor, m_widget);
    else
        return;
    m_widget->layout()->addWidget(m_content);
    m_content->show();
    m_content->setFocus(Qt::OtherFocusReason);
}

void QtEditorWindow::setContentSize(QSizeF size)
{
    if (m_widget)
        m_widget->resize(size.toSize());
}

void QtEditorWindow::setMinimumSize(QSizeF size)
{
    if (!m_widget)
        return;
    // Never beyond the screen, where the window could not be made small enough to fit.
    QSize minimum = size.toSize();
    if (QScreen *screen = screenOf(*m_widget))
        minimum = minimum.boundedTo(screen->availableGeometry().size());
    m_widget->setMinimumSize(minimum);
}

void QtEditorWindow::center()
{
    if (!m_widget)
        return;
    QScreen *screen = screenOf(*m_widget);
    if (!screen)
        return;
    QRect frame = m_widget->frameGeometry();
    frame.moveCenter(screen->availableGeometry().center());
    const QRect available = screen->availableGeometry();
    m_widget->move(std::max(frame.left(), available.left()), std::max(frame.top(), available.top()));
}

void QtEditorWindow::makeKeyAndOrderFront()
{
    if (!m_widget)
        return;
    static_cast<Widget *>(m_widget.data())->fitOnScreenWhenFramed();
    m_widget->showNormal();
    m_widget->raise();
    m_widget->activateWindow();
}

void QtEditorWindow::close()
{
    if (m_widget && m_widget->isVisible())
        m_widget->close();
    else
        windowWillClose();
}
