// The team classification: time or points, mixed or by sex, ties, incomplete teams, and the
// tables and the spreadsheet made of it.
#include "results/core/teams.h"

#include <QtTest>

namespace
{

using teams::Rules;
using teams::Runner;
using Score = teams::Rules::Score;

Runner runner(int place, int bib, const char* team, const char* sexo, qint64 timeMs)
{
    return Runner{bib,
                  QStringLiteral("N%1").arg(bib),
                  QString::fromUtf8(team),
                  QString::fromUtf8(sexo),
                  place,
                  timeMs};
}

// Eleven finishers: Sur spelled three ways, one runner without a team, one without a sex.
const QList<Runner> race = {
    runner(1, 11, "Sur", "M", 600000),           runner(2, 21, "Norte", "Mujer", 610000),
    runner(3, 12, "Sur", "hombre", 620000),      runner(4, 31, "Este", "H", 630000),
    runner(5, 22, "Norte", "Masculino", 640000), runner(6, 99, "", "F", 650000),
    runner(7, 13, "SUR ", "FEMENINO", 660000),   runner(8, 32, "Este", "femenina", 670000),
    runner(9, 23, "Norte", "f", 680000),         runner(10, 41, "Oeste", "Hombres", 690000),
    runner(11, 14, "  sur", "", 700000)};

QString bibs(const QList<Runner>& runners)
{
    QStringList b;
    for (const Runner& r : runners)
        b << QString::number(r.bib);
    return b.join(u',');
}

// Each team as "position name sex time/points [scorers] [others]", "i" when incomplete.
QString describe(const QList<teams::Team>& scored)
{
    QStringList rows;
    for (const teams::Team& t : scored)
        rows << QStringLiteral("%1 %2%3 %4/%5 [%6] [%7]%8")
                    .arg(t.position)
                    .arg(t.name, t.sex.isEmpty() ? QString() : u' ' + t.sex.left(1))
                    .arg(t.totalMs)
                    .arg(t.points)
                    .arg(bibs(t.scorers), bibs(t.others),
                         t.complete ? QString() : QStringLiteral(" i"));
    return rows.join(QStringLiteral(" | "));
}

} // namespace

class TeamsTest : public QObject
{
    Q_OBJECT

private slots:
    void score_data()
    {
        QTest::addColumn<QList<Runner>>("runners");
        QTest::addColumn<Rules>("rules");
        QTest::addColumn<QString>("expected");

        QTest::newRow("time, two score, one spelling of Sur, the incomplete last")
            << race << Rules{2, Score::Time, false}
            << "1 Sur 1220000/4 [11,12] [13,14] | 2 Norte 1250000/7 [21,22] [23] | "
               "3 Este 1300000/12 [31,32] [] | 0 Oeste 690000/10 [41] [] i";
        QTest::newRow("points, three score: the incomplete by their number of runners")
            << race << Rules{3, Score::Points, false}
            << "1 Sur 1880000/11 [11,12,13] [14] | 2 Norte 1930000/16 [21,22,23] [] | "
               "0 Este 1300000/12 [31,32] [] i | 0 Oeste 690000/10 [41] [] i";
        QTest::newRow("by sex: places among the sex, the incomplete by their points")
            << race << Rules{2, Score::Points, true}
            << "1 Sur M 1220000/3 [11,12] [] | 0 Este M 630000/3 [31] [] i | "
               "0 Norte M 640000/4 [22] [] i | 0 Oeste M 690000/5 [41] [] i | "
               "1 Norte F 1290000/6 [21,23] [] | 0 Sur F 660000/3 [13] [] i | "
               "0 Este F 670000/4 [32] [] i";
        const QList<Runner> level = {runner(1, 1, "A", "", 100000), runner(2, 2, "B", "", 200000),
                                     runner(3, 3, "B", "", 300000), runner(4, 4, "A", "", 400000)};
        QTest::newRow("equal times: the last scorer ahead wins")
            << level << Rules{2, Score::Time, false}
            << "1 B 500000/5 [2,3] [] | 2 A 500000/5 [1,4] []";
        const QList<Runner> three = {runner(1, 1, "A", "", 1), runner(2, 2, "C", "", 1),
                                     runner(3, 3, "B", "", 1), runner(4, 4, "B", "", 1),
                                     runner(5, 5, "C", "", 1), runner(6, 6, "A", "", 1)};
        QTest::newRow("three teams on 7 points: by their last scorer")
            << three << Rules{2, Score::Points, false}
            << "1 B 2/7 [3,4] [] | 2 C 2/7 [2,5] [] | 3 A 2/7 [1,6] []";
        QTest::newRow("no scorer: refused") << race << Rules{0, Score::Time, false} << "";
    }
    void score()
    {
        QFETCH(QList<Runner>, runners);
        QFETCH(Rules, rules);
        QFETCH(QString, expected);
        QCOMPARE(describe(teams::score(runners, rules)), expected);
    }

    void refusalAndWithoutSex()
    {
        QCOMPARE(teams::refusal(Rules{0}),
                 "Para clasificar equipos debe puntuar al menos un corredor por equipo (ahora 0).");
        QCOMPARE(
            teams::withoutSexMessage(race + QList<Runner>{runner(12, 15, "Este", "X", 1)}),
            "Fuera de la clasificación por equipos por sexo, sin un sexo reconocible (M, H, F, "
            "Hombre, Mujer, Masculino, Femenino): N14 (dorsal 14, sin sexo); N15 (dorsal 15, "
            "sexo «X»).");
        QCOMPARE(teams::withoutSexMessage(race.mid(0, 10)), QString());
    }

    void tablesBySex()
    {
        const Rules rules{2, Score::Points, true};
        const QList<resultsreport::Table> t = teams::tables(teams::score(race, rules), rules, 0);
        QCOMPARE(t.size(), 2);
        QCOMPARE(t[0].title, "Clasificación por equipos · Masculino");
        QCOMPARE(t[1].label, "Equipos · Femenino");
        QCOMPARE(t[1].header, (QStringList{"Puesto", "Equipo", "Puntos", "Corredores"}));
        QCOMPARE(t[1].rows, (QList<QStringList>{{"1", "Norte", "6", "N21 (1), N23 (5)"},
                                                {"", "Sur (incompleto)", "3", "N13 (3)"},
                                                {"", "Este (incompleto)", "4", "N32 (4)"}}));
    }

    void spreadsheet()
    {
        const Rules rules{2, Score::Time, false};
        QCOMPARE(teams::csv(teams::score(race, rules), rules, 2),
                 "\xEF\xBB\xBFPuesto;Equipo;Tiempo;Puntúan;Otros corredores;Observaciones\r\n"
                 "1;Sur;0:20:20,00;N11 (1), N12 (3);N13 (7), N14 (11);\r\n"
                 "2;Norte;0:20:50,00;N21 (2), N22 (5);N23 (9);\r\n"
                 "3;Este;0:21:40,00;N31 (4), N32 (8);;\r\n"
                 ";Oeste;0:11:30,00;N41 (10);;Incompleto: 1 de 2\r\n");
    }
};

QTEST_APPLESS_MAIN(TeamsTest)
#include "tst_teams.moc"
