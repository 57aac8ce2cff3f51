// A prepared race worked out by hand: entrants with dates of birth and no category, the
// timekeeper's statuses, times that tie once rounded, teams, and awards with the overall winners
// out of their categories. Every expected value below was computed on paper.
#include "results/core/categories.h"
#include "results/core/raceresults.h"

#include <QtTest>

namespace
{

// Categories from the default table, ages at 31 December 2026.
const QByteArray entrantsCsv = "dorsal;nombre;apellidos;sexo;nacimiento;club\r\n"
                               "1;Ana;López;F;1990;Norte\r\n"       // 36 Veteranas A
                               "2;Bea;Ruiz;F;2000-03-01;Norte\r\n"  // 26 Senior femenino
                               "3;Carlos;Díaz;M;15/06/1980;Sur\r\n" // 46 Veteranos B
                               "4;David;Gil;M;1995;Sur\r\n"         // 31 Senior masculino
                               "5;Eva;Mar;F;1985;Norte\r\n"         // 41 Veteranas A
                               "6;Félix;Paz;M;1982;Sur\r\n"         // 44 Veteranos A
                               "7;Gema;Sol;F;1970;Norte\r\n"        // 56 Veteranas C
                               "8;Hugo;Val;M;1990;Sur\r\n"          // 36 Veteranos A
                               "9;Iván;Rey;M;1999;Este\r\n"         // 27 Senior masculino
                               "10;Juan;Ros;M;1960;Este\r\n"        // did not start
                               "11;Lucía;Paz;F;1992;Este\r\n"       // did not finish
                               "12;Mario;Luz;M;1988;Este\r\n";      // disqualified

// The finishes as List1 holds them, in Milesimas.
QStringList finishes()
{
    const QList<std::pair<int, const char*>> taken{
        {4, "00:30:00:200"}, {9, "00:30:00:800"}, {12, "00:30:05:000"}, {8, "00:31:10:050"},
        {6, "00:31:10:090"}, {1, "00:32:00:000"}, {3, "00:33:30:500"},  {2, "00:34:00:000"},
        {5, "00:34:00:999"}, {7, "00:40:00:000"}, {99, "00:41:00:000"}, {4, "00:42:00:000"}};
    QStringList lines;
    for (qsizetype i = 0; i < taken.size(); ++i)
        lines << QStringLiteral("%1-%2- %3 - 0:00:00:000")
                     .arg(i + 1, 4)
                     .arg(taken[i].first, 4)
                     .arg(QLatin1String(taken[i].second));
    return lines;
}

raceresults::Input race()
{
    raceresults::Input input;
    input.list1 = finishes();
    input.entrants = entrants::read(entrantsCsv).entrants;
    categories::apply(input.entrants, categories::defaultTable(), QDate(2026, 5, 10));
    using runnerstatus::Kind;
    input.marks = {{11, {Kind::DidNotFinish, {}}},
                   {12, {Kind::Disqualified, QStringLiteral("Recorte")}}};
    input.format = 2;
    input.name = QStringLiteral("Trofeo de prueba");
    input.date = QDate(2026, 5, 10);
    return input;
}

// "bib:place" for each ranked runner, in order; "bib:place:category place" with categories.
QString ranking(const classification::Results& r)
{
    QStringList out;
    for (const classification::Row& row : r.rows)
        if (row.status == classification::Status::Ranked)
            out << QStringLiteral("%1:%2:%3")
                       .arg(row.bib)
                       .arg(row.position)
                       .arg(row.categoryPosition);
    return out.join(u' ');
}

QString podiumsText(const raceresults::Computed& c)
{
    QStringList out;
    for (const awards::Podium& p : c.podiums) {
        QStringList winners;
        for (const awards::Winner& w : p.winners)
            winners << QStringLiteral("%1=%2").arg(c.results.rows[w.row].bib).arg(w.place);
        out << p.title + u' ' + winners.join(u',');
    }
    return out.join(QStringLiteral(" | "));
}

} // namespace

class RaceResultsTest : public QObject
{
    Q_OBJECT

private slots:
    void byHand_data()
    {
        using P = classification::Precision;
        QTest::addColumn<P>("precision");
        QTest::addColumn<bool>("excluded");
        QTest::addColumn<QString>("ranking");
        QTest::addColumn<QString>("times"); // of bibs 4, 9, 8 and 6, as published
        QTest::addColumn<QString>("podiums");
        // As taken: no ties. Overall winners out of their categories: Senior masculino and
        // the women's categories but Veteranas C are left with nobody.
        QTest::newRow("as taken, overall winners out")
            << P::AsTaken << true << "4:1:1 9:2:2 8:3:1 6:4:2 1:5:1 3:6:1 2:7:1 5:8:2 7:9:1"
            << "0:30:00,200 0:30:00,800 0:31:10,050 0:31:10,090"
            << "General masculina 4=1,9=2,8=3 | General femenina 1=1,2=2,5=3 | "
               "Categoría Veteranas A  | Categoría Senior femenino  | Categoría Veteranos B 3=1 | "
               "Categoría Senior masculino  | Categoría Veteranos A 6=1 | "
               "Categoría Veteranas C 7=1";
        // To the tenth, rounded up: 8 and 6 both 31:10.1, sharing third place.
        QTest::newRow("tenth, the overall winners repeat")
            << P::Tenth << false << "4:1:1 9:2:2 8:3:1 6:3:1 1:5:1 3:6:1 2:7:1 5:8:2 7:9:1"
            << "0:30:00,2 0:30:00,8 0:31:10,1 0:31:10,1"
            << "General masculina 4=1,9=2,8=3,6=3 | General femenina 1=1,2=2,5=3 | "
               "Categoría Veteranas A 1=1,5=2 | Categoría Senior femenino 2=1 | "
               "Categoría Veteranos B 3=1 | Categoría Senior masculino 4=1,9=2 | "
               "Categoría Veteranos A 8=1,6=1 | Categoría Veteranas C 7=1";
        // To the whole second, rounded up: 4 and 9 share first, 8 and 6 third; 2 (34:00) and
        // 5 (34:00.999 → 34:01) stay apart.
        QTest::newRow("whole second, overall winners out")
            << P::WholeSecond << true << "4:1:1 9:1:1 8:3:1 6:3:1 1:5:1 3:6:1 2:7:1 5:8:2 7:9:1"
            << "0:30:01 0:30:01 0:31:11 0:31:11"
            << "General masculina 4=1,9=1,8=3,6=3 | General femenina 1=1,2=2,5=3 | "
               "Categoría Veteranas A  | Categoría Senior femenino  | Categoría Veteranos B 3=1 | "
               "Categoría Senior masculino  | Categoría Veteranos A  | Categoría Veteranas C 7=1";
    }

    void byHand()
    {
        QFETCH(classification::Precision, precision);
        QFETCH(bool, excluded);
        raceresults::Settings settings;
        settings.precision = precision;
        settings.awards.overallExcluded = excluded;
        settings.teams = teams::Rules{3, teams::Rules::Score::Points, false};
        const raceresults::Input input = race();
        const raceresults::Computed c = raceresults::compute(input, settings);
        QTEST(ranking(c.results), "ranking");
        QStringList times;
        for (const int bib : {4, 9, 8, 6})
            for (const classification::Row& row : c.results.rows)
                if (row.bib == bib && row.status == classification::Status::Ranked)
                    times << resultsreport::clockText(*row.timeMs, c.fractionDigits);
        QTEST(times.join(u' '), "times");
        // Podiums left empty are not printed: compare the printed ones.
        QString printed = podiumsText(c);
        QFETCH(QString, podiums);
        QStringList expected;
        for (const QString& p : podiums.split(QStringLiteral(" | ")))
            if (!p.endsWith(u' '))
                expected << p;
        QCOMPARE(printed, expected.join(QStringLiteral(" | ")));

        // Not classified, by category then status: Veteranos A's disqualified 12, Veteranos
        // C's 10 who did not start, Senior femenino's 11 who did not finish.
        QStringList apart;
        for (const classification::Row& row : c.results.unclassified)
            apart << QStringLiteral("%1 %2").arg(row.bib).arg(runnerstatus::shortLabel(row.kind));
        QCOMPARE(apart.join(u','), QStringLiteral("11 DNF,12 DSQ,10 DNS"));

        // Teams by places, three to score: Sur 1+3+4 = 8 (with 8 and 6 tied third, 1+3+3), Norte
        // 5+7+8 = 20, Este incomplete (Iván alone: Lucía did not finish, Mario disqualified).
        QCOMPARE(c.teams.size(), 3);
        QCOMPARE(c.teams[0].name, QStringLiteral("Sur"));
        QCOMPARE(c.teams[1].name, QStringLiteral("Norte"));
        QCOMPARE(c.teams[1].points, 20);
        QVERIFY(!c.teams[2].complete);
        QCOMPARE(c.teams[0].points, precision == classification::Precision::AsTaken ? 8 : 7);

        // The incidents, in the order of the finishes: bib 99 not entered, bib 4 again.
        QStringList incidents;
        for (const raceresults::Incident& i : c.incidents)
            incidents << QStringLiteral("%1 %2").arg(i.bib).arg(i.kind);
        QCOMPARE(incidents.join(u','), QStringLiteral("99 Dorsal no inscrito,4 Llegada repetida"));
        // The first page counts each status.
        const resultsreport::Report report = raceresults::results(c, input);
        QStringList summary;
        for (const resultsreport::Summary& s : report.summary)
            summary << s.text;
        QCOMPARE(
            summary.join(QStringLiteral(" · ")),
            QStringLiteral("Clasificados: 9 · Sin identificar: 1 · Repetidos: 1 · No terminado: "
                           "1 · Descalificado: 1 · No salió: 1 · Incidencias: 2"));
    }
};

QTEST_GUILESS_MAIN(RaceResultsTest)
#include "tst_raceresults.moc"
