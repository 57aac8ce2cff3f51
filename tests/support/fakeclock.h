// A clock the test moves by hand, for the window's tests and the core's alike.
#pragma once

#include "chrono/core/clock.h"

#include <cmath>

class FakeClock final : public Clock
{
public:
    double seconds = 10 * 3600.0; // 10:00:00, the wall clock
    double steady = 1000.0;       // the monotonic clock
    double timer() const override { return seconds; }
    double monotonic() const override { return steady; }
    QTime timeOfDay() const override
    {
        return QTime::fromMSecsSinceStartOfDay(static_cast<int>(seconds * 1000.0 + 0.5) % 86400000);
    }
    // Time goes by: both clocks move, the wall clock round midnight.
    void advance(double s)
    {
        steady += s;
        stepWall(s);
    }
    // The system time is set: only the wall clock moves.
    void stepWall(double s) { seconds = std::fmod(seconds + s + 86400.0, 86400.0); }
};
