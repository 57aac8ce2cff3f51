// The finish journal in the window: recovery at start-up after an abnormal end, one entry for
// every change of the race record as the record makes it, and a snapshot of the whole race
// when a handler changes the window-level values (Start, Stop, the clock, a clear, a format).
#include "app/core/statefile.h"
#include "app/formmarvolendo.h"

#include <QDateTime>
#include <QFile>
#include <QLabel>

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
    const QString path = journalPath(carpeta);
    if (!QFile::exists(path))
        return;
    const journal::Contents contents = journal::read(path);
    if (!contents.valid || contents.clean)
        return;
    const RaceRecord& rec = contents.record;
    QFile file(carpeta + QLatin1String(statefile::fileName));
    if (file.open(QIODevice::ReadOnly) && file.readAll() == statefile::encode(rec.state))
        return; // the state file already holds everything

    const QString text =
        QStringLiteral("El programa no terminó normalmente. El diario de la carrera guarda %1 "
                       "cambios que no están en MARVO.dat (%2 llegadas en la lista).\n\n"
                       "¿Recuperar la carrera tal como estaba?")
            .arg(contents.changes)
            .arg(rec.state.list1.size());
    if (dialogs.ask(this, QStringLiteral("Recuperar la carrera"), text) == Dialogs::Yes) {
        // The recovered race is saved first; the ordinary start-up then reads it back.
        const statefile::SaveResult result =
            statefile::save(rec.state, carpeta + QLatin1String(statefile::fileName),
                            carpeta + QLatin1String(statefile::fileName));
        if (result.outcome == statefile::SaveOutcome::Failed) {
            avisar(QStringLiteral("No se pudo guardar la carrera recuperada (%1). El diario se "
                                  "conserva en %2.")
                       .arg(result.primaryError, path));
            QFile::rename(path, path + QStringLiteral(".no-recuperado"));
            return;
        }
        recoveredLabels = rec;
        return;
    }
    // Not recovered: the old journal is kept aside, nothing is deleted.
    const QString aside =
        carpeta +
        QStringLiteral("MARVO-%1.jrn")
            .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss")));
    QFile::rename(path, aside);
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
    if (!journal.start(journalPath(carpeta), currentRecord()))
        avisar(QStringLiteral("No se puede escribir el diario de la carrera %1 (%2): tras un "
                              "fallo solo se recuperaría lo guardado en MARVO.dat.")
                   .arg(journalPath(carpeta), journal.error()));
}

void FormMarvolendo::journalChange(const RaceChange& change)
{
    if (journal.isOpen())
        journal.append(journal::encodeChange(change));
}

void FormMarvolendo::journalSnapshot()
{
    if (journal.isOpen())
        journal.append(journal::encodeSnapshot(currentRecord()));
}
