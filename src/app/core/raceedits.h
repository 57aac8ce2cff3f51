// Editing the results after the fact, as data: removing, adding, assigning and correcting a
// finish each give the changes that make the edit and the changes that take it back, the
// differences and the captions a Lap would have left included. Nothing here changes the race.
#pragma once

#include "app/core/race.h"

#include <QList>
#include <QString>

#include <optional>

// An edit the operator can take back.
struct RaceCommand {
    QList<RaceChange> redo;
    QList<RaceChange> undo;
    QString text;       // what the undo entry names
    bool saves = false; // the state file is written after it, either way
};

namespace raceedits
{

// What an edit needs to know besides the race: the checked time format (-1 when none) and
// whether the clock's difference runs (every mode but bibs and times).
struct Context {
    int format = -1;
    bool differenceRuns = true;
};

// Line `row` removed, the later ranks one up. None when there is no such line.
std::optional<RaceCommand> removal(const RaceRecord& race, int row, const Context& context);

// A missed finish put where its time goes, as a Lap at `hours` with the bib typed as `bib`
// would have written it. Where the difference stands still, the lines take `standingDifference`.
RaceCommand addition(const RaceRecord& race, double hours, const QString& bib,
                     const Context& context, const QString& standingDifference);

// The bib of line `index` made `typedBib` (the next finish without a bib, Ctrl+D), or line
// `index` made `line` (a correction in the list). None when there is no such line.
std::optional<RaceCommand> bibAssignment(const RaceRecord& race, int index,
                                         const QString& typedBib);
std::optional<RaceCommand> bibCorrection(const RaceRecord& race, int index, const QString& line);

// The captions a Lap leaves, read from the lines as they stand, the first finisher's time
// included: for a race that comes back whole.
RaceChange relabelled(const RaceRecord& race, const Context& context);

// The status of `bib` set to `mark`, or cleared (classified when he finished); undone, the mark
// it had. None when the bib is not a bib or the mark is already the bib's.
std::optional<RaceCommand> marking(const RaceRecord& race, int bib,
                                   const std::optional<runnerstatus::Mark>& mark);

} // namespace raceedits
