// The time-format menu, the three capture modes and the compact window, driven through the
// real menu actions; the clearing each of them may ask for.
#include "app/core/statefile.h"
#include "app/look.h"
#include "support/formfixture.h"
#include "support/races.h"

#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

static const QString clearTitle = QStringLiteral("Borrado de tiempos");

static QRect twips(int left, int top, int width, int height)
{
    return {look::px(left), look::px(top), look::px(width), look::px(height)};
}

// The checked entries of the format menu, "02" for op2(0) and op2(2).
static QString checkedFormats(const FormFixture& f)
{
    QString out;
    for (const QString i : {"0", "1", "2"})
        out += f.action(QStringLiteral("op2(") + i + u')')->isChecked() ? i : QString();
    return out;
}

class OptionsTest : public QObject
{
    Q_OBJECT

private slots:
    void formatAtZero_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<bool>("listed");
        QTest::addColumn<int>("clearing");
        QTest::newRow("Segundos") << 0 << false << 0;
        QTest::newRow("Centesimas, listed") << 1 << true << int(Dialogs::Ok);
        QTest::newRow("Milesimas, listed, Cancel") << 2 << true << int(Dialogs::Cancel);
    }

    void formatAtZero()
    {
        QFETCH(int, index);
        QFETCH(bool, listed);
        QFETCH(int, clearing);
        // The clock stands at zero after a restart, so the format question is not asked; only
        // listed results make the clearing ask its own.
        FormFixture f;
        RaceState saved = stoppedRace(index == 0 ? 1 : 0);
        if (!listed) {
            saved.combo1 = saved.list1 = {};
            saved.label5 = QStringLiteral("00:00:00:000");
            saved.label8 = QStringLiteral("0:00:00:000");
        }
        f.open(saved);
        f.dialogs.answers = {clearing};
        f.trigger(QStringLiteral("op2(%1)").arg(index));
        QCOMPARE(f.dialogs.shown.size(), listed ? 1 : 0);
        if (listed) {
            QCOMPARE(f.dialogs.shown[0].title, clearTitle);
            QCOMPARE(f.dialogs.shown[0].text,
                     QStringLiteral("Cuidado si continua borrara todos los datos almacenados"));
        }

        // The new format is in place whatever the clearing answered: the whole-seconds clock
        // also covers the place of the fraction.
        QCOMPARE(checkedFormats(f), QString::number(index));
        QCOMPARE(look::width(f.label("Label1")), index == 0 ? 4215 : 3015);
        QCOMPARE(f.label("Label6")->text(), QString(index == 0 ? 0 : index + 1, u'0'));
        // Cleared, the file is saved before the lists are emptied: it has the new format, the
        // reset start and the old lines.
        const bool cleared = clearing != Dialogs::Cancel;
        RaceState expected = saved;
        if (cleared) {
            expected.formato = index;
            expected.horaSalida = QStringLiteral("     ");
            expected.tempsPrimer.clear();
        }
        QCOMPARE(f.readFile("MARVO.dat"), statefile::encode(expected));
        QCOMPARE(f.lines("List1"), cleared ? QStringList() : saved.list1);
        QCOMPARE(f.lines("List2"), saved.list2);
    }

    void cancelledFormatThenNextClickOnlyMovesTheMark()
    {
        FormFixture f;
        FormMarvolendo& w = f.open();
        f.click("Command2(0)"); // the stopped clock reads 00:01:00
        f.dialogs.answers = {Dialogs::Cancel};
        f.trigger("op2(0)");
        QCOMPARE(f.dialogs.shown.size(), 1);
        QCOMPARE(f.dialogs.shown[0].title, QStringLiteral("Formato de tiempo"));
        QCOMPARE(
            f.dialogs.shown[0].text,
            QStringLiteral("Cuidado si cambia el formato borrara todos los tiempos almacenados"));
        // The format in use is checked again and the clicked one stays checked; nothing cleared.
        QCOMPARE(checkedFormats(f), QStringLiteral("02"));
        QVERIFY(!QFile::exists(f.path("MARVO.dat")));

        // The next click only moves the mark: no question, no clearing, no re-layout.
        f.trigger("op2(1)");
        QCOMPARE(f.dialogs.shown.size(), 1);
        QCOMPARE(checkedFormats(f), QStringLiteral("1"));

        // The same question from the bibs-and-times entry: cancelled, the toggle stays, the
        // format in use is checked again and the layout is untouched.
        f.dialogs.answers = {Dialogs::Cancel};
        f.trigger("opp2");
        QCOMPARE(f.dialogs.shown.size(), 2);
        QVERIFY(f.action("opp2")->isChecked());
        QCOMPARE(checkedFormats(f), QStringLiteral("12"));
        QCOMPARE(w.rect(), twips(0, 0, 4545, 5115));

        // A format click asks again; accepted, the clearing asks too and the format applies.
        f.dialogs.answers = {Dialogs::Ok, Dialogs::Cancel};
        f.trigger("op2(0)");
        QCOMPARE(f.dialogs.shown.size(), 4);
        QCOMPARE(f.dialogs.shown[3].title, clearTitle);
        QCOMPARE(look::width(f.label("Label1")), 4215);
    }

    void bibsOnlyAndBackWithCancelFirst()
    {
        FormFixture f;
        const RaceState saved = stoppedRace();
        FormMarvolendo& w = f.open(saved);
        f.trigger("opp22");
        QVERIFY(!f.action("opp2")->isEnabled() && !f.action("op2(0)")->isEnabled());
        QVERIFY(f.button("Command1(0)")->isHidden());
        QCOMPARE(f.child<QGroupBox>("Frame1")->geometry(), twips(120, 0, 3375, 975));
        QCOMPARE(f.list("List1")->geometry(), twips(120, 1030, 2000, 2790));
        QCOMPARE(w.rect(), twips(0, 0, 3700, 4700));
        QCOMPARE(f.lines("List1"), saved.list1); // entering keeps the race

        // Leaving asks the clearing question. Cancelled: nothing is cleared, the entry is checked
        // again but the mode is the Lap mode, in the bib-only layout, with the menus open.
        f.dialogs.answers = {Dialogs::Cancel};
        f.trigger("opp22");
        QCOMPARE(f.dialogs.shown.size(), 1);
        QCOMPARE(f.dialogs.shown[0].title, clearTitle);
        QCOMPARE(f.readFile("MARVO.dat"), statefile::encode(saved));
        QCOMPARE(f.lines("List1"), saved.list1);
        QVERIFY(f.action("opp22")->isChecked() && f.action("opp2")->isEnabled());
        QCOMPARE(w.rect(), twips(0, 0, 3700, 4700));
        f.click("Command5");
        QCOMPARE(f.readFile("MARVO.dat").split('\n').value(7), QByteArray(" 0 \r"));

        // The next click leaves again; accepted, the race is cleared and the layout restored.
        f.dialogs.answers = {Dialogs::Ok};
        f.trigger("opp22");
        QVERIFY(!f.action("opp22")->isChecked());
        QVERIFY(f.lines("List1").isEmpty());
        QVERIFY(!f.button("Command1(0)")->isHidden());
        QCOMPARE(f.child<QGroupBox>("Frame1")->geometry(), twips(120, 2040, 4215, 1815));
        QCOMPARE(f.list("List1")->geometry(), twips(4440, 240, 4335, 3420));
        QCOMPARE(w.rect(), twips(0, 0, 4545, 5100));
    }

    void restartInBibsOnly()
    {
        // Start-up puts the saved mode back with the menu entry itself locked: only the compact
        // toggle and back opens it again.
        FormFixture f;
        FormMarvolendo& w = f.open(stoppedRace(2, 2));
        QVERIFY(f.action("opp22")->isChecked());
        QVERIFY(!f.action("opp22")->isEnabled() && !f.action("opp2")->isEnabled());
        QCOMPARE(f.lines("List1"), stoppedRace().list1);
        QCOMPARE(w.rect(), twips(0, 0, 3700, 4700));
        f.trigger("opp4");
        f.trigger("opp4");
        QVERIFY(f.action("opp22")->isEnabled() && f.action("opp22")->isChecked());
        QVERIFY(f.lines("List1").isEmpty());
    }

    void bibsAndTimesFromTheMenu()
    {
        // The compact toggle inside the handler restores the "Lap" mode once more; the entry
        // chosen stays checked all the same, and the exports go by it at once.
        FormFixture f;
        FormMarvolendo& w = f.open();
        f.trigger("opp2");
        QVERIFY(f.dialogs.shown.isEmpty()); // the clock at zero: no question
        QCOMPARE(w.width(), look::px(13440));
        QVERIFY(!f.child<QWidget>("Text1")->isHidden() && f.button("Command3")->isHidden());
        QVERIFY(!f.list("List1")->isHidden() && f.child<QWidget>("Combo1")->isHidden());
        QVERIFY(!f.child<QWidget>("Image1")->isHidden());
        QVERIFY(f.button("Command6")->toolTip().contains(QStringLiteral("Crea tres ficheros")));
        QVERIFY(f.action("opp2")->isChecked());
        // The mode is what the next save keeps.
        f.click("Command1(0)");
        QCOMPARE(f.readFile("MARVO.dat").split('\n').value(7), QByteArray(" 1 \r"));
        // A finish with its bib reaches the start-times file, and the export writes the
        // three files with bibs.
        f.makeResultsFolder();
        f.clock.advance(12.5);
        f.child<QLineEdit>("Text1")->setText("57");
        f.pressF(1);
        QTRY_COMPARE(f.readFile("C/Carreras/copias/TiemposSalida.txt"),
                     QByteArray("  57,00:00:12:500\r\n"));
        f.click("Command6");
        QVERIFY(QFile::exists(f.path("C/Carreras/copias/dorsales-Tiempos-Marvo.txt")));
    }

    void compactAndBack_data()
    {
        QTest::addColumn<int>("modo");
        QTest::addColumn<bool>("running");
        QTest::newRow("Lap") << 0 << false;
        QTest::newRow("dorsales y tiempos") << 1 << false;
        QTest::newRow("running") << 0 << true;
    }

    void compactAndBack()
    {
        QFETCH(int, modo);
        QFETCH(bool, running);
        FormFixture f;
        const RaceState saved = running ? runningRace() : stoppedRace(2, modo);
        FormMarvolendo& w = f.open(saved);
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
        QVERIFY(f.action("opp2")->isEnabled() != running &&
                f.action("opp22")->isEnabled() != running);
        QCOMPARE(f.lines("List2"), saved.list2);
        QCOMPARE(f.dialogs.shown.size(), running ? 2 : 0);
    }
};

QTEST_MAIN(OptionsTest)
#include "tst_options.moc"
