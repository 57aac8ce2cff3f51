// The race clock in the real window: Start, Stop and resume, the stopped clock moved, finishes
// stamped when they arrive; a start at a given time of day, a wall clock stepped mid-race, the
// countdown beeps.
#include "app/core/journal.h"
#include "support/formfixture.h"
#include "support/races.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

namespace
{

void startAt(FormFixture& f, const QString& typed)
{
    f.dialogs.texts = {typed};
    f.trigger("salidaHora");
}

} // namespace

class RunControlTest : public QObject
{
    Q_OBJECT

private slots:
    void startStopAndResumeFromTheWholeSecond()
    {
        FormFixture f;
        f.open();
        f.click("Command1(0)");
        QVERIFY(f.child<QTimer>("Timer1")->isActive());
        QVERIFY(f.button("Command1(0)")->isHidden());
        QVERIFY(!f.button("Command1(1)")->isHidden());
        QVERIFY(f.button("Command3")->isEnabled());
        QVERIFY(!f.action("op2(0)")->isEnabled());
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

    void movingTheStoppedClock()
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

    void finishIsStampedWhenItArrives()
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

    void pastStartIsStartPressedThen_data()
    {
        QTest::addColumn<double>("now");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("startedAt");
        QTest::addColumn<QString>("clock");
        QTest::newRow("a minute and a half ago") << 36000.0 << "09:58:30" << 35910.0 << "00:01:30";
        QTest::newRow("across midnight") << 600.0 << "23:50:00,000" << 85800.0 << "00:20:00";
    }

    void pastStartIsStartPressedThen()
    {
        QFETCH(double, now);
        QFETCH(QString, typed);
        QFETCH(double, startedAt);
        QFETCH(QString, clock);
        // The same race started by the button at that moment.
        FormFixture pressed;
        pressed.clock.seconds = startedAt;
        pressed.open();
        pressed.click("Command1(0)");

        FormFixture f;
        f.clock.seconds = now;
        f.open();
        startAt(f, typed);
        f.tick(0);
        QCOMPARE(f.label("Label1")->text(), clock);
        QVERIFY(!f.button("Command1(1)")->isHidden());
        QCOMPARE(f.readFile("MARVO.dat"), pressed.readFile("MARVO.dat"));
        QCOMPARE(journal::read(f.path("MARVO.jrn")).record.state,
                 journal::read(pressed.path("MARVO.jrn")).record.state);
        QVERIFY(!f.dialogs.unexpected);
    }

    void armedStartStartsByItself()
    {
        FormFixture f;
        f.open();
        startAt(f, "10:00:02,500");
        // A countdown, not a running clock: its sign and its colours.
        QCOMPARE(f.label("Label1")->text(), QStringLiteral("\u221200:00:02"));
        QCOMPARE(f.label("Label1")->palette().color(QPalette::Window), QColor(255, 200, 80));
        QCOMPARE(f.label("Label6")->text(), QStringLiteral("500"));
        QVERIFY(f.readFile("MARVO.dat").isEmpty()); // nothing started yet
        f.clock.advance(2.5);
        QTRY_VERIFY(f.child<QTimer>("Timer1")->isActive());
        FormFixture pressed;
        pressed.clock.seconds = f.clock.seconds;
        pressed.open();
        pressed.click("Command1(0)");
        QCOMPARE(f.readFile("MARVO.dat"), pressed.readFile("MARVO.dat"));
        f.tick(1);
        QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:00:01"));
    }

    void armedStartCancelled()
    {
        FormFixture f;
        f.open();
        for (const char* how : {"Command1(1)", "salidaHora"}) {
            startAt(f, f.clock.timeOfDay().addSecs(3600).toString(QStringLiteral("hh:mm:ss")));
            QCOMPARE(f.label("Label1")->text(), QStringLiteral("\u221201:00:00"));
            const QColor armed = f.label("Label1")->palette().color(QPalette::Window);
            QString(how).startsWith("Command") ? f.click(how) : f.trigger(how);
            QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:00:00"));
            QVERIFY(f.label("Label1")->palette().color(QPalette::Window) != armed);
            QVERIFY(!f.button("Command1(0)")->isHidden());
            f.clock.advance(3601);
            QTest::qWait(30);
            QVERIFY(!f.child<QTimer>("Timer1")->isActive());
        }
        QVERIFY(f.readFile("MARVO.dat").isEmpty());
    }

    void refusedStartTimesChangeNothing()
    {
        FormFixture f;
        f.clock.seconds = 20 * 3600.0;
        f.open();
        for (const char* typed : {"25:00:00", "07:59:59"}) { // unreadable, over 12 hours ago
            startAt(f, typed);
            QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("warn"));
        }
        QVERIFY(f.dialogs.shown.last().text.contains(QStringLiteral("hace más de 12 horas")));
        QVERIFY(f.readFile("MARVO.dat").isEmpty());
        QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:00:00"));
        // And only at zero with the clock stopped: a notice, no question.
        f.dialogs.shown.clear();
        f.click("Command1(0)");
        f.trigger("salidaHora");
        QVERIFY(f.dialogs.shown.isEmpty());
        QVERIFY(!f.label("aviso")->isHidden());
    }

    void wallClockStepsMoveNoFinish_data()
    {
        QTest::addColumn<double>("step");
        QTest::newRow("+1 h") << 3600.0;
        QTest::newRow("-1 h") << -3600.0;
        QTest::newRow("+30 s") << 30.0;
        QTest::newRow("-30 s") << -30.0;
    }

    void wallClockStepsMoveNoFinish()
    {
        QFETCH(double, step);
        FormFixture f;
        f.open();
        f.click("Command1(0)");
        f.tick(10);
        f.clock.stepWall(step);
        f.tick(2.5);
        f.click("Command3");
        QCOMPARE(f.comboLines().last(), QStringLiteral("   1- 00:00:12:500 - 0:00:00:000"));
        QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:00:12"));
        // The time of day follows the wall clock.
        f.form().Timer2_Timer();
        QCOMPARE(f.action("hhora")->text(),
                 QStringLiteral("Hora actual : ") +
                     QTime(10, 0).addSecs(static_cast<int>(12 + step)).toString("hh:mm"));
        // A restart anchors the race to the wall clock again: the step is in the saved start,
        // and a start "later" than now was the day before.
        f.close();
        f.open();
        f.tick(0);
        QCOMPARE(f.label("Label1")->text(),
                 QTime(0, 0)
                     .addSecs(static_cast<int>(12 + step + (step < 0 ? 86400 : 0)))
                     .toString(QStringLiteral("hh:mm:ss")));
    }

    void beeps_data()
    {
        QTest::addColumn<bool>("option");
        QTest::addColumn<int>("row");     // the start-order line selected, -1 none
        QTest::addColumn<double>("from"); // race seconds ticked through, 20 ms apart
        QTest::addColumn<QString>("heard");
        // The first start is at 0:10:30 race time.
        QTest::newRow("last five seconds") << true << 0 << 620.0 << "s625 s626 s627 s628 s629 L630";
        QTest::newRow("option off") << false << 0 << 620.0 << "";
        QTest::newRow("no line selected") << true << -1 << 620.0 << "";
    }

    void beeps()
    {
        QFETCH(bool, option);
        QFETCH(int, row);
        QFETCH(double, from);
        QFETCH(QString, heard);
        FormFixture f;
        RaceState s = stoppedRace(2, 1);
        s.combo1.clear();
        s.list1.clear();
        f.open(s);
        if (f.action("pitidos")->isChecked() != option)
            f.trigger("pitidos");
        f.list("List2")->setCurrentRow(row);
        f.click("Command1(0)");
        const double started = f.clock.steady;
        f.tick(from);
        for (int i = 0; i < 600; ++i)
            f.tick(0.02);
        QStringList got;
        for (const auto& [tone, at] : f.sound.played) {
            const double second = at - started;
            QVERIFY(second - std::floor(second) < 0.021); // within a tick of its second
            got << (tone == Sound::Tone::Long ? QStringLiteral("L") : QStringLiteral("s")) +
                       QString::number(std::floor(second));
        }
        QCOMPARE(got.join(u' '), heard);
        // The option is kept for the next start of the program.
        f.close();
        f.open();
        QCOMPARE(f.action("pitidos")->isChecked(), option);
    }

    void countdownFollowsTheStartOrder_data()
    {
        QTest::addColumn<bool>("follow");
        QTest::newRow("the option on") << true;
        QTest::newRow("the option off") << false;
    }

    void countdownFollowsTheStartOrder()
    {
        // Starts at 0:10:30 and 0:11:00. With the option, once the first has passed the second
        // is selected by itself, and the bib field stays as it was.
        QFETCH(bool, follow);
        FormFixture f;
        f.open(stoppedRace(2, 1));
        if (follow != f.action("seguirOrden")->isChecked())
            f.trigger("seguirOrden");
        QListWidget* order = f.list("List2");
        order->setCurrentRow(0);
        f.click("Command1(0)");
        f.tick(627.5);
        // The box counts down the last seconds, with the bib field empty, when following.
        QCOMPARE(f.label("Label18")->text(), follow ? QStringLiteral("3") : QStringLiteral(""));
        f.tick(3);
        QCOMPARE(order->currentRow(), 0); // its last beep still to sound
        f.tick(1);
        QCOMPARE(order->currentRow(), follow ? 1 : 0);
        QVERIFY(f.child<QLineEdit>("Text1")->text().isEmpty());
        f.tick(60);
        QCOMPARE(order->currentRow(), follow ? 1 : 0); // the last start stays
    }

    void noSoundDeviceOneNotice()
    {
        // Said as the start order comes back with the race, not seconds before the first start.
        FormFixture f;
        f.sound.device = false;
        f.open(stoppedRace(2, 1));
        QLabel* notice = f.label("aviso");
        QVERIFY(!notice->isHidden());
        QVERIFY(notice->text().contains(QStringLiteral("sonido")));
        notice->hide();
        f.list("List2")->setCurrentRow(0);
        f.click("Command1(0)");
        f.tick(624);
        for (int i = 0; i < 400; ++i)
            f.tick(0.02);
        f.tick(600); // the next start's countdown
        QVERIFY(notice->isHidden());
        QVERIFY(f.dialogs.shown.isEmpty());
    }
};

QTEST_MAIN(RunControlTest)
#include "tst_runcontrol.moc"
