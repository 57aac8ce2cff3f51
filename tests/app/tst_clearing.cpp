// Clearing a race (Command4) and the compact window (opp4), driven through the real window.
#include "app/core/statefile.h"
#include "app/look.h"
#include "support/formfixture.h"
#include "support/races.h"

#include <QAction>
#include <QLabel>
#include <QPushButton>

class ClearingTest : public QObject
{
    Q_OBJECT

private slots:
    void clearing_data();
    void clearing();
    void compactAndBack_data();
    void compactAndBack();
};

void ClearingTest::clearing_data()
{
    QTest::addColumn<int>("answer");
    QTest::newRow("Cancel") << int(Dialogs::Cancel);
    QTest::newRow("OK") << int(Dialogs::Ok);
}

void ClearingTest::clearing()
{
    QFETCH(int, answer);
    // Results listed and the clock moved: the question comes. (Clearing with nothing to lose,
    // and with only the clock moved, run inside the format changes of tst_options.)
    FormFixture f;
    const RaceState saved = stoppedRace();
    f.writeFile("MARVO.dat", statefile::encode(saved));
    f.open();
    f.click("Command2(0)"); // the stopped clock reads 00:01:00
    f.dialogs.answers = {answer};
    f.click("Command4");
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(f.dialogs.shown[0].title, QStringLiteral("Borrado de tiempos"));
    QCOMPARE(f.dialogs.shown[0].text,
             QStringLiteral("Cuidado si continua borrara todos los datos almacenados"));

    // Cleared, the file is saved while the window still holds the old lists: only the start
    // is reset, and a restart would bring the lists back until the next save.
    const bool cleared = answer == Dialogs::Ok;
    RaceState expected = saved;
    if (cleared) {
        expected.horaSalida = QStringLiteral("     ");
        expected.tempsPrimer.clear();
    }
    QCOMPARE(f.readFile("MARVO.dat"), statefile::encode(expected));
    QCOMPARE(f.lines("List1"), cleared ? QStringList() : saved.list1);
    QCOMPARE(f.comboLines(), cleared ? QStringList() : saved.combo1);
    QCOMPARE(f.lines("List2"), saved.list2);
    QCOMPARE(f.label("Label1")->text(), cleared ? QStringLiteral("00:00:00") : "00:01:00");
}

void ClearingTest::compactAndBack_data()
{
    QTest::addColumn<int>("modo");
    QTest::addColumn<bool>("running");
    QTest::newRow("Lap") << 0 << false;
    QTest::newRow("dorsales y tiempos") << 1 << false;
    QTest::newRow("running") << 0 << true;
}

void ClearingTest::compactAndBack()
{
    QFETCH(int, modo);
    QFETCH(bool, running);
    FormFixture f;
    const RaceState saved = running ? runningRace() : stoppedRace(2, modo);
    f.writeFile("MARVO.dat", statefile::encode(saved));
    FormMarvolendo& w = f.open();
    f.tick(0);
    // Running, the clock does not read zero: the restore inside each toggle re-applies the
    // Lap mode, whose handler asks its format question.
    f.dialogs.answers = {Dialogs::Ok, Dialogs::Ok};
    f.trigger("opp4");
    QCOMPARE(f.action("opp4")->text(), QStringLiteral("Maximizar"));
    QCOMPARE(w.rect(), QRect(0, 0, look::px(4545), look::px(2050)));
    QVERIFY(f.button("Command6")->isHidden());
    QVERIFY(!f.action("opp2")->isEnabled() && !f.action("opp22")->isEnabled());
    // The restore ran without a file: the results are gone from the window, not from the file.
    QVERIFY(f.lines("List1").isEmpty() && f.comboLines().isEmpty());
    QCOMPARE(f.readFile("MARVO.dat"), statefile::encode(saved));

    f.trigger("opp4");
    QCOMPARE(f.action("opp4")->text(), QStringLiteral("Minimizar"));
    // The Lap window's width is left as the compact one's.
    QCOMPARE(w.rect(), QRect(0, 0, look::px(modo == 1 ? 13440 : 4545), look::px(5115)));
    QCOMPARE(f.button("Command6")->isHidden(), modo == 1);
    QVERIFY(f.action("opp2")->isEnabled() != running && f.action("opp22")->isEnabled() != running);
    QCOMPARE(f.lines("List2"), saved.list2);
    QCOMPARE(f.dialogs.shown.size(), running ? 2 : 0);
}

QTEST_MAIN(ClearingTest)
#include "tst_clearing.moc"
