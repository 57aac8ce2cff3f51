#include "archivewindow.h"

#include "app/core/racesession.h"
#include "app/core/statefile.h"
#include "app/dialogs.h"
#include "app/texts.h"
#include "base/paths.h"
#include "files/core/exports.h"
#include "results/core/resultline.h"
#include "results/seasonwindow.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QWidget>

namespace
{

const QString formats[] = {QStringLiteral("Segundos"), QStringLiteral("Centesimas"),
                           QStringLiteral("Milesimas")};
const QString modes[] = {QStringLiteral("Lap"), QStringLiteral("Dorsales y tiempos"),
                         QStringLiteral("Solo dorsales")};
const QString title = QStringLiteral("Carreras anteriores");

QString nameOf(const Variant& code, const QString (&names)[3])
{
    const double v = number(code);
    return v == 0 || v == 1 || v == 2 ? names[static_cast<int>(v)] : QString();
}

QString when(const archive::Kept& k)
{
    return k.when.toString(QStringLiteral("dd/MM/yyyy hh:mm:ss"));
}

} // namespace

ArchiveWindow::ArchiveWindow(QWidget* parentWindow, RaceSession& raceSession, Dialogs& dialogSource)
    : QObject(parentWindow), window(parentWindow), session(raceSession), dialogs(dialogSource)
{
}

void ArchiveWindow::build()
{
    carrerasVentana = new QDialog(window);
    carrerasVentana->setObjectName(QStringLiteral("carrerasVentana"));
    carrerasVentana->setWindowTitle(title);
    auto* layout = new QVBoxLayout(carrerasVentana);
    carrerasLista = new QTableWidget(0, 5, carrerasVentana);
    carrerasLista->setObjectName(QStringLiteral("carrerasLista"));
    carrerasLista->setHorizontalHeaderLabels({QStringLiteral("Guardada"),
                                              QStringLiteral("Llegadas"), QStringLiteral("Primero"),
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
    auto* resultados = new QPushButton(QStringLiteral("Resultados"), carrerasVentana);
    resultados->setObjectName(QStringLiteral("resultadosCarrera"));
    resultados->setToolTip(QStringLiteral("Publica sus resultados (PDF, página web, hoja de "
                                          "cálculo, premios y equipos) como cuando era la actual"));
    auto* temporada = new QPushButton(QStringLiteral("Temporada..."), carrerasVentana);
    temporada->setObjectName(QStringLiteral("temporada"));
    temporada->setToolTip(QStringLiteral("Una clasificación de varias carreras guardadas"));
    auto* cerrar = new QPushButton(QStringLiteral("Cerrar"), carrerasVentana);
    buttons->addWidget(exportar);
    buttons->addWidget(recuperarCarrera);
    buttons->addWidget(resultados);
    buttons->addWidget(temporada);
    buttons->addStretch();
    buttons->addWidget(cerrar);
    layout->addLayout(buttons);
    connect(exportar, &QPushButton::clicked, this, &ArchiveWindow::exportChosen);
    connect(recuperarCarrera, &QPushButton::clicked, this, &ArchiveWindow::recoverChosen);
    connect(resultados, &QPushButton::clicked, this, [this] {
        if (const archive::Kept* k = chosen())
            emit resultsWanted(*k);
    });
    connect(temporada, &QPushButton::clicked, this, &ArchiveWindow::openSeason);
    connect(cerrar, &QPushButton::clicked, carrerasVentana, &QDialog::hide);
    carrerasVentana->resize(640, 320);
}

void ArchiveWindow::show()
{
    if (!carrerasVentana)
        build();
    carrerasGuardadas = archive::list(session.archiveFolder());
    carrerasLista->setRowCount(static_cast<int>(carrerasGuardadas.size()));
    for (int row = 0; row < carrerasGuardadas.size(); ++row) {
        const archive::Kept& k = carrerasGuardadas[row];
        QStringList cells{when(k)};
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
const archive::Kept* ArchiveWindow::chosen()
{
    const int row = carrerasLista->currentRow();
    if (row < 0 || row >= carrerasGuardadas.size())
        return nullptr;
    const archive::Kept& k = carrerasGuardadas[row];
    if (!k.readable) {
        dialogs.warn(window, title,
                     QStringLiteral("El fichero %1 está dañado y no se puede leer.").arg(k.path));
        return nullptr;
    }
    return &k;
}

void ArchiveWindow::exportChosen()
{
    const archive::Kept* k = chosen();
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
        dialogs.warn(window, QStringLiteral("Resultados no guardados"), result.message);
    else
        dialogs.inform(window, title,
                       QStringLiteral("Los resultados de la carrera guardada el %1 están en "
                                      "%2.")
                           .arg(when(*k), paths::local(QStringLiteral("C:\\Carreras\\copias\\"))));
}

void ArchiveWindow::recoverChosen()
{
    const archive::Kept* k = chosen();
    if (!k)
        return;
    if (session.race().running()) {
        dialogs.warn(window, title,
                     QStringLiteral("Pare el reloj antes de recuperar otra carrera."));
        return;
    }
    const int answer = dialogs.confirm(
        window, QStringLiteral("Recuperar una carrera"),
        QStringLiteral("La carrera guardada el %1 (%2 llegadas) pasará a ser la carrera actual. "
                       "La carrera actual se guarda antes en la lista.")
            .arg(when(*k))
            .arg(k->race.list1.size()));
    emit answered(answer);
    if (answer == Dialogs::Cancel)
        return;
    const archive::Kept kept = *k;
    const RaceState& race = kept.race;
    if ((!session.race().list1().isEmpty() || session.clockCaption() != texts::zeroClock) &&
        !session.keepCurrent())
        return; // a race that cannot be kept is not replaced
    // The kept race becomes the state file, and the window reads it as at start-up.
    const statefile::SaveResult saved =
        statefile::save(race, session.folder() + QLatin1String(statefile::fileName),
                        paths::local(QLatin1String(statefile::fallbackPath)));
    if (saved.outcome == statefile::SaveOutcome::Failed) {
        dialogs.warn(window, title,
                     QStringLiteral("No se pudo escribir la carrera recuperada (%1).")
                         .arg(saved.primaryError));
        return;
    }
    carrerasVentana->hide();
    emit recovered(kept);
}

void ArchiveWindow::openSeason()
{
    if (!temporadaVentana)
        temporadaVentana = new SeasonWindow(window);
    temporadaVentana->choose(session.archiveFolder());
}
