#include "finishedit.h"

#include "base/basic.h"
#include "chrono/core/startat.h"
#include "results/core/resultline.h"

#include <algorithm>

namespace finishedit
{

QString difference(double hours, double firstHours, TimeFormat format, resultline::Target target)
{
    const QString text = timevalue::tempsexaMil(hours - firstHours);
    return resultline::cutDifference(basic::mid(text, 2, timevalue::differenceWidth(format)),
                                     format, target);
}

double hoursOf(const QString& time)
{
    // The forms the clock writes, hh:mm:ss with :cc or :mmm, read by position.
    const qsizetype n = time.size();
    const auto digitsAt = [&](qsizetype at, qsizetype count) {
        int v = 0;
        for (qsizetype i = at; i < at + count; ++i) {
            const char16_t c = time[i].unicode();
            if (c < u'0' || c > u'9')
                return -1;
            v = v * 10 + (c - u'0');
        }
        return v;
    };
    if ((n == 8 || n == 11 || n == 12) && time[2] == u':' && time[5] == u':' &&
        (n == 8 || time[8] == u':')) {
        const int h = digitsAt(0, 2);
        const int m = digitsAt(3, 2);
        const int s = digitsAt(6, 2);
        const int f = n == 8 ? 0 : digitsAt(9, n - 9);
        if (h >= 0 && m >= 0 && s >= 0 && f >= 0) {
            const double fraction = n == 11 ? f / 100.0 : f / 1000.0;
            return (h * 3600.0 + m * 60.0 + s + fraction) / timevalue::secondsPerHour;
        }
    }
    const std::optional<double> seconds = startat::parseTimeOfDay(time);
    return seconds ? *seconds / timevalue::secondsPerHour : timevalue::decimalMil(time);
}

FinishLines linesOf(int rank, QStringView bib, double hours, double firstHours, TimeFormat format,
                    const std::optional<QString>& standingDifference)
{
    using resultline::Target;
    const QString time = timevalue::tempsexaMil(hours);
    const QString r = basic::field4(rank);
    const auto diff = [&](Target target) {
        return standingDifference ? resultline::cutDifference(*standingDifference, format, target)
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
        const std::optional<QString> t = resultline::list1Time(l);
        return !t || hoursOf(*t) <= hours;
    });
    return static_cast<int>(later - list1.begin());
}

void recomputeDifferences(QStringList& combo1, QStringList& list1, TimeFormat format)
{
    using resultline::Target;
    if (list1.isEmpty())
        return;
    const std::optional<QString> first = resultline::list1Time(list1.first());
    if (!first)
        return;
    const double firstHours = hoursOf(*first);
    for (qsizetype i = 0; i < list1.size(); ++i) {
        QString& line = list1[i];
        const std::optional<QString> t = resultline::list1Time(line);
        if (!t)
            continue;
        // Both lines of a finish carry the same difference: worked out once.
        const QString d = difference(hoursOf(*t), firstHours, format, Target::List1);
        line = resultline::withList1Difference(line, d);
        if (i < combo1.size())
            combo1[i] = resultline::withCombo1Difference(
                combo1[i], resultline::cutDifference(d, format, Target::Combo1));
    }
}

void BibChecks::reset(const QStringList& list1, const std::optional<QSet<int>>& entered)
{
    enteredBibs = entered;
    linesOfBib.clear();
    bibs.clear();
    problems.clear();
    noBibLines = notEnteredLines = repeatedBibs = 0;
    bibs.reserve(list1.size());
    for (const QString& line : list1) {
        bibs << resultline::bibOf(line);
        linesOfBib[bibs.last()] << static_cast<int>(bibs.size() - 1);
    }
    problems.fill(NoProblem, bibs.size());
    for (int i = 0; i < bibs.size(); ++i)
        set(i, judge(bibs[i]));
    for (auto it = linesOfBib.cbegin(); it != linesOfBib.cend(); ++it)
        repeatedBibs += it.key() != 0 && it.value().size() > 1;
}

QList<int> BibChecks::append(const QString& list1Line)
{
    const double bib = resultline::bibOf(list1Line);
    const int index = static_cast<int>(bibs.size());
    bibs << bib;
    problems << NoProblem;
    QList<int>& same = linesOfBib[bib];
    same << index;
    set(index, judge(bib));
    if (same.size() == 2 && bib != 0) {
        // The first line with this bib is now repeated too.
        ++repeatedBibs;
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
    const double bib = resultline::bibOf(list1Line);
    if (old == bib)
        return {};
    QList<int>& before = linesOfBib[old];
    before.removeOne(index);
    if (old != 0 && before.size() == 1)
        --repeatedBibs;
    QList<int>& after = linesOfBib[bib];
    after.insert(std::lower_bound(after.begin(), after.end(), index), index);
    if (bib != 0 && after.size() == 2)
        ++repeatedBibs;
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
    noBibLines += ((problem & NoBib) != 0) - ((old & NoBib) != 0);
    notEnteredLines += ((problem & NotEntered) != 0) - ((old & NotEntered) != 0);
    problems[index] = problem;
}

} // namespace finishedit
