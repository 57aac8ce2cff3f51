// From a spreadsheet of entrants to results people read, in the real window: the entrants
// load (bad rows reported), check the bibs, survive a restart and go with a clear; the
// printed results carry the race name, the date and the page on every page.
#include "app/core/archive.h"
#include "app/core/statefile.h"
#include "base/programsettings.h"
#include "results/core/raceresults.h"
#include "support/formfixture.h"

#include <QLabel>
#include <QListWidget>
#include <QProcess>
#include <QTableWidget>

namespace
{

QString pdfText(const QString& path)
{
    QProcess p;
    p.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), path, QStringLiteral("-")});
    if (!p.waitForFinished(30000) || p.exitCode() != 0)
        return QStringLiteral("pdftotext failed: ") + p.readAllStandardError();
    return QString::fromUtf8(p.readAllStandardOutput());
}

// Every file of a race's results folder: the PDFs as their text, the others as their bytes.
QMap<QString, QByteArray> published(const QString& folder)
{
    QMap<QString, QByteArray> files;
    for (const QFileInfo& info : QDir(folder).entryInfoList(QDir::Files)) {
        QFile file(info.filePath());
        files[info.fileName()] = info.suffix() == u"pdf" ? pdfText(info.filePath()).toUtf8()
                                 : file.open(QIODevice::ReadOnly) ? file.readAll()
                                                                  : QByteArray();
    }
    return files;
}

} // namespace

class PublishingTest : public QObject
{
    Q_OBJECT

private slots:
    void entrantsToPrintedResults()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty())
            QSKIP("pdftotext (poppler-utils) is not installed");
        FormFixture f;
        f.makeResultsFolder();
        // 120 finishers a second apart, then bib 0, a bib nobody entered and a repeat.
        RaceState s;
        s.formato = 2;
        s.modoCaptura = 1;
        const auto line = [](int rank, int bib, int second) {
            return QStringLiteral("%1-%2- 00:%3:%4:000 - 0:00:00:000")
                .arg(rank, 4)
                .arg(bib, 4)
                .arg(10 + second / 60, 2, 10, QLatin1Char('0'))
                .arg(second % 60, 2, 10, QLatin1Char('0'));
        };
        QByteArray csv = "Dorsal;Nombre;Apellidos;Club;Categoría\n";
        for (int i = 1; i <= 120; ++i) {
            s.list1 << line(i, i, i);
            csv += QStringLiteral("%1;Nombre%1;Apellido;Club %2;%3\n")
                       .arg(i)
                       .arg(i % 7)
                       .arg(i % 2 ? QStringLiteral("Sub-23") : QStringLiteral("Élite"))
                       .toUtf8();
        }
        s.list1 << line(121, 0, 130) << line(122, 500, 131) << line(123, 7, 132);
        csv += "x;sin dorsal;;;\n";
        s.combo1 = s.list1;
        f.writeFile("MARVO.dat", statefile::encode(s));
        f.writeFile("inscritos.csv", csv);
        f.open();

        f.dialogs.files << f.path("inscritos.csv");
        f.trigger("inscritos");
        QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("inform"));
        QVERIFY(f.dialogs.shown.last().text.contains(QStringLiteral("Cargados 120 inscritos")));
        QVERIFY(f.dialogs.shown.last().text.contains(QStringLiteral("(líneas 122)")));
        QLabel* status = f.label("estadoDorsales");
        QCOMPARE(status->text(),
                 QStringLiteral("sin dorsal: 1   dorsales repetidos: 1   no inscritos: 1"));
        QVERIFY(f.list("List1")->item(121)->toolTip().contains(QStringLiteral("inscritos")));

        // The race name is asked once, and kept.
        f.dialogs.texts << QStringLiteral("Trail de Prueba");
        f.trigger("resultados");
        QTRY_VERIFY(f.label("aviso")->text().contains(QStringLiteral("Resultados guardados")));
        // The race's own folder in the results folder, by its date and name.
        const QString folder = f.path("C/Carreras/copias/") +
                               QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")) +
                               " Trail de Prueba/";
        const QString text = pdfText(folder + "resultados.pdf");
        // Every page has the header: 120 + 120 rows and the tables apart fill five pages.
        const int pages = static_cast<int>(text.count(QStringLiteral("Trail de Prueba")));
        QVERIFY2(pages >= 4, qPrintable(text.left(400)));
        QCOMPARE(text.count(QStringLiteral(" de %1").arg(pages)), pages);
        QVERIFY(text.contains(QStringLiteral("Página %1 de %1").arg(pages)));
        QVERIFY(text.contains(QDate::currentDate().toString(QStringLiteral("dd/MM/yyyy"))));
        QVERIFY(text.indexOf(QStringLiteral("Categoría Élite")) > text.indexOf("Categoría Sub-23"));
        QVERIFY(text.contains(QRegularExpression(
            QStringLiteral("1 +1 +Nombre1 Apellido +Club 1 +Sub-23 +0:10:01,000"))));
        QVERIFY(QFile::exists(folder + "resultados.csv") &&
                QFile::exists(folder + "resultados.html"));

        // A restart keeps the entrants and the name: nothing is asked again.
        f.click("Command5");
        f.close();
        f.open();
        QCOMPARE(f.label("estadoDorsales")->text(),
                 QStringLiteral("sin dorsal: 1   dorsales repetidos: 1   no inscritos: 1"));
        QDir(f.path("C/Carreras/copias/")).removeRecursively();
        f.trigger("resultados");
        QVERIFY(!f.dialogs.unexpected);
        // A missing results folder: the notice says so, and the race goes on untouched.
        QTRY_VERIFY(f.label("aviso")->text().contains(QStringLiteral("No se pudieron guardar")));
        QCOMPARE(f.lines("List1").size(), 123);

        // Clearing the race empties the entrants too; with nothing recorded it still asks first.
        f.dialogs.answers << Dialogs::Ok;
        f.click("Command4");
        QVERIFY(!QFile::exists(f.path("MARVO-inscritos.csv")));
        f.dialogs.files << f.path("inscritos.csv");
        f.trigger("inscritos");
        f.dialogs.answers << Dialogs::Cancel;
        f.click("Command4");
        QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("confirm"));
        QVERIFY(QFile::exists(f.path("MARVO-inscritos.csv")));
    }

    void aKeptRacePublishesWhatItDidAsTheCurrentOne()
    {
        // Categories by age, awards, teams and a disqualification: cleared, the race goes to
        // "Carreras anteriores" with its entrants, name and statuses, and its results from
        // there are the files it published as the current race.
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty())
            QSKIP("pdftotext (poppler-utils) is not installed");
        FormFixture f;
        f.makeResultsFolder();
        {
            ProgramSettings settings;
            categories::save(settings, categories::defaultTable());
            raceresults::Settings options;
            options.precision = classification::Precision::WholeSecond;
            options.awards.overallExcluded = true;
            options.teams = teams::Rules{2, teams::Rules::Score::Points, false};
            raceresults::save(settings, options);
        }
        RaceState s;
        s.formato = 2;
        const char* const times[] = {"00:20:00:100", "00:20:00:900", "00:21:30:000", "00:22:00:000",
                                     "00:23:10:500"};
        for (int i = 1; i <= 5; ++i)
            s.list1 << QStringLiteral("%1-%2- %3 - 0:00:00:000")
                           .arg(i, 4)
                           .arg(6 - i, 4)
                           .arg(QLatin1String(times[i - 1]));
        s.combo1 = s.list1;
        f.writeFile("MARVO.dat", statefile::encode(s));
        f.writeFile("MARVO-situaciones.txt", "2\tDSQ\tRecorte\r\n");
        f.writeFile("inscritos.csv", "dorsal;nombre;apellidos;sexo;nacimiento;club\n"
                                     "1;Ana;Sanz;F;1990;Norte\n2;Luis;Gómez;M;1980;Norte\n"
                                     "3;Marta;Vela;F;2001;Sur\n4;Pedro;Ibáñez;M;1975;Sur\n"
                                     "5;Sara;Llorente;F;1988;Sur\n6;Tomás;Ruiz;M;1999;Norte\n");
        f.open();
        f.dialogs.files << f.path("inscritos.csv");
        f.trigger("inscritos");
        f.dialogs.texts << QStringLiteral("Cross del Test");
        f.trigger("resultados");
        QTRY_VERIFY(f.label("aviso")->text().contains(QStringLiteral("Resultados guardados")));
        const QString folder = f.path("C/Carreras/copias/") +
                               QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")) +
                               " Cross del Test/";
        const QMap<QString, QByteArray> live = published(folder);
        QCOMPARE(live.keys(),
                 QStringList({"equipos.csv", "equipos.html", "equipos.pdf", "premios.pdf",
                              "resultados.csv", "resultados.html", "resultados.pdf"}));
        // Times to the second: bibs 5 and 4 share first place; Luis (2) disqualified; Tomás
        // (6) did not start.
        QVERIFY(live["resultados.csv"].contains(
            "1;5;Sara;Llorente;Sur;Veteranas A;F;1;0:20:00;0:20:01;;"));
        QVERIFY(live["resultados.csv"].contains(
            "1;4;Pedro;Ibáñez;Sur;Veteranos B;M;1;0:20:00;0:20:01;;"));
        QVERIFY(live["resultados.csv"].contains("Descalificado (Recorte)"));
        QVERIFY(live["resultados.csv"].contains("No salió"));

        f.dialogs.answers << Dialogs::Ok;
        f.click("Command4");
        QVERIFY(f.lines("List1").isEmpty());
        QDir(folder).removeRecursively();
        f.trigger("anteriores");
        f.child<QTableWidget>("carrerasLista")->selectRow(0);
        f.label("aviso")->clear();
        f.button("resultadosCarrera")->click();
        QTRY_VERIFY(f.label("aviso")->text().contains(QStringLiteral("Resultados guardados")));
        QCOMPARE(published(folder), live);
        QVERIFY(!f.dialogs.unexpected);
    }
};

QTEST_MAIN(PublishingTest)
#include "tst_publishing.moc"
