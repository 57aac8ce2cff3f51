#include "app/core/statefile.h"
#include "support/formfixture.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

class RunControlTest : public QObject
{
    Q_OBJECT

private slots:
    void startStopAndResumeFromTheWholeSecond();
    void movingTheStoppedClock();
    void timeOfDayCaption();
    void survivesARestart();
    void keepsCountingAcrossMidnight();
    void functionKeysRecordWhileTheBibFieldHasTheFocus();
    void finishIsStampedWhenItArrives();
};

void RunControlTest::startStopAndResumeFromTheWholeSecond()
{
    FormFixture f;
    f.open();
    f.click("Command1(0)");
    QVERIFY(f.child<QTimer>("Timer1")->isActive());
    QVERIFY(f.button("Command1(0)")->isHidden());
    QVERIFY(!f.button("Command1(1)")->isHidden());
    QVERIFY(f.button("Command2(0)")->isHidden());
    QVERIFY(f.button("Command4")->isHidden());
    QVERIFY(f.button("Command3")->isEnabled());
    QVERIFY(!f.action("op2(0)")->isEnabled());
    QVERIFY(!f.action("opp2")->isEnabled());
    // Start saves the running state.
    QVERIFY(f.readFile("MARVO.dat").startsWith(" 36000000000 \r\n 0 \r\n10:00\r\n"));

    f.tick(5.7);
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:00:05"));
    QCOMPARE(f.label("Label6")->text(), QStringLiteral("700"));
    QCOMPARE(f.label("Label3")->text(), QStringLiteral("700"));
    QCOMPARE(f.child<QProgressBar>("ProgressBar1")->value(), 5);

    f.click("Command1(1)");
    QVERIFY(!f.child<QTimer>("Timer1")->isActive());
    QVERIFY(!f.button("Command2(0)")->isHidden());
    QVERIFY(!f.button("Command4")->isHidden());
    QVERIFY(!f.button("Command3")->isEnabled());
    QCOMPARE(f.child<QProgressBar>("ProgressBar1")->value(), 0);
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:00:05")); // keeps the last time
    QVERIFY(f.action("op2(0)")->isEnabled());

    // The run resumes from the displayed whole second: 5.7 s becomes 5 s.
    f.clock.advance(100);
    f.click("Command1(0)");
    f.tick(1.0);
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:00:06"));
    QCOMPARE(f.label("Label6")->text(), QStringLiteral("000"));
}

void RunControlTest::movingTheStoppedClock()
{
    FormFixture f;
    f.open();
    // "-" has no lower bound: the clock goes below zero.
    f.click("Command2(1)");
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("-1:59:00"));
    f.click("Command2(1)");
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("-1:58:00"));
    for (int i = 0; i < 5; ++i)
        f.click("Command2(0)");
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:03:00"));
    // The next Start runs from the moved clock.
    f.click("Command1(0)");
    f.tick(2.5);
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:03:02"));
}

void RunControlTest::timeOfDayCaption()
{
    FormFixture f;
    f.clock.seconds = 10 * 3600 + 59 * 60 + 59.5;
    FormMarvolendo& w = f.open();
    QAction* hora = f.action("hhora");
    w.Timer2_Timer();
    QCOMPARE(hora->text(), QStringLiteral("Hora actual : 10:59"));
    f.clock.advance(0.6);
    w.Timer2_Timer();
    QCOMPARE(hora->text(), QStringLiteral("Hora actual : 11:00"));
}

void RunControlTest::survivesARestart()
{
    FormFixture f;
    f.open();
    f.click("Command1(0)");
    f.tick(10);
    f.close(); // a crash: nothing more is saved
    f.clock.advance(65.25);
    f.open();
    QVERIFY(f.child<QTimer>("Timer1")->isActive());
    f.tick(0);
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:01:15"));
    QCOMPARE(f.label("Label6")->text(), QStringLiteral("250"));
}

void RunControlTest::keepsCountingAcrossMidnight()
{
    FormFixture f;
    f.clock.seconds = 23 * 3600 + 59 * 60 + 30; // 23:59:30
    f.open();
    f.click("Command1(0)");
    f.clock.advance(75); // 00:00:45 the next day
    f.form().Timer1_Timer();
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:01:15"));
    // Also after a restart past midnight.
    f.close();
    f.open();
    f.form().Timer1_Timer();
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:01:15"));
}

void RunControlTest::functionKeysRecordWhileTheBibFieldHasTheFocus()
{
    FormFixture f;
    f.open();
    f.click("Command1(0)");
    f.tick(3);
    auto* text1 = f.child<QLineEdit>("Text1");
    text1->setVisible(true);
    text1->setEnabled(true);
    text1->setFocus();
    text1->setText(QStringLiteral("12"));
    f.pressF(1);
    QCOMPARE(f.label("Label2")->text(), QStringLiteral("1"));
    QCOMPARE(text1->text(), QString());
    f.tick(1);
    text1->setText(QStringLiteral("7"));
    f.pressF(3);
    QCOMPARE(f.label("Label2")->text(), QStringLiteral("2"));
    QCOMPARE(text1->text(), QString());
    QCOMPARE(f.lines("List1").size(), 2);
}

void RunControlTest::finishIsStampedWhenItArrives()
{
    FormFixture f;
    f.open();
    f.click("Command1(0)");
    f.tick(1);
    // No redraw since: the finish still reads the clock of its own moment.
    f.clock.advance(0.123);
    f.click("Command3");
    QVERIFY(f.comboLines().value(0).contains(QStringLiteral("00:00:01:123")));
}

QTEST_MAIN(RunControlTest)
#include "tst_runcontrol.moc"
