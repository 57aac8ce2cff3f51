#include "app/core/statefile.h"
#include "app/version.h"
#include "support/formfixture.h"
#include "support/races.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>

class StartupTest : public QObject
{
    Q_OBJECT

private slots:
    void firstStartWithoutStateFile()
    {
        FormFixture f;
        FormMarvolendo& w = f.open();
        QCOMPARE(w.windowTitle(), QStringLiteral("Marvolendo"));
        QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:00:00"));
        QCOMPARE(f.label("Label4")->text(), QStringLiteral("00:00:00:000"));
        QCOMPARE(f.label("Label7")->text(), QStringLiteral("0:00:00:000"));
        QVERIFY(f.action("op2(2)")->isChecked());
        QVERIFY(!f.child<QTimer>("Timer1")->isActive());
        QVERIFY(f.child<QTimer>("Timer2")->isActive());
        QVERIFY(f.lines("List1").isEmpty() && f.lines("List2").isEmpty() &&
                f.comboLines().isEmpty());
        // The "Lap" mode layout: the button, no bib field, the narrow window.
        QVERIFY(!f.button("Command3")->isHidden());
        QVERIFY(f.child<QLineEdit>("Text1")->isHidden());
        QVERIFY(f.button("Command1(1)")->isHidden());
        QVERIFY(f.dialogs.shown.isEmpty());
        QVERIFY(!QFile::exists(f.path("MARVO.dat"))); // opening writes nothing
        // "Acerca de": the version and where the state file is, even before the first save.
        f.trigger("acerca");
        QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("inform"));
        QVERIFY(f.dialogs.shown.last().text.contains(QLatin1String(version::text)));
        QVERIFY(f.dialogs.shown.last().text.contains(
            QDir::toNativeSeparators(QFileInfo(f.path("MARVO.dat")).absoluteFilePath())));
    }

    void resumesARunningRaceWithAFirstFinisher()
    {
        FormFixture f;
        f.writeFile("MARVO.dat", statefile::encode(runningRace()));
        f.clock.seconds = 9 * 3600.0 + 15 * 60 + 1.25; // 09:15:01.250
        f.open();
        QVERIFY(f.child<QTimer>("Timer1")->isActive());
        QVERIFY(!f.button("Command1(1)")->isHidden());
        QLabel* first = f.label("Label4");
        QCOMPARE(first->text(), QStringLiteral("00:12:30:125"));
        QCOMPARE(first->palette().color(QPalette::Window), QColor(128, 0, 0));
        QCOMPARE(first->palette().color(QPalette::WindowText), QColor(Qt::white));
        // The format and mode menus stay locked while the race runs.
        for (const char* entry : {"op2(0)", "opp2", "opp22"})
            QVERIFY2(!f.action(entry)->isEnabled(), entry);
        // The clock goes on from the saved start.
        f.tick(0);
        QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:15:01"));
        QCOMPARE(f.label("Label6")->text(), QStringLiteral("250"));
        QCOMPARE(f.label("Label7")->text(), QStringLiteral("0:02:31:125"));
        // The lists and the captions of the last finish come back as they were saved.
        const RaceState s = runningRace();
        QCOMPARE(f.lines("List1") + f.comboLines() + f.lines("List2"),
                 s.list1 + s.combo1 + s.list2);
        QCOMPARE(f.label("Label2")->text() + f.label("Label5")->text() + f.label("Label8")->text(),
                 QStringLiteral("2") + s.label5 + s.label8);
    }

    void wallClockSetBack_data()
    {
        QTest::addColumn<double>("now");    // the wall clock at the restart, seconds
        QTest::addColumn<int>("answer");    // to the question
        QTest::addColumn<QString>("shows"); // the race clock a second on
        // The race started at 09:00:00; its last finish is at 00:14:02.
        QTest::newRow("set back past the start, kept")
            << 8 * 3600.0 + 40 * 60 << int(Dialogs::Yes) << "00:14:03";
        QTest::newRow("set back past the last finish, kept")
            << 9 * 3600.0 + 10 * 60 << int(Dialogs::Yes) << "00:14:03";
        QTest::newRow("set back, the operator says no")
            << 9 * 3600.0 + 10 * 60 << int(Dialogs::No) << "00:10:01";
    }

    void wallClockSetBack()
    {
        QFETCH(double, now);
        QFETCH(int, answer);
        QFETCH(QString, shows);
        FormFixture f;
        f.clock.seconds = now;
        f.dialogs.answers = {answer};
        f.open(runningRace());
        QCOMPARE(f.dialogs.shown.size(), 1);
        QCOMPARE(f.dialogs.shown[0].title, QStringLiteral("Reloj de carrera"));
        QVERIFY(f.dialogs.shown[0].text.contains(QStringLiteral("00:14:02")));
        f.tick(1);
        QCOMPARE(f.label("Label1")->text(), shows);
        // Kept, the clock goes on from there after another restart, without a question.
        f.close();
        f.clock.advance(1);
        f.open();
        QCOMPARE(f.dialogs.shown.size(), answer == Dialogs::Yes ? 1 : 2);
    }

    void restoredFormatAndEmptyMode()
    {
        // A stopped race in whole seconds whose file ends before the capture mode.
        FormFixture f;
        f.writeFile("MARVO.dat", " 0 \r\n 0 \r\n0    \r\n00:00:09\r\n\r\n\r\n 0 \r\n");
        f.open();
        QVERIFY(f.action("op2(0)")->isChecked());
        QCOMPARE(f.label("Label4")->text(), QStringLiteral("00:00:00"));
        QCOMPARE(f.label("Label7")->text(), QStringLiteral("0:00:00"));
        QCOMPARE(f.label("Label1")->width(), 4215 / 15);
        QVERIFY(!f.button("Command3")->isHidden()); // empty mode counts as the "Lap" mode
    }

    void keysAndButtonsOfTheWindow()
    {
        FormFixture f;
        RaceState s = runningRace();
        s.inicio = 0;
        FormMarvolendo& w = f.open(s);
        // Command8 empties the start order without asking.
        f.click("Command8");
        QVERIFY(f.lines("List2").isEmpty());
        QVERIFY(f.dialogs.shown.isEmpty());
        // Closing the window does not save.
        const QByteArray before = f.readFile("MARVO.dat");
        w.close();
        QCOMPARE(f.readFile("MARVO.dat"), before);
        // Command5 saves (the emptied start order) and ends.
        f.close();
        FormMarvolendo& again = f.open();
        QSignalSpy ended(&again, &FormMarvolendo::terminar);
        f.click("Command8");
        f.click("Command5");
        QCOMPARE(ended.count(), 1);
        QVERIFY(f.readFile("MARVO.dat").endsWith(" 0 \r\n"));
        QVERIFY(f.readFile("MARVO.dat").contains("   2- 112- 00:14:02:500 - 0:01:32:375\r\n"));
    }
};

QTEST_MAIN(StartupTest)
#include "tst_startup.moc"
