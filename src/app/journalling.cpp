// The finish journal in the window: recovery at start-up after an abnormal end, and one entry
// for every change of the race record, written before the handler that made it returns.
#include "app/core/basic.h"
#include "app/core/statefile.h"
#include "app/formmarvolendo.h"

#include <QComboBox>
#include <QDateTime>
#include <QFile>
#include <QLabel>
#include <QListWidget>

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
    const statefile::Restored saved = statefile::read(carpeta + QLatin1String(statefile::fileName));
    const RaceRecord& rec = contents.record;
    if (rec.state == saved.state)
        return; // the state file already holds everything

    const QString text =
        QStringLiteral("El programa no termino normalmente. El diario de la carrera guarda %1 "
                       "cambios que no estan en MARVO.dat (%2 llegadas en la lista).\n\n"
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
    journaled = currentRecord();
    if (!journal.start(journalPath(carpeta), journaled))
        avisar(QStringLiteral("No se puede escribir el diario de la carrera %1 (%2): tras un "
                              "fallo solo se recuperaria lo guardado en MARVO.dat.")
                   .arg(journalPath(carpeta), journal.error()));
}

void FormMarvolendo::journalCheckpoint(bool mayCorrect)
{
    if (!journal.isOpen())
        return;
    RaceRecord& j = journaled;
    RaceState& js = j.state;
    const QString label1Now = inicio == 0 ? Label1->text() : QString();
    const bool headerSame = js.inicio == inicio && js.desfase == desfase &&
                            js.horaSalida == horaSalida && js.formato == formato &&
                            js.modoCaptura == modoCaptura && j.label1 == label1Now;
    const qsizetype n1 = List1->count();
    const qsizetype nc = Combo1->count();
    const bool listsSame =
        n1 == js.list1.size() && nc == js.combo1.size() && List2->count() == js.list2.size();
    const bool oneMore = n1 == js.list1.size() + 1 && nc == js.combo1.size() + 1 &&
                         List2->count() == js.list2.size();
    const bool labelsSame = j.label2 == Label2->text() && j.label4 == Label4->text() &&
                            js.label5 == Label5->text() && js.label8 == Label8->text() &&
                            js.tempsPrimer == tempsPrimer;

    if (headerSame && (oneMore || (listsSame && !labelsSame))) {
        // A finish: the rank and the labels, and its two lines unless no format was checked.
        FinishEntry e;
        e.label2 = Label2->text();
        e.hasLines = oneMore;
        if (oneMore) {
            e.combo1Line = Combo1->itemText(Combo1->count() - 1);
            e.list1Line = List1->item(List1->count() - 1)->text();
            js.combo1 << e.combo1Line;
            js.list1 << e.list1Line;
        }
        e.tempsPrimer = tempsPrimer;
        e.label4 = Label4->text();
        e.label5 = Label5->text();
        e.label8 = Label8->text();
        j.label2 = e.label2;
        j.label4 = e.label4;
        js.tempsPrimer = e.tempsPrimer;
        js.label5 = e.label5;
        js.label8 = e.label8;
        journal.append(journal::encodeFinish(e));
        return;
    }
    if (headerSame && listsSame && labelsSame) {
        if (!mayCorrect)
            return;
        // A bib correction changes one line of List1 in place.
        qsizetype changed = -1;
        for (qsizetype i = 0; i < n1; ++i) {
            if (List1->item(static_cast<int>(i))->text() != js.list1[i]) {
                if (changed >= 0) {
                    changed = -2;
                    break;
                }
                changed = i;
            }
        }
        if (changed == -1)
            return;
        if (changed >= 0) {
            js.list1[changed] = List1->item(static_cast<int>(changed))->text();
            journal.append(journal::encodeCorrection(static_cast<int>(changed), js.list1[changed]));
            return;
        }
    }
    // Anything else (Start, Stop, a clear, an import...) is written as a whole new snapshot.
    journaled = currentRecord();
    journal.append(journal::encodeSnapshot(journaled));
}
