// Files that cannot be written while a race runs: the operator is told, the race goes on.
#include "support/formfixture.h"

#include <QDir>
#include <QLabel>
#include <QListWidget>

class FaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void stateFileAndFallbackUnwritable();
    void stateFileUnwritableTakesTheFallbackSilently();
    void exportTargetIsAFolder();
};

void FaultsTest::stateFileAndFallbackUnwritable()
{
    FormFixture f;
    // As root permissions stop nothing: folders stand where the files should be.
    QDir(f.dir.path()).mkdir(QStringLiteral("MARVO.dat"));
    QDir(f.dir.path()).mkpath(QStringLiteral("D/MARVO.dat"));
    f.open();
    f.click("Command1(0)"); // Start saves
    QLabel* notice = f.label("aviso");
    QVERIFY(!notice->isHidden());
    QVERIFY(notice->text().contains(QStringLiteral("No se pudo guardar la carrera")));
    QVERIFY(f.dialogs.shown.isEmpty()); // no box in the way of the timekeeper
    for (int i = 0; i < 3; ++i) {
        f.tick(2);
        f.pressF(1);
    }
    QCOMPARE(f.lines("List1").size(), 3);
    QCOMPARE(f.label("Label2")->text(), QStringLiteral("3"));
}

void FaultsTest::stateFileUnwritableTakesTheFallbackSilently()
{
    FormFixture f;
    QDir(f.dir.path()).mkdir(QStringLiteral("MARVO.dat"));
    f.open();
    f.click("Command1(0)");
    f.tick(1);
    f.click("Command3");
    QVERIFY(f.label("aviso")->isHidden());
    QVERIFY(f.readFile("D/MARVO.dat").contains("00:00:01:000"));
}

void FaultsTest::exportTargetIsAFolder()
{
    FormFixture f;
    const QString folder = f.makeResultsFolder();
    QDir(folder).mkdir(QStringLiteral("dorsales-Marvo.txt"));
    f.open();
    f.click("Command1(0)");
    f.tick(1);
    f.click("Command3");
    f.click("Command6");
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(f.dialogs.shown[0].kind, QStringLiteral("warn"));
    QVERIFY(f.dialogs.shown[0].text.contains(QStringLiteral("Carreras/copias")));
    QCOMPARE(f.lines("List1").size(), 1);
}

QTEST_MAIN(FaultsTest)
#include "tst_faults.moc"
