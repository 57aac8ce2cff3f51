#include "race.h"

#include "base/basic.h"

#include "results/core/finishedit.h"
#include "results/core/resultline.h"

#include <utility>

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

bool RaceChange::changesLines() const
{
    return kind != Kind::Captions && kind != Kind::Values && kind != Kind::Mark &&
           (kind != Kind::Finish || hasLines);
}

RaceChange RaceChange::marked(int bib, const std::optional<runnerstatus::Mark>& mark)
{
    RaceChange c = of(Kind::Mark);
    c.index = bib;
    c.mark = mark;
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
    case Kind::Values:
        return true;
    case Kind::Mark:
        return c.index > 0;
    }
    return false;
}

bool applyChange(RaceRecord& r, const RaceChange& c)
{
    RaceState& s = r.state;
    RaceLines lines{std::move(s.combo1), std::move(s.list1), std::move(s.list2)};
    const bool applied = applyChange(lines, c);
    s.combo1 = std::move(lines.combo1);
    s.list1 = std::move(lines.list1);
    s.list2 = std::move(lines.list2);
    if (applied && (c.kind == RaceChange::Kind::Finish || c.kind == RaceChange::Kind::Captions)) {
        r.label2 = c.label2;
        s.tempsPrimer = c.tempsPrimer;
        r.label4 = c.label4;
        s.label5 = c.label5;
        s.label8 = c.label8;
    }
    if (applied && c.kind == RaceChange::Kind::Mark) {
        if (c.mark)
            r.marks.insert(c.index, *c.mark);
        else
            r.marks.remove(c.index);
    }
    return applied;
}

Race::Race()
{
    // The race of a window just opened: the clock at zero, no finisher, "Milesimas".
    current.state.horaSalida = basic::fitFixed(QString(), 5);
    current.label1 = QStringLiteral("00:00:00");
    current.label2 = QStringLiteral("0");
    current.label4 = QStringLiteral("00:00:00:000");
    current.state.label5 = QStringLiteral("00:00:00:000");
    current.state.label8 = QStringLiteral("0:00:00:000");
}

RaceRecord Race::snapshot() const
{
    RaceRecord r = current;
    if (running())
        r.label1.clear(); // the running clock is not a record
    return r;
}

RaceState Race::asTaken() const
{
    RaceState s = current.state;
    if (!s.list1.isEmpty() || !s.combo1.isEmpty())
        s.formato = linesFormato;
    return s;
}

bool Race::apply(const RaceChange& change)
{
    if (!applyChange(current, change))
        return false;
    using Kind = RaceChange::Kind;
    if (change.kind == Kind::Insert || change.kind == Kind::Differences ||
        (change.kind == Kind::Finish && change.hasLines) || (change.kind == Kind::ResultsEmptied))
        linesFormato = current.state.formato;
    emit changed(change);
    return true;
}

void Race::restore(const QStringList& combo1, const QStringList& list1, const QStringList& list2)
{
    current.state.combo1 = combo1;
    current.state.list1 = list1;
    current.state.list2 << list2;
    linesFormato = current.state.formato;
    emit restored();
}

template <typename T> void Race::setValue(T& field, const T& value)
{
    if (field == value)
        return;
    field = value;
    valuesChanged();
}

void Race::valuesChanged()
{
    if (batchDepth > 0) {
        valuesPending = true;
        return;
    }
    valuesPending = false;
    emit changed(RaceChange::of(RaceChange::Kind::Values));
}

void Race::setInicio(double v)
{
    setValue(current.state.inicio, v);
}

void Race::setDesfase(double v)
{
    setValue(current.state.desfase, v);
}

void Race::setHoraSalida(const QString& v)
{
    setValue(current.state.horaSalida, v);
}

void Race::setTempsPrimer(const QString& v)
{
    setValue(current.state.tempsPrimer, v);
}

void Race::setFormato(const Variant& v)
{
    setValue(current.state.formato, v);
}

void Race::setModoCaptura(const Variant& v)
{
    setValue(current.state.modoCaptura, v);
}

void Race::setClock(const QString& label1)
{
    setValue(current.label1, label1);
}

void Race::setRank(const QString& label2)
{
    setValue(current.label2, label2);
}

void Race::setFirst(const QString& label4)
{
    setValue(current.label4, label4);
}

void Race::setLast(const QString& label5)
{
    setValue(current.state.label5, label5);
}

void Race::setLastDifference(const QString& label8)
{
    setValue(current.state.label8, label8);
}

Race::Batch::Batch(Race& r) : race(r)
{
    ++race.batchDepth;
}

Race::Batch::~Batch()
{
    if (--race.batchDepth == 0 && race.valuesPending)
        race.valuesChanged();
}

Race::Replacement::Replacement(Race& r) : race(r)
{
    ++race.replacingDepth;
    ++race.batchDepth;
}

Race::Replacement::~Replacement()
{
    --race.batchDepth;
    --race.replacingDepth;
    // Announced even when no value differs: the lines changed whole.
    race.valuesPending = true;
    if (race.batchDepth == 0)
        race.valuesChanged();
}

void Race::setEntrants(const QList<entrants::Entrant>& list)
{
    inscritos = list;
    emit entrantsChanged();
}

void Race::restoreMarks(const runnerstatus::Marks& marks)
{
    current.marks = marks;
    emit entrantsChanged();
}

void Race::setName(const QString& name)
{
    if (nombre == name)
        return;
    nombre = name;
    emit entrantsChanged();
}
