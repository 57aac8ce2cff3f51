// Where the stopwatch reads the time. The window takes a Clock so that tests can drive it.
#pragma once

#include <QElapsedTimer>
#include <QTime>

class Clock
{
public:
    virtual ~Clock() = default;
    // Seconds since local midnight, with millisecond resolution at least. Taken from the wall
    // clock, so a program started again reads the same race clock.
    virtual double timer() const = 0;
    // The time of day, read from the same clock.
    virtual QTime timeOfDay() const = 0;
    // Seconds from an arbitrary origin on a clock that is never stepped: a running race is
    // timed on it once anchored to the wall clock, so a change of the system time moves no
    // finish.
    virtual double monotonic() const = 0;
};

class SystemClock final : public Clock
{
public:
    SystemClock();
    double timer() const override;
    QTime timeOfDay() const override;
    double monotonic() const override;

private:
    QElapsedTimer elapsed;
};

// The running race clock: anchored to the wall clock when the race starts or resumes, then
// timed on the monotonic clock, so that a step of the system time moves nothing.
class RunningClock
{
public:
    explicit RunningClock(const Clock& source) : clock(source) {}
    // The race clock started at `inicio` (seconds since midnight, as Clock::timer reads): the
    // time run so far is taken now, a race that crosses midnight keeping its count.
    void anchor(double inicio);
    // The race clock in hours, `desfase` hours carried into the run included.
    double hours(double desfase) const;

private:
    const Clock& clock;
    double anchorElapsed = 0; // seconds run at the anchor
    double anchorMono = 0;    // the monotonic clock at the anchor
};
