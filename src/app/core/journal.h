// The finish journal MARVO.jrn. The state file is only rewritten at a few moments (Start, the
// first finish, a clear, the save button), so every change of the race record is also appended
// here the moment it happens: a killed program loses nothing, and a power cut at most the last
// half second. A journal opens with a full snapshot of the race; each later entry is one change
// of the race record's lines (a finish, a bib, a removal...) or a new snapshot (after Start,
// Stop, a clear, a format or mode change...). A normal end closes it with a clean mark.
#pragma once

#include "race.h"
#include "racestate.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

namespace journal
{

inline constexpr char fileName[] = "MARVO.jrn";
// A longer line is no entry the program writes (a snapshot of 10,000 finishers is about 1 MB).
inline constexpr qsizetype maxLineLength = 64 * 1024 * 1024;

QByteArray encodeSnapshot(const RaceRecord& record);
// A change of the lines or the captions. A Values change has no entry of its own: the journal
// takes a snapshot of the race for it.
QByteArray encodeChange(const RaceChange& change);
QByteArray encodeClean();

// What a journal holds. An entry cut off by a crash or a full disk, or damaged, is passed over
// and the reading goes on: a later snapshot or any later whole entry is still used. When no
// snapshot could be read before the first readable change, the changes are applied to `base`
// (the race of the state file) when one is given, and are passed over when none is; a finish
// the base already holds at its rank (the state file was saved after it) is not added again.
// When entries after the last snapshot read were passed over and the ranks of List1 or Combo1
// no longer run 1 to n (a finish was lost), they are numbered again as a removal leaves them,
// and the rank counter follows.
struct Contents {
    bool valid = false;  // it began with a snapshot, or its changes went onto the base
    bool onBase = false; // no snapshot came before its first change: the base took them
    bool clean = false;  // its last entry is the clean mark
    int changes = 0;     // entries after the first snapshot (or applied to the base)
    int skipped = 0;     // entries passed over: damaged, cut off, or with nothing to apply to
    RaceRecord record;   // the race as the last entry left it
};
Contents decode(QByteArrayView bytes, const std::optional<RaceRecord>& base = std::nullopt);
Contents read(const QString& path, const std::optional<RaceRecord>& base = std::nullopt);

} // namespace journal

// The open journal. Every append is handed to the system before it returns (a killed program
// loses nothing); a background thread makes the data durable within half a second.
class Journal
{
public:
    Journal();
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    // Starts a new journal at path with a snapshot of the race. Returns false when the file
    // cannot be written (error() says why); appends are then ignored.
    bool start(const QString& path, const RaceRecord& snapshot);
    bool append(const QByteArray& entry);
    // The clean mark of a normal end, made durable at once.
    void markClean();
    bool isOpen() const;
    QString error() const;

private:
    struct Writer;
    std::unique_ptr<Writer> writer;
};
