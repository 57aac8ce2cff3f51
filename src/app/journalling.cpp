// The finish journal in the window: recovery at start-up after an abnormal end, one entry for
// every change of the race record as the record makes it, and a snapshot of the whole race
// when a handler changes the window-level values (Start, Stop, the clock, a clear, a format).
#include "app/core/statefile.h"
#include "app/formmarvolendo.h"
#include "base/paths.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <QLabel>
#include <algorithm>

namespace
{

QString journalPath(const QString& carpeta)
{
    return carpeta + QLatin1String(journal::fileName);
}

} // namespace

RaceRecord FormMarvolendo::currentRecord() const
{
    RaceRecord r;
    r.state = currentState();
    r.label1 = inicio == 0 ? Label1->text() : QString(); // the running clock is not a record
    r.label2 = Label2->text();
    r.label4 = Label4->text();
    return r;
}

void FormMarvolendo::offerRecovery()
{
    // The journal beside MARVO.dat, and the one of the fallback folder where the race went
    // when this folder could not be written: the newest first.
    QList<QFileInfo> journals;
    for (const QString& path : {journalPath(carpeta), fallbackJournalPath()}) {
        const QFileInfo info(path);
        if (info.isFile() && !journals.contains(info))
            journals << info;
    }
    std::sort(journals.begin(), journals.end(), [](const QFileInfo& a, const QFileInfo& b) {
        return a.lastModified() > b.lastModified();
    });
    for (const QFileInfo& info : std::as_const(journals)) {
        const QString path = info.filePath();
        const journal::Contents contents = journal::read(path);
        if (!contents.valid || contents.clean)
            continue;
        const RaceRecord& rec = contents.record;
        QFile file(carpeta + QLatin1String(statefile::fileName));
        if (file.open(QIODevice::ReadOnly) && file.readAll() == statefile::encode(rec.state))
            continue; // the state file already holds everything

        const QString text =
            QStringLiteral("El programa no terminó normalmente. El diario de la carrera guarda "
                           "%1 cambios que no están en MARVO.dat (%2 llegadas en la lista).\n\n"
                           "¿Recuperar la carrera tal como estaba?")
                .arg(contents.changes)
                .arg(rec.state.list1.size());
        if (dialogs.ask(this, QStringLiteral("Recuperar la carrera"), text) == Dialogs::Yes) {
            // The race of the state file, about to be replaced, is kept first.
            const statefile::Restored replaced =
                statefile::read(carpeta + QLatin1String(statefile::fileName));
            if (replaced.headerLines > 0)
                keepRace(replaced.state);
            // The recovered race is saved first, where a save goes; the start-up takes it
            // from the journal.
            const statefile::SaveResult result =
                statefile::save(rec.state, carpeta + QLatin1String(statefile::fileName),
                                paths::local(QLatin1String(statefile::fallbackPath)));
            if (result.outcome == statefile::SaveOutcome::Failed)
                avisar(QStringLiteral("No se pudo guardar la carrera recuperada (%1). El diario "
                                      "se conserva en %2.")
                           .arg(result.primaryError, path));
            recoveredLabels = rec;
            return;
        }
        // Not recovered: the race it holds is kept with the others, and the old journal is kept
        // aside; nothing is deleted.
        keepRace(rec.state);
        const QString aside =
            info.absolutePath() + u'/' +
            QStringLiteral("MARVO-%1.jrn")
                .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss")));
        QFile::rename(path, aside);
        return;
    }
}

QString FormMarvolendo::fallbackJournalPath() const
{
    const QString state = paths::local(QLatin1String(statefile::fallbackPath));
    return QFileInfo(state).absolutePath() + u'/' + QLatin1String(journal::fileName);
}

void FormMarvolendo::startJournal()
{
    if (recoveredLabels) {
        // What the state file does not carry: the rank counter, the first finisher and the
        // clock of a stopped race.
        const RaceRecord& rec = *recoveredLabels;
        Label2->setText(rec.label2);
        Label4->setText(rec.label4);
        Label5->setText(rec.state.label5);
        Label8->setText(rec.state.label8);
        if (inicio == 0 && !rec.label1.isEmpty())
            Label1->setText(rec.label1);
        recoveredLabels.reset();
    }
    if (journal.start(journalPath(carpeta), currentRecord()))
        return;
    // A folder that takes no journal: the fallback folder does, as it takes the state file.
    const QString primaryError = journal.error();
    if (journal.start(fallbackJournalPath(), currentRecord())) {
        avisar(QStringLiteral("El diario de la carrera no se puede escribir en %1 (%2): se "
                              "escribe en %3.")
                   .arg(journalPath(carpeta), primaryError, fallbackJournalPath()));
        return;
    }
    avisar(QStringLiteral("No se puede escribir el diario de la carrera %1 (%2): tras un "
                          "fallo solo se recuperaría lo guardado en MARVO.dat.")
               .arg(journalPath(carpeta), primaryError));
}

// Every entry goes through here. When the disk refuses one (it is full), the operator is told
// at once and the notice stays; nothing more is appended to the torn journal until a whole
// snapshot of the race goes in again, tried every second and at every change.
void FormMarvolendo::appendToJournal(const QByteArray& entry)
{
    if (!journal.isOpen())
        return;
    if (journalBroken) {
        repairJournal();
        return;
    }
    if (journal.append(entry))
        return;
    journalBroken = true;
    avisoFijo(QStringLiteral("No se puede escribir el diario de la carrera (%1). Lo que se "
                             "marque sigue en pantalla; el diario se completará en cuanto se "
                             "pueda escribir.")
                  .arg(journal.error()));
    journalRetry->start();
}

void FormMarvolendo::repairJournal()
{
    // A new line first: whatever the failed write left is a line of its own, passed over.
    if (!journal.append(QByteArrayLiteral("\r\n") + journal::encodeSnapshot(currentRecord())))
        return;
    journalBroken = false;
    journalRetry->stop();
    avisoDiario->hide();
}

void FormMarvolendo::journalChange(const RaceChange& change)
{
    appendToJournal(journal::encodeChange(change));
}

void FormMarvolendo::journalSnapshot()
{
    appendToJournal(journal::encodeSnapshot(currentRecord()));
}
