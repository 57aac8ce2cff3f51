// A series of races scored as one: each runner's results in the races, by category or overall,
// summed into a standing.
//
// With a points table a place earns its points (beyond the table, 0) and the higher total
// wins; a race a runner missed earns nothing. Without one the places are summed and the lower
// total wins; a missed race has no place to add, so only the runners with as many results as
// count are ranked, and the others come after them without a position: the most races first,
// then by their total.
//
// With bestOf, each runner's best bestOf results count and the others are shown as discarded.
// Equal totals are parted by the number of results counted, the more the better, then by the
// best single result; runners level on all three share the position.
//
// A runner is known across races by personKey of the name; a result without a name is passed
// over, and two runners of one race with the same key refuse the series. One whose category changed
// is ranked in the category of the latest race he ran (by date; on the same date, the later in the
// list), bringing the results of his earlier races with him.
#pragma once

#include "results/core/raceresults.h"
#include "results/core/resultsreport.h"

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace season
{

struct Entry {
    QString person; // personKey of the name; made from the name when empty
    QString name;
    QString categoria;
    QString sexo;
    int categoryPlace = 0; // 0 when not ranked in a category
    int place = 0;         // overall place; 0 when not ranked
};

struct RaceResult {
    QString name;
    QDate date;
    QStringList categoryTable; // the categories in use, the same in every race of a series
    QList<Entry> entries;
};

struct Rules {
    QList<int> points; // by place from the first, never increasing; empty: places summed
    int bestOf = 0;    // how many of a runner's results count; 0: all the races
    bool byCategory = true;
};

struct Standing {
    QString name;
    QString categoria;
    QList<std::optional<int>> perRace; // points, or the place, in each race; none when absent
    QList<bool> counted;               // whether each race's result counts
    int total = 0;
    int position = 0; // 0 for a runner not ranked (too few races with places summed)
    int races = 0;    // the races run
};

struct Series {
    QList<QString> categories;        // overall: one empty name
    QList<QList<Standing>> standings; // one list a category, in order
    QString refusal;                  // why the series cannot be scored; empty when it was
};

// The name as a key: lower case, accents dropped, runs of blanks made one.
QString personKey(const QString& fullName);

// A race's entries from its classification: the ranked runners who are entrants, each with his
// places; the race's categories are those of its entrants.
RaceResult fromResults(const raceresults::Computed& computed, const raceresults::Input& input);

// The races in the order given, which is the order of the columns.
Series compute(const QList<RaceResult>& races, const Rules& rules);

// For the printed and web pages: one table a category, a column a race headed by its short
// date, counted results plain and discarded ones in parentheses, and the total.
QList<resultsreport::Table> tables(const Series& series, const QList<RaceResult>& races);

// The spreadsheet: one row a runner, category by category.
QByteArray csv(const Series& series, const QList<RaceResult>& races);

} // namespace season
