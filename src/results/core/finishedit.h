// Editing the results after the fact: the lines of a finish added at a given time, where it
// goes, the differences worked out again when the first finisher changes, and the checks of
// the bibs. Lines keep the forms a Lap writes; resultline builds and reads them.
#pragma once

#include "chrono/core/timevalue.h"
#include "results/core/resultline.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace finishedit
{

// The two lines a Lap at `hours` writes as rank `rank`, with the bib typed as `bib` and the
// first finisher at `firstHours`. Where the clock's difference does not run (the bibs-and-times
// mode) the Lap writes the difference caption as it stands: `standingDifference`.
struct FinishLines {
    QString combo1;
    QString list1;
};
FinishLines linesOf(int rank, QStringView bib, double hours, double firstHours, TimeFormat format,
                    const std::optional<QString>& standingDifference = std::nullopt);

// The difference of a finish at `hours` to the first at `firstHours` as the clock's Label7
// shows it, cut as the line's target takes it.
QString difference(double hours, double firstHours, TimeFormat format, resultline::Target target);

// A line's time text in hours, its hundredths or thousandths included.
double hoursOf(const QString& time);

// The index a finish at `hours` takes: after every line whose time is not later.
int insertionIndex(const QStringList& list1, double hours);

// Every difference written again against the time of the first line, as the Laps would have
// written them with that finisher first. Lines without a time are left as they are.
void recomputeDifferences(QStringList& combo1, QStringList& list1, TimeFormat format);

// What is wrong with the bib of each List1 line, as flags, kept up to date line by line so
// that a finish costs the same with ten lines or ten thousand.
enum Problem { NoProblem = 0, NoBib = 1, Repeated = 2, NotEntered = 4 };
class BibChecks
{
public:
    // `entered`: the bibs of the start order or of the entrants; none when neither is loaded.
    void reset(const QStringList& list1, const std::optional<QSet<int>>& entered);
    // A line appended: the lines whose problems changed, the new one among them.
    QList<int> append(const QString& list1Line);
    // Line `index` rewritten (a bib corrected or assigned): the lines whose problems changed.
    QList<int> rewrite(int index, const QString& list1Line);
    int problem(int index) const { return problems.value(index); }
    // The lines without a bib and the lines whose bib is not entered.
    int noBib() const { return noBibLines; }
    int notEntered() const { return notEnteredLines; }
    // The bibs on more than one line: a bib on three lines is one.
    int repeated() const { return repeatedBibs; }

private:
    void set(int index, int problem);
    int judge(double bib) const;
    std::optional<QSet<int>> enteredBibs;
    QHash<double, QList<int>> linesOfBib;
    QList<double> bibs;
    QList<int> problems;
    int noBibLines = 0;
    int notEnteredLines = 0;
    int repeatedBibs = 0;
};

} // namespace finishedit
