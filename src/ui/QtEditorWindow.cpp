#include "QtEditorWindow.h"

#include "editor/ImageEditorModel.h"
#include "editor/ImageEditorView.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QVBoxLayout>

class QtEditorWindow::Widget final : public QWidget
{
public:
    explicit Widget(QtEditorWindow &owner) : m_owner(owner) {}

protected:
    void closeEvent(QCloseEvent *event) override
    {
        // Accepted, the widget is only hidden (it is not deleted on close), so the window manager may
        // show it again with new content; refusing would also refuse the application's quit.
        QWidget::closeEvent(event);
        m_owner.windowWillClose();
    }

    void keyPressEvent(QKeyEvent *event) override
    {
        windowrules::KeyEquivalentEvent equivalent;
        equivalent.hasCommand = event->modifiers().testFlag(Qt::ControlModifier);
        equivalent.charactersIgnoringModifiers = QKeySequence(event->key()).toString().toLower();
        if (equivalent.hasCommand && m_owner.performKeyEquivalent(equivalent))
            return;
        QWidget::keyPressEvent(event);
    }

private:
    QtEditorWindow &m_owner;
};

QtEditorWindow::QtEditorWindow(const Configuration &configuration) : m_widget(new Widget(*this))
{
    m_widget->setWindowTitle(configuration.title);
    m_widget->setAttribute(Qt::WA_QuitOnClose, false);
    m_picture = new QLabel(m_widget);
    m_picture->setAlignment(Qt::AlignCenter);
    auto *layout = new QVBoxLayout(m_widget);
    layout->addWidget(m_picture);
    setMinimumSize(configuration.minimumSize);
    setContentSize(configuration.contentSize);
}

QtEditorWindow::~QtEditorWindow()
{
    // The window manager may let go of us from inside one of the widget's own events.
    if (m_widget)
        m_widget->deleteLater();
}

void QtEditorWindow::setContent(const EditorRootView &content)
{
    m_content = content;
    QPixmap picture;
    if (const auto *view = std::get_if<std::shared_ptr<ImageEditorView>>(&m_content); view && *view)
        picture = QPixmap::fromImage((*view)->model().image());
    m_picture->setPixmap(picture);
}

void QtEditorWindow::setContentSize(QSizeF size)
{
    if (m_widget)
        m_widget->resize(size.toSize());
}

void QtEditorWindow::setMinimumSize(QSizeF size)
{
    if (m_widget)
        m_widget->setMinimumSize(size.toSize());
}

void QtEditorWindow::center()
{
    if (!m_widget)
        return;
    QScreen *screen = m_widget->isVisible() ? m_widget->screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return;
    QRect frame = m_widget->frameGeometry();
    frame.moveCenter(screen->availableGeometry().center());
    m_widget->move(frame.topLeft());
}

void QtEditorWindow::makeKeyAndOrderFront()
{
    if (!m_widget)
        return;
    m_widget->show();
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
