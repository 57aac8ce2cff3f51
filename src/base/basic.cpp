#include "basic.h"

#include <cctype>
#include <cmath>
#include <string>
#include <vector>

namespace basic
{

namespace
{

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

// Reads the number at the start of text; returns the characters consumed (blanks
// included) so that isNumber can tell whether anything follows it.
qsizetype scanNumber(QStringView text, double* out)
{
    // Blanks are dropped everywhere before the scan, as Val does.
    std::string compact;
    std::vector<qsizetype> origin; // position in text of each compact character
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isBlank(text[i]))
            continue;
        const char16_t c = text[i].unicode();
        compact.push_back(c < 128 ? static_cast<char>(c) : '\x7f');
        origin.push_back(i);
    }
    std::size_t p = 0;
    auto endAt = [&](std::size_t pos) -> qsizetype {
        if (pos == 0)
            return 0;
        return origin[pos - 1] + 1;
    };
    const auto n = compact.size();

    if (p + 1 < n && compact[p] == '&') {
        const char kind =
            static_cast<char>(std::toupper(static_cast<unsigned char>(compact[p + 1])));
        const int radix = kind == 'H' ? 16 : kind == 'O' ? 8 : 0;
        if (radix != 0) {
            std::size_t q = p + 2;
            double v = 0;
            while (q < n) {
                const int d = std::isdigit(static_cast<unsigned char>(compact[q]))
                                  ? compact[q] - '0'
                              : radix == 16 && std::isxdigit(static_cast<unsigned char>(compact[q]))
                                  ? std::toupper(static_cast<unsigned char>(compact[q])) - 'A' + 10
                                  : -1;
                if (d < 0 || d >= radix)
                    break;
                v = v * radix + d;
                ++q;
            }
            *out = v;
            return q > p + 2 ? endAt(q) : 0;
        }
    }

    std::size_t q = p;
    if (q < n && (compact[q] == '+' || compact[q] == '-'))
        ++q;
    const std::size_t mantissaStart = q;
    bool anyDigit = false;
    while (q < n && std::isdigit(static_cast<unsigned char>(compact[q]))) {
        ++q;
        anyDigit = true;
    }
    if (q < n && compact[q] == '.') {
        ++q;
        while (q < n && std::isdigit(static_cast<unsigned char>(compact[q]))) {
            ++q;
            anyDigit = true;
        }
    }
    if (!anyDigit) {
        *out = 0;
        return 0;
    }
    std::string number = compact.substr(p, q - p);
    (void)mantissaStart;
    if (q < n &&
        (compact[q] == 'E' || compact[q] == 'e' || compact[q] == 'D' || compact[q] == 'd')) {
        std::size_t r = q + 1;
        if (r < n && (compact[r] == '+' || compact[r] == '-'))
            ++r;
        if (r < n && std::isdigit(static_cast<unsigned char>(compact[r]))) {
            while (r < n && std::isdigit(static_cast<unsigned char>(compact[r])))
                ++r;
            std::string exponent = compact.substr(q + 1, r - q - 1);
            number += 'e';
            number += exponent;
            q = r;
        }
    }
    *out = std::strtod(number.c_str(), nullptr);
    return endAt(q);
}

} // namespace

double val(QStringView text)
{
    double v = 0;
    scanNumber(text, &v);
    return v;
}

bool isNumber(QStringView text, double* value)
{
    double v = 0;
    const qsizetype used = scanNumber(text, &v);
    if (used == 0)
        return false;
    for (qsizetype i = used; i < text.size(); ++i) {
        if (!isBlank(text[i]))
            return false;
    }
    if (!std::isfinite(v))
        return false;
    if (value)
        *value = v;
    return true;
}

QString digits(double value)
{
    if (std::isnan(value))
        return QStringLiteral("0");
    if (value == 0)
        return QStringLiteral("0");
    QString text = QString::number(value, 'G', 15);
    // The old runtime writes .5 and -.5, without the zero before the point.
    if (text.startsWith(u"0."))
        text.remove(0, 1);
    else if (text.startsWith(u"-0."))
        text.remove(1, 1);
    return text;
}

QString str(double value)
{
    const QString d = digits(value);
    return d.startsWith(u'-') ? d : u' ' + d;
}

QString left(QStringView text, qsizetype count)
{
    if (count <= 0)
        return {};
    return text.left(count).toString();
}

QString mid(QStringView text, qsizetype start, qsizetype count)
{
    if (start < 1)
        start = 1;
    if (start > text.size() || count == 0)
        return {};
    const qsizetype from = start - 1;
    const qsizetype available = text.size() - from;
    if (count < 0 || count > available)
        count = available;
    return text.mid(from, count).toString();
}

QString right(QStringView text, qsizetype count)
{
    if (count <= 0)
        return {};
    return text.right(count).toString();
}

QString rightAlign4(QStringView text)
{
    return right(QStringLiteral("    ") + text.toString(), 4);
}

QString field4(double value)
{
    return rightAlign4(digits(value));
}

QString fitFixed(QStringView text, qsizetype length)
{
    QString fitted = text.left(length).toString();
    if (fitted.size() < length)
        fitted += QString(length - fitted.size(), u' ');
    return fitted;
}

} // namespace basic
