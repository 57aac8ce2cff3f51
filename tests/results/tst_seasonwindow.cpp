// The season window through "Carrera → Carreras anteriores... → Temporada...": the checked kept
// races scored with the window's settings and published as files read back here, a series that
// cannot be scored told in the window with nothing written, and the settings kept for next time.
#include "app/core/archive.h"
#include "support/formfixture.h"
#include "support/races.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QTableWidget>

namespace
{

const QString usualPoints = QStringLiteral(
    "100, 95, 91, 88, 85, 82, 80, 78, 76, 74, 72, 70, 68, 66, 64, 62, 60, 58, 56, 54");

// Two Sénior and two Veterano runners.
const QByteArray entrantsCsv = "dorsal;nombre;apellidos;categoría;sexo\n"
                               "1;Ana;Gil;Sénior;F\n"
                               "2;Bea;Sanz;Sénior;F\n"
                               "3;Carmen;Ruiz;Veterano;F\n"
                               "4;Dora;Vila;Veterano;F\n";

// A stopped race whose bibs finished in this order, a minute apart (the state file keeps a
// results line with each split line).
RaceState finishes(const QList<int>& bibs)
{
    RaceState race = stoppedRace(2, 0);
    race.list1.clear();
    race.combo1.clear();
    race.list2.clear();
    for (int i = 0; i < bibs.size(); ++i) {
        const QString time = QStringLiteral("00:%1:00:000").arg(20 + i);
        race.combo1 << QStringLiteral("%1- %2 - 0:00:00:000").arg(i + 1, 4).arg(time);
        race.list1
            << QStringLiteral("%1-%2- %3 - 0:00:00:000").arg(i + 1, 4).arg(bibs[i], 4).arg(time);
    }
    return race;
}

// The kept races, listed newest first: Mayo (row 0), Abril (row 1), Marzo (row 2).
void keepRaces(FormFixture& f)
{
    const QString folder = f.path(QLatin1String(archive::folderName));
    const struct {
        const char* name;
        QDate date;
        QList<int> bibs;
    } kept[] = {{"Cross de Marzo", QDate(2026, 3, 1), {1, 3, 2, 4}},
                {"Cross de Abril", QDate(2026, 4, 5), {2, 4, 1}},
                {"Cross de Mayo", QDate(2026, 5, 10), {3, 1}}};
    for (const auto& k : kept) {
        QString error;
        archive::Details details;
        details.name = QString::fromUtf8(k.name);
        details.entrantsFile = entrantsCsv;
        QVERIFY(!archive::keep(folder, finishes(k.bibs), QDateTime(k.date, QTime(12, 0)), &error,
                               details)
                     .isEmpty());
    }
}

QString seasonFolder()
{
    return QStringLiteral("C/Carreras/copias/Temporada %1/")
        .arg(QDate::currentDate().toString(Qt::ISODate));
}

} // namespace

class SeasonWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void publish_data()
    {
        QTest::addColumn<QList<int>>("checked");
        QTest::addColumn<QString>("points");
        QTest::addColumn<int>("bestOf");
        QTest::addColumn<bool>("byCategory");
        QTest::addColumn<QString>("refusal");
        QTest::addColumn<QStringList>("rows");

        const QString header = QStringLiteral("Categoría;Puesto;Nombre;Cross de Marzo 01/03/2026;"
                                              "Cross de Abril 05/04/2026;Carreras;Total");
        // Marzo: Ana, Carmen, Bea, Dora; by category Ana 1, Bea 2, Carmen 1, Dora 2.
        // Abril: Bea, Dora, Ana; by category Bea 1, Ana 2, Dora 1.
        QTest::newRow("usual points by category: Ana and Bea level")
            << QList<int>{1, 2} << usualPoints << 0 << true << QString()
            << QStringList{header, "Sénior;1;Ana Gil;100;95;2;195",
                           "Sénior;1;Bea Sanz;95;100;2;195", "Veterano;1;Dora Vila;95;100;2;195",
                           "Veterano;2;Carmen Ruiz;100;;1;100"};
        QTest::newRow("places summed overall, the best one counts")
            << QList<int>{2, 1} << QString() << 1 << false << QString()
            << QStringList{header, "Sénior;1;Ana Gil;1;(3);2;1", "Sénior;1;Bea Sanz;(3);1;2;1",
                           "Veterano;3;Carmen Ruiz;2;;1;2", "Veterano;3;Dora Vila;(4);2;2;2"};
        QTest::newRow("one race checked")
            << QList<int>{0} << usualPoints << 0 << true
            << "Marque al menos dos carreras: una temporada tiene varias." << QStringList();
        QTest::newRow("a points value that is not a number")
            << QList<int>{1, 2} << "100, 9O, 80" << 0 << true
            << "«9O» no es un número de puntos: escriba los puntos de cada puesto separados por "
               "comas, o deje el campo vacío para sumar los puestos."
            << QStringList();
        QTest::newRow("best three of two races")
            << QList<int>{1, 2} << usualPoints << 3 << true
            << "Cuentan las 3 mejores carreras de cada corredor, pero la serie tiene 2: «Cross de "
               "Marzo» del 01/03/2026, «Cross de Abril» del 05/04/2026."
            << QStringList();
    }
    void publish()
    {
        QFETCH(QList<int>, checked);
        QFETCH(QString, points);
        QFETCH(int, bestOf);
        QFETCH(bool, byCategory);
        QFETCH(QString, refusal);
        QFETCH(QStringList, rows);

        FormFixture f;
        f.makeResultsFolder();
        keepRaces(f);
        f.open(stoppedRace(2, 0));
        f.trigger("anteriores");
        f.click("temporada");
        auto* races = f.child<QTableWidget>("temporadaCarreras");
        QCOMPARE(races->item(2, 1)->text(), QStringLiteral("Cross de Marzo"));
        for (int row : checked)
            races->item(row, 0)->setCheckState(Qt::Checked);
        f.child<QLineEdit>("temporadaPuntos")->setText(points);
        f.child<QSpinBox>("temporadaMejores")->setValue(bestOf);
        f.child<QCheckBox>("temporadaCategorias")->setChecked(byCategory);
        f.click("temporadaPublicar");

        if (!refusal.isEmpty()) {
            QTRY_COMPARE(f.label("temporadaProblemas")->text(), refusal);
            QVERIFY(!QDir(f.path(seasonFolder())).exists());
        } else {
            QTRY_VERIFY(f.label("temporadaEstado")->text().startsWith(u"Temporada publicada en"));
            QVERIFY(f.label("temporadaProblemas")->text().isEmpty());
            const QByteArray csv = f.readFile(seasonFolder() + QStringLiteral("temporada.csv"));
            QCOMPARE(
                QString::fromUtf8(csv.mid(3)).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts),
                rows);
            QVERIFY(
                f.readFile(seasonFolder() + QStringLiteral("temporada.pdf")).startsWith("%PDF"));
        }
        QVERIFY(f.dialogs.shown.isEmpty());

        // The settings come back the next time the program runs.
        f.close();
        f.open();
        f.trigger("anteriores");
        f.click("temporada");
        QCOMPARE(f.child<QLineEdit>("temporadaPuntos")->text(), points);
        QCOMPARE(f.child<QSpinBox>("temporadaMejores")->value(), bestOf);
        QCOMPARE(f.child<QCheckBox>("temporadaCategorias")->isChecked(), byCategory);
    }
};

QTEST_MAIN(SeasonWindowTest)
#include "tst_seasonwindow.moc"
