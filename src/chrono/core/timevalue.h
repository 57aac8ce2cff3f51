// Race times are held as a double number of hours. Their text forms are the 12-character
// hh:mm:ss:mmm and the clock templates of the three time formats.
#pragma once

#include <QString>
#include <QStringView>

// Index of the checked entry of the time-format menu.
enum class TimeFormat { Segundos = 0, Centesimas = 1, Milesimas = 2 };

namespace timevalue
{

// Hours to hh:mm:ss:mmm. Hours, minutes and seconds are truncated, only the thousandths are
// rounded (half to even); the carries run after the rounding so no field ever holds 60 or 1000,
// and a value a rounding hair from a whole thousandth is written as that thousandth.
// Hours keep their last two digits (a negative hour keeps its sign: -1:59:00:000).
QString tempsexaMil(double tempsdeci);

// Fixed-position reading of hh:mm:ss:mmm back to hours. Shorter texts lose their fraction:
// the last three characters of "00:00:01" or "00:00:01:50" read as 0.
double decimalMil(QStringView temps);

// The clock template: "00:00:00", "00:00:00:00" or "00:00:00:000".
QString clockTemplate(TimeFormat format);
// The short form with one hour digit: "0:00:00", "0:00:00:00" or "0:00:00:000".
QString shortTemplate(TimeFormat format);
// Width of a time (8, 11, 12) and of a difference (7, 10, 11) in each format.
int timeWidth(TimeFormat format);
int differenceWidth(TimeFormat format);
// Seconds and hours.
constexpr double secondsPerHour = 3600.0;

} // namespace timevalue
