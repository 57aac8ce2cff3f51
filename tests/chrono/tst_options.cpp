// The time-format menu and the three capture modes, driven through the real menu actions.
#include "app/core/statefile.h"
#include "app/look.h"
#include "support/formfixture.h"
#include "support/races.h"

#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

class OptionsTest : public QObject
{
    Q_OBJECT

private slots:
    void formatAtZeroClearsWithoutQuestion_data();
    void formatAtZeroClearsWithoutQuestion();
    void formatWithListedResultsAsksTheClearingQuestion();
    void cancelledFormatThenNextClickOnlyMovesTheMark();
    void formatAcceptedOnAMovedClock_data();
    void formatAcceptedOnAMovedClock();
    void formatLockedWhileRunning();
    void bibsAndTimesAndBack();
    void bibsAndTimesCancelledOnAMovedClock();
    void bibsOnlyAndBack();
    void leavingBibsOnlyWithCancelKeepsItsLayout();
    void restartInBibsOnly();
    void enteringBibsOnlyAfterACancelledBox();
};

namespace
{

const QString formatTitle = QStringLiteral("Formato de tiempo");
const QString formatText =
    QStringLiteral("Cuidado si cambia el formato borrara todos los tiempos almacenados");
const QString clearTitle = QStringLiteral("Borrado de tiempos");

QStringList fileLines(const FormFixture& f)
{
    return QString::fromLatin1(f.readFile("MARVO.dat")).split(QStringLiteral("\r\n"));
}

QSize twips(int width, int height)
{
    return {look::px(width), look::px(height)};
}

QRect twips(int left, int top, int width, int height)
{
    return {look::px(left), look::px(top), look::px(width), look::px(height)};
}

QStringList checkedFormats(const FormFixture& f)
{
    QStringList out;
    for (int i = 0; i < 3; ++i) {
        if (f.action(QStringLiteral("op2(%1)").arg(i))->isChecked())
            out << QString::number(i);
    }
    return out;
}

} // namespace

void OptionsTest::formatAtZeroClearsWithoutQuestion_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("clockWidth");
    QTest::addColumn<QString>("fraction");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("difference");
    QTest::newRow("Segundos") << 0 << 4215 << ""
                              << "00:00:00"
                              << "0:00:00";
    QTest::newRow("Centesimas") << 1 << 3015 << "00"
                                << "00:00:00:00"
                                << "0:00:00:00";
    QTest::newRow("Milesimas") << 2 << 3015 << "000"
                               << "00:00:00:000"
                               << "0:00:00:000";
}

void OptionsTest::formatAtZeroClearsWithoutQuestion()
{
    QFETCH(int, index);
    QFETCH(int, clockWidth);
    QFETCH(QString, fraction);
    QFETCH(QString, first);
    QFETCH(QString, difference);
    // Only a start order: nothing is recorded and the clock stands at zero.
    FormFixture f;
    RaceState saved = stoppedRace(index == 0 ? 1 : 0);
    saved.combo1.clear();
    saved.list1.clear();
    f.writeFile("MARVO.dat", statefile::encode(saved));
    f.open();
    f.trigger(QStringLiteral("op2(%1)").arg(index));

    QVERIFY(f.dialogs.shown.isEmpty());
    QCOMPARE(checkedFormats(f), QStringList{QString::number(index)});
    QCOMPARE(look::width(f.label("Label1")), clockWidth);
    QCOMPARE(f.label("Label6")->text(), fraction);
    QCOMPARE(f.label("Label4")->text(), first);
    QCOMPARE(f.label("Label7")->text(), difference);
    QCOMPARE(f.child<QComboBox>("Combo1")->font().pointSizeF(), 10.0);
    QCOMPARE(f.lines("List2"), saved.list2);
    // The race was cleared: the file has the new format, the zeroed clock and the start order.
    RaceState expected;
    expected.horaSalida = QStringLiteral("     ");
    expected.label5 = QStringLiteral("00:00:00:000");
    expected.label8 = QStringLiteral("0:00:00:000");
    expected.formato = index;
    expected.modoCaptura = 0;
    expected.list2 = saved.list2;
    QCOMPARE(f.readFile("MARVO.dat"), statefile::encode(expected));
}

void OptionsTest::formatWithListedResultsAsksTheClearingQuestion()
{
    // The clock stands at zero after a restart, so the format question is not asked, but the
    // clearing asks its own. Cancelled, the lists stay and the new format is applied anyway.
    FormFixture f;
    f.writeFile("MARVO.dat", statefile::encode(stoppedRace()));
    const QByteArray before = f.readFile("MARVO.dat");
    f.open();
    f.dialogs.answers = {Dialogs::Cancel};
    f.trigger("op2(0)");
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(f.dialogs.shown[0].title, clearTitle);
    QCOMPARE(f.readFile("MARVO.dat"), before);
    QCOMPARE(f.lines("List1"), stoppedRace().list1);
    QCOMPARE(look::width(f.label("Label1")), 4215);
    QCOMPARE(f.label("Label4")->text(), QStringLiteral("00:00:00"));

    // Accepted: saved with the old lines and the new format, then emptied.
    f.dialogs.answers = {Dialogs::Ok};
    f.trigger("op2(1)");
    QCOMPARE(f.dialogs.shown.size(), 2);
    QVERIFY(f.lines("List1").isEmpty());
    const QStringList lines = fileLines(f);
    QCOMPARE(lines[6], QStringLiteral(" 1 "));
    QCOMPARE(lines.mid(8, 5),
             QStringList({QStringLiteral(" 2 "), stoppedRace().combo1[0], stoppedRace().list1[0],
                          stoppedRace().combo1[1], stoppedRace().list1[1]}));
}

void OptionsTest::cancelledFormatThenNextClickOnlyMovesTheMark()
{
    FormFixture f;
    f.open();
    f.click("Command2(0)"); // the stopped clock reads 00:01:00
    f.dialogs.answers = {Dialogs::Cancel};
    f.trigger("op2(0)");
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(f.dialogs.shown[0].kind, QStringLiteral("confirm"));
    QCOMPARE(f.dialogs.shown[0].title, formatTitle);
    QCOMPARE(f.dialogs.shown[0].text, formatText);
    // The format in use is checked again and the clicked one stays checked.
    QCOMPARE(checkedFormats(f), QStringList({"0", "2"}));
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:01:00"));
    QCOMPARE(f.label("Label6")->text(), QStringLiteral("000"));
    QCOMPARE(look::width(f.label("Label1")), 3015);
    QVERIFY(!QFile::exists(f.path("MARVO.dat")));

    // The next click only moves the mark: no question, no clearing, no re-layout.
    f.trigger("op2(1)");
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(checkedFormats(f), QStringList{"1"});
    QCOMPARE(f.label("Label6")->text(), QStringLiteral("000"));
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:01:00"));

    // The click after that asks again; the saved format is still Milesimas.
    f.dialogs.answers = {Dialogs::Ok, Dialogs::Cancel};
    f.trigger("op2(0)");
    QCOMPARE(f.dialogs.shown.size(), 3);
    QCOMPARE(f.dialogs.shown[2].title, clearTitle);
    QCOMPARE(checkedFormats(f), QStringList{"0"});
    QCOMPARE(look::width(f.label("Label1")), 4215);
    QVERIFY(!f.dialogs.unexpected);
}

void OptionsTest::formatAcceptedOnAMovedClock_data()
{
    QTest::addColumn<int>("clearing");
    QTest::addColumn<QString>("clock");
    QTest::newRow("cleared") << int(Dialogs::Ok) << "00:00:00";
    QTest::newRow("clearing cancelled") << int(Dialogs::Cancel) << "00:01:00";
}

void OptionsTest::formatAcceptedOnAMovedClock()
{
    QFETCH(int, clearing);
    QFETCH(QString, clock);
    FormFixture f;
    f.open();
    f.click("Command2(0)");
    f.dialogs.answers = {Dialogs::Ok, clearing};
    f.trigger("op2(1)");
    QCOMPARE(f.dialogs.shown.size(), 2);
    QCOMPARE(f.dialogs.shown[0].title, formatTitle);
    QCOMPARE(f.dialogs.shown[1].title, clearTitle);
    QCOMPARE(f.label("Label1")->text(), clock);
    // The new format is in place whatever the clearing answered.
    QCOMPARE(checkedFormats(f), QStringList{"1"});
    QCOMPARE(f.label("Label6")->text(), QStringLiteral("00"));
    QCOMPARE(look::width(f.label("Label1")), 3015);
}

void OptionsTest::formatLockedWhileRunning()
{
    FormFixture f;
    f.open();
    f.click("Command1(0)");
    f.tick(3);
    for (const char* name : {"op2(0)", "op2(1)", "opp2", "opp22"}) {
        f.trigger(name);
        QVERIFY2(!f.action(name)->isEnabled(), name);
    }
    QCOMPARE(checkedFormats(f), QStringList{"2"});
    QVERIFY(!f.action("opp2")->isChecked());
    QVERIFY(!f.action("opp22")->isChecked());
    QVERIFY(f.dialogs.shown.isEmpty());
}

void OptionsTest::bibsAndTimesAndBack()
{
    FormFixture f;
    FormMarvolendo& w = f.open();
    QCOMPARE(w.size(), twips(4545, 5115));
    f.trigger("opp2");
    QVERIFY(f.dialogs.shown.isEmpty());
    QVERIFY(f.button("Command3")->isHidden());
    QCOMPARE(look::width(f.button("Command3")), 1815);
    QVERIFY(!f.child<QLineEdit>("Text1")->isHidden());
    for (const char* shown : {"Label15", "Label16", "List1", "Text2", "Image1"})
        QVERIFY2(!f.child<QWidget>(shown)->isHidden(), shown);
    QVERIFY(f.label("Label14")->isHidden());
    QVERIFY(f.child<QComboBox>("Combo1")->isHidden());
    QCOMPARE(f.child<QComboBox>("Combo1")->font().pointSizeF(), 9.0);
    QCOMPARE(w.size(), twips(13440, 5115));
    QCOMPARE(f.button("Command6")->toolTip(),
             QStringLiteral("Crea tres ficheros en C:\\carreras\\copias / Dorsales-Marvo.TXT - "
                            "dorsales-Tiempos-Marvo.TXT y Tiempos-Marvo.TXT"));
    QVERIFY(!f.action("opp4")->isChecked());
    QCOMPARE(f.action("opp4")->text(), QStringLiteral("Minimizar"));
    // The compact toggle inside it restores the Lap mode once more, which takes the mark off
    // again: the first click leaves the mode set and the entry unchecked.
    QVERIFY(!f.action("opp2")->isChecked());
    f.click("Command4");
    QCOMPARE(fileLines(f)[7], QStringLiteral(" 1 "));

    // The second click re-applies the mode and checks the entry; the third leaves it.
    f.trigger("opp2");
    QVERIFY(f.action("opp2")->isChecked());
    QVERIFY(f.button("Command3")->isHidden());
    QCOMPARE(w.size(), twips(13440, 5115));
    f.trigger("opp2");
    QVERIFY(!f.action("opp2")->isChecked());
    QVERIFY(!f.button("Command3")->isHidden());
    QVERIFY(f.child<QLineEdit>("Text1")->isHidden());
    QCOMPARE(look::width(f.button("Command3")), 3135);
    for (const char* hidden : {"Label14", "Label15", "Label16", "List1", "Text2", "Image1"})
        QVERIFY2(f.child<QWidget>(hidden)->isHidden(), hidden);
    QVERIFY(!f.child<QComboBox>("Combo1")->isHidden());
    QCOMPARE(w.size(), twips(4545, 5115));
    QCOMPARE(w.x(), look::px(3000));
    QCOMPARE(f.button("Command6")->toolTip(),
             QStringLiteral("Crea tres ficheros en C:\\carreras\\copias / Tiempos-Marvo.TXT"));
    f.click("Command4");
    QCOMPARE(fileLines(f)[7], QStringLiteral(" 0 "));
    QVERIFY(f.dialogs.shown.isEmpty());
}

void OptionsTest::bibsAndTimesCancelledOnAMovedClock()
{
    FormFixture f;
    FormMarvolendo& w = f.open();
    f.click("Command2(0)");
    // A cancelled format change leaves two entries checked; the next click moves the mark
    // to Centesimas without making it the format.
    f.dialogs.answers = {Dialogs::Cancel};
    f.trigger("op2(0)");
    f.trigger("op2(1)");
    QCOMPARE(checkedFormats(f), QStringList{"1"});

    f.dialogs.answers = {Dialogs::Cancel};
    f.trigger("opp2");
    QCOMPARE(f.dialogs.shown.size(), 2);
    QCOMPARE(f.dialogs.shown[1].title, formatTitle);
    QCOMPARE(f.dialogs.shown[1].text, formatText);
    // The toggle stays, the format in use is checked again, the layout is untouched.
    QVERIFY(f.action("opp2")->isChecked());
    QCOMPARE(checkedFormats(f), QStringList({"1", "2"}));
    QVERIFY(!f.button("Command3")->isHidden());
    QVERIFY(f.child<QLineEdit>("Text1")->isHidden());
    QCOMPARE(w.size(), twips(4545, 5115));
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:01:00"));
}

void OptionsTest::bibsOnlyAndBack()
{
    FormFixture f;
    FormMarvolendo& w = f.open();
    f.trigger("opp22");
    QVERIFY(f.dialogs.shown.isEmpty());
    QVERIFY(f.action("opp22")->isChecked());
    QVERIFY(f.action("opp22")->isEnabled());
    for (const char* locked : {"opp2", "op2(0)", "op2(1)", "op2(2)", "opp4"})
        QVERIFY2(!f.action(locked)->isEnabled(), locked);
    for (const char* hidden :
         {"Command1(0)", "Command1(1)", "Command2(0)",  "Command2(1)", "Command3", "Command4",
          "Label1",      "Label6",      "ProgressBar1", "Label9",      "Label10",  "Label4",
          "Label7",      "Label12",     "Label11",      "Label5",      "Label8",   "Label2",
          "Label13",     "Combo1",      "Label15"})
        QVERIFY2(f.child<QWidget>(hidden)->isHidden(), hidden);
    auto* text1 = f.child<QLineEdit>("Text1");
    auto* frame = f.child<QGroupBox>("Frame1");
    QVERIFY(!text1->isHidden());
    QVERIFY(text1->isEnabled());
    QCOMPARE(look::back(text1), look::olive);
    QCOMPARE(text1->pos(), twips(120, 240, 0, 0).topLeft());
    QCOMPARE(frame->title(), QString());
    QCOMPARE(frame->geometry(), twips(120, 0, 3375, 975));
    QCOMPARE(f.button("Command5")->pos(), twips(2950, 2000, 0, 0).topLeft());
    QCOMPARE(f.button("Command6")->pos(), twips(2950, 2500, 0, 0).topLeft());
    QCOMPARE(f.list("List1")->geometry(), twips(120, 1030, 2000, 2790));
    QVERIFY(!f.list("List1")->isHidden());
    QCOMPARE(look::back(f.list("List1")), look::lightYellow);
    QCOMPARE(f.child<QLineEdit>("Text2")->pos(), twips(2300, 3333, 0, 0).topLeft());
    QVERIFY(!f.child<QLineEdit>("Text2")->isHidden());
    QCOMPARE(f.label("Label15")->x(), look::px(480));
    QCOMPARE(w.size(), twips(3700, 4700));
    QCOMPARE(f.button("Command6")->toolTip(),
             QStringLiteral("Crea tres ficheros en C:\\carreras\\copias / Dorsales-Marvo.TXT"));

    // Nothing recorded: leaving clears without a question and lays the window out again.
    f.trigger("opp22");
    QVERIFY(f.dialogs.shown.isEmpty());
    QVERIFY(!f.action("opp22")->isChecked());
    for (const char* unlocked : {"opp2", "op2(0)", "op2(1)", "op2(2)", "opp4"})
        QVERIFY2(f.action(unlocked)->isEnabled(), unlocked);
    for (const char* shown :
         {"Command1(0)", "Command2(0)", "Command2(1)", "Command3", "Command4", "Label1", "Label6",
          "ProgressBar1", "Label9", "Label10", "Label4", "Label7", "Label12", "Label11", "Label5",
          "Label8", "Label2", "Label13", "Combo1"})
        QVERIFY2(!f.child<QWidget>(shown)->isHidden(), shown);
    QVERIFY(f.button("Command1(1)")->isHidden());
    QCOMPARE(frame->title(), QStringLiteral("Tiempos parciales"));
    QCOMPARE(frame->geometry(), twips(120, 2040, 4215, 1815));
    QCOMPARE(text1->pos(), twips(960, 1080, 0, 0).topLeft());
    QCOMPARE(look::back(text1), look::lightGrey);
    QCOMPARE(f.button("Command5")->pos(), twips(3840, 0, 0, 0).topLeft());
    QCOMPARE(f.button("Command6")->pos(), twips(3360, 0, 0, 0).topLeft());
    QCOMPARE(f.list("List1")->geometry(), twips(4440, 240, 4335, 3420));
    QCOMPARE(f.child<QLineEdit>("Text2")->pos(), twips(7560, 3840, 0, 0).topLeft());
    QCOMPARE(f.label("Label15")->x(), look::px(3600));
    QCOMPARE(w.size(), twips(4545, 5100));
    QCOMPARE(f.button("Command6")->toolTip(),
             QStringLiteral("Crea un fichero en C:\\carreras\\copias / Tiempos-Marvo.TXT"));
    QCOMPARE(fileLines(f)[7], QStringLiteral(" 0 "));
}

void OptionsTest::leavingBibsOnlyWithCancelKeepsItsLayout()
{
    FormFixture f;
    f.writeFile("MARVO.dat", statefile::encode(stoppedRace()));
    const QByteArray before = f.readFile("MARVO.dat");
    FormMarvolendo& w = f.open();
    f.trigger("opp22");
    QCOMPARE(w.size(), twips(3700, 4700));
    QCOMPARE(f.lines("List1"), stoppedRace().list1); // entering keeps the race

    f.dialogs.answers = {Dialogs::Cancel};
    f.trigger("opp22");
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(f.dialogs.shown[0].title, clearTitle);
    QCOMPARE(f.readFile("MARVO.dat"), before);
    QCOMPARE(f.lines("List1"), stoppedRace().list1);
    // Checked again but the mode is the Lap mode, in the bib-only layout, with the menus open.
    QVERIFY(f.action("opp22")->isChecked());
    QVERIFY(f.button("Command1(0)")->isHidden());
    QCOMPARE(w.size(), twips(3700, 4700));
    QVERIFY(f.action("opp2")->isEnabled());
    QVERIFY(f.action("op2(0)")->isEnabled());
    f.click("Command5");
    QCOMPARE(fileLines(f)[7], QStringLiteral(" 0 "));

    // The next click leaves the mode again and this time the race is cleared.
    f.dialogs.answers = {Dialogs::Ok};
    f.trigger("opp22");
    QCOMPARE(f.dialogs.shown.size(), 2);
    QVERIFY(!f.action("opp22")->isChecked());
    QVERIFY(f.lines("List1").isEmpty());
    QCOMPARE(f.lines("List2"), stoppedRace().list2);
    QVERIFY(!f.button("Command1(0)")->isHidden());
    QCOMPARE(w.size(), twips(4545, 5100));
}

void OptionsTest::restartInBibsOnly()
{
    // Start-up puts the saved mode back, with the menu entry itself locked: only the compact
    // toggle and back opens it again.
    FormFixture f;
    f.writeFile("MARVO.dat", statefile::encode(stoppedRace(2, 2)));
    FormMarvolendo& w = f.open();
    QVERIFY(f.action("opp22")->isChecked());
    QVERIFY(!f.action("opp22")->isEnabled());
    QVERIFY(!f.action("opp2")->isEnabled());
    QVERIFY(f.action("opp4")->isEnabled());
    QCOMPARE(f.list("List1")->font().pointSizeF(), 14.0);
    QCOMPARE(f.lines("List1"), stoppedRace().list1);
    QCOMPARE(w.size(), twips(3700, 4700));
    QVERIFY(f.button("Command1(0)")->isHidden());

    f.trigger("opp4");
    f.trigger("opp4");
    QVERIFY(f.action("opp22")->isEnabled());
    QVERIFY(f.action("opp22")->isChecked());
    QVERIFY(f.lines("List1").isEmpty());
    QVERIFY(f.dialogs.shown.isEmpty());
}

void OptionsTest::enteringBibsOnlyAfterACancelledBox()
{
    // The mode handler reads the answer of the last box of the window, here a cancelled
    // clearing: the entry is checked and the menus locked, but the layout does not change.
    FormFixture f;
    f.writeFile("MARVO.dat", statefile::encode(stoppedRace()));
    FormMarvolendo& w = f.open();
    f.dialogs.answers = {Dialogs::Cancel};
    f.click("Command4");
    f.trigger("opp22");
    QCOMPARE(f.dialogs.shown.size(), 1);
    QVERIFY(f.action("opp22")->isChecked());
    QVERIFY(!f.action("opp2")->isEnabled());
    QVERIFY(!f.action("op2(0)")->isEnabled());
    QVERIFY(!f.button("Command1(0)")->isHidden());
    QCOMPARE(w.size(), twips(4545, 5115));
    f.click("Command5");
    QCOMPARE(fileLines(f)[7], QStringLiteral(" 0 "));
}

QTEST_MAIN(OptionsTest)
#include "tst_options.moc"
