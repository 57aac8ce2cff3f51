// A start at a given time of day, and the beeps of the last seconds before a start.
#pragma once

#include <QStringView>

#include <optional>

namespace startat
{

// A time of day typed by the operator: hh:mm:ss, optionally followed by tenths, hundredths or
// thousandths after ".", "," or ":". Seconds since midnight, or none when it cannot be read.
std::optional<double> parseTimeOfDay(QStringView text);

// What a start at `target` means at `now` (both seconds since midnight):
//  - later today, within 12 hours: the start is armed, `seconds` from now;
//  - earlier today, or late yesterday (more than 12 hours ahead is taken as yesterday), at
//    most 12 hours ago: the race started `seconds` ago;
//  - earlier today by more than 12 hours: refused.
struct Decision {
    enum class Kind { Armed, Started, TooOld };
    Kind kind;
    double seconds;
};
Decision decide(double now, double target);

inline constexpr double maxHoursAgo = 12.0;

} // namespace startat

// The beeps of a time-trial start: short at 5, 4, 3, 2 and 1 seconds before the start, long at
// the start itself. Fed with the seconds left at each tick, it says when one is due: a tick
// that crosses a beep's moment gives that beep, once; a late tick that crosses several gives
// only the last.
class CountdownBeeps
{
public:
    enum class Beep { None, Short, Long };

    // The seconds left to the selected start, or none when no start is selected.
    Beep update(std::optional<double> remaining);
    // Seconds from `remaining` to the next beep's moment, or none when no beep is ahead.
    static std::optional<double> untilNext(double remaining);

private:
    std::optional<double> previous;
};
