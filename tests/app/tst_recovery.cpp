#include "app/core/journal.h"
#include "support/formfixture.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>

class RecoveryTest : public QObject
{
    Q_OBJECT

private slots:
    void crashAfterManyFinishesRecoversEverything();
    void declinedRecoveryKeepsTheJournalAside();
    void normalEndAsksNothing();
    void stoppedClockComesBackStopped();
    void unwritableJournalIsReported();

private:
    // A running race with five finishes, one of them corrected; the window is then dropped
    // without a normal end.
    struct Snapshot {
        QStringList list1, combo1, list2;
        QString label1, label2, label4, label5, label8;
    };
    static Snapshot take(FormFixture& f);
    static void raceAndCrash(FormFixture& f, Snapshot* before);
};

RecoveryTest::Snapshot RecoveryTest::take(FormFixture& f)
{
    return {f.lines("List1"),          f.comboLines(),
            f.lines("List2"),          f.label("Label1")->text(),
            f.label("Label2")->text(), f.label("Label4")->text(),
            f.label("Label5")->text(), f.label("Label8")->text()};
}

void RecoveryTest::raceAndCrash(FormFixture& f, Snapshot* before)
{
    f.open();
    f.click("Command1(0)");
    for (int i = 0; i < 5; ++i) {
        f.tick(7.25 + i);
        i % 2 ? f.click("Command3") : f.pressF(i % 4 ? 3 : 1);
    }
    // Correct the bib of the third finisher.
    QListWidget* list = f.list("List1");
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualItemRect(list->item(2)).center());
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {},
                       list->visualItemRect(list->item(2)).center());
    f.type("Text2", "57\n");
    QVERIFY(f.lines("List1").value(2).startsWith(QStringLiteral("   3-  57-")));
    f.tick(0.5);
    *before = take(f);
    f.close(); // no normal end: the process is gone
}

void RecoveryTest::crashAfterManyFinishesRecoversEverything()
{
    FormFixture f;
    Snapshot before;
    raceAndCrash(f, &before);
    // Only rank 1 reached the state file.
    QVERIFY(!f.readFile("MARVO.dat").contains("   2-"));

    f.clock.advance(30);
    f.dialogs.answers = {Dialogs::Yes};
    f.open();
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(f.dialogs.shown[0].kind, QStringLiteral("ask"));
    QCOMPARE(f.dialogs.shown[0].title, QStringLiteral("Recuperar la carrera"));
    const Snapshot after = take(f);
    QCOMPARE(after.list1, before.list1);
    QCOMPARE(after.combo1, before.combo1);
    QCOMPARE(after.label2, QStringLiteral("5"));
    QCOMPARE(after.label4, before.label4);
    QCOMPARE(after.label5, before.label5);
    QCOMPARE(after.label8, before.label8);
    QVERIFY(f.child<QTimer>("Timer1")->isActive());
    QVERIFY(!f.button("Command1(1)")->isHidden());
    // The state file now holds the recovered race, and the next finish is rank 6.
    QVERIFY(f.readFile("MARVO.dat").contains(before.list1.last().toLatin1()));
    f.pressF(1);
    QVERIFY(f.lines("List1").last().startsWith(QStringLiteral("   6-")));
    // A second crash recovers the finish made after the first recovery too.
    f.close();
    f.dialogs.answers = {Dialogs::Yes};
    f.open();
    QCOMPARE(f.lines("List1").size(), 6);
}

void RecoveryTest::declinedRecoveryKeepsTheJournalAside()
{
    FormFixture f;
    Snapshot before;
    raceAndCrash(f, &before);
    f.dialogs.answers = {Dialogs::No};
    f.open();
    // The start-up from the state file alone: the first finisher's save.
    QCOMPARE(f.lines("List1").size(), 0);
    QCOMPARE(f.label("Label4")->text(), before.label4);
    const QStringList aside =
        QDir(f.dir.path()).entryList({QStringLiteral("MARVO-*.jrn")}, QDir::Files);
    QCOMPARE(aside.size(), 1);
    QCOMPARE(journal::read(f.path(aside[0])).record.state.list1, before.list1);
    f.close();
    // The declined journal is not offered again.
    f.open();
    QCOMPARE(f.dialogs.shown.size(), 1);
}

void RecoveryTest::normalEndAsksNothing()
{
    FormFixture f;
    f.open();
    f.click("Command1(0)");
    f.tick(3);
    f.click("Command3");
    f.tick(3);
    f.click("Command3");
    // Closing the window saves nothing, and the second finish is not in the state file: the
    // journal is left as after an abnormal end, and the next start brings it back.
    f.form().close();
    f.close();
    f.dialogs.answers = {Dialogs::Yes};
    f.open();
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(f.lines("List1").size(), 2);
    // Save and end, or a close with nothing unsaved, is a normal end: no question next time.
    f.click("Command5");
    f.close();
    f.open();
    f.form().close();
    f.close();
    f.open();
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(f.lines("List1").size(), 2);
}

void RecoveryTest::stoppedClockComesBackStopped()
{
    FormFixture f;
    f.open();
    f.click("Command1(0)");
    f.tick(65.5);
    f.click("Command3");
    f.click("Command1(1)");
    f.click("Command2(0)"); // 00:02:05
    f.close();
    f.dialogs.answers = {Dialogs::Yes};
    f.open();
    QVERIFY(!f.child<QTimer>("Timer1")->isActive());
    QVERIFY(!f.button("Command1(0)")->isHidden());
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:02:05"));
    QCOMPARE(f.lines("List1").size(), 1);
    // Start resumes from the recovered clock.
    f.click("Command1(0)");
    f.tick(1);
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:02:06"));
}

void RecoveryTest::unwritableJournalIsReported()
{
    // A folder that takes no journal (a folder stands where the file should be): the journal
    // goes to the fallback folder, the operator is told, and after a crash the race comes
    // back from there.
    FormFixture f;
    QDir(f.dir.path()).mkdir(QStringLiteral("MARVO.jrn"));
    f.open();
    QLabel* notice = f.label("aviso");
    QVERIFY(!notice->isHidden());
    QVERIFY(notice->text().contains(QStringLiteral("diario")));
    QVERIFY(notice->geometry().top() > f.button("Command3")->geometry().bottom());
    f.click("Command1(0)");
    for (int i = 0; i < 3; ++i) {
        f.tick(1);
        f.click("Command3");
    }
    const QStringList before = f.lines("List1");
    f.close(); // no normal end
    f.dialogs.answers = {Dialogs::Yes};
    f.open();
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(f.lines("List1"), before);
}

QTEST_MAIN(RecoveryTest)
#include "tst_recovery.moc"
