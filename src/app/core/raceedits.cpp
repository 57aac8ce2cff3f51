#include "raceedits.h"

#include "base/basic.h"
#include "chrono/core/timevalue.h"
#include "results/core/finishedit.h"
#include "results/core/resultline.h"

namespace raceedits
{

namespace
{

using resultline::Target;

// The ends of the results after an edit: what the captions are read from.
struct Ends {
    qsizetype size = 0;
    QString firstList1;
    QString lastList1;
    QString lastCombo1;
};

// `recomputed`: the differences are written again against the first finisher with the edit.
RaceChange captions(const RaceRecord& race, const Ends& after, const Context& context,
                    bool firstMayChange, bool recomputed)
{
    RaceChange c = RaceChange::of(RaceChange::Kind::Captions);
    c.label2 = basic::digits(double(after.size));
    c.tempsPrimer = race.state.tempsPrimer;
    c.label4 = race.label4;
    c.label5 = race.state.label5;
    c.label8 = race.state.label8;
    if (context.format < 0)
        return c;
    const auto f = static_cast<TimeFormat>(context.format);
    if (after.size == 0) {
        c.tempsPrimer = timevalue::clockTemplate(f);
        c.label4 = timevalue::clockTemplate(f);
        c.label5 = timevalue::shortTemplate(f);
        c.label8 = timevalue::shortTemplate(f);
        return c;
    }
    const std::optional<QString> first = resultline::list1Time(after.firstList1);
    const std::optional<QString> last = resultline::list1Time(after.lastList1);
    if (!first || !last)
        return c;
    const bool timesOnLabels = context.differenceRuns;
    if (firstMayChange) {
        c.tempsPrimer = timevalue::tempsexaMil(finishedit::hoursOf(*first));
        if (timesOnLabels)
            c.label4 = resultline::cutTime(*first, f, Target::List1);
    }
    if (timesOnLabels)
        c.label5 = resultline::cutTime(*last, f, Target::List1);
    // The last difference as the lines will carry it: written again against a new first
    // finisher, or as it stands.
    if (recomputed && resultline::combo1Time(after.lastCombo1))
        c.label8 = resultline::cutDifference(finishedit::difference(finishedit::hoursOf(*last),
                                                                    finishedit::hoursOf(*first), f,
                                                                    Target::List1),
                                             f, Target::Combo1);
    else if (const std::optional<QString> d = resultline::combo1Difference(after.lastCombo1))
        c.label8 = *d;
    return c;
}

// The changes of a removal or an addition, followed by the differences when the first
// finisher may have changed, and by the captions.
QList<RaceChange> settled(RaceChange change, const RaceChange& captionsAfter,
                          const Context& context, bool firstMayChange, qsizetype sizeAfter)
{
    QList<RaceChange> out{std::move(change)};
    if (firstMayChange && context.format >= 0 && sizeAfter > 0)
        out << RaceChange::differences(context.format);
    out << captionsAfter;
    return out;
}

Ends endsOf(const RaceState& s)
{
    return {s.list1.size(), s.list1.value(0), s.list1.value(s.list1.size() - 1),
            s.combo1.value(s.combo1.size() - 1)};
}

} // namespace

std::optional<RaceCommand> removal(const RaceRecord& race, int row, const Context& context)
{
    const RaceState& s = race.state;
    if (row < 0 || row >= s.list1.size() || row >= s.combo1.size())
        return std::nullopt;
    const bool firstMayChange = row == 0 && context.differenceRuns;
    const qsizetype n = s.list1.size();
    const auto list1At = [&](qsizetype i) { return s.list1.value(i < row ? i : i + 1); };
    const auto combo1At = [&](qsizetype i) { return s.combo1.value(i < row ? i : i + 1); };
    const Ends after{n - 1, list1At(0), list1At(n - 2), combo1At(n - 2)};
    RaceCommand command;
    command.text = QStringLiteral("Borrar llegada");
    command.saves = true;
    command.redo = settled(RaceChange::remove(row),
                           captions(race, after, context, firstMayChange, firstMayChange), context,
                           firstMayChange, after.size);
    command.undo = settled(RaceChange::insert(row, s.combo1[row], s.list1[row]),
                           captions(race, endsOf(s), context, firstMayChange, firstMayChange),
                           context, firstMayChange, n);
    return command;
}

RaceCommand addition(const RaceRecord& race, double hours, const QString& bib,
                     const Context& context, const QString& standingDifference)
{
    const RaceState& s = race.state;
    const int at = finishedit::insertionIndex(s.list1, hours);
    const std::optional<QString> first =
        s.list1.isEmpty() ? std::nullopt : resultline::list1Time(s.list1.first());
    const double firstHours = at == 0 || !first ? hours : finishedit::hoursOf(*first);
    const finishedit::FinishLines lines = finishedit::linesOf(
        at + 1, bib, hours, firstHours, static_cast<TimeFormat>(context.format),
        context.differenceRuns ? std::nullopt : std::optional<QString>(standingDifference));
    const bool firstMayChange = at == 0 && context.differenceRuns;
    const qsizetype n = s.list1.size();
    const auto list1At = [&](qsizetype i) {
        return i < at ? s.list1.value(i) : i == at ? lines.list1 : s.list1.value(i - 1);
    };
    const auto combo1At = [&](qsizetype i) {
        return i < at ? s.combo1.value(i) : i == at ? lines.combo1 : s.combo1.value(i - 1);
    };
    const Ends after{n + 1, list1At(0), list1At(n), combo1At(n)};
    RaceCommand command;
    command.text = QStringLiteral("Añadir llegada");
    command.saves = true;
    command.redo = settled(RaceChange::insert(at, lines.combo1, lines.list1),
                           captions(race, after, context, firstMayChange, firstMayChange), context,
                           firstMayChange, after.size);
    command.undo = settled(RaceChange::remove(at),
                           captions(race, endsOf(s), context, firstMayChange, firstMayChange),
                           context, firstMayChange, n);
    return command;
}

std::optional<RaceCommand> bibCorrection(const RaceRecord& race, int index, const QString& line)
{
    if (index < 0 || index >= race.state.list1.size())
        return std::nullopt;
    return RaceCommand{{RaceChange::bib(index, line)},
                       {RaceChange::bib(index, race.state.list1[index])},
                       QStringLiteral("Corregir el dorsal"),
                       false};
}

std::optional<RaceCommand> bibAssignment(const RaceRecord& race, int index, const QString& typedBib)
{
    if (index < 0 || index >= race.state.list1.size())
        return std::nullopt;
    // The line is rewritten as a correction in the list rewrites it.
    const std::optional<QString> line = resultline::rewriteBib(race.state.list1[index], typedBib);
    if (!line)
        return std::nullopt;
    std::optional<RaceCommand> command = bibCorrection(race, index, *line);
    command->text = QStringLiteral("Asignar dorsal");
    return command;
}

RaceChange relabelled(const RaceRecord& race, const Context& context)
{
    return captions(race, endsOf(race.state), context, true, false);
}

std::optional<RaceCommand> marking(const RaceRecord& race, int bib,
                                   const std::optional<runnerstatus::Mark>& mark)
{
    const auto it = race.marks.constFind(bib);
    const std::optional<runnerstatus::Mark> before =
        it == race.marks.cend() ? std::nullopt : std::optional(*it);
    if (bib <= 0 || bib > entrants::maxBib || before == mark)
        return std::nullopt;
    RaceCommand c;
    c.redo << RaceChange::marked(bib, mark);
    c.undo << RaceChange::marked(bib, before);
    c.text = QStringLiteral("situación del dorsal %1").arg(bib);
    return c;
}

} // namespace raceedits
