#include "journalkeeper.h"

#include "app/core/statefile.h"

#include <QDateTime>
#include <QFile>

#include <algorithm>

JournalKeeper::JournalKeeper(Race& r, const QString& stateFolder, const QString& fallback)
    : race(r), folder(stateFolder), fallbackState(fallback)
{
    retry.setInterval(1000);
    connect(&retry, &QTimer::timeout, this, &JournalKeeper::repair);
    connect(&race, &Race::changed, this, &JournalKeeper::follow);
}

QString JournalKeeper::primaryPath() const
{
    return folder + QLatin1String(journal::fileName);
}

QString JournalKeeper::fallbackPath() const
{
    return QFileInfo(fallbackState).absolutePath() + u'/' + QLatin1String(journal::fileName);
}

std::optional<JournalKeeper::Unfinished> JournalKeeper::unfinished() const
{
    QList<QFileInfo> journals;
    for (const QString& path : {primaryPath(), fallbackPath()}) {
        const QFileInfo info(path);
        if (info.isFile() && !journals.contains(info))
            journals << info;
    }
    std::sort(journals.begin(), journals.end(), [](const QFileInfo& a, const QFileInfo& b) {
        return a.lastModified() > b.lastModified();
    });
    // A journal whose first entries are damaged goes on from the race of the state file.
    RaceRecord base;
    base.state = statefile::read(
                     statefile::newerOf(folder + QLatin1String(statefile::fileName), fallbackState))
                     .state;
    base.label1 = QStringLiteral("00:00:00");
    base.label2 = QString::number(base.state.list1.size());
    base.label4 = base.state.tempsPrimer;
    for (const QFileInfo& info : std::as_const(journals)) {
        journal::Contents contents = journal::read(info.filePath(), base);
        if (!contents.valid || contents.clean)
            continue;
        // The state file already holds everything, beside MARVO.dat or in the fallback.
        const QByteArray saved = statefile::encode(contents.record.state);
        const auto holds = [&saved](const QString& path) {
            QFile file(path);
            return file.open(QIODevice::ReadOnly) && file.readAll() == saved;
        };
        if (holds(folder + QLatin1String(statefile::fileName)) || holds(fallbackState))
            continue;
        return Unfinished{info.filePath(), std::move(contents)};
    }
    return std::nullopt;
}

void JournalKeeper::setAside(const QString& path)
{
    const QFileInfo info(path);
    const QString aside =
        info.absolutePath() + u'/' +
        QStringLiteral("MARVO-%1.jrn")
            .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss")));
    QFile::rename(path, aside);
}

bool JournalKeeper::startAt(const QString& path)
{
    // The journal open until now stays open until the new one has taken the race.
    auto next = std::make_unique<Journal>();
    if (!next->start(path, race.snapshot())) {
        startError = next->error();
        return false;
    }
    journal = std::move(next);
    journalPath = path;
    // The start-up has dealt with the journal an abnormal end left; one still lying in the
    // other folder is of an older race: it is kept aside, not offered again.
    for (const QString& other : {primaryPath(), fallbackPath()}) {
        const QFileInfo info(other);
        if (info != QFileInfo(path) && info.isFile() && !journal::read(other).clean)
            setAside(other);
    }
    return true;
}

bool JournalKeeper::start()
{
    // A journal that cannot be read at all is kept aside, never written over.
    for (const QString& path : {primaryPath(), fallbackPath()}) {
        const QFileInfo info(path);
        if (info.isFile() && info.size() > 0 && !journal::read(path).valid)
            setAside(path);
    }
    if (startAt(primaryPath()))
        return true;
    // A folder that takes no journal: the fallback folder does, as it takes the state file.
    const QString primaryError = startError;
    if (startAt(fallbackPath())) {
        emit notice(QStringLiteral("El diario de la carrera no se puede escribir en %1 (%2): se "
                                   "escribe en %3.")
                        .arg(primaryPath(), primaryError, fallbackPath()));
        return true;
    }
    emit notice(QStringLiteral("No se puede escribir el diario de la carrera %1 (%2): tras un "
                               "fallo solo se recuperaría lo guardado en MARVO.dat.")
                    .arg(primaryPath(), primaryError));
    return false;
}

void JournalKeeper::markClean()
{
    if (journal)
        journal->markClean();
}

void JournalKeeper::follow(const RaceChange& change)
{
    // The parts of a replacement are left out: its end is one snapshot.
    if (!isOpen() || race.replacing())
        return;
    append(change.kind == RaceChange::Kind::Values ? journal::encodeSnapshot(race.snapshot())
                                                   : journal::encodeChange(change));
}

// Every entry goes through here. When the disk refuses one (it is full), the operator is told
// at once; nothing more is appended to the torn journal until a whole snapshot of the race goes
// in again, tried every second and at every change.
void JournalKeeper::append(const QByteArray& entry)
{
    if (broken) {
        repair();
        return;
    }
    if (journal->append(entry))
        return;
    // The race folder refuses the journal (its disk is full): it goes on, whole, in the
    // fallback folder, where a recovery finds it.
    const QString error = journal->error();
    const QString refusedPath = journalPath;
    if (QFileInfo(refusedPath) != QFileInfo(fallbackPath()) && startAt(fallbackPath())) {
        emit notice(QStringLiteral("El diario de la carrera no se puede escribir en %1 (%2): "
                                   "sigue en %3.")
                        .arg(refusedPath, error, fallbackPath()));
        return;
    }
    broken = true;
    emit refused(QStringLiteral("No se puede escribir el diario de la carrera (%1). Lo que se "
                                "marque sigue en pantalla; el diario se completará en cuanto se "
                                "pueda escribir.")
                     .arg(error));
    retry.start();
}

void JournalKeeper::repair()
{
    // A new line first: whatever the failed write left is a line of its own, passed over.
    if (!journal->append(QByteArrayLiteral("\r\n") + journal::encodeSnapshot(race.snapshot())))
        return;
    broken = false;
    retry.stop();
    emit whole();
}
