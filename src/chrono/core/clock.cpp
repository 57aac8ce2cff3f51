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

void RunningClock::anchor(double inicio)
{
    constexpr double secondsPerDay = 86400.0;
    double elapsed = clock.timer() - inicio;
    if (elapsed < 0)
        elapsed += secondsPerDay;
    anchorElapsed = elapsed;
    anchorMono = clock.monotonic();
}

double RunningClock::hours(double desfase) const
{
    return (anchorElapsed + clock.monotonic() - anchorMono) / 3600.0 + desfase;
}
