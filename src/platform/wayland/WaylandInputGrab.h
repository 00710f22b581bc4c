#pragma once

#include "InputGrab.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

class QWindow;

// Wayland has no grabs: the compositor gives the keyboard to the window it focuses, and sway does not
// focus a window mapped while another one of its workspace has the focus, nor one that asks for
// activation (it only marks it urgent). On sway the overlay is focused through its IPC instead, once
// the compositor has mapped it; elsewhere asking for activation is all a client can do. Main thread.
class WaylandInputGrab final : public QObject, public InputGrab
{
public:
    // `swaySocket`: sway's IPC socket ($SWAYSOCK), empty on other compositors.
    explicit WaylandInputGrab(QString swaySocket);

    void grab(QWindow &window) override;
    void release() override;

private:
    bool focusOnSway();

    QString m_swaySocket;
    QPointer<QWindow> m_window;
    QTimer m_retry;
    int m_attemptsLeft = 0;
};
