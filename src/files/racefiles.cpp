// Results files, start-order import and the readings database link.
#include "app/formmarvolendo.h"
#include "base/paths.h"
#include "files/core/exports.h"
#include "files/core/latestwriter.h"
#include "files/core/startorder.h"
#include "files/odbc/readingslink.h"

#include <QAction>
#include <QGroupBox>
#include <QTimer>

namespace
{

// What the export reads: the lines of the race, the capture mode's check mark and the checked
// time format.
exports::Source exportSource(const Race& race, bool opp2, int format)
{
    exports::Source source;
    source.list1 = race.list1();
    source.combo1 = race.combo1();
    source.opp2 = opp2;
    if (format >= 0)
        source.format = static_cast<TimeFormat>(format);
    return source;
}

} // namespace

void FormMarvolendo::Command6_Click()
{
    // A start-times file still on its way is written first, so it cannot land after this one.
    startTimesWriter->waitIdle();
    // The notice is drawn before the files are written, so it shows even on a slow disk.
    Frame3->show();
    Frame3->repaint();

    const exports::WriteResult result =
        exports::exportResults(exportSource(race, opp2->isChecked(), checkedFormat()));
    if (!result.ok()) {
        guardadoTimer->stop();
        Frame3->hide();
        dialogs.warn(this, QStringLiteral("Resultados no guardados"), result.message);
        return;
    }
    // The notice stays up for a moment while the window goes on working.
    guardadoTimer->start();
}

void FormMarvolendo::guardarSalidas()
{
    // The finish is already in the lists and the journal: the file is written away from the
    // window, and a failure comes back as a notice (startTimesWritten).
    startTimesWriter->submit(
        exports::startTimesFile(exportSource(race, opp2->isChecked(), checkedFormat())));
}

void FormMarvolendo::Command7_Click()
{
    CommonDialog1.title = QStringLiteral(
        "Cargar un fichero que contenga (dorsal,tiempo) y lo adjudicara a tiempo de salida");
    CommonDialog1.defaultSuffix = QStringLiteral("ENT");
    // The filter is a description only. Qt reads a filter without a parenthesised pattern as
    // the pattern itself ("Ficheros", "de", "Entrada-ent"), which hides every file; with "(*)"
    // the description stays the filter's name and every file is listed.
    CommonDialog1.filter = QStringLiteral("Ficheros de Entrada-ent (*)");
    CommonDialog1.proposedName = paths::local(QLatin1String(startorder::defaultFile));

    const QString cami = dialogs.openFile(this, CommonDialog1);
    if (cami.isEmpty())
        return; // cancelled: nothing is loaded
    carregar(cami);
}

void FormMarvolendo::carregar(const QString& cami)
{
    // A missing or unreadable file loads nothing and says nothing; the failure count stays in
    // errores, where the next format click finds it.
    const startorder::StartOrderImport import = startorder::readStartOrder(cami);
    errores = static_cast<qint16>(import.errores);
    race.apply(RaceChange::startOrder(import.lines));
}

QString FormMarvolendo::conectarLecturas()
{
    conexion = std::make_unique<readings::ReadingsLink>();
    return conexion->open(paths::local(readings::databasePath(carpeta)));
}
