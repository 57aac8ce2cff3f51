// Clearing a race (Command4) and the compact window (opp4), driven through the real window.
#include "app/core/statefile.h"
#include "app/look.h"
#include "support/formfixture.h"
#include "support/races.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>

class ClearingTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingToLoseClearsWithoutQuestion();
    void cancelChangesNothing_data();
    void cancelChangesNothing();
    void okSavesTheOldListsThenEmptiesThem();
    void fractionAfterClearing_data();
    void fractionAfterClearing();
    void compactAndBackWithResultsListed();
    void compactAndBackInBibsAndTimes();
    void fullAgainWhileRunningKeepsTheModesLocked();
};

namespace
{

const QString clearTitle = QStringLiteral("Borrado de tiempos");
const QString clearText = QStringLiteral("Cuidado si continua borrara todos los datos almacenados");

QSize twips(int width, int height)
{
    return {look::px(width), look::px(height)};
}

} // namespace

void ClearingTest::nothingToLoseClearsWithoutQuestion()
{
    FormFixture f;
    f.open();
    f.click("Command4");
    QVERIFY(f.dialogs.shown.isEmpty());
    RaceState expected;
    expected.horaSalida = QStringLiteral("     ");
    expected.label5 = QStringLiteral("00:00:00:000");
    expected.label8 = QStringLiteral("0:00:00:000");
    expected.modoCaptura = 0;
    QCOMPARE(f.readFile("MARVO.dat"), statefile::encode(expected));
}

void ClearingTest::cancelChangesNothing_data()
{
    QTest::addColumn<bool>("listed");
    QTest::addColumn<int>("minutes");
    QTest::newRow("results listed") << true << 0;
    QTest::newRow("clock moved") << false << 2;
}

void ClearingTest::cancelChangesNothing()
{
    QFETCH(bool, listed);
    QFETCH(int, minutes);
    FormFixture f;
    RaceState saved = stoppedRace();
    if (!listed) {
        saved.combo1.clear();
        saved.list1.clear();
    }
    f.writeFile("MARVO.dat", statefile::encode(saved));
    const QByteArray before = f.readFile("MARVO.dat");
    f.open();
    for (int i = 0; i < minutes; ++i)
        f.click("Command2(0)");
    const QString clock = f.label("Label1")->text();
    const QString rank = f.label("Label2")->text();
    const QColor clockBack = look::back(f.label("Label1"));

    f.dialogs.answers = {Dialogs::Cancel};
    f.click("Command4");
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(f.dialogs.shown[0].kind, QStringLiteral("confirm"));
    QCOMPARE(f.dialogs.shown[0].title, clearTitle);
    QCOMPARE(f.dialogs.shown[0].text, clearText);
    QCOMPARE(f.readFile("MARVO.dat"), before);
    QCOMPARE(f.lines("List1"), saved.list1);
    QCOMPARE(f.comboLines(), saved.combo1);
    QCOMPARE(f.lines("List2"), saved.list2);
    QCOMPARE(f.label("Label1")->text(), clock);
    QCOMPARE(f.label("Label2")->text(), rank);
    QCOMPARE(look::back(f.label("Label1")), clockBack);
}

void ClearingTest::okSavesTheOldListsThenEmptiesThem()
{
    FormFixture f;
    const RaceState saved = stoppedRace();
    f.writeFile("MARVO.dat", statefile::encode(saved));
    f.open();
    f.click("Command2(0)");
    f.dialogs.answers = {Dialogs::Ok};
    f.click("Command4");
    QCOMPARE(f.dialogs.shown.size(), 1);

    // The file keeps the old lists with the clock reset.
    RaceState expected = saved;
    expected.horaSalida = QStringLiteral("     ");
    expected.tempsPrimer.clear();
    expected.label5 = QStringLiteral("00:14:02:500");
    expected.label8 = QStringLiteral("0:01:32:375");
    QCOMPARE(f.readFile("MARVO.dat"), statefile::encode(expected));

    QVERIFY(f.lines("List1").isEmpty());
    QVERIFY(f.comboLines().isEmpty());
    QCOMPARE(f.lines("List2"), saved.list2);
    QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:00:00"));
    QCOMPARE(f.label("Label2")->text(), QStringLiteral("0"));
    QCOMPARE(f.label("Label4")->text(), QStringLiteral("00:00:00:000"));
    for (const char* name : {"Label5", "Label7", "Label8"})
        QCOMPARE(f.label(name)->text(), QStringLiteral("0:00:00:000"));
    for (const char* name : {"Label4", "Label7"}) {
        QCOMPARE(look::back(f.label(name)), look::lightGrey);
        QCOMPARE(look::fore(f.label(name)), QColor(Qt::black));
    }
    for (const char* name : {"Label4", "Label5", "Label7", "Label8"})
        QVERIFY2(!f.label(name)->isEnabled(), name);
    for (const char* name :
         {"Label1", "Label6", "Label8", "Label2", "Label5", "Combo1", "List1", "Text1"}) {
        QCOMPARE(look::back(f.child<QWidget>(name)), look::lightGrey);
        QCOMPARE(look::fore(f.child<QWidget>(name)), look::grey);
    }
    QCOMPARE(f.child<QProgressBar>("ProgressBar1")->value(), 0);
    QVERIFY(f.child<QLineEdit>("Text1")->text().isEmpty());

    // A restart brings the old lists back until the next save.
    f.close();
    f.open();
    QCOMPARE(f.lines("List1"), saved.list1);
    QCOMPARE(f.lines("List2"), saved.list2);
}

void ClearingTest::fractionAfterClearing_data()
{
    QTest::addColumn<int>("formato");
    QTest::addColumn<QString>("fraction");
    QTest::newRow("Segundos") << 0 << "";
    QTest::newRow("Centesimas") << 1 << "00";
    QTest::newRow("Milesimas") << 2 << "000";
}

void ClearingTest::fractionAfterClearing()
{
    QFETCH(int, formato);
    QFETCH(QString, fraction);
    FormFixture f;
    f.writeFile("MARVO.dat", statefile::encode(stoppedRace(formato)));
    f.open();
    f.label("Label6")->setText(QStringLiteral("xyz"));
    f.dialogs.answers = {Dialogs::Ok};
    f.click("Command4");
    QCOMPARE(f.label("Label6")->text(), fraction);
}

void ClearingTest::compactAndBackWithResultsListed()
{
    FormFixture f;
    const RaceState saved = stoppedRace();
    f.writeFile("MARVO.dat", statefile::encode(saved));
    const QByteArray before = f.readFile("MARVO.dat");
    FormMarvolendo& w = f.open();
    QAction* opp4 = f.action("opp4");
    QCOMPARE(opp4->text(), QStringLiteral("Minimizar"));

    f.trigger("opp4");
    QVERIFY(opp4->isChecked());
    QCOMPARE(opp4->text(), QStringLiteral("Maximizar"));
    QCOMPARE(w.size(), twips(4545, 2050));
    QVERIFY(f.button("Command6")->isHidden());
    QVERIFY(!f.action("opp2")->isEnabled());
    QVERIFY(!f.action("opp22")->isEnabled());
    // The restore ran without a file: the results are gone from the window, not from the file.
    QVERIFY(f.lines("List1").isEmpty());
    QVERIFY(f.comboLines().isEmpty());
    QCOMPARE(f.lines("List2"), saved.list2);
    QCOMPARE(f.readFile("MARVO.dat"), before);

    f.trigger("opp4");
    QVERIFY(!opp4->isChecked());
    QCOMPARE(opp4->text(), QStringLiteral("Minimizar"));
    QCOMPARE(w.size(), twips(4545, 5115)); // the width is left as it was
    QVERIFY(!f.button("Command6")->isHidden());
    QVERIFY(f.action("opp2")->isEnabled());
    QVERIFY(f.action("opp22")->isEnabled());
    QVERIFY(f.lines("List1").isEmpty());
    QCOMPARE(f.lines("List2"), saved.list2);
    QVERIFY(f.dialogs.shown.isEmpty());
}

void ClearingTest::compactAndBackInBibsAndTimes()
{
    FormFixture f;
    f.writeFile("MARVO.dat", statefile::encode(stoppedRace(2, 1)));
    FormMarvolendo& w = f.open();
    QVERIFY(f.action("opp2")->isChecked());
    // A restart in this mode opens the window as drawn: wide, with the results list.
    QCOMPARE(w.size(), twips(13440, 5115));
    for (const char* shown : {"List1", "Label16", "Label15", "Text2", "Image1", "Text1"})
        QVERIFY2(!f.child<QWidget>(shown)->isHidden(), shown);
    QCOMPARE(f.lines("List1"), stoppedRace().list1);
    f.trigger("opp4");
    QCOMPARE(w.size(), twips(4545, 2050));
    f.trigger("opp4");
    QCOMPARE(w.size(), twips(13440, 5115));
    QVERIFY(!f.child<QLineEdit>("Text1")->isHidden());
    QVERIFY(f.button("Command3")->isHidden());
}

void ClearingTest::fullAgainWhileRunningKeepsTheModesLocked()
{
    FormFixture f;
    RaceState running = stoppedRace();
    running.inicio = 9 * 3600.0;
    f.writeFile("MARVO.dat", statefile::encode(running));
    f.clock.seconds = 9 * 3600.0 + 20 * 60;
    f.open();
    f.tick(0);
    // The restore inside the toggle re-applies the Lap mode, whose handler asks its format
    // question because the clock does not read zero.
    f.dialogs.answers = {Dialogs::Ok, Dialogs::Ok};
    f.trigger("opp4");
    f.trigger("opp4");
    QCOMPARE(f.dialogs.shown.size(), 2);
    QCOMPARE(f.dialogs.shown[0].title, QStringLiteral("Formato de tiempo"));
    QCOMPARE(f.action("opp4")->text(), QStringLiteral("Minimizar"));
    QVERIFY(!f.action("opp2")->isEnabled());
    QVERIFY(!f.action("opp22")->isEnabled());
    QVERIFY(!f.action("op2(0)")->isEnabled());
    QVERIFY(!f.button("Command1(1)")->isHidden());
}

QTEST_MAIN(ClearingTest)
#include "tst_clearing.moc"
