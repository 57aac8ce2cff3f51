#include "resultspublisher.h"

#include "app/core/racesession.h"
#include "app/dialogs.h"
#include "app/notices.h"
#include "base/fileerror.h"
#include "base/paths.h"
#include "base/programsettings.h"
#include "base/savefile.h"
#include "files/core/exports.h"
#include "results/categorieswindow.h"
#include "results/core/categories.h"
#include "results/core/raceresults.h"
#include "results/core/resultsreport.h"
#include "results/resultspdf.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>
#include <QWidget>

#include <memory>

namespace
{

// The race's results drawn and written into its own folder inside the results folder: the
// classification as a PDF, a web page and a spreadsheet, the awards, and the teams when the race
// has them. The results folder itself must be there (made by the results office); the race's
// folder is made in it.
struct Written {
    exports::WriteResult result;
    QString folder; // the race's folder, as the operator reads it
    QStringList files;
};

Written writeResults(const raceresults::Input& input, const raceresults::Settings& settings)
{
    const raceresults::Computed computed = raceresults::compute(input, settings);
    const QString folder =
        QLatin1String(exports::folder) + raceresults::folderName(input.date, input.name) + u'\\';
    const QString base = paths::local(QLatin1String(exports::folder));
    if (QFileInfo(base).isDir())
        QDir().mkpath(paths::local(folder));
    Written w;
    w.folder = QDir::toNativeSeparators(QFileInfo(paths::local(folder)).absoluteFilePath());
    const resultsreport::Report report = raceresults::results(computed, input);
    QList<exports::File> files{
        {folder + QStringLiteral("resultados.pdf"), resultspdf::render(report)},
        {folder + QStringLiteral("resultados.html"), resultsreport::html(report)},
        {folder + QStringLiteral("resultados.csv"),
         resultsreport::csv(computed.results, input.entrants, computed.fractionDigits,
                            input.marks)}};
    if (!computed.podiums.isEmpty())
        files << exports::File{folder + QStringLiteral("premios.pdf"),
                               resultspdf::render(raceresults::awardsPage(computed, input))};
    if (settings.teams) {
        const resultsreport::Report teamsReport = raceresults::teamsPage(computed, input, settings);
        files << exports::File{folder + QStringLiteral("equipos.pdf"),
                               resultspdf::render(teamsReport)}
              << exports::File{folder + QStringLiteral("equipos.html"),
                               resultsreport::html(teamsReport)}
              << exports::File{
                     folder + QStringLiteral("equipos.csv"),
                     teams::csv(computed.teams, *settings.teams, computed.fractionDigits)};
    }
    for (const exports::File& f : std::as_const(files))
        w.files << f.windowsPath.mid(f.windowsPath.lastIndexOf(u'\\') + 1);
    w.result = exports::write(files);
    return w;
}

} // namespace

ResultsPublisher::ResultsPublisher(QWidget* parentWindow, RaceSession& raceSession,
                                   Dialogs& dialogSource, Notices& noticeArea)
    : QObject(parentWindow), window(parentWindow), session(raceSession), dialogs(dialogSource),
      notices(noticeArea)
{
}

ResultsPublisher::~ResultsPublisher()
{
    if (resultsThread)
        resultsThread->wait();
}

QString ResultsPublisher::besideState(const char* name) const
{
    return session.folder() + QLatin1String(name);
}

void ResultsPublisher::loadEntrants()
{
    const QString path =
        dialogs.openFile(window, FileRequest::csvToOpen(QStringLiteral("Cargar inscritos (CSV)")));
    if (path.isEmpty())
        return;

    const QString title = QStringLiteral("Inscritos");
    QFile file(path);
    if (file.size() > entrants::maxFileBytes) {
        dialogs.warn(window, title,
                     QStringLiteral("El fichero ocupa más de 20 MB: no parece una lista de "
                                    "inscritos. No se ha cargado nada."));
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        dialogs.warn(window, title,
                     QStringLiteral("No se pudo abrir %1: %2")
                         .arg(QDir::toNativeSeparators(path), fileerror::describe(file)));
        return;
    }
    // Read one byte past the limit: a file that grew since its size was taken is still refused.
    const QByteArray bytes = file.read(entrants::maxFileBytes + 1);
    const entrants::Loaded loaded = entrants::read(bytes);
    if (!loaded.refusal.isEmpty()) {
        dialogs.warn(window, title, loaded.refusal);
        return;
    }

    // The entrants without a category in the file take theirs from the table by their age.
    QList<entrants::Entrant> entered = loaded.entrants;
    const QString unassigned = categories::unassignedMessage(
        categories::apply(entered, CategoriesWindow::stored(), QDate::currentDate()));
    session.race().setEntrants(entered);
    const QString kept = savefile::write(besideState(entrants::keptFile), bytes);

    QString summary = QStringLiteral("Cargados %1 inscritos.").arg(loaded.entrants.size());
    const QString skipped = entrants::skippedMessage(loaded);
    if (!skipped.isEmpty())
        summary += u'\n' + skipped;
    if (!unassigned.isEmpty())
        summary += u'\n' + unassigned;
    if (!kept.isEmpty())
        summary += QStringLiteral("\nNo se pudo guardar una copia junto a MARVO.dat (%1): al "
                                  "volver a abrir el programa habrá que cargarlos otra vez.")
                       .arg(kept);
    dialogs.inform(window, title, summary);
}

void ResultsPublisher::reload()
{
    // What is beside the state file is the race's: a file that is not there, nothing.
    QFile file(besideState(entrants::keptFile));
    QList<entrants::Entrant> entered;
    if (file.open(QIODevice::ReadOnly)) {
        entered = entrants::read(file.read(entrants::maxFileBytes + 1)).entrants;
        categories::apply(entered, CategoriesWindow::stored(), QDate::currentDate());
    }
    session.race().setEntrants(entered);
    QFile name(besideState(entrants::raceNameFile));
    session.race().setName(
        name.open(QIODevice::ReadOnly) ? QString::fromUtf8(name.readAll()).trimmed() : QString());
}

bool ResultsPublisher::hasEntrants() const
{
    return !session.race().entrants().isEmpty() || !session.race().name().isEmpty();
}

void ResultsPublisher::forget()
{
    if (!hasEntrants())
        return;
    session.race().setName(QString());
    session.race().setEntrants({});
    session.clearMarks();
    QFile::remove(besideState(entrants::keptFile));
    QFile::remove(besideState(entrants::raceNameFile));
}

void ResultsPublisher::publish()
{
    if (resultsThread) {
        notices.show(QStringLiteral("Los resultados anteriores se están guardando todavía."));
        return;
    }
    Race& race = session.race();
    if (race.name().isEmpty()) {
        const QString name =
            dialogs
                .askText(window, QStringLiteral("Resultados"),
                         QStringLiteral("Nombre de la carrera (sale en cada página):"))
                .trimmed();
        if (name.isEmpty())
            return;
        race.setName(name);
        const QString reason = savefile::write(besideState(entrants::raceNameFile), name.toUtf8());
        if (!reason.isEmpty())
            notices.show(
                QStringLiteral("No se pudo guardar el nombre de la carrera (%1).").arg(reason));
    }

    raceresults::Input input;
    input.list1 = race.list1();
    input.list2 = race.list2();
    input.entrants = race.entrants();
    input.marks = race.marks();
    input.format = session.lapOptions().format;
    input.name = race.name();
    input.date = QDate::currentDate();
    write(input);
}

void ResultsPublisher::publishKept(const archive::Kept& kept)
{
    if (resultsThread) {
        notices.show(QStringLiteral("Los resultados anteriores se están guardando todavía."));
        return;
    }
    write(archive::resultsInput(kept, CategoriesWindow::stored()));
}

void ResultsPublisher::write(const raceresults::Input& input)
{
    // The files are drawn and written away from the window: a big race takes most of a second,
    // and the clock and the finish keys must not wait for it.
    auto written = std::make_shared<Written>();
    resultsThread =
        QThread::create([written, input, settings = raceresults::load(ProgramSettings())] {
            *written = writeResults(input, settings);
        });
    resultsThread->setParent(this);
    connect(resultsThread, &QThread::finished, this, [this, written] {
        resultsThread->deleteLater();
        resultsThread = nullptr;
        // The clock goes on: the outcome is a notice, not a box to close.
        if (!written->result.ok())
            notices.show(written->result.message);
        else
            notices.show(QStringLiteral("Resultados guardados en %1: %2.")
                             .arg(written->folder, written->files.join(QStringLiteral(", "))));
    });
    resultsThread->start(QThread::LowPriority);
}
