#include "resultline.h"

#include "base/basic.h"

#include <QStringBuilder>

#include <cmath>
#include <limits>

namespace resultline
{

namespace
{

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

int lineIndexOfRank(QStringView line)
{
    // A list index is a whole number: a fractional rank rounds half to even.
    const double index = std::nearbyint(basic::val(basic::left(line, 4)) - 1);
    if (!(index >= std::numeric_limits<int>::min() && index <= std::numeric_limits<int>::max()))
        return -1;
    return static_cast<int>(index);
}

QString bibOfStartLine(QStringView list2Line)
{
    return basic::digits(basic::val(basic::mid(list2Line, 6, 4)));
}

} // namespace resultline
