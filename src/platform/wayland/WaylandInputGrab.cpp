#include "WaylandInputGrab.h"

#include <QWindow>

void WaylandInputGrab::grab(QWindow &window)
{
    window.requestActivate();
}
