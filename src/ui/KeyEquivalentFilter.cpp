#include "KeyEquivalentFilter.h"

#include <QKeyEvent>
#include <QWidget>
#include <QWindow>

KeyEquivalentFilter::KeyEquivalentFilter(QWidget *window, Handler handler)
    : QObject(window), m_handler(std::move(handler))
{
    // The native window exists from here on; key events reach it before its widgets.
    window->winId();
    if (QWindow *native = window->windowHandle())
        native->installEventFilter(this);
}

windowrules::KeyEquivalentEvent KeyEquivalentFilter::keyEquivalent(const QKeyEvent &event)
{
    windowrules::KeyEquivalentEvent equivalent;
    equivalent.isKeyDown = event.type() == QEvent::KeyPress || event.type() == QEvent::ShortcutOverride;
    equivalent.hasCommand = event.modifiers().testFlag(Qt::ControlModifier);
    // The key's own character, whatever Shift or Alt made of the text.
    equivalent.charactersIgnoringModifiers = QKeySequence(event.key()).toString(QKeySequence::PortableText).toLower();
    return equivalent;
}

bool KeyEquivalentFilter::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && m_swallowsNextPress) {
        m_swallowsNextPress = false;
        return true;
    }
    // Qt asks the window whether it overrides shortcuts before it looks for one, then delivers the
    // press; the override is the first moment a key is seen.
    if (event->type() != QEvent::ShortcutOverride)
        return QObject::eventFilter(watched, event);
    auto *key = static_cast<QKeyEvent *>(event);
    m_swallowsNextPress = false;
    if (!key->modifiers().testFlag(Qt::ControlModifier) || !m_handler)
        return false;
    // A copy: the handler may close the window and let this filter go.
    const Handler handler = m_handler;
    if (!handler(keyEquivalent(*key)))
        return false;
    m_swallowsNextPress = true;
    key->accept();
    return true;
}
