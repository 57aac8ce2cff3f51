#include "clock.h"

SystemClock::SystemClock()
{
    elapsed.start();
}

double SystemClock::timer() const
{
    return timeOfDay().msecsSinceStartOfDay() / 1000.0;
}

QTime SystemClock::timeOfDay() const
{
    return QTime::currentTime();
}

double SystemClock::monotonic() const
{
    return static_cast<double>(elapsed.nsecsElapsed()) / 1e9;
}
