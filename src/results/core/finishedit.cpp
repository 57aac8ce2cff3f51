#include "finishedit.h"

#include "base/basic.h"
#include "chrono/core/startat.h"
#include "results/core/resultline.h"

#include <algorithm>

namespace finishedit
{

namespace
{

constexpr qsizetype list1TimeAt = 11; // after "RRRR-BBBB- "
constexpr qsizetype combo1TimeAt = 6; // after "RRRR- "
const QString separator = QStringLiteral(" - ");

std::optional<QString> timeAt(QStringView line, qsizetype at)
{
    const qsizetype end = line.indexOf(separator, at);
    if (end < at)
        return std::nullopt;
    return line.sliced(at, end - at).toString();
}

// The difference as the clock's Label7 shows it, cut as the line's target takes it.
QString difference(double hours, double firstHours, TimeFormat format, resultline::Target target)
{
    const QString text = timevalue::tempsexaMil(hours - firstHours);
    return resultline::cutDifference(basic::mid(text, 2, timevalue::differenceWidth(format)),
                                     format, target);
}

} // namespace

double hoursOf(const QString& time)
{
    const std::optional<double> seconds = startat::parseTimeOfDay(time);
    return seconds ? *seconds / timevalue::secondsPerHour : timevalue::decimalMil(time);
}

double bibOf(QStringView list1Line)
{
    return basic::val(basic::mid(list1Line, 6, 4));
}

std::optional<QString> list1Time(QStringView line)
{
    return timeAt(line, list1TimeAt);
}

std::optional<QString> combo1Time(QStringView line)
{
    return timeAt(line, combo1TimeAt);
}

FinishLines linesOf(int rank, QStringView bib, double hours, double firstHours, TimeFormat format,
                    const std::optional<QString>& standingDifference)
{
    using resultline::Target;
    const QString time = timevalue::tempsexaMil(hours);
    const QString r = basic::field4(rank);
    const auto diff = [&](Target target) {
        return standingDifference
                   ? resultline::cutDifference(*standingDifference, format, target)
                   : difference(hours, firstHours, format, target);
    };
    return {resultline::comboLine(r, resultline::cutTime(time, format, Target::Combo1),
                                  diff(Target::Combo1)),
            resultline::fullLine(r, resultline::bibField(bib),
                                 resultline::cutTime(time, format, Target::List1),
                                 diff(Target::List1))};
}

int insertionIndex(const QStringList& list1, double hours)
{
    // The lines are in time order: the first one later than the new time.
    const auto later = std::partition_point(list1.begin(), list1.end(), [&](const QString& l) {
        const std::optional<QString> t = list1Time(l);
        return !t || hoursOf(*t) <= hours;
    });
    return static_cast<int>(later - list1.begin());
}

void recomputeDifferences(QStringList& combo1, QStringList& list1, TimeFormat format)
{
    using resultline::Target;
    if (list1.isEmpty())
        return;
    const std::optional<QString> first = list1Time(list1.first());
    if (!first)
        return;
    const double firstHours = hoursOf(*first);
    for (QString& line : list1) {
        if (const std::optional<QString> t = list1Time(line))
            line = line.left(list1TimeAt) + *t + separator +
                   difference(hoursOf(*t), firstHours, format, Target::List1);
    }
    for (QString& line : combo1) {
        if (const std::optional<QString> t = combo1Time(line))
            line = line.left(combo1TimeAt) + *t + separator +
                   difference(hoursOf(*t), firstHours, format, Target::Combo1);
    }
}

void BibChecks::reset(const QStringList& list1, const std::optional<QSet<int>>& entered)
{
    enteredBibs = entered;
    linesOfBib.clear();
    bibs.clear();
    problems.clear();
    std::fill(std::begin(counts), std::end(counts), 0);
    bibs.reserve(list1.size());
    for (const QString& line : list1) {
        bibs << bibOf(line);
        linesOfBib[bibs.last()] << static_cast<int>(bibs.size() - 1);
    }
    problems.fill(NoProblem, bibs.size());
    for (int i = 0; i < bibs.size(); ++i)
        set(i, judge(bibs[i]));
}

QList<int> BibChecks::append(const QString& list1Line)
{
    const double bib = bibOf(list1Line);
    const int index = static_cast<int>(bibs.size());
    bibs << bib;
    problems << NoProblem;
    QList<int>& same = linesOfBib[bib];
    same << index;
    set(index, judge(bib));
    if (same.size() == 2 && bib != 0) {
        // The first line with this bib is now repeated too.
        set(same.first(), judge(bib));
        return {same.first(), index};
    }
    return {index};
}

QList<int> BibChecks::rewrite(int index, const QString& list1Line)
{
    if (index < 0 || index >= bibs.size())
        return {};
    const double old = bibs[index];
    const double bib = bibOf(list1Line);
    if (old == bib)
        return {};
    QList<int>& before = linesOfBib[old];
    before.removeOne(index);
    QList<int>& after = linesOfBib[bib];
    after.insert(std::lower_bound(after.begin(), after.end(), index), index);
    bibs[index] = bib;
    // The lines that shared either bib may have stopped or started being repeated.
    QList<int> changed = linesOfBib.value(old) + linesOfBib.value(bib);
    for (const int i : std::as_const(changed))
        set(i, judge(bibs[i]));
    if (linesOfBib.value(old).isEmpty())
        linesOfBib.remove(old);
    return changed;
}

int BibChecks::judge(double bib) const
{
    if (bib == 0)
        return NoBib;
    int p = NoProblem;
    if (linesOfBib.value(bib).size() > 1)
        p |= Repeated;
    if (enteredBibs && !enteredBibs->contains(static_cast<int>(bib)))
        p |= NotEntered;
    return p;
}

void BibChecks::set(int index, int problem)
{
    const int old = problems[index];
    for (int bit = 0; bit < 3; ++bit)
        counts[bit] += ((problem >> bit) & 1) - ((old >> bit) & 1);
    problems[index] = problem;
}

QSet<int> bibsOfStartOrder(const QStringList& list2)
{
    QSet<int> bibs;
    for (const QString& line : list2)
        bibs.insert(static_cast<int>(basic::val(basic::mid(line, 6, 4))));
    return bibs;
}

} // namespace finishedit
