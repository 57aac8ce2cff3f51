#include "timevalue.h"

#include "base/basic.h"

#include <cmath>

namespace timevalue
{

namespace
{

// The digits of a field with "00" (or "000") in front, the last two (or three) kept.
QString lastDigits(double field, qsizetype width)
{
    return basic::right(QString(width, u'0') + QString::number(static_cast<qint64>(field)), width);
}

} // namespace

QString tempsexaMil(double tempsdeci)
{
    if (!std::isfinite(tempsdeci))
        tempsdeci = 0;
    // Each field is taken from what the field before it left over, before any carry: a value a
    // rounding hair below a whole minute or hour (a sum of hours a hair below zero) leaves
    // 60 minutes and nothing over, which the carries then make one more hour.
    double h = std::floor(tempsdeci);
    const double mdec = (tempsdeci - h) * 60.0;
    double m = std::floor(mdec);
    const double sdec = (mdec - m) * 60.0;
    double s = std::floor(sdec);
    double ms = std::nearbyint((sdec - s) * 1000.0); // ties to even
    if (ms == 1000) {
        ms = 0;
        s += 1;
    }
    if (s == 60) {
        s = 0;
        m += 1;
    }
    if (m == 60) {
        m = 0;
        h += 1;
    }
    // Only the last two digits of the hours are shown; keep the number small enough to print
    // while keeping those digits and the sign.
    h = std::fmod(h, 1000.0);
    if (h >= 0 && m >= 0 && s >= 0 && ms >= 0) {
        // The usual case, written digit by digit: the clock tick and every line go through here.
        const auto hh = static_cast<int>(h) % 100;
        const auto mm = static_cast<int>(m);
        const auto ss = static_cast<int>(s);
        const auto mmm = static_cast<int>(ms);
        const char16_t text[12] = {
            char16_t(u'0' + hh / 10),   char16_t(u'0' + hh % 10),       u':',
            char16_t(u'0' + mm / 10),   char16_t(u'0' + mm % 10),       u':',
            char16_t(u'0' + ss / 10),   char16_t(u'0' + ss % 10),       u':',
            char16_t(u'0' + mmm / 100), char16_t(u'0' + mmm / 10 % 10), char16_t(u'0' + mmm % 10)};
        return QString(reinterpret_cast<const QChar*>(text), 12);
    }
    return lastDigits(h, 2) + u':' + lastDigits(m, 2) + u':' + lastDigits(s, 2) + u':' +
           lastDigits(ms, 3);
}

double decimalMil(QStringView temps)
{
    const double h = basic::val(basic::left(temps, 2));
    const double m = basic::val(basic::mid(temps, 4, 2));
    const double s = basic::val(basic::mid(temps, 7, 2));
    const double f = basic::val(basic::right(temps, 3));
    return h + ((f / 1000.0 + s) / 60.0 + m) / 60.0;
}

QString clockTemplate(TimeFormat format)
{
    switch (format) {
    case TimeFormat::Segundos:
        return QStringLiteral("00:00:00");
    case TimeFormat::Centesimas:
        return QStringLiteral("00:00:00:00");
    case TimeFormat::Milesimas:
        break;
    }
    return QStringLiteral("00:00:00:000");
}

QString shortTemplate(TimeFormat format)
{
    return clockTemplate(format).mid(1);
}

int timeWidth(TimeFormat format)
{
    return static_cast<int>(clockTemplate(format).size());
}

int differenceWidth(TimeFormat format)
{
    return timeWidth(format) - 1;
}

} // namespace timevalue
