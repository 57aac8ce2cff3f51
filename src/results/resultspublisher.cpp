#include "resultspublisher.h"

#include "app/core/racesession.h"
#include "app/dialogs.h"
#include "app/notices.h"
#include "base/fileerror.h"
#include "base/paths.h"
#include "base/savefile.h"
#include "files/core/exports.h"
#include "results/core/classification.h"
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

// The classification of the lines and the three files drawn and written from it.
exports::WriteResult writeResults(const QStringList& list1, const QStringList& list2,
                                  const QList<entrants::Entrant>& entered,
                                  const runnerstatus::Marks& marks, int digits, const QString& name,
                                  const QDate& date)
{
    const classification::Results results =
        classification::classify(list1, entered, list2, {marks, {}});
    const resultsreport::Report report =
        resultsreport::report(results, entered, digits, name, date, marks);
    return exports::write(
        {{QString::fromLatin1(resultsreport::pdfFile), resultspdf::render(report)},
         {QString::fromLatin1(resultsreport::htmlFile), resultsreport::html(report)},
         {QString::fromLatin1(resultsreport::csvFile),
          resultsreport::csv(results, entered, digits, marks)}});
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
    FileRequest request;
    request.title = QStringLiteral("Cargar inscritos (CSV)");
    request.filter = QStringLiteral("Hojas de cálculo CSV (*.csv *.CSV *.txt *.TXT);;Todos los "
                                    "ficheros (*)");
    request.defaultSuffix = QStringLiteral("csv");
    const QString path = dialogs.openFile(window, request);
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

    session.race().setEntrants(loaded.entrants);
    const QString kept = savefile::write(besideState(entrants::keptFile), bytes);

    QString summary = QStringLiteral("Cargados %1 inscritos.").arg(loaded.entrants.size());
    const QString skipped = entrants::skippedMessage(loaded);
    if (!skipped.isEmpty())
        summary += u'\n' + skipped;
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
    session.race().setEntrants(file.open(QIODevice::ReadOnly)
                                   ? entrants::read(file.read(entrants::maxFileBytes + 1)).entrants
                                   : QList<entrants::Entrant>());
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

    // The files are drawn and written away from the window: a big race takes most of a second,
    // and the clock and the finish keys must not wait for it.
    auto written = std::make_shared<exports::WriteResult>();
    resultsThread =
        QThread::create([written, list1 = race.list1(), list2 = race.list2(),
                         entered = race.entrants(), marks = race.marks(),
                         digits = resultsreport::fractionDigitsOf(session.lapOptions().format),
                         name = race.name(), date = QDate::currentDate()] {
            *written = writeResults(list1, list2, entered, marks, digits, name, date);
        });
    resultsThread->setParent(this);
    connect(resultsThread, &QThread::finished, this, [this, written] {
        resultsThread->deleteLater();
        resultsThread = nullptr;
        // The clock goes on: the outcome is a notice, not a box to close.
        if (!written->ok())
            notices.show(written->message);
        else
            notices.show(
                QStringLiteral("Resultados guardados en %1: resultados.pdf, resultados.html "
                               "y resultados.csv.")
                    .arg(QDir::toNativeSeparators(
                        QFileInfo(paths::local(QLatin1String(exports::folder))).absolutePath())));
    });
    resultsThread->start(QThread::LowPriority);
}
