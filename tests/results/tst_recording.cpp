// Recording finishes through the window: Start, finishes by "Lap", F1 and Enter in the bib
// field, a bib corrected in the list, Stop; the lines of List1 and Combo1 in every format and
// in the bibs-only display, the labels a finish fixes and the one save it makes.
#include "app/core/statefile.h"
#include "app/look.h"
#include "support/formfixture.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace
{

// The time format is taken from the check marks alone.
void checkFormat(FormFixture& f, int format)
{
    for (int i = 0; i < 3; ++i)
        f.action(QStringLiteral("op2(%1)").arg(i))->setChecked(i == format);
}

// The bib field and the correction controls, as the bibs-and-times layout shows them.
void showBibControls(FormFixture& f)
{
    for (const char* name : {"Text1", "List1", "Text2", "Label14"})
        f.child<QWidget>(QLatin1String(name))->setVisible(true);
}

void clickLine(FormFixture& f, int row, bool twice)
{
    QListWidget* list = f.list(QStringLiteral("List1"));
    const QPoint at = list->visualItemRect(list->item(row)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
    if (twice)
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
}

qreal pointSize(FormFixture& f, const QString& name)
{
    return f.child<QWidget>(name)->font().pointSizeF();
}

} // namespace

class TstRecording : public QObject
{
    Q_OBJECT

private slots:
    void wholeRace_data();
    void wholeRace();
    void firstFinisherLabels();
    void bibsAndTimesModeLeavesTimeLabels();
    void noFormatCheckedAddsNoLine();
    void rankFromCaption_data();
    void rankFromCaption();
};

void TstRecording::wholeRace_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<bool>("bibsOnly");
    QTest::addColumn<QString>("firstLine"); // rank 1 as recorded, before its correction
    QTest::addColumn<QStringList>("list1");
    QTest::addColumn<QStringList>("combo1");
    QTest::addColumn<QStringList>("labels"); // Label4, Label5, Label8 at the end
    QTest::addColumn<qreal>("list1Size");
    QTest::addColumn<qreal>("combo1Size");

    QTest::newRow("Segundos") << 0 << false << "   1-   0- 00:00:09 - 0:00:00"
                              << QStringList{"   1-   8- 00:00:09 - 0:00:00",
                                             "   2-   0- 00:00:12 - 0:00:03",
                                             "   3-  57- 00:00:14 - 0:00:05"}
                              << QStringList{"   1- 00:00:09 - 0:00:00", "   2- 00:00:12 - 0:00:03",
                                             "   3- 00:00:14 - 0:00:05"}
                              << QStringList{"00:00:09", "00:00:14", "0:00:05"} << 11.0 << 12.0;
    QTest::newRow("Centesimas") << 1 << false << "   1-   0- 00:00:09:00 - 0:00:00:00"
                                << QStringList{"   1-   8- 00:00:09:00 - 0:00:00:00",
                                               "   2-   0- 00:00:12:25 - 0:00:03:25",
                                               "   3-  57- 00:00:14:75 - 0:00:05:75"}
                                << QStringList{"   1- 00:00:09:00 - 0:00:00:00",
                                               "   2- 00:00:12:25 - 0:00:03:25",
                                               "   3- 00:00:14:75 - 0:00:05:75"}
                                << QStringList{"00:00:09:00", "00:00:14:75", "0:00:05:75"} << 9.0
                                << 10.0;
    QTest::newRow("Milesimas") << 2 << false << "   1-   0- 00:00:09:000 - 0:00:00:000"
                               << QStringList{"   1-   8- 00:00:09:000 - 0:00:00:000",
                                              "   2-   0- 00:00:12:250 - 0:00:03:250",
                                              "   3-  57- 00:00:14:750 - 0:00:05:750"}
                               << QStringList{"   1- 00:00:09:000 - 0:00:00:000",
                                              "   2- 00:00:12:250 - 0:00:03:250",
                                              "   3- 00:00:14:750 - 0:00:05:750"}
                               << QStringList{"00:00:09:000", "00:00:14:750", "0:00:05:750"} << 9.0
                               << 10.0;
    // Bibs only: rank and bib in both lists, the last difference label left alone.
    const QStringList bibLines{"   1-   0", "   2-   0", "   3-  57"};
    QStringList corrected = bibLines;
    corrected[0] = QStringLiteral("   1-   8");
    QTest::newRow("bibs only, Segundos")
        << 0 << true << "   1-   0" << corrected << bibLines
        << QStringList{"00:00:09", "00:00:14", "0:00:00:000"} << 14.0 << 10.0;
    QTest::newRow("bibs only, Milesimas")
        << 2 << true << "   1-   0" << corrected << bibLines
        << QStringList{"00:00:09:000", "00:00:14:750", "0:00:00:000"} << 14.0 << 10.0;
}

void TstRecording::wholeRace()
{
    QFETCH(int, format);
    QFETCH(bool, bibsOnly);
    QFETCH(QString, firstLine);
    QFETCH(QStringList, list1);
    QFETCH(QStringList, combo1);
    QFETCH(QStringList, labels);
    QFETCH(qreal, list1Size);
    QFETCH(qreal, combo1Size);

    FormFixture f;
    f.makeResultsFolder();
    f.open();
    checkFormat(f, format);
    f.action(QStringLiteral("opp22"))->setChecked(bibsOnly);
    showBibControls(f);
    QListWidget* List1 = f.list(QStringLiteral("List1"));
    auto* Combo1 = f.child<QComboBox>(QStringLiteral("Combo1"));
    auto* Text1 = f.child<QLineEdit>(QStringLiteral("Text1"));
    auto* Text2 = f.child<QLineEdit>(QStringLiteral("Text2"));
    const QString statePath = QLatin1String(statefile::fileName);

    f.click(QStringLiteral("Command1(0)"));
    const QByteArray afterStart = f.readFile(statePath);

    // Rank 1 by the button: the only finish that saves the race. The save comes before the
    // lines are added, so the file holds the first finisher's time and not yet its line.
    f.tick(9);
    f.click(QStringLiteral("Command3"));
    QCOMPARE(f.label(QStringLiteral("Label2"))->text(), QStringLiteral("1"));
    QCOMPARE(f.lines(QStringLiteral("List1")), QStringList{firstLine});
    const QByteArray afterFirst = f.readFile(statePath);
    QVERIFY(afterFirst != afterStart);
    const statefile::Restored saved = statefile::decode(afterFirst);
    QVERIFY(saved.complete);
    QCOMPARE(saved.state.tempsPrimer, QStringLiteral("00:00:09:000"));
    QVERIFY(saved.state.list1.isEmpty());

    // Rank 2 by F1: the file stays as rank 1 left it.
    f.tick(3.25);
    f.pressF(1);
    QCOMPARE(f.lines(QStringLiteral("List1")).size(), 2);
    QCOMPARE(f.readFile(statePath), afterFirst);

    // Rank 3 by Enter in the bib field, which is emptied.
    f.tick(2.5);
    f.type(QStringLiteral("Text1"), QStringLiteral("57\n"));
    QCOMPARE(Text1->text(), QString());
    QCOMPARE(List1->currentRow(), 2);
    QCOMPARE(Combo1->currentText(), combo1.last());

    // The first line gets its bib: click, double-click, the bib in Text2 and Enter.
    clickLine(f, 0, false);
    QCOMPARE(f.label(QStringLiteral("Label14"))->text(), firstLine);
    clickLine(f, 0, true);
    QVERIFY(Text2->isEnabled());
    QCOMPARE(QApplication::focusWidget(), Text2);
    QTest::keyClicks(Text2, QStringLiteral("8"));
    QTest::keyClick(Text2, Qt::Key_Return);
    QCOMPARE(Text2->text(), QString());
    QCOMPARE(f.label(QStringLiteral("Label14"))->text(), QString());

    f.click(QStringLiteral("Command1(1)"));
    QVERIFY(!Text2->isEnabled()); // the correction ends with the focus

    QCOMPARE(f.lines(QStringLiteral("List1")), list1);
    QCOMPARE(f.comboLines(), combo1);
    QCOMPARE(f.label(QStringLiteral("Label4"))->text(), labels[0]);
    QCOMPARE(f.label(QStringLiteral("Label5"))->text(), labels[1]);
    QCOMPARE(f.label(QStringLiteral("Label8"))->text(), labels[2]);
    QCOMPARE(pointSize(f, QStringLiteral("List1")), list1Size);
    QCOMPARE(pointSize(f, QStringLiteral("Combo1")), combo1Size);
    // Neither later finishes nor the correction touched the saved race.
    QCOMPARE(f.readFile(statePath), afterFirst);
    QVERIFY(f.dialogs.shown.isEmpty());
}

void TstRecording::firstFinisherLabels()
{
    FormFixture f;
    f.open();
    QLabel* Label18 = f.label(QStringLiteral("Label18"));
    f.click(QStringLiteral("Command1(0)"));
    f.tick(1);
    Label18->setText(QStringLiteral("7"));
    look::setColours(Label18, look::lightYellow, look::darkRed);
    f.click(QStringLiteral("Command3"));

    QLabel* Label4 = f.label(QStringLiteral("Label4"));
    QLabel* Label7 = f.label(QStringLiteral("Label7"));
    QVERIFY(Label4->isEnabled());
    QCOMPARE(look::back(Label4), look::darkRed);
    QCOMPARE(look::fore(Label4), QColor(Qt::white));
    QVERIFY(Label7->isEnabled());
    QCOMPARE(look::back(Label7), look::teal);
    QCOMPARE(look::fore(Label7), QColor(Qt::white));
    for (const char* name : {"Label5", "Label8"}) {
        QLabel* l = f.label(QLatin1String(name));
        QVERIFY(l->isEnabled());
        QCOMPARE(look::back(l), look::lightYellow);
    }
    QCOMPARE(Label18->text(), QStringLiteral("0"));
    QCOMPARE(look::back(Label18), look::lightGrey);
    QCOMPARE(look::fore(Label18), look::buttonShadow());
    // A finish neither empties the bib field nor moves the focus.
    QCOMPARE(QApplication::focusWidget(), f.button(QStringLiteral("Command3")));
}

void TstRecording::bibsAndTimesModeLeavesTimeLabels()
{
    FormFixture f;
    RaceState s;
    s.formato = 0.0;
    s.modoCaptura = 1.0;
    f.writeFile(QLatin1String(statefile::fileName), statefile::encode(s));
    f.open();
    const QString label4 = f.label(QStringLiteral("Label4"))->text();
    const QString label5 = f.label(QStringLiteral("Label5"))->text();

    f.click(QStringLiteral("Command1(0)"));
    f.tick(61);
    f.type(QStringLiteral("Text1"), QStringLiteral("12\n"));
    const QByteArray afterFirst = f.readFile(QLatin1String(statefile::fileName));
    f.tick(1);
    f.type(QStringLiteral("Text1"), QStringLiteral("\n"));

    QCOMPARE(f.lines(QStringLiteral("List1")),
             (QStringList{"   1-  12- 00:01:01 - 0:00:00", "   2-   0- 00:01:02 - 0:00:00"}));
    QCOMPARE(f.label(QStringLiteral("Label4"))->text(), label4);
    QCOMPARE(f.label(QStringLiteral("Label5"))->text(), label5);
    // Rank 1 is still saved, with the first finisher's time.
    const statefile::Restored saved = statefile::decode(afterFirst);
    QCOMPARE(saved.state.tempsPrimer, QStringLiteral("00:01:01:000"));
    QCOMPARE(f.readFile(QLatin1String(statefile::fileName)), afterFirst);
}

void TstRecording::noFormatCheckedAddsNoLine()
{
    FormFixture f;
    f.open();
    checkFormat(f, -1);
    f.click(QStringLiteral("Command1(0)"));
    f.tick(5);
    f.click(QStringLiteral("Command3"));
    f.click(QStringLiteral("Command3"));
    QCOMPARE(f.label(QStringLiteral("Label2"))->text(), QStringLiteral("2"));
    QVERIFY(f.lines(QStringLiteral("List1")).isEmpty());
    QVERIFY(f.comboLines().isEmpty());
    QCOMPARE(f.label(QStringLiteral("Label18"))->text(), QStringLiteral("0"));
}

void TstRecording::rankFromCaption_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("rank");
    QTest::addColumn<QString>("line");

    QTest::newRow("empty") << ""
                           << "1"
                           << "   1-   0- 00:00:05 - 0:00:00";
    QTest::newRow("not a number") << "abc"
                                  << "1"
                                  << "   1-   0- 00:00:05 - 0:00:00";
    QTest::newRow("counting on") << "41"
                                 << "42"
                                 << "  42-   0- 00:00:05 - 0:00:00";
    QTest::newRow("past four digits") << "12344"
                                      << "12345"
                                      << "2345-   0- 00:00:05 - 0:00:00";
}

void TstRecording::rankFromCaption()
{
    QFETCH(QString, caption);
    QFETCH(QString, rank);
    QFETCH(QString, line);

    FormFixture f;
    f.open();
    checkFormat(f, 0);
    f.click(QStringLiteral("Command1(0)"));
    f.tick(5);
    f.label(QStringLiteral("Label2"))->setText(caption);
    f.click(QStringLiteral("Command3"));
    QCOMPARE(f.label(QStringLiteral("Label2"))->text(), rank);
    QCOMPARE(f.lines(QStringLiteral("List1")), QStringList{line});
}

QTEST_MAIN(TstRecording)
#include "tst_recording.moc"
