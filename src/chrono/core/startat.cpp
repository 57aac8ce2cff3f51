#include "startat.h"

#include <QRegularExpression>

#include <cmath>

namespace startat
{

std::optional<double> parseTimeOfDay(QStringView text)
{
    static const QRegularExpression form(
        QStringLiteral(R"(^\s*(\d{1,2}):(\d{2}):(\d{2})(?:[.,:](\d{1,3}))?\s*$)"));
    const QRegularExpressionMatch m = form.match(text.toString());
    if (!m.hasMatch())
        return std::nullopt;
    const int h = m.capturedView(1).toInt();
    const int min = m.capturedView(2).toInt();
    const int s = m.capturedView(3).toInt();
    if (h > 23 || min > 59 || s > 59)
        return std::nullopt;
    double fraction = 0;
    if (m.hasCaptured(4)) {
        const QStringView digits = m.capturedView(4);
        fraction = digits.toInt() / std::pow(10.0, static_cast<double>(digits.size()));
    }
    return h * 3600.0 + min * 60.0 + s + fraction;
}

Decision decide(double now, double target)
{
    constexpr double day = 86400.0;
    const double limit = maxHoursAgo * 3600.0;
    if (target > now) {
        const double ahead = target - now;
        if (ahead <= limit)
            return {Decision::Kind::Armed, ahead};
        return {Decision::Kind::Started, day - ahead}; // yesterday, across midnight
    }
    const double ago = now - target;
    if (ago <= limit)
        return {Decision::Kind::Started, ago};
    return {Decision::Kind::TooOld, ago};
}

} // namespace startat

namespace
{

constexpr int firstBeep = 5;

} // namespace

CountdownBeeps::Beep CountdownBeeps::update(std::optional<double> remaining)
{
    const std::optional<double> before = previous;
    previous = remaining;
    if (!remaining || !before)
        return Beep::None;
    // The last beep moment crossed since the previous tick, if any.
    for (int n = 0; n <= firstBeep; ++n) {
        if (*before > n && *remaining <= n)
            return n == 0 ? Beep::Long : Beep::Short;
    }
    return Beep::None;
}

std::optional<double> CountdownBeeps::untilNext(double remaining)
{
    if (remaining <= 0)
        return std::nullopt;
    const double next = std::min(std::ceil(remaining) - 1.0, double(firstBeep));
    return remaining - next;
}
