// The race clock beside Start, in the real window: a start at a given time of day, a wall
// clock stepped mid-race, the countdown beeps.
#include "app/core/journal.h"
#include "app/core/statefile.h"
#include "support/formfixture.h"
#include "support/races.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>

class StartClockTest : public QObject
{
    Q_OBJECT

private slots:
    void pastStartIsStartPressedThen_data();
    void pastStartIsStartPressedThen();
    void armedStartStartsByItself();
    void armedStartCancelled();
    void refusedTimesChangeNothing_data();
    void refusedTimesChangeNothing();
    void wallClockStepsMoveNoFinish_data();
    void wallClockStepsMoveNoFinish();
    void beeps_data();
    void beeps();
    void noSoundDeviceOneNotice();
};

namespace
{

void startAt(FormFixture& f, const QString& typed)
{
    f.dialogs.texts = {typed};
    f.trigger("salidaHora");
}

} // namespace

void StartClockTest::pastStartIsStartPressedThen_data()
{
    QTest::addColumn<double>("now");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("startedAt");
    QTest::addColumn<QString>("clock");
    QTest::newRow("a minute and a half ago") << 36000.0 << "09:58:30" << 35910.0 << "00:01:30";
    QTest::newRow("across midnight") << 600.0 << "23:50:00,000" << 85800.0 << "00:20:00";
}

void StartClockTest::pastStartIsStartPressedThen()
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

void StartClockTest::armedStartStartsByItself()
{
    FormFixture f;
    f.open();
    startAt(f, "10:00:02,500");
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:00:02"));
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

void StartClockTest::armedStartCancelled()
{
    FormFixture f;
    f.open();
    for (const char* how : {"Command1(1)", "salidaHora"}) {
        startAt(f, f.clock.timeOfDay().addSecs(3600).toString(QStringLiteral("hh:mm:ss")));
        QCOMPARE(f.label("Label1")->text(), QStringLiteral("01:00:00"));
        QString(how).startsWith("Command") ? f.click(how) : f.trigger(how);
        QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:00:00"));
        QVERIFY(!f.button("Command1(0)")->isHidden());
        f.clock.advance(3601);
        QTest::qWait(30);
        QVERIFY(!f.child<QTimer>("Timer1")->isActive());
    }
    QVERIFY(f.readFile("MARVO.dat").isEmpty());
}

void StartClockTest::refusedTimesChangeNothing_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("said");
    QTest::newRow("unreadable") << "25:00:00"
                                << "no es una hora válida";
    QTest::newRow("more than 12 hours ago") << "07:59:59"
                                            << "hace más de 12 horas";
}

void StartClockTest::refusedTimesChangeNothing()
{
    QFETCH(QString, typed);
    QFETCH(QString, said);
    FormFixture f;
    f.clock.seconds = 20 * 3600.0;
    f.open();
    startAt(f, typed);
    QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("warn"));
    QVERIFY2(f.dialogs.shown.last().text.contains(said), qPrintable(f.dialogs.shown.last().text));
    QVERIFY(f.readFile("MARVO.dat").isEmpty());
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:00:00"));
    // And only at zero with the clock stopped.
    f.dialogs.shown.clear();
    f.click("Command1(0)");
    f.trigger("salidaHora");
    QVERIFY(f.dialogs.shown.isEmpty());
    QVERIFY(!f.label("aviso")->isHidden());
}

void StartClockTest::wallClockStepsMoveNoFinish_data()
{
    QTest::addColumn<double>("step");
    QTest::newRow("+1 h") << 3600.0;
    QTest::newRow("-1 h") << -3600.0;
    QTest::newRow("+30 s") << 30.0;
    QTest::newRow("-30 s") << -30.0;
}

void StartClockTest::wallClockStepsMoveNoFinish()
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
    QVERIFY(f.action("hhora")->text().endsWith(
        QTime(10, 0).addSecs(static_cast<int>(12 + step)).toString(QStringLiteral("hh:mm"))));
    // A restart anchors the race to the wall clock again: the step is in the saved start.
    f.close();
    f.open();
    f.tick(0);
    QCOMPARE(f.label("Label1")->text(),
             QTime(0, 0)
                 .addSecs(static_cast<int>(12 + step + (step < 0 ? 86400 : 0)))
                 .toString(QStringLiteral("hh:mm:ss")));
}

void StartClockTest::beeps_data()
{
    QTest::addColumn<bool>("option");
    QTest::addColumn<int>("row");     // the start-order line selected, -1 none
    QTest::addColumn<double>("from"); // race seconds ticked through, 20 ms apart
    QTest::addColumn<QString>("heard");
    // The first start is at 0:10:30 race time.
    QTest::newRow("last five seconds") << true << 0 << 620.0 << "s625 s626 s627 s628 s629 L630";
    QTest::newRow("option off") << false << 0 << 620.0 << "";
    QTest::newRow("no line selected") << true << -1 << 620.0 << "";
    // 0:11:00 less ten minutes: the countdown display shows, nothing sounds.
    QTest::newRow("ten minutes before") << true << 1 << 55.0 << "";
}

void StartClockTest::beeps()
{
    QFETCH(bool, option);
    QFETCH(int, row);
    QFETCH(double, from);
    QFETCH(QString, heard);
    FormFixture f;
    RaceState s = stoppedRace(2, 1);
    s.combo1.clear();
    s.list1.clear();
    f.writeFile("MARVO.dat", statefile::encode(s));
    f.open();
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

void StartClockTest::noSoundDeviceOneNotice()
{
    FormFixture f;
    f.sound.device = false;
    f.writeFile("MARVO.dat", statefile::encode(stoppedRace(2, 1)));
    f.open();
    f.list("List2")->setCurrentRow(0);
    f.click("Command1(0)");
    f.tick(624);
    for (int i = 0; i < 400; ++i)
        f.tick(0.02);
    QLabel* notice = f.label("aviso");
    QVERIFY(!notice->isHidden());
    QVERIFY(notice->text().contains(QStringLiteral("sonido")));
    notice->hide();
    f.tick(600); // the next start's countdown
    QVERIFY(notice->isHidden());
    QVERIFY(f.dialogs.shown.isEmpty());
}

QTEST_MAIN(StartClockTest)
#include "tst_startclock.moc"
