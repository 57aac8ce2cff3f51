// The classification of a race from its results lines and, when loaded, its entrants. In a
// time trial (an entrant with a start time, or a start order loaded) runners are ranked by
// riding time, the finish time less their start; otherwise by finish time. A bib recorded
// twice counts at its first finish. Finishes that cannot be ranked are kept apart: a runner
// of a time trial who finished before his start or has no start time, a bib that is 0 or not
// among the entrants, a repeat.
//
// The gaps follow the screen. Where no start is involved, the lines carry the difference a Lap
// wrote, the clock's to the thousandth cut to the format: a gap to the first line is that
// difference, and a gap to another leader is the runner's difference less the leader's. Lines
// whose differences do not fit their times (the bibs-and-times mode writes a difference that
// does not run) give their gaps from the times. In a time trial a gap is the riding time less
// the leader's. Either is cut, never rounded, when written.
//
// Published to the tenth or to the whole second, every ranking time is rounded up to it first
// (the road-running rule); runners are ranked on the rounded time, those with the same one
// share the place (the next place is skipped), and a gap is the difference of rounded times.
//
// The timekeeper's marks take a finisher out of the classification (did not finish,
// disqualified, out of time); the entrants not classified, with or without a finish, are
// listed apart, each with his status.
#pragma once

#include "results/core/entrants.h"
#include "results/core/runnerstatus.h"

#include <QList>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace classification
{

enum class Status { Ranked, BeforeStart, NoStart, Unidentified, Repeated };

// How times are published: as taken, to the tenth, or to the whole second, rounded up.
enum class Precision { AsTaken, Tenth, WholeSecond };

// A time as published: rounded up to the precision's unit.
qint64 published(qint64 ms, Precision precision);

struct Options {
    runnerstatus::Marks marks;
    Precision precision = Precision::AsTaken;
};

struct Row {
    int arrival = 0; // the finish's line in the results list, from 1
    int bib = 0;
    int entrant = -1;               // index among the entrants; -1 when none
    std::optional<qint64> finishMs; // on the race clock; none on a line without a time
    std::optional<qint64> startMs;  // a time trial's start
    std::optional<qint64> timeMs;   // what ranks: riding time in a time trial, else finish time
    Status status = Status::Ranked;
    int position = 0; // general position; 0 when not ranked
    std::optional<qint64> gapMs;
    int categoryPosition = 0;
    std::optional<qint64> categoryGapMs;
    runnerstatus::Kind kind = runnerstatus::Kind::Classified; // of the unclassified
};

struct Results {
    bool timeTrial = false;
    bool withEntrants = false;
    // Every finish once: the ranked in order, then the finishes before the runner's start, the
    // runners without a start time, the unidentified and the repeats, each in the order they
    // finished.
    QList<Row> rows;
    // The entrants not classified: a finisher the timekeeper took out, an entrant without a
    // finish (did not start unless marked otherwise). By category, in the order of
    // `categories` (none last), then by status (runnerstatus::listOrder), then by bib.
    QList<Row> unclassified;
    // The categories of the entrants, in the order they first appear in the file.
    QStringList categories;
};

// The time of a results line ("hh:mm:ss", "hh:mm:ss:cc" or "hh:mm:ss:mmm") in milliseconds.
std::optional<qint64> lineTimeMs(QStringView time);

Results classify(const QStringList& list1, const QList<entrants::Entrant>& entrants,
                 const QStringList& list2, const Options& options = {});

} // namespace classification
