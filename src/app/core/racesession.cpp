#include "racesession.h"

#include "app/core/archive.h"
#include "base/basic.h"
#include "base/fileerror.h"
#include "base/paths.h"
#include "base/savefile.h"
#include "chrono/core/timevalue.h"
#include "results/core/resultline.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace
{

constexpr int undoLimit = 100;

QString fallbackState()
{
    return paths::local(QLatin1String(statefile::fallbackPath));
}

} // namespace

RaceSession::RaceSession(const Clock& source, const QString& stateFolder)
    : clock(source), carpeta(stateFolder), keeper(model, stateFolder, fallbackState()),
      runClock(source)
{
    // The journal hears of a change first, then the bib checks, then the front ends.
    connect(&model, &Race::changed, this, &RaceSession::follow);
    connect(&model, &Race::restored, this, [this] {
        history.clear();
        emit undoChanged();
        recheckBibs();
    });
    connect(&model, &Race::entrantsChanged, this, &RaceSession::recheckBibs);
    connect(&keeper, &JournalKeeper::notice, this, &RaceSession::notice);
}

statefile::Restored RaceSession::readSaved()
{
    // A race recovered from the journal is taken as recovered, wherever its save could go.
    if (recoveredRace)
        return statefile::Restored{recoveredRace->state, 8, true};
    const QString primary = carpeta + QLatin1String(statefile::fileName);
    const QString newerPath = statefile::newerOf(primary, fallbackState());
    const bool fallbackNewer = newerPath != primary;
    if (fallbackNewer)
        stateFileInUse = fallbackState();
    const statefile::Restored newer = statefile::read(newerPath);
    if (newer.damaged) {
        // What could be read of it is the race; the file itself is kept as it is before the
        // first save writes over it.
        QFile file(newerPath);
        QString error;
        if (!file.open(QIODevice::ReadOnly) ||
            archive::keepFile(archiveFolder(), file.readAll(), QDateTime::currentDateTime(), &error)
                .isEmpty())
            emit notice(QStringLiteral("%1 estaba dañado y no se pudo guardar una copia (%2).")
                            .arg(newerPath, error.isEmpty() ? fileerror::describe(file) : error));
        else
            emit notice(QStringLiteral("%1 estaba dañado: se ha leído lo que se podía, y el "
                                       "fichero tal como estaba se guarda en %2.")
                            .arg(newerPath, archiveFolder()));
    }
    const QFileInfo primaryInfo(primary);
    const QFileInfo fallbackInfo(fallbackState());
    if (!fallbackInfo.isFile() || fallbackInfo == primaryInfo)
        return newer;
    const statefile::Restored older = statefile::read(fallbackNewer ? primary : fallbackState());
    if (older.headerLines > 0 && older.state != newer.state)
        keepOnce(older.state);
    return newer;
}

bool RaceSession::save()
{
    return save(model.state());
}

bool RaceSession::save(const RaceState& state)
{
    const QString primary = carpeta + QLatin1String(statefile::fileName);
    const statefile::SaveResult result = statefile::save(state, primary, fallbackState());
    if (result.outcome == statefile::SaveOutcome::Failed) {
        emit notice(QStringLiteral("No se pudo guardar la carrera en %1 (%2) ni en %3 (%4). "
                                   "Los tiempos siguen en pantalla: no cierre el programa.")
                        .arg(QLatin1String(statefile::fileName), result.primaryError,
                             fallbackState(), result.fallbackError));
        return false;
    }
    stateFileInUse = result.outcome == statefile::SaveOutcome::Primary ? primary : fallbackState();
    return true;
}

QString RaceSession::stateFile() const
{
    return stateFileInUse.isEmpty() ? carpeta + QLatin1String(statefile::fileName) : stateFileInUse;
}

bool RaceSession::saved() const
{
    QFile file(stateFile());
    return file.open(QIODevice::ReadOnly) && file.readAll() == statefile::encode(model.state());
}

void RaceSession::recover(const JournalKeeper::Unfinished& found)
{
    const RaceRecord& rec = found.contents.record;
    // The race of the state file, about to be replaced, is kept first.
    const statefile::Restored replaced =
        statefile::read(carpeta + QLatin1String(statefile::fileName));
    if (replaced.headerLines > 0)
        keepOnce(replaced.state);
    // The recovered race is saved first, where a save goes; the start-up takes it from here.
    const statefile::SaveResult result =
        statefile::save(rec.state, carpeta + QLatin1String(statefile::fileName), fallbackState());
    if (result.outcome == statefile::SaveOutcome::Failed)
        emit notice(QStringLiteral("No se pudo guardar la carrera recuperada (%1). El diario se "
                                   "conserva en %2.")
                        .arg(result.primaryError, found.path));
    recoveredRace = rec;
}

void RaceSession::setAside(const JournalKeeper::Unfinished& found)
{
    keep(found.contents.record.state);
    JournalKeeper::setAside(found.path);
}

void RaceSession::startJournal()
{
    if (recoveredRace) {
        // What the state file does not carry: the rank counter, the first finisher and the
        // clock of a stopped race.
        const RaceRecord rec = *recoveredRace;
        recoveredRace.reset();
        const Race::Batch batch(model);
        model.setRank(rec.label2);
        model.setFirst(rec.label4);
        model.setLast(rec.state.label5);
        model.setLastDifference(rec.state.label8);
        if (!model.running() && !rec.label1.isEmpty())
            model.setClock(rec.label1);
        model.restoreMarks(rec.marks);
        saveMarks();
    } else {
        loadMarks();
    }
    keeper.start();
}

void RaceSession::end()
{
    save();
    keeper.markClean();
}

void RaceSession::keepOnce(const RaceState& race)
{
    // Not twice: a race recovered again and again would pile up copies of itself.
    const QList<archive::Kept> kept = archive::list(archiveFolder());
    if (kept.isEmpty() || kept.first().race != race)
        keep(race);
}

QString RaceSession::archiveFolder() const
{
    return archive::folderBeside(stateFile());
}

bool RaceSession::keep(const RaceState& race)
{
    QString error;
    if (!archive::keep(archiveFolder(), race, QDateTime::currentDateTime(), &error, details())
             .isEmpty()) {
        if (!error.isEmpty())
            emit notice(QStringLiteral("La carrera se guardó en %1 sin sus inscritos o su "
                                       "situación de corredores (%2).")
                            .arg(archiveFolder(), error));
        return true;
    }
    emit notice(QStringLiteral("No se pudo guardar una copia de la carrera en %1 (%2). La "
                               "carrera sigue.")
                    .arg(archiveFolder(), error));
    return false;
}

archive::Details RaceSession::details() const
{
    archive::Details d;
    d.name = model.name();
    d.marks = model.marks();
    QFile file(carpeta + QLatin1String(entrants::keptFile));
    if (file.open(QIODevice::ReadOnly))
        d.entrantsFile = file.read(entrants::maxFileBytes + 1);
    return d;
}

void RaceSession::adopt(const archive::Details& d)
{
    const auto write = [this](const char* name, const QByteArray& bytes) {
        const QString path = carpeta + QLatin1String(name);
        if (bytes.isEmpty()) {
            QFile::remove(path);
            return;
        }
        const QString error = savefile::write(path, bytes);
        if (!error.isEmpty())
            emit notice(QStringLiteral("No se pudo escribir %1 (%2).").arg(path, error));
    };
    write(entrants::raceNameFile, d.name.toUtf8());
    write(entrants::keptFile, d.entrantsFile);
    clearMarks();
    for (auto it = d.marks.cbegin(); it != d.marks.cend(); ++it)
        model.apply(RaceChange::marked(it.key(), *it));
}

void RaceSession::anchorRun()
{
    runClock.anchor(model.state().inicio);
}

void RaceSession::start(double startTimer, const QTime& startTime)
{
    const Race::Batch batch(model);
    // The run resumes from the stopped clock's whole seconds.
    const QString& shown = model.record().label1;
    if (shown != QLatin1String("00:00:00"))
        model.setDesfase(timevalue::decimalMil(shown));
    // Exactly midnight: 0 would read as a stopped clock.
    model.setInicio(startTimer == 0 ? 1e-6 : startTimer);
    anchorRun();
    const double timeOfDay = timevalue::decimalMil(startTime.toString(QStringLiteral("hh:mm:ss")));
    lastReading = timevalue::tempsexaMil(timeOfDay - model.state().desfase);
    model.setHoraSalida(basic::fitFixed(basic::left(basic::left(lastReading, 8), 5), 5));
    save();
}

void RaceSession::stop()
{
    const Race::Batch batch(model);
    if (model.running()) {
        readClock();
        model.setClock(basic::left(lastReading, 8));
    }
    model.setInicio(0);
    model.setDesfase(0);
    model.setHoraSalida(basic::fitFixed(QStringLiteral("0"), 5));
}

std::optional<RaceSession::ClockSetBack> RaceSession::clockSetBack() const
{
    if (!model.running())
        return std::nullopt;
    const double reads = runClock.hours(model.state().desfase);
    double lastFinish = 0;
    for (const QString& line : model.list1()) {
        if (const std::optional<QString> time = resultline::list1Time(line))
            lastFinish = std::max(lastFinish, finishedit::hoursOf(*time));
    }
    // A whole second of slack: the lines keep their times cut to the format.
    if (reads + 1.0 / timevalue::secondsPerHour < lastFinish || reads > 12.0)
        return ClockSetBack{reads, lastFinish};
    return std::nullopt;
}

void RaceSession::resumeAt(double hours)
{
    constexpr double secondsPerDay = 86400.0;
    const double run = (hours - model.state().desfase) * timevalue::secondsPerHour;
    double inicio = std::fmod(clock.timer() - run, secondsPerDay);
    if (inicio < 0)
        inicio += secondsPerDay;
    model.setInicio(inicio == 0 ? 1e-6 : inicio);
    anchorRun();
    save();
}

void RaceSession::readClock()
{
    if (!model.running())
        return;
    runningHours = runClock.hours(model.state().desfase);
    lastReading = timevalue::tempsexaMil(runningHours);
    // The first finisher's time changes only with a finish or an edit: read once a change.
    const QString& primer = model.state().tempsPrimer;
    if (primer != primerRead) {
        primerRead = primer;
        primerHours = timevalue::decimalMil(primer);
    }
    if (primerHours > 0) {
        const int format = lapOptions().format;
        if (number(model.state().modoCaptura) != 1 && format >= 0)
            setDifference(basic::mid(timevalue::tempsexaMil(runningHours - primerHours), 2,
                                     timevalue::differenceWidth(static_cast<TimeFormat>(format))));
    }
}

double RaceSession::latestHours() const
{
    if (model.running())
        return runClock.hours(model.state().desfase);
    return timevalue::decimalMil(model.record().label1) + 0.999 / timevalue::secondsPerHour;
}

QString RaceSession::clockCaption() const
{
    if (model.running() && !lastReading.isEmpty())
        return basic::left(lastReading, 8);
    return model.record().label1;
}

void RaceSession::setDifference(const QString& caption)
{
    if (label7 == caption)
        return;
    label7 = caption;
    emit differenceChanged(label7);
}

void RaceSession::setLapOptions(std::function<LapOptions()> options)
{
    lap = std::move(options);
}

RaceSession::LapOptions RaceSession::lapOptions() const
{
    if (lap)
        return lap();
    const double format = number(model.state().formato);
    return {format == 0 || format == 1 || format == 2 ? static_cast<int>(format) : -1,
            number(model.state().modoCaptura) == 2};
}

int RaceSession::recordFinish(const QString& bib)
{
    using resultline::Target;
    // Stamp the finish with the time of this moment, not of the last redraw.
    readClock();
    const LapOptions options = lapOptions();
    const auto format = static_cast<TimeFormat>(options.format);
    const RaceRecord& r = model.record();
    const bool timesOnLabels = number(r.state.modoCaptura) != 1;

    RaceChange finish;
    finish.label2 = basic::digits(basic::val(r.label2) + 1);
    finish.tempsPrimer = r.state.tempsPrimer;
    finish.label4 = r.label4;
    finish.label5 = r.state.label5;
    finish.label8 = r.state.label8;
    const int rank = static_cast<int>(basic::val(finish.label2));
    if (rank == 1) {
        if (timesOnLabels && options.format >= 0)
            finish.label4 = resultline::cutTime(lastReading, format, Target::List1);
        finish.tempsPrimer = lastReading;
        // The first finisher is the only one a Lap saves; the others reach the file with the
        // next save of the race.
        RaceState first = r.state;
        first.tempsPrimer = lastReading;
        save(first);
    }
    if (timesOnLabels && options.format >= 0)
        finish.label5 = resultline::cutTime(lastReading, format, Target::List1);

    finish.hasLines = options.format >= 0;
    if (finish.hasLines) {
        const QString rankField = resultline::rankField(finish.label2);
        const QString bibField = resultline::bibField(bib);
        if (options.bibsOnly) {
            finish.list1Line = resultline::bibLine(rankField, bibField);
            finish.combo1Line = finish.list1Line;
        } else {
            finish.label8 = resultline::cutDifference(label7, format, Target::Combo1);
            finish.list1Line = resultline::fullLine(
                rankField, bibField, resultline::cutTime(lastReading, format, Target::List1),
                resultline::cutDifference(label7, format, Target::List1));
            finish.combo1Line = resultline::comboLine(
                rankField, resultline::cutTime(lastReading, format, Target::Combo1),
                resultline::cutDifference(label7, format, Target::Combo1));
        }
    }
    model.apply(finish);
    return rank;
}

bool RaceSession::recordFinishAt(double hours, const QString& bib)
{
    const raceedits::Context context = editContext();
    if (context.format < 0)
        return false;
    return perform(raceedits::addition(model.record(), hours, bib, context, label7));
}

raceedits::Context RaceSession::editContext() const
{
    return {lapOptions().format, number(model.state().modoCaptura) != 1};
}

bool RaceSession::perform(const std::optional<RaceCommand>& command)
{
    if (!command)
        return false;
    for (const RaceChange& c : command->redo)
        model.apply(c);
    if (command->saves)
        save();
    history << *command;
    if (history.size() > undoLimit)
        history.removeFirst();
    emit undoChanged();
    return true;
}

bool RaceSession::setMark(int bib, const std::optional<runnerstatus::Mark>& mark)
{
    return perform(raceedits::marking(model.record(), bib, mark));
}

void RaceSession::clearMarks()
{
    const QList<int> bibs = model.marks().keys();
    for (const int bib : bibs)
        model.apply(RaceChange::marked(bib, std::nullopt));
}

// The marks are journaled as they change; the file beside the state file brings them back at
// the next start (the journal only after an abnormal end).
void RaceSession::saveMarks()
{
    const QString path = carpeta + QLatin1String(runnerstatus::keptFile);
    if (model.marks().isEmpty()) {
        QFile::remove(path);
        return;
    }
    const QString error = savefile::write(path, runnerstatus::encode(model.marks()));
    if (!error.isEmpty())
        emit notice(QStringLiteral("No se pudo guardar la situación de los corredores en %1 "
                                   "(%2); queda en el diario de la carrera.")
                        .arg(path, error));
}

void RaceSession::loadMarks()
{
    QFile file(carpeta + QLatin1String(runnerstatus::keptFile));
    if (file.open(QIODevice::ReadOnly))
        model.restoreMarks(runnerstatus::decode(file.read(4 * 1024 * 1024)));
}

bool RaceSession::undo()
{
    if (history.isEmpty())
        return false;
    const RaceCommand command = history.takeLast();
    for (const RaceChange& c : command.undo)
        model.apply(c);
    if (command.saves)
        save();
    emit undoChanged();
    return true;
}

int RaceSession::nextWithoutBib() const
{
    const int n = static_cast<int>(model.list1().size());
    for (int i = 0; i < n; ++i) {
        if (checks.problem(i) & finishedit::NoBib)
            return i;
    }
    return -1;
}

void RaceSession::recheckBibs()
{
    // A bib is entered when the start order or the loaded entrants have it.
    std::optional<QSet<int>> entered;
    if (!model.list2().isEmpty())
        entered = resultline::startBibs(model.list2());
    if (!model.entrants().isEmpty()) {
        if (!entered)
            entered.emplace();
        for (const entrants::Entrant& e : model.entrants())
            entered->insert(e.bib);
    }
    checks.reset(model.list1(), entered);
    checkedRows.clear();
    checkedAll = true;
}

void RaceSession::follow(const RaceChange& change)
{
    using Kind = RaceChange::Kind;
    checkedRows.clear();
    checkedAll = false;
    switch (change.kind) {
    case Kind::Mark:
        saveMarks();
        return;
    case Kind::Captions:
    case Kind::Differences:
    case Kind::Values:
        // None changes a bib, and the lines keep their places: their checks stand.
        return;
    case Kind::Finish:
        if (change.hasLines)
            checkedRows = checks.append(change.list1Line);
        return;
    case Kind::Bib:
        checkedRows = checks.rewrite(change.index, change.list1Line);
        return;
    case Kind::ResultsEmptied:
        // What could be taken back belongs to the race that is gone.
        history.clear();
        emit undoChanged();
        break;
    default:
        break;
    }
    recheckBibs();
}
