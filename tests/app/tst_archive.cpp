// Every race kept: a clear and a compact toggle keep the race in MARVO-archivo (a refused
// recovery: tst_recovery); the list of kept races exports one without touching the current
// race, or makes it the current race again; a folder that cannot be written or a damaged file
// stop nothing.
#include "app/core/archive.h"
#include "app/core/statefile.h"
#include "support/formfixture.h"
#include "support/races.h"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>

namespace
{

QString folder(FormFixture& f)
{
    return f.path(QLatin1String(archive::folderName));
}

QTableWidget* pastRaces(FormFixture& f)
{
    f.trigger("anteriores");
    return f.child<QTableWidget>("carrerasLista");
}

} // namespace

class ArchiveTest : public QObject
{
    Q_OBJECT

private slots:
    void clearThenRestore()
    {
        FormFixture f;
        f.open(stoppedRace(2, 0));
        const QStringList lines = f.lines("List1");
        f.click("Command2(0)"); // the stopped clock moved to 00:01:00
        f.dialogs.answers = {Dialogs::Ok};
        f.click("Command4");
        QVERIFY(f.lines("List1").isEmpty());
        QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:00:00"));
        QCOMPARE(archive::list(folder(f)).size(), 1);

        QTableWidget* table = pastRaces(f);
        QCOMPARE(table->rowCount(), 1);
        QCOMPARE(table->item(0, 1)->text(), QStringLiteral("2"));
        QCOMPARE(table->item(0, 2)->text(), QStringLiteral("00:12:30:125"));
        QCOMPARE(table->item(0, 3)->text(), QStringLiteral("Milesimas"));
        f.dialogs.answers = {Dialogs::Ok};
        f.button("recuperarCarrera")->click();
        QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("confirm"));
        QCOMPARE(f.lines("List1"), lines);
        QCOMPARE(f.lines("List2"), stoppedRace(2, 0).list2);
        QCOMPARE(f.label("Label2")->text(), QStringLiteral("2"));
        QCOMPARE(statefile::read(f.path("MARVO.dat")).state.list1, lines);
        // The emptied race at zero was not worth keeping; the next finish is rank 3.
        QCOMPARE(archive::list(folder(f)).size(), 1);
        QVERIFY(!f.dialogs.unexpected);
    }

    void compactToggleKeepsTheRace()
    {
        FormFixture f;
        f.open(stoppedRace(2, 0));
        f.trigger("opp4"); // the compact window empties the results
        QVERIFY(f.lines("List1").isEmpty());
        QCOMPARE(archive::list(folder(f)).first().race.list1, stoppedRace(2, 0).list1);
    }

    void exportLeavesTheCurrentRaceUntouched()
    {
        FormFixture f;
        f.makeResultsFolder();
        f.writeFile("MARVO.dat", statefile::encode(runningRace()));
        QString error;
        RaceState other = stoppedRace(2, 1);
        other.list1[0] = QStringLiteral("   1-  99- 00:12:30:125 - 0:00:00:000");
        QVERIFY(!archive::keep(folder(f), other, QDateTime(QDate(2026, 5, 1), QTime(10, 0)), &error)
                     .isEmpty());
        f.open();
        const QByteArray state = f.readFile("MARVO.dat");
        const QStringList lines = f.lines("List1");
        pastRaces(f);
        f.button("exportarCarrera")->click();
        QCOMPARE(f.readFile("C/Carreras/copias/dorsales-Tiempos-Marvo.txt"),
                 QByteArray("  99,00:12:30:125\r\n 112,00:14:02:500\r\n"));
        QCOMPARE(f.readFile("MARVO.dat"), state);
        QCOMPARE(f.lines("List1"), lines);
        // A running race is not replaced.
        f.button("recuperarCarrera")->click();
        QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("warn"));
        QCOMPARE(f.lines("List1"), lines);
    }

    void faultsStopNothing()
    {
        FormFixture f;
        f.writeFile("MARVO.dat", statefile::encode(stoppedRace(2, 0)));
        f.writeFile(QLatin1String(archive::folderName), "a file where the folder should be");
        f.open();
        f.dialogs.answers = {Dialogs::Ok};
        f.click("Command4");
        // A race that cannot be kept is not cleared, nor emptied by the compact window, nor
        // put in another format.
        QCOMPARE(f.lines("List1"), stoppedRace(2, 0).list1);
        QVERIFY(f.label("aviso")->text().contains(QStringLiteral("copia de la carrera")));
        QVERIFY(f.dialogs.shown.size() == 1); // only the question of the clear
        f.trigger("opp4");
        QCOMPARE(f.lines("List1"), stoppedRace(2, 0).list1);
        f.trigger("opp4");
        f.dialogs.answers = {Dialogs::Ok};
        f.trigger("op2(0)");
        QCOMPARE(f.lines("List1"), stoppedRace(2, 0).list1);
        QVERIFY(f.action("op2(2)")->isChecked() && !f.action("op2(0)")->isChecked());
        f.click("Command5");
        QCOMPARE(statefile::read(f.path("MARVO.dat")).state.formato, Variant(2.0));
        QCOMPARE(f.dialogs.shown.size(), 2);
        // A damaged kept race is listed as unreadable, and choosing it changes nothing.
        QFile::remove(f.path(QLatin1String(archive::folderName)));
        QDir(f.dir.path()).mkdir(QLatin1String(archive::folderName));
        f.writeFile(QLatin1String(archive::folderName) +
                        QStringLiteral("/MARVO-20260101-100000.dat"),
                    " 0 \r\n 0 \r\n");
        QTableWidget* table = pastRaces(f);
        QCOMPARE(table->item(0, 1)->text(), QStringLiteral("ilegible"));
        f.button("recuperarCarrera")->click();
        f.button("exportarCarrera")->click();
        QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("warn"));
        QCOMPARE(f.lines("List1"), stoppedRace(2, 0).list1);
    }

    void aFormatChangeKeepsTheRaceAsTaken()
    {
        FormFixture f;
        f.open(stoppedRace(2, 0));
        f.dialogs.answers = {Dialogs::Ok};
        f.trigger("op2(0)"); // "Segundos": the race in "Milesimas" is cleared
        QVERIFY(f.lines("List1").isEmpty());
        const QList<archive::Kept> kept = archive::list(folder(f));
        QCOMPARE(kept.size(), 1);
        QCOMPARE(kept.first().race.formato, Variant(2.0));
        QCOMPARE(kept.first().race.list1, stoppedRace(2, 0).list1);
    }
};

QTEST_MAIN(ArchiveTest)
#include "tst_archive.moc"
