// A race being timed, with no window: the race model, the running clock, the state file, the
// journal, the archive of kept races, the edits that can be taken back and the bib checks. The
// window drives one, and so can any other front end (a web page, another station, a test):
// every change of the race is announced by race().changed, whoever made it.
#pragma once

#include "app/core/archive.h"
#include "app/core/journalkeeper.h"
#include "app/core/race.h"
#include "app/core/raceedits.h"
#include "app/core/statefile.h"
#include "chrono/core/clock.h"
#include "results/core/finishedit.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

class RaceSession : public QObject
{
    Q_OBJECT

public:
    // `folder` holds MARVO.dat (empty: the current folder).
    RaceSession(const Clock& clock, const QString& folder = QString());

    Race& race() { return model; }
    const Race& race() const { return model; }
    const QString& folder() const { return carpeta; }

    // --- The state file ---
    // The race as MARVO.dat keeps it.
    RaceState state() const { return model.state(); }
    // The race to start from: the one recovered from the journal, or else the newer of
    // MARVO.dat and the fallback state file (a save goes to the fallback when the race folder
    // takes none). The other one, when it holds another race, is kept in the archive first: a
    // save never overwrites a race that was not read.
    statefile::Restored readSaved();
    // Writes MARVO.dat (or the fallback); false, with a notice, when neither could be written.
    bool save();
    // Where the last save of the race went, or where it will go.
    QString stateFile() const;
    // The state file holds the race as it stands.
    bool saved() const;

    // --- The journal ---
    JournalKeeper& journal() { return keeper; }
    // The race an abnormal end left in the journal, made the race the state file holds (the
    // race of the state file kept first): the start-up reads it from recovered().
    void recover(const JournalKeeper::Unfinished& found);
    // Not recovered: the race it holds is kept with the others and the journal set aside.
    void setAside(const JournalKeeper::Unfinished& found);
    const std::optional<RaceRecord>& recovered() const { return recoveredRace; }
    // The captions the state file does not carry, from the recovered race; then the journal.
    void startJournal();
    // A normal end: the state file written and the journal closed with its clean mark.
    void end();

    // --- The archive of kept races ---
    QString archiveFolder() const;
    // Keeps the race in the archive; false, with a notice, when it could not be kept.
    bool keep(const RaceState& race);
    // The race as its results were taken.
    bool keepCurrent() { return keep(model.asTaken()); }
    // What the race carries besides its lines, as a kept race keeps it.
    archive::Details details() const;
    // A kept race's details made the current race's: its files written beside the state file,
    // its statuses set (within the race's replacement, one journal entry with it).
    void adopt(const archive::Details& details);

    // --- The clock ---
    // The race clock anchored to now, as started at inicio.
    void anchorRun();
    // Starts the clock from `startTimer` (seconds since midnight), the moment of the time of day
    // `startTime`; the run resumes from the stopped clock's whole seconds.
    void start(double startTimer, const QTime& startTime);
    // Stops the clock at its last reading.
    void stop();
    // A running race started again after the wall clock was set back: the race clock would
    // read earlier than its last finish, or more than 12 hours on (a start saved later than
    // now). What it would read, and the last finish's time, in hours; none when it reads right.
    struct ClockSetBack {
        double reads = 0;
        double lastFinish = 0;
    };
    std::optional<ClockSetBack> clockSetBack() const;
    // The running clock moved to read `hours` now, as if started that much earlier.
    void resumeAt(double hours);
    // Reads the running clock: tempsActual, and the difference to the first finisher.
    void readClock();
    double hours() const { return runningHours; }
    // The latest race time a finish can have, in hours: the running clock now, or the stopped
    // clock's second.
    double latestHours() const;
    const QString& tempsActual() const { return lastReading; }
    // The clock as the window shows it: the last reading while it runs.
    QString clockCaption() const;
    // The running difference to the first finisher (Label7). A finish in the bibs-and-times
    // mode writes it as it stands.
    const QString& difference() const { return label7; }
    void setDifference(const QString& caption);

    // --- Finishes ---
    // What a Lap asks besides the race: the checked time format (-1 when none) and whether only
    // bibs are taken. The window answers from its menu; without an answer, from the race.
    struct LapOptions {
        int format = -1;
        bool bibsOnly = false;
    };
    void setLapOptions(std::function<LapOptions()> options);
    LapOptions lapOptions() const;
    // A finish now (a fresh reading when the clock runs), with the bib typed as `bib`. Returns
    // its rank.
    int recordFinish(const QString& bib);
    // A finish at a race time taken elsewhere, in hours: put where its time goes.
    bool recordFinishAt(double hours, const QString& bib);

    // --- Edits the operator can take back ---
    bool perform(const std::optional<RaceCommand>& command);
    // The status of a bib set, or cleared when none: undoable, journaled, and kept beside the
    // state file. False when nothing changed.
    bool setMark(int bib, const std::optional<runnerstatus::Mark>& mark);
    // Every mark cleared, as when the entrants are forgotten.
    void clearMarks();
    bool undo();
    bool canUndo() const { return !history.isEmpty(); }
    QString undoText() const { return history.isEmpty() ? QString() : history.last().text; }
    raceedits::Context editContext() const;
    // The next finish without a bib, -1 when none.
    int nextWithoutBib() const;
    const finishedit::BibChecks& bibChecks() const { return checks; }
    // The bib checks taken again over every line.
    void recheckBibs();
    // What the last change of the race did to the bib checks: the rows whose problems
    // changed, or every row.
    const QList<int>& rowsChecked() const { return checkedRows; }
    bool allChecked() const { return checkedAll; }

signals:
    // A failure the operator must know of; the race goes on.
    void notice(const QString& text);
    void undoChanged();
    void differenceChanged(const QString& caption);

private:
    void follow(const RaceChange& change);
    bool save(const RaceState& state);
    void saveMarks();
    void loadMarks();
    // Keeps the race unless it is the newest kept one already.
    void keepOnce(const RaceState& race);

    const Clock& clock;
    QString carpeta;
    Race model;
    JournalKeeper keeper;
    QString stateFileInUse;
    std::optional<RaceRecord> recoveredRace;

    RunningClock runClock;
    double runningHours = 0;
    QString lastReading; // tempsActual
    QString label7 = QStringLiteral("0:00:00:000");
    QString primerRead; // tempsPrimer as the clock last read it, and its hours
    double primerHours = 0;

    std::function<LapOptions()> lap;
    QList<RaceCommand> history;
    finishedit::BibChecks checks;
    QList<int> checkedRows;
    bool checkedAll = false;
};
