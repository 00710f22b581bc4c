#pragma once

#include "platform/WindowRules.h"

#include <QObject>

#include <functional>

class QKeyEvent;
class QWidget;

// Offers every key pressed with Control in one top-level window to a handler before anything else in
// that window sees it (text fields, shortcuts), as macOS offers key equivalents to the window first.
// Keys the handler takes go no further. Watches the window's native window, which receives each key
// before its widgets do. Main thread.
class KeyEquivalentFilter final : public QObject
{
    Q_OBJECT

public:
    using Handler = std::function<bool(const windowrules::KeyEquivalentEvent &event)>;

    KeyEquivalentFilter(QWidget *window, Handler handler);

    // The event as the window rules read it: Control plays Command's role.
    static windowrules::KeyEquivalentEvent keyEquivalent(const QKeyEvent &event);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Handler m_handler;
    // The key press that follows a key the handler took.
    bool m_swallowsNextPress = false;
};
