#pragma once

#include <QObject>
#include <QPointF>

#include <optional>

// Where the pointer was last seen over one of our windows, in Qt's logical space (layout coordinates
// on Wayland). Wayland tells a client the pointer's position only over its own surfaces, and Qt 6.4's
// QCursor::pos() does not keep it across windows; every pointer event any of our windows gets passes
// through here first. While a selection runs the overlays cover every output, so the position is
// current. Main thread.
class PointerTracker final : public QObject
{
public:
    PointerTracker();
    ~PointerTracker() override;

    std::optional<QPointF> position() const { return m_position; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    std::optional<QPointF> m_position;
};
