// Every race kept: the copy written before a race is cleared, emptied or replaced, and the
// list of the kept races, from which one can be exported or made the current race again.
#include "app/core/archive.h"
#include "app/core/statefile.h"
#include "app/formmarvolendo.h"
#include "app/texts.h"
#include "base/paths.h"
#include "files/core/exports.h"
#include "results/core/resultline.h"

#include <QAction>
#include <QDateTime>
#include <QDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace
{

const QString formats[] = {QStringLiteral("Segundos"), QStringLiteral("Centesimas"),
                           QStringLiteral("Milesimas")};
const QString modes[] = {QStringLiteral("Lap"), QStringLiteral("Dorsales y tiempos"),
                         QStringLiteral("Solo dorsales")};

QString nameOf(const Variant& code, const QString (&names)[3])
{
    const double v = number(code);
    return v == 0 || v == 1 || v == 2 ? names[static_cast<int>(v)] : QString();
}

} // namespace

QString FormMarvolendo::archiveFolder() const
{
    return archive::folderBeside(
        stateFileInUse.isEmpty() ? carpeta + QLatin1String(statefile::fileName) : stateFileInUse);
}

void FormMarvolendo::keepRace(const RaceState& raceToKeep)
{
    QString error;
    if (archive::keep(archiveFolder(), raceToKeep, QDateTime::currentDateTime(), &error).isEmpty())
        avisar(QStringLiteral("No se pudo guardar una copia de la carrera en %1 (%2). La "
                              "carrera sigue.")
                   .arg(archiveFolder(), error));
}

void FormMarvolendo::keepCurrentRace()
{
    keepRace(currentState());
}

void FormMarvolendo::showPastRaces()
{
    if (!carrerasVentana) {
        carrerasVentana = new QDialog(this);
        carrerasVentana->setObjectName(QStringLiteral("carrerasVentana"));
        carrerasVentana->setWindowTitle(QStringLiteral("Carreras anteriores"));
        auto* layout = new QVBoxLayout(carrerasVentana);
        carrerasLista = new QTableWidget(0, 5, carrerasVentana);
        carrerasLista->setObjectName(QStringLiteral("carrerasLista"));
        carrerasLista->setHorizontalHeaderLabels(
            {QStringLiteral("Guardada"), QStringLiteral("Llegadas"), QStringLiteral("Primero"),
             QStringLiteral("Formato"), QStringLiteral("Modo")});
        carrerasLista->setSelectionBehavior(QAbstractItemView::SelectRows);
        carrerasLista->setSelectionMode(QAbstractItemView::SingleSelection);
        carrerasLista->setEditTriggers(QAbstractItemView::NoEditTriggers);
        carrerasLista->verticalHeader()->hide();
        carrerasLista->horizontalHeader()->setStretchLastSection(true);
        layout->addWidget(carrerasLista);
        auto* buttons = new QHBoxLayout;
        auto* exportar = new QPushButton(QStringLiteral("Exportar"), carrerasVentana);
        exportar->setObjectName(QStringLiteral("exportarCarrera"));
        exportar->setToolTip(QStringLiteral("Escribe sus ficheros de resultados en "
                                            "C:\\Carreras\\copias sin tocar la carrera actual"));
        auto* recuperarCarrera = new QPushButton(QStringLiteral("Recuperar"), carrerasVentana);
        recuperarCarrera->setObjectName(QStringLiteral("recuperarCarrera"));
        recuperarCarrera->setToolTip(QStringLiteral("La hace la carrera actual; la actual se "
                                                    "guarda antes en la lista"));
        auto* cerrar = new QPushButton(QStringLiteral("Cerrar"), carrerasVentana);
        buttons->addWidget(exportar);
        buttons->addWidget(recuperarCarrera);
        buttons->addStretch();
        buttons->addWidget(cerrar);
        layout->addLayout(buttons);
        connect(exportar, &QPushButton::clicked, this, &FormMarvolendo::exportPastRace);
        connect(recuperarCarrera, &QPushButton::clicked, this, &FormMarvolendo::recoverPastRace);
        connect(cerrar, &QPushButton::clicked, carrerasVentana, &QDialog::hide);
        carrerasVentana->resize(560, 320);
    }
    carrerasGuardadas = archive::list(archiveFolder());
    carrerasLista->setRowCount(static_cast<int>(carrerasGuardadas.size()));
    for (int row = 0; row < carrerasGuardadas.size(); ++row) {
        const archive::Kept& k = carrerasGuardadas[row];
        QStringList cells{k.when.toString(QStringLiteral("dd/MM/yyyy hh:mm:ss"))};
        if (k.readable)
            cells << QString::number(k.race.list1.size())
                  << (k.race.list1.isEmpty()
                          ? QString()
                          : resultline::list1Time(k.race.list1.first()).value_or(QString()))
                  << nameOf(k.race.formato, formats) << nameOf(k.race.modoCaptura, modes);
        else
            cells << QStringLiteral("ilegible") << QString() << QString() << QString();
        for (int c = 0; c < cells.size(); ++c)
            carrerasLista->setItem(row, c, new QTableWidgetItem(cells[c]));
    }
    carrerasLista->resizeColumnsToContents();
    if (!carrerasGuardadas.isEmpty())
        carrerasLista->selectRow(0);
    carrerasVentana->show();
    carrerasVentana->raise();
}

// The chosen kept race, when it can be read.
const archive::Kept* FormMarvolendo::chosenPastRace()
{
    const int row = carrerasLista->currentRow();
    if (row < 0 || row >= carrerasGuardadas.size())
        return nullptr;
    const archive::Kept& k = carrerasGuardadas[row];
    if (!k.readable) {
        dialogs.warn(this, QStringLiteral("Carreras anteriores"),
                     QStringLiteral("El fichero %1 está dañado y no se puede leer.").arg(k.path));
        return nullptr;
    }
    return &k;
}

void FormMarvolendo::exportPastRace()
{
    const archive::Kept* k = chosenPastRace();
    if (!k)
        return;
    exports::Source source;
    source.list1 = k->race.list1;
    source.combo1 = k->race.combo1;
    source.opp2 = number(k->race.modoCaptura) == 1;
    const double format = number(k->race.formato);
    if (format == 0 || format == 1 || format == 2)
        source.format = static_cast<TimeFormat>(format);
    const exports::WriteResult result = exports::exportResults(source);
    if (!result.ok())
        dialogs.warn(this, QStringLiteral("Resultados no guardados"), result.message);
    else
        dialogs.inform(this, QStringLiteral("Carreras anteriores"),
                       QStringLiteral("Los resultados de la carrera guardada el %1 están en "
                                      "%2.")
                           .arg(k->when.toString(QStringLiteral("dd/MM/yyyy hh:mm:ss")),
                                paths::local(QStringLiteral("C:\\Carreras\\copias\\"))));
}

void FormMarvolendo::recoverPastRace()
{
    const archive::Kept* k = chosenPastRace();
    if (!k)
        return;
    if (inicio != 0) {
        dialogs.warn(this, QStringLiteral("Carreras anteriores"),
                     QStringLiteral("Pare el reloj antes de recuperar otra carrera."));
        return;
    }
    respuesta = dialogs.confirm(
        this, QStringLiteral("Recuperar una carrera"),
        QStringLiteral("La carrera guardada el %1 (%2 llegadas) pasará a ser la carrera actual. "
                       "La carrera actual se guarda antes en la lista.")
            .arg(k->when.toString(QStringLiteral("dd/MM/yyyy hh:mm:ss")))
            .arg(k->race.list1.size()));
    if (respuesta == Dialogs::Cancel)
        return;
    const RaceState chosen = k->race;
    if (!race.list1().isEmpty() || Label1->text() != texts::zeroClock)
        keepCurrentRace();
    // The kept race becomes the state file, and the window reads it as at start-up.
    const statefile::SaveResult saved =
        statefile::save(chosen, carpeta + QLatin1String(statefile::fileName),
                        paths::local(QLatin1String(statefile::fallbackPath)));
    if (saved.outcome == statefile::SaveOutcome::Failed) {
        dialogs.warn(this, QStringLiteral("Carreras anteriores"),
                     QStringLiteral("No se pudo escribir la carrera recuperada (%1).")
                         .arg(saved.primaryError));
        return;
    }
    inicio = 0;
    desfase = chosen.desfase;
    horaSalida = chosen.horaSalida;
    tempsPrimer = chosen.tempsPrimer;
    formato = chosen.formato;
    modoCaptura = chosen.modoCaptura;
    race.apply(RaceChange::of(RaceChange::Kind::StartOrderEmptied));
    restored = statefile::Restored{chosen, 8, true};
    recuperar();
    relabel(true);
    journalSnapshot();
    carrerasVentana->hide();
}
