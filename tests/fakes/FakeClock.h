#pragma once

#include "platform/Clock.h"

class FakeClock final : public Clock
{
public:
    QDateTime now() const override { return current; }

    QDateTime current = QDateTime(QDate(2024, 5, 1), QTime(13, 7, 42));
};
