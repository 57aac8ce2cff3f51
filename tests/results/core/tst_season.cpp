// The series of races: a points table, the best results of each runner, places summed, a
// runner who changed category, ties, every refusal, the tables and spreadsheet, and a race's
// entries taken from its classification.
#include "results/core/season.h"

#include <QtTest>

namespace
{

using season::Entry;
using season::RaceResult;
using season::Rules;

Entry entry(const char* name, const char* categoria, int categoryPlace, int place)
{
    return Entry{{}, QString::fromUtf8(name), QString::fromUtf8(categoria),
                 {}, categoryPlace,           place};
}

const QStringList categories{QStringLiteral("Sénior"), QStringLiteral("Veterano")};

// Carmen runs Sénior in the first race, Veterano after; the third race writes its categories
// in another order and spelling.
const QList<RaceResult> races = {
    {QStringLiteral("Cross de Otoño"),
     QDate(2025, 10, 12),
     categories,
     {entry("Ana", "Sénior", 1, 1), entry("Bea", "Sénior", 2, 3), entry("Carmen", "Sénior", 3, 4),
      entry("Dora", "Veterano", 1, 2), entry("Eva", "Veterano", 2, 5)}},
    {QStringLiteral("Cross de Navidad"),
     QDate(2025, 12, 20),
     categories,
     {entry("Bea", "Sénior", 1, 1), entry("ANA", "Sénior", 2, 2), entry("Dora", "Veterano", 1, 3),
      entry("Carmen", "Veterano", 2, 4), entry("Fina", "Sénior", 3, 5)}},
    {QStringLiteral("Cross de Primavera"),
     QDate(2026, 4, 12),
     {QStringLiteral("veterano"), QStringLiteral("Senior")},
     {entry("Ana", "Sénior", 1, 1), entry("Carmen", "Veterano", 1, 2), entry("Bea", "Sénior", 2, 3),
      entry("Eva", "Veterano", 2, 4)}}};

const QList<int> points{10, 8, 6, 5};

// Each category as "position name total [results]", a discarded result in parentheses and a
// missed race as "-".
QString describe(const season::Series& s)
{
    QStringList parts;
    for (qsizetype c = 0; c < s.categories.size(); ++c) {
        QStringList rows;
        for (const season::Standing& st : s.standings[c]) {
            QStringList cells;
            for (qsizetype r = 0; r < st.perRace.size(); ++r)
                cells << (!st.perRace[r]  ? QStringLiteral("-")
                          : st.counted[r] ? QString::number(*st.perRace[r])
                                          : QStringLiteral("(%1)").arg(*st.perRace[r]));
            rows << QStringLiteral("%1 %2 %3 [%4]")
                        .arg(st.position)
                        .arg(st.name)
                        .arg(st.total)
                        .arg(cells.join(u' '));
        }
        parts << s.categories[c] + QStringLiteral(": ") + rows.join(QStringLiteral(", "));
    }
    return parts.join(QStringLiteral(" | "));
}

} // namespace

class SeasonTest : public QObject
{
    Q_OBJECT

private slots:
    void compute_data()
    {
        QTest::addColumn<QList<RaceResult>>("series");
        QTest::addColumn<Rules>("rules");
        QTest::addColumn<QString>("expected");

        QTest::newRow("points, all count; Carmen in her latest category with her Sénior points")
            << races << Rules{points, 0, true}
            << "Sénior: 1 Ana 28 [10 8 10], 2 Bea 26 [8 10 8], 3 Fina 6 [- 6 -] | "
               "Veterano: 1 Carmen 24 [6 8 10], 2 Dora 20 [10 10 -], 3 Eva 16 [8 - 8]";
        QTest::newRow("points, best 2 of 3")
            << races << Rules{points, 2, true}
            << "Sénior: 1 Ana 20 [10 (8) 10], 2 Bea 18 [8 10 (8)], 3 Fina 6 [- 6 -] | "
               "Veterano: 1 Dora 20 [10 10 -], 2 Carmen 18 [(6) 8 10], 3 Eva 16 [8 - 8]";
        QTest::newRow("places summed, best 2 of 3: one race is too few")
            << races << Rules{{}, 2, true}
            << "Sénior: 1 Ana 2 [1 (2) 1], 2 Bea 3 [2 1 (2)], 0 Fina 3 [- 3 -] | "
               "Veterano: 1 Dora 2 [1 1 -], 2 Carmen 3 [(3) 2 1], 3 Eva 4 [2 - 2]";
        QTest::newRow("places summed overall, all count: the others by races, then total")
            << races << Rules{{}, 0, false}
            << ": 1 Ana 4 [1 2 1], 2 Bea 7 [3 1 3], 3 Carmen 10 [4 4 2], 0 Dora 5 [2 3 -], "
               "0 Eva 9 [5 - 4], 0 Fina 5 [- 5 -]";
        const QList<RaceResult> level = {
            {QStringLiteral("A"),
             QDate(2026, 1, 1),
             {},
             {entry("X", "", 0, 1), entry("V", "", 0, 2), entry("Z", "", 0, 3),
              entry("Y", "", 0, 4), entry("W", "", 0, 5)}},
            {QStringLiteral("B"),
             QDate(2026, 2, 1),
             {},
             {entry("U", "", 0, 1), entry("W", "", 0, 3), entry("Y", "", 0, 4),
              entry("Z", "", 0, 5)}}};
        QTest::newRow("ten points each: more results, then the best one, then shared")
            << level << Rules{{10, 8, 6, 5, 4}, 0, false}
            << ": 1 W 10 [4 6], 1 Z 10 [6 4], 3 Y 10 [5 5], 4 U 10 [- 10], 4 X 10 [10 -], "
               "6 V 8 [8 -]";
    }
    void compute()
    {
        QFETCH(QList<RaceResult>, series);
        QFETCH(Rules, rules);
        QFETCH(QString, expected);
        const season::Series s = season::compute(series, rules);
        QCOMPARE(s.refusal, QString());
        QCOMPARE(describe(s), expected);
    }

    void refusals_data()
    {
        QTest::addColumn<QList<RaceResult>>("series");
        QTest::addColumn<Rules>("rules");
        QTest::addColumn<QString>("expected");

        QTest::newRow("no race") << QList<RaceResult>{} << Rules{points, 0, true}
                                 << "La serie no tiene ninguna carrera.";
        QList<RaceResult> other = races;
        other[1].categoryTable = {QStringLiteral("Sénior"), QStringLiteral("Júnior")};
        QTest::newRow("other categories")
            << other << Rules{points, 0, true}
            << "La carrera «Cross de Navidad» del 20/12/2025 usa otras categorías que «Cross de "
               "Otoño» del 12/10/2025: le falta «Veterano»; tiene además «Júnior».";
        QTest::newRow("best 4 of 3")
            << races << Rules{points, 4, true}
            << "Cuentan las 4 mejores carreras de cada corredor, pero la serie tiene 3: «Cross de "
               "Otoño» del 12/10/2025, «Cross de Navidad» del 20/12/2025, «Cross de Primavera» "
               "del 12/04/2026.";
        QTest::newRow("points going up")
            << races << Rules{{10, 8, 9}, 0, true}
            << "La tabla de puntos da 8 al puesto 2 y 9 al puesto 3: ningún puesto puede dar más "
               "puntos que el anterior.";
        QList<RaceResult> outside = races;
        outside[0].entries << entry("Gema", "Júnior", 1, 6);
        QTest::newRow("a category outside the table")
            << outside << Rules{points, 0, true}
            << "En la carrera «Cross de Otoño» del 12/10/2025, Gema tiene la categoría «Júnior», "
               "que no está entre las categorías de la carrera.";
        QList<RaceResult> twice = races;
        twice[2].entries << entry(" ána ", "Veterano", 3, 5);
        QTest::newRow("two runners of one name")
            << twice << Rules{{}, 0, false}
            << "En la carrera «Cross de Primavera» del 12/04/2026 hay dos corredores llamados "
               "«ána»: la serie no puede saber cuál es cuál. Distíngalos en las inscripciones "
               "(por ejemplo, con el segundo apellido).";
    }
    void refusals()
    {
        QFETCH(QList<RaceResult>, series);
        QFETCH(Rules, rules);
        QFETCH(QString, expected);
        const season::Series s = season::compute(series, rules);
        QCOMPARE(s.refusal, expected);
        QVERIFY(s.standings.isEmpty());
        QVERIFY(season::tables(s, series).isEmpty());
    }

    void publishing()
    {
        const QList<resultsreport::Table> t =
            season::tables(season::compute(races, Rules{points, 2, true}), races);
        QCOMPARE(t.size(), 2);
        QCOMPARE(t[0].title, "Categoría Sénior");
        QCOMPARE(t[0].header,
                 (QStringList{"Puesto", "Nombre", "12/10", "20/12", "12/04", "Total"}));
        QCOMPARE(t[0].rows, (QList<QStringList>{{"1", "Ana", "10", "(8)", "10", "20"},
                                                {"2", "Bea", "8", "10", "(8)", "18"},
                                                {"3", "Fina", "", "6", "", "6"}}));

        QCOMPARE(season::csv(season::compute(races, Rules{{}, 0, false}), races),
                 "\xEF\xBB\xBF"
                 "Categoría;Puesto;Nombre;Cross de Otoño 12/10/2025;Cross de Navidad 20/12/2025;"
                 "Cross de Primavera 12/04/2026;Carreras;Total\r\n"
                 "Sénior;1;Ana;1;2;1;3;4\r\nSénior;2;Bea;3;1;3;3;7\r\n"
                 "Veterano;3;Carmen;4;4;2;3;10\r\nVeterano;;Dora;2;3;;2;5\r\n"
                 "Veterano;;Eva;5;;4;2;9\r\nSénior;;Fina;;5;;1;5\r\n");
        QCOMPARE(season::personKey(QStringLiteral("  José   GARCÍA ")), "jose garcia");
    }

    void fromResults()
    {
        // Carlos, Ana, an unknown bib, Ana again and Bea finish; Dora does not.
        raceresults::Input input;
        input.name = QStringLiteral("Cross de Otoño");
        input.date = QDate(2025, 10, 12);
        const auto entrant = [](int bib, const char* nombre, const char* categoria,
                                const char* sexo) {
            entrants::Entrant e;
            e.bib = bib;
            e.nombre = QString::fromUtf8(nombre);
            e.apellidos = QStringLiteral("Ruiz");
            e.categoria = QString::fromUtf8(categoria);
            e.sexo = QString::fromUtf8(sexo);
            return e;
        };
        input.entrants = {entrant(5, "Ána", "Sénior", "F"), entrant(7, "Bea", "Veterano", "F"),
                          entrant(9, "Carlos", "Sénior", "M"), entrant(11, "Dora", "Sénior", "F")};
        input.list1 = {QStringLiteral("   1-   9- 00:20:00:000 - 0:00:00:000"),
                       QStringLiteral("   2-   5- 00:21:00:000 - 0:01:00:000"),
                       QStringLiteral("   3-  42- 00:22:00:000 - 0:02:00:000"),
                       QStringLiteral("   4-   5- 00:23:00:000 - 0:03:00:000"),
                       QStringLiteral("   5-   7- 00:24:00:000 - 0:04:00:000")};
        const RaceResult race = season::fromResults(raceresults::compute(input, {}), input);
        QCOMPARE(race.name, input.name);
        QCOMPARE(race.date, input.date);
        QCOMPARE(race.categoryTable, (QStringList{"Sénior", "Veterano"}));
        QStringList got;
        for (const Entry& e : race.entries)
            got << QStringLiteral("%1|%2|%3|%4|%5|%6")
                       .arg(e.person, e.name, e.categoria, e.sexo)
                       .arg(e.categoryPlace)
                       .arg(e.place);
        QCOMPARE(got, (QStringList{"carlos ruiz|Carlos Ruiz|Sénior|M|1|1",
                                   "ana ruiz|Ána Ruiz|Sénior|F|2|2",
                                   "bea ruiz|Bea Ruiz|Veterano|F|1|3"}));
    }
};

QTEST_APPLESS_MAIN(SeasonTest)
#include "tst_season.moc"
