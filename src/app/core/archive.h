// Every race kept: before a race is cleared, emptied by a change of layout, format or mode, or
// replaced by a recovery, it is written whole, as a state file, into the folder MARVO-archivo
// beside MARVO.dat, one file per race named by the date and time it was kept. The program
// never deletes one.
#pragma once

#include "racestate.h"
#include "results/core/categories.h"
#include "results/core/raceresults.h"
#include "results/core/runnerstatus.h"

#include <QDateTime>
#include <QList>
#include <QString>

namespace archive
{

inline constexpr char folderName[] = "MARVO-archivo";

// The archive beside a state file.
QString folderBeside(const QString& stateFile);

// What a kept race carries besides its lines, for its results: the race name, the entrants'
// file as it was loaded and the timekeeper's statuses. Each goes in a file of its own beside the
// kept state file, named after it ("MARVO-20260510-113000.inscritos.csv"); a race without them
// keeps the state file alone.
struct Details {
    QString name;
    QByteArray entrantsFile;
    runnerstatus::Marks marks;
    bool operator==(const Details&) const = default;
};

// The file beside a kept state file that holds one of its details: `suffix` is ".carrera.txt",
// ".inscritos.csv" or ".situaciones.txt".
QString detailPath(const QString& keptPath, const char* suffix);
inline constexpr char nameSuffix[] = ".carrera.txt";
inline constexpr char entrantsSuffix[] = ".inscritos.csv";
inline constexpr char marksSuffix[] = ".situaciones.txt";

// Writes the race into the folder (made when missing) and returns the file's path; on failure
// an empty path and the reason in *error. Its details are written after it; one that cannot
// be written is told in *error, the race being kept all the same.
QString keep(const QString& folder, const RaceState& race, const QDateTime& when, QString* error,
             const Details& details = {});

// The same for a state file kept as it stands, byte for byte (a damaged one, before a save
// writes over it).
QString keepFile(const QString& folder, const QByteArray& bytes, const QDateTime& when,
                 QString* error);

// What the list of kept races shows of each.
struct Kept {
    QString path;
    QDateTime when;
    bool readable = false; // a whole state file that read cleanly
    RaceState race;
    Details details;
};
// The kept races, newest first; a damaged file is listed as unreadable.
QList<Kept> list(const QString& folder);

// What the results of a kept race are computed from: its lines, its entrants with the
// categories of `table` given to those without one (ages on the day it was kept), its
// statuses, its name and that day.
raceresults::Input resultsInput(const Kept& kept, const categories::Table& table);

} // namespace archive
