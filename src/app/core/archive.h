// Every race kept: before a race is cleared, emptied by a change of layout, format or mode, or
// replaced by a recovery, it is written whole, as a state file, into the folder MARVO-archivo
// beside MARVO.dat, one file per race named by the date and time it was kept. The program
// never deletes one.
#pragma once

#include "racestate.h"

#include <QDateTime>
#include <QList>
#include <QString>

namespace archive
{

inline constexpr char folderName[] = "MARVO-archivo";

// The archive beside a state file.
QString folderBeside(const QString& stateFile);

// Writes the race into the folder (made when missing) and returns the file's path; on failure
// an empty path and the reason in *error.
QString keep(const QString& folder, const RaceState& race, const QDateTime& when, QString* error);

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
};
// The kept races, newest first; a damaged file is listed as unreadable.
QList<Kept> list(const QString& folder);

} // namespace archive
