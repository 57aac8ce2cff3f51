// The state file MARVO.dat: one value a line, CR LF, Windows-1252.
//
//  1 inicio x 1 000 000, truncated         6 caption of Label8 (discarded on reading)
//  2 desfase x 10^12, truncated            7 formato
//  3 horaSalida, 5 characters              8 modoCaptura (empty line while empty)
//  4 tempsPrimer                           9 N, then N pairs of Combo1 and List1 lines
//  5 caption of Label5 (discarded)           M, then the M lines of List2
//
// Numbers are written with a sign blank (or "-"), their shortest form and one trailing blank.
// Lines 4, 7, 8 and N are read as delimited fields (leading blanks skipped, cut at a comma,
// quotes removed); the other lines whole.
#pragma once

#include "racestate.h"

#include <QByteArray>
#include <QString>

namespace statefile
{

inline constexpr char fileName[] = "MARVO.dat";
inline constexpr char fallbackPath[] = "d:\\MARVO.dat";
// A line longer than this is cut there on reading (the rest of it is passed over): a damaged
// file of megabytes on one line costs neither the memory nor the time.
inline constexpr int maxLineLength = 64 * 1024;

QByteArray encode(const RaceState& state);

// What the reader restored. It never fails: a numeric line that is not a number is skipped
// (its value keeps its start-up value) and reading goes on; reading stops where the file
// ends, and every value after that keeps its start-up value. When the counts N and M disagree
// with the lines there (a damaged count), the lines are read as they stand: the pairs up to the
// line that reads as M (no results line is a number), the start order from there to the end.
struct Restored {
    RaceState state;
    int headerLines = 0;   // how many of lines 1-8 were read
    bool complete = false; // the file held every line its counts announce
    // The file did not read cleanly: a count disagreed with the lines, a line that should be a
    // number was not, or the file ends before its last value. Worth keeping as it is before it
    // is written over.
    bool damaged = false;
};
Restored decode(QByteArrayView bytes);
Restored read(const QString& path);

// Of the state file beside the race and the fallback one, the newer: the path of the fallback
// when it exists and was written later (or is the only one), otherwise the primary's.
QString newerOf(const QString& primary, const QString& fallback);

// The number form of the file, without its line end: " 43200500000 ".
QString numberLine(double value);

enum class SaveOutcome { Primary, Fallback, Failed };
struct SaveResult {
    SaveOutcome outcome = SaveOutcome::Failed;
    QString primaryError;  // why the primary file could not be written
    QString fallbackError; // why the fallback could not be written either
};

// Writes the whole file atomically: a save that fails half-way leaves the previous complete
// file. When the primary cannot be written, the whole state goes to the fallback.
SaveResult save(const RaceState& state, const QString& primary, const QString& fallback);

} // namespace statefile
