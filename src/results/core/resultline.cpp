#include "resultline.h"

#include "base/basic.h"

#include <QStringBuilder>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace resultline
{

namespace
{

// The fields: where they start (counted from 0) and how wide they are.
constexpr qsizetype rankWidth = 4;
constexpr qsizetype bibAt = 5;
constexpr qsizetype bibWidth = 4;
constexpr qsizetype list1TimeAt = 11;   // after "RRRR-BBBB- "
constexpr qsizetype combo1TimeAt = 6;   // after "RRRR- "
constexpr qsizetype startTimeAt = 12;   // after "NNNN-BBBB - "
constexpr qsizetype startTimeWidth = 7; // the start time's last 7 characters
constexpr QStringView separator = u" - ";

// A field of blanks then digits (most of them) read at once, without Val's scan; none for
// anything else or a field the line is too short to hold.
std::optional<int> plainField(QStringView line, qsizetype at, qsizetype width)
{
    if (line.size() < at + width)
        return std::nullopt;
    int v = 0;
    bool digits = false;
    for (qsizetype i = at; i < at + width; ++i) {
        const char16_t c = line[i].unicode();
        if (c >= u'0' && c <= u'9') {
            v = v * 10 + (c - u'0');
            digits = true;
        } else if (c != u' ' || digits) {
            return std::nullopt;
        }
    }
    return v;
}

// A Val reading made whole, cut toward zero; 0 when it lies beyond int.
int truncated(double value)
{
    constexpr double below = std::numeric_limits<int>::min() - 1.0;
    constexpr double above = std::numeric_limits<int>::max() + 1.0;
    if (!(value > below && value < above))
        return 0;
    return static_cast<int>(value);
}

// Where the " - " after the time that starts at `at` begins; -1 when none follows.
qsizetype timeEnd(QStringView line, qsizetype at)
{
    const qsizetype end = line.indexOf(separator, at);
    return end < at ? -1 : end;
}

std::optional<QString> timeAt(QStringView line, qsizetype at)
{
    const qsizetype end = timeEnd(line, at);
    if (end < 0)
        return std::nullopt;
    return line.sliced(at, end - at).toString();
}

std::optional<QString> differenceAfter(QStringView line, qsizetype at)
{
    const qsizetype end = timeEnd(line, at);
    if (end < 0)
        return std::nullopt;
    return line.sliced(end + separator.size()).toString();
}

QString withDifferenceAfter(QStringView line, qsizetype at, QStringView difference)
{
    const qsizetype end = timeEnd(line, at);
    if (end < 0)
        return line.toString();
    return line.first(end + separator.size()) % difference;
}

QString cut(QStringView text, int width, TimeFormat format, Target target)
{
    if (format == TimeFormat::Milesimas && target == Target::List1)
        return text.toString();
    return basic::left(text, width);
}

} // namespace

QString rankField(QStringView label2Caption)
{
    return basic::field4(basic::val(label2Caption));
}

QString bibField(QStringView text1)
{
    return basic::field4(basic::val(text1));
}

QString cutTime(QStringView time, TimeFormat format, Target target)
{
    return cut(time, timevalue::timeWidth(format), format, target);
}

QString cutDifference(QStringView difference, TimeFormat format, Target target)
{
    return cut(difference, timevalue::differenceWidth(format), format, target);
}

QString fullLine(QStringView rank, QStringView bib, QStringView time, QStringView difference)
{
    return rank % u'-' % bib % u"- " % time % u" - " % difference;
}

QString comboLine(QStringView rank, QStringView time, QStringView difference)
{
    return rank % u"- " % time % u" - " % difference;
}

QString bibLine(QStringView rank, QStringView bib)
{
    return rank % u'-' % bib;
}

std::optional<QString> rewriteBib(QStringView line, QStringView typedBib)
{
    if (line.size() < 9)
        return std::nullopt;
    return basic::left(line, 5) + basic::rightAlign4(typedBib) + basic::mid(line, 10);
}

int rankOf(QStringView line)
{
    if (const std::optional<int> rank = plainField(line, 0, rankWidth))
        return *rank;
    return truncated(basic::val(basic::left(line, rankWidth)));
}

QString rankText(QStringView line)
{
    return basic::left(line, rankWidth).trimmed();
}

QString withRank(QStringView line, int rank)
{
    // Written as field4 would write a whole rank, with integer formatting: renumbering ten
    // thousand lines stays cheap.
    char digits[16];
    const qsizetype length = std::to_chars(digits, std::end(digits), rank).ptr - digits;
    const qsizetype kept = std::min(length, rankWidth);
    QString result;
    result.reserve(rankWidth + std::max<qsizetype>(line.size() - rankWidth, 0));
    result.fill(u' ', rankWidth - kept);
    for (qsizetype i = length - kept; i < length; ++i)
        result += QLatin1Char(digits[i]);
    if (line.size() > rankWidth)
        result += line.sliced(rankWidth);
    return result;
}

int lineIndexOfRank(QStringView line)
{
    // A list index is a whole number: a fractional rank rounds half to even.
    const double index = std::nearbyint(basic::val(basic::left(line, rankWidth)) - 1);
    if (!(index >= std::numeric_limits<int>::min() && index <= std::numeric_limits<int>::max()))
        return -1;
    return static_cast<int>(index);
}

double bibOf(QStringView list1Line)
{
    if (const std::optional<int> bib = plainField(list1Line, bibAt, bibWidth))
        return *bib;
    return basic::val(bibText(list1Line));
}

QString bibText(QStringView list1Line)
{
    return basic::mid(list1Line, bibAt + 1, bibWidth);
}

std::optional<QString> list1Time(QStringView line)
{
    return timeAt(line, list1TimeAt);
}

std::optional<QString> combo1Time(QStringView line)
{
    return timeAt(line, combo1TimeAt);
}

std::optional<QString> list1Difference(QStringView line)
{
    return differenceAfter(line, list1TimeAt);
}

std::optional<QString> combo1Difference(QStringView line)
{
    return differenceAfter(line, combo1TimeAt);
}

QString list1TimeText(QStringView line, qsizetype width)
{
    return basic::mid(line, list1TimeAt + 1, width);
}

QString combo1TimeText(QStringView line, qsizetype width)
{
    return basic::mid(line, combo1TimeAt + 1, width);
}

QString withList1Difference(QStringView line, QStringView difference)
{
    return withDifferenceAfter(line, list1TimeAt, difference);
}

QString withCombo1Difference(QStringView line, QStringView difference)
{
    return withDifferenceAfter(line, combo1TimeAt, difference);
}

QString startLine(qint64 recordNumber, qint16 bib, QStringView startTime)
{
    return basic::field4(static_cast<double>(recordNumber)) % u'-' % basic::field4(bib) %
           separator % basic::right(startTime, startTimeWidth);
}

int startBibOf(QStringView list2Line)
{
    return truncated(bibOf(list2Line));
}

QString bibOfStartLine(QStringView list2Line)
{
    return basic::digits(bibOf(list2Line));
}

QString startTimeText(QStringView list2Line)
{
    return basic::right(list2Line, startTimeWidth);
}

QStringView startTimeField(QStringView list2Line)
{
    return list2Line.sliced(std::min(startTimeAt, list2Line.size()));
}

QSet<int> startBibs(const QStringList& list2)
{
    QSet<int> bibs;
    for (const QString& line : list2)
        bibs.insert(startBibOf(line));
    return bibs;
}

} // namespace resultline
