#include "race.h"

#include "results/core/finishedit.h"
#include "results/core/resultline.h"

RaceChange RaceChange::bib(int index, const QString& list1Line)
{
    RaceChange c = of(Kind::Bib);
    c.index = index;
    c.list1Line = list1Line;
    return c;
}

RaceChange RaceChange::remove(int index)
{
    RaceChange c = of(Kind::Remove);
    c.index = index;
    return c;
}

RaceChange RaceChange::insert(int index, const QString& combo1Line, const QString& list1Line)
{
    RaceChange c = of(Kind::Insert);
    c.index = index;
    c.combo1Line = combo1Line;
    c.list1Line = list1Line;
    return c;
}

RaceChange RaceChange::startOrder(const QStringList& lines)
{
    RaceChange c = of(Kind::StartOrder);
    c.lines = lines;
    return c;
}

RaceChange RaceChange::differences(int format)
{
    RaceChange c = of(Kind::Differences);
    c.index = format;
    return c;
}

RaceChange RaceChange::of(Kind kind)
{
    RaceChange c;
    c.kind = kind;
    return c;
}

namespace
{

// The lines from `from` on carry ranks one more (step 1) or one less (step -1).
void shiftRanks(QStringList& lines, qsizetype from, int step)
{
    for (qsizetype i = from; i < lines.size(); ++i) {
        QString& line = lines[i];
        line = resultline::withRank(line, resultline::rankOf(line) + step);
    }
}

} // namespace

bool applyChange(RaceLines& l, const RaceChange& c)
{
    using Kind = RaceChange::Kind;
    switch (c.kind) {
    case Kind::Finish:
        if (c.hasLines) {
            l.combo1 << c.combo1Line;
            l.list1 << c.list1Line;
        }
        return true;
    case Kind::Bib:
        if (c.index < 0 || c.index >= l.list1.size())
            return false;
        l.list1[c.index] = c.list1Line;
        return true;
    case Kind::Remove:
        if (c.index < 0 || c.index >= l.list1.size() || c.index >= l.combo1.size())
            return false;
        l.combo1.removeAt(c.index);
        l.list1.removeAt(c.index);
        shiftRanks(l.combo1, c.index, -1);
        shiftRanks(l.list1, c.index, -1);
        return true;
    case Kind::Insert:
        if (c.index < 0 || c.index > l.list1.size() || c.index > l.combo1.size())
            return false;
        l.combo1.insert(c.index, c.combo1Line);
        l.list1.insert(c.index, c.list1Line);
        shiftRanks(l.combo1, c.index + 1, 1);
        shiftRanks(l.list1, c.index + 1, 1);
        return true;
    case Kind::StartOrder:
        l.list2 << c.lines;
        return true;
    case Kind::StartOrderEmptied:
        l.list2.clear();
        return true;
    case Kind::ResultsEmptied:
        l.combo1.clear();
        l.list1.clear();
        return true;
    case Kind::Differences:
        if (c.index < 0 || c.index > 2)
            return false;
        finishedit::recomputeDifferences(l.combo1, l.list1, static_cast<TimeFormat>(c.index));
        return true;
    case Kind::Captions:
        return true;
    }
    return false;
}

bool Race::apply(const RaceChange& change)
{
    if (!applyChange(current, change))
        return false;
    emit changed(change);
    return true;
}

void Race::restore(const QStringList& combo1, const QStringList& list1, const QStringList& list2)
{
    current.combo1 = combo1;
    current.list1 = list1;
    current.list2 << list2;
    emit restored();
}
