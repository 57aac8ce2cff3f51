// Results people read for a big race: a CSV of 10,000 entrants in 20 categories, 10,000
// finishers, the three files written.
//   build/bench/bench_results [folder to keep the files in]
#include "benchutil.h"
#include "files/core/exports.h"
#include "results/core/classification.h"
#include "results/core/entrants.h"
#include "results/core/resultsreport.h"
#include "results/resultspdf.h"

#include <QDir>
#include <QGuiApplication>
#include <QTemporaryDir>

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    QTemporaryDir drive;
    const QString kept = argc > 1 ? QString::fromLocal8Bit(argv[1]) : drive.path();
    qputenv("MARVOLENDO_DRIVE_C", kept.toLocal8Bit());
    QDir(kept).mkpath(QStringLiteral("Carreras/copias"));

    QByteArray csv = "Dorsal;Nombre;Apellidos;Club;Categoría;Sexo\r\n";
    QStringList list1;
    for (int i = 1; i <= 10000; ++i) {
        csv +=
            QStringLiteral("%1;Nombre%1;Apellido%2 Segundo;Club Deportivo %3;Categoría %4;%5\r\n")
                .arg(i)
                .arg(i % 997)
                .arg(i % 300)
                .arg(i % 20)
                .arg(i % 2 ? QStringLiteral("M") : QStringLiteral("F"))
                .toUtf8();
        // Finishers in an order other than the bibs', every 50th without a bib.
        const int bib = i % 50 == 0 ? 0 : (i * 7919) % 10000 + 1;
        list1 << QStringLiteral("%1-%2- %3 - 0:00:00:000").arg(i, 4).arg(bib, 4).arg(finishTime(i));
    }

    std::printf("CSV of %lld bytes, 10,000 entrants; 10,000 finishers\n",
                static_cast<long long>(csv.size()));
    QList<entrants::Entrant> entered;
    report("load the entrants' CSV", measure(11, [&] { entered = entrants::read(csv).entrants; }),
           500);

    classification::Results results;
    resultsreport::Report tables;
    report("classify (general and 20 categories)", measure(11, [&] {
               results = classification::classify(list1, entered, {});
               tables = resultsreport::report(results, entered, 3, QStringLiteral("Bench"),
                                              QDate(2026, 11, 23));
           }));
    QByteArray pdf, html, sheet;
    report("resultados.pdf", measure(5, [&] { pdf = resultspdf::render(tables); }), 500);
    report("resultados.html", measure(11, [&] { html = resultsreport::html(tables); }), 500);
    report("resultados.csv", measure(11, [&] { sheet = resultsreport::csv(results, entered, 3); }),
           500);
    report("the whole results: classify, draw, write the three files",
           measure(
               5,
               [&] {
                   const classification::Results r = classification::classify(list1, entered, {});
                   const resultsreport::Report t = resultsreport::report(
                       r, entered, 3, QStringLiteral("Bench"), QDate(2026, 11, 23));
                   const QString folder = QLatin1String(exports::folder);
                   exports::write({{folder + "resultados.pdf", resultspdf::render(t)},
                                   {folder + "resultados.html", resultsreport::html(t)},
                                   {folder + "resultados.csv", resultsreport::csv(r, entered, 3)}});
               }),
           1000);
    std::printf("sizes: pdf %lld KB, html %lld KB, csv %lld KB\n",
                static_cast<long long>(pdf.size() / 1024),
                static_cast<long long>(html.size() / 1024),
                static_cast<long long>(sheet.size() / 1024));
    return 0;
}
