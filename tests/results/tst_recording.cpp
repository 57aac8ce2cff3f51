// Recording finishes through the window: Start, finishes by "Lap", F1 and Enter in the bib
// field, a bib corrected in the list, a finish with no format checked, Stop; the lines of List1
// and Combo1 in every format and in the bibs-only display, the labels a finish fixes and the one
// save it makes.
#include "app/core/statefile.h"
#include "app/look.h"
#include "support/formfixture.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>

namespace
{

// The window with the bib controls shown and the time format taken from the check marks alone.
void openWithFormat(FormFixture& f, int format, bool bibsOnly)
{
    f.makeResultsFolder();
    f.open();
    for (int i = 0; i < 3; ++i)
        f.action(QStringLiteral("op2(%1)").arg(i))->setChecked(i == format);
    f.action("opp22")->setChecked(bibsOnly);
    for (const char* name : {"Text1", "List1", "Text2", "Label14"})
        f.child<QWidget>(name)->setVisible(true);
}

} // namespace

class RecordingTest : public QObject
{
    Q_OBJECT

private slots:
    void wholeRace_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<bool>("bibsOnly");
        // The lines of List1 and of Combo1, the captions of Label4, Label5 and Label8, the font
        // sizes of List1 and Combo1.
        QTest::addColumn<QStringList>("shown");
        const auto row = [](const char* name, int format, bool bibsOnly, const QStringList& shown) {
            QTest::newRow(name) << format << bibsOnly << shown;
        };

        row("Segundos", 0, false,
            {"   1-   8- 00:00:09 - 0:00:00", "   2-   0- 00:00:12 - 0:00:03",
             "   3-  57- 00:00:14 - 0:00:05", "   1- 00:00:09 - 0:00:00",
             "   2- 00:00:12 - 0:00:03", "   3- 00:00:14 - 0:00:05", "00:00:09", "00:00:14",
             "0:00:05", "11", "12"});
        row("Milesimas", 2, false,
            {"   1-   8- 00:00:09:000 - 0:00:00:000", "   2-   0- 00:00:12:250 - 0:00:03:250",
             "   3-  57- 00:00:14:750 - 0:00:05:750", "   1- 00:00:09:000 - 0:00:00:000",
             "   2- 00:00:12:250 - 0:00:03:250", "   3- 00:00:14:750 - 0:00:05:750", "00:00:09:000",
             "00:00:14:750", "0:00:05:750", "9", "10"});
        // Bibs only: rank and bib in both lists (the correction in List1 only), Label8 left alone.
        row("bibs only", 0, true,
            {"   1-   8", "   2-   0", "   3-  57", "   1-   0", "   2-   0", "   3-  57",
             "00:00:09", "00:00:14", "0:00:00:000", "14", "10"});
    }

    void wholeRace()
    {
        QFETCH(int, format);
        QFETCH(bool, bibsOnly);
        QFETCH(QStringList, shown);

        FormFixture f;
        openWithFormat(f, format, bibsOnly);
        const QString state = QLatin1String(statefile::fileName);
        f.click("Command1(0)");

        // Rank 1 by the button switches the results labels on and is the only finish that saves
        // the race, before its line is added.
        f.label("Label18")->setText("7");
        f.tick(9);
        f.click("Command3");
        QCOMPARE(look::back(f.label("Label4")), look::darkRed);
        QCOMPARE(f.label("Label18")->text(), "0");
        const QByteArray afterFirst = f.readFile(state);
        QCOMPARE(statefile::decode(afterFirst).state.tempsPrimer, "00:00:09:000");
        QVERIFY(statefile::decode(afterFirst).state.list1.isEmpty());

        // Rank 2 by F1 leaves the file as rank 1 left it; rank 3 by Enter in the bib field.
        f.tick(3.25);
        f.pressF(1);
        QCOMPARE(f.readFile(state), afterFirst);
        f.tick(2.5);
        f.type("Text1", "57\n");

        // The first line gets its bib: click, double-click, 8 and Enter in Text2.
        QListWidget* List1 = f.list("List1");
        const QPoint first = List1->visualItemRect(List1->item(0)).center();
        QTest::mouseClick(List1->viewport(), Qt::LeftButton, {}, first);
        QTest::mouseDClick(List1->viewport(), Qt::LeftButton, {}, first);
        f.type("Text2", "8\n");

        // With no time format checked a finish still counts but adds no line. Then Stop.
        for (int i = 0; i < 3; ++i)
            f.action(QStringLiteral("op2(%1)").arg(i))->setChecked(false);
        f.pressF(1);
        QCOMPARE(f.label("Label2")->text(), "4");
        f.click("Command1(1)");

        auto* Combo1 = f.child<QComboBox>("Combo1");
        const QStringList labels{f.label("Label4")->text(), f.label("Label5")->text(),
                                 f.label("Label8")->text(),
                                 QString::number(List1->font().pointSizeF()),
                                 QString::number(Combo1->font().pointSizeF())};
        QCOMPARE(f.lines("List1") + f.comboLines() + labels, shown);
        QCOMPARE(Combo1->currentText(), Combo1->itemText(2));
        QCOMPARE(f.readFile(state), afterFirst);
        QVERIFY(f.dialogs.shown.isEmpty());
    }
};

QTEST_MAIN(RecordingTest)
#include "tst_recording.moc"
