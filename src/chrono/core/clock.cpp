#include "clock.h"

double SystemClock::timer() const
{
    return timeOfDay().msecsSinceStartOfDay() / 1000.0;
}

QTime SystemClock::timeOfDay() const
{
    return QTime::currentTime();
}
