#pragma once

#include "geometry/Rect.h"
#include "geometry/TraceFormat.h"

#include <QTest>

// Readable values in failed comparisons (found by argument-dependent lookup).
inline char *toString(const Rect &rect)
{
    return qstrdup(trace::rect(rect).toUtf8().constData());
}
