// The two bib fields in the window: Text1 records a finish with the typed bib, Text2 rewrites
// the bib of the line chosen in List1. Bad input must never crash nor touch a line it cannot
// place.
#include "app/core/statefile.h"
#include "app/look.h"
#include "entry/core/entrada.h"
#include "support/formfixture.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace
{

// A stopped race in whole seconds with the given results lines, in the bibs-and-times mode.
void openWithLines(FormFixture& f, const QStringList& lines)
{
    RaceState s;
    s.formato = 0.0;
    s.modoCaptura = 1.0;
    s.list1 = lines;
    for (const QString& line : lines)
        s.combo1 << line.left(5) + line.mid(9);
    f.writeFile(QLatin1String(statefile::fileName), statefile::encode(s));
    f.open();
    for (const char* name : {"Text1", "List1", "Text2", "Label14"})
        f.child<QWidget>(QLatin1String(name))->setVisible(true);
}

// Click and double-click a line of List1, or the empty list's top corner when row is -1.
void chooseLine(FormFixture& f, int row)
{
    QListWidget* list = f.list(QStringLiteral("List1"));
    const QPoint at = row < 0 ? QPoint(4, 4) : list->visualItemRect(list->item(row)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
}

QLineEdit* field(FormFixture& f, const char* name)
{
    return f.child<QLineEdit>(QLatin1String(name));
}

const QString line1 = QStringLiteral("   1-   5- 00:00:01 - 0:00:00");
const QString line2 = QStringLiteral("   2-   0- 00:00:02 - 0:00:01");
const QString line3 = QStringLiteral("   3-   0- 00:12:34 - 0:00:05");

} // namespace

class TstBibFields : public QObject
{
    Q_OBJECT

private slots:
    void correction_data();
    void correction();
    void correctionOutOfPlace_data();
    void correctionOutOfPlace();
    void correctionAboveMaximum();
    void finishDuringCorrectionKeepsTheChosenLine();
    void correctionEnterWhenEmpty();
    void finishBibs_data();
    void finishBibs();
    void finishByDoubleClick();
    void focusColours();
    void startOrderBib_data();
    void startOrderBib();
};

void TstBibFields::correction_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("byDoubleClick");
    QTest::addColumn<QString>("corrected");

    const QStringList three{line1, line2, line3};
    QTest::newRow("bib in place") << three << 2 << "57" << false << "   3-  57- 00:12:34 - 0:00:05";
    QTest::newRow("one digit") << three << 0 << "7" << false << "   1-   7- 00:00:01 - 0:00:00";
    QTest::newRow("negative bib") << three << 1 << "-3" << false << "   2-  -3- 00:00:02 - 0:00:01";
    QTest::newRow("double-click is Enter")
        << three << 1 << "44" << true << "   2-  44- 00:00:02 - 0:00:01";
    QTest::newRow("bibs-only line")
        << QStringList{"   1-   0", "   2-   9"} << 0 << "57" << false << "   1-  57";
}

void TstBibFields::correction()
{
    QFETCH(QStringList, lines);
    QFETCH(int, row);
    QFETCH(QString, typed);
    QFETCH(bool, byDoubleClick);
    QFETCH(QString, corrected);

    FormFixture f;
    openWithLines(f, lines);
    const QStringList combo = f.comboLines();
    QLineEdit* Text2 = field(f, "Text2");
    chooseLine(f, row);
    QCOMPARE(QApplication::focusWidget(), Text2);
    QTest::keyClicks(Text2, typed);
    if (byDoubleClick)
        QTest::mouseDClick(Text2, Qt::LeftButton);
    else
        QTest::keyClick(Text2, Qt::Key_Return);

    QStringList expected = lines;
    expected[row] = corrected;
    QCOMPARE(f.lines(QStringLiteral("List1")), expected);
    QCOMPARE(f.comboLines(), combo); // Combo1 carries no bib
    QCOMPARE(Text2->text(), QString());
    QCOMPARE(f.label(QStringLiteral("Label14"))->text(), QString());
    QVERIFY(f.label(QStringLiteral("aviso"))->isHidden());
}

void TstBibFields::correctionOutOfPlace_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("notice");

    QTest::newRow("rank 0") << QStringList{line1, "   0-   6- 00:00:02 - 0:00:01"} << 1
                            << "No se puede corregir: la linea 0 no esta en la lista";
    QTest::newRow("rank past the list") << QStringList{line1, "  99-   6- 00:00:02 - 0:00:01"} << 1
                                        << "No se puede corregir: la linea 99 no esta en la lista";
    QTest::newRow("rank not a number") << QStringList{line1, "abcd-   6- 00:00:02 - 0:00:01"} << 1
                                       << "No se puede corregir: la linea abcd no esta en la lista";
    QTest::newRow("rank 10000 printed as 0000")
        << QStringList{line1, "0000-   6- 00:00:02 - 0:00:01"} << 1
        << "No se puede corregir: la linea 0000 no esta en la lista";
    QTest::newRow("line too short")
        << QStringList{line1, "   2-"} << 1
        << "No se puede corregir: no hay ninguna linea de la lista elegida";
    QTest::newRow("empty list") << QStringList{} << -1
                                << "No se puede corregir: no hay ninguna linea de la lista elegida";
}

void TstBibFields::correctionOutOfPlace()
{
    QFETCH(QStringList, lines);
    QFETCH(int, row);
    QFETCH(QString, notice);

    FormFixture f;
    openWithLines(f, lines);
    QLineEdit* Text2 = field(f, "Text2");
    QLabel* Label14 = f.label(QStringLiteral("Label14"));
    chooseLine(f, row);
    QVERIFY(Text2->isEnabled());
    const QString chosen = Label14->text();
    f.type(QStringLiteral("Text2"), QStringLiteral("7\n"));

    QCOMPARE(f.lines(QStringLiteral("List1")), lines);
    QLabel* aviso = f.label(QStringLiteral("aviso"));
    QVERIFY(!aviso->isHidden());
    QCOMPARE(aviso->text(), notice);
    // The operator can see what was typed and for which line.
    QCOMPARE(Text2->text(), QStringLiteral("7"));
    QCOMPARE(Label14->text(), chosen);
    QVERIFY(f.dialogs.shown.isEmpty());
}

void TstBibFields::correctionAboveMaximum()
{
    FormFixture f;
    openWithLines(f, {line1, line2});
    QLineEdit* Text2 = field(f, "Text2");
    chooseLine(f, 1);
    f.type(QStringLiteral("Text2"), QStringLiteral("12345\n"));

    // The range message, and the Enter is not taken: the line stays as it was.
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(f.dialogs.shown[0].kind, QStringLiteral("warn"));
    QCOMPARE(f.dialogs.shown[0].title, rangeMessageTitle(RangeMessage::AboveMax));
    QCOMPARE(f.dialogs.shown[0].text, rangeMessageText(RangeMessage::AboveMax, 9999));
    QCOMPARE(f.lines(QStringLiteral("List1")), (QStringList{line1, line2}));
    QCOMPARE(Text2->text(), QStringLiteral("12345"));

    // Mended, the same Enter writes the bib.
    f.type(QStringLiteral("Text2"), QStringLiteral("\b\n"));
    QCOMPARE(f.lines(QStringLiteral("List1")),
             (QStringList{line1, "   2-1234- 00:00:02 - 0:00:01"}));
    QCOMPARE(f.dialogs.shown.size(), 1);
}

void TstBibFields::finishDuringCorrectionKeepsTheChosenLine()
{
    // A runner crosses while the timekeeper types a corrected bib: F1 records the finish and
    // the correction still lands on the line that was double-clicked.
    FormFixture f;
    openWithLines(f, {line1, line2, line3});
    chooseLine(f, 1);
    QLineEdit* Text2 = field(f, "Text2");
    QTest::keyClicks(Text2, QStringLiteral("4"));
    f.pressF(1);
    QCOMPARE(f.lines(QStringLiteral("List1")).size(), 4);
    QTest::keyClicks(Text2, QStringLiteral("2"));
    QTest::keyClick(Text2, Qt::Key_Return);
    QCOMPARE(f.lines(QStringLiteral("List1")).value(1),
             QStringLiteral("   2-  42- 00:00:02 - 0:00:01"));
    QVERIFY(f.lines(QStringLiteral("List1")).value(3).startsWith(QStringLiteral("   4-   0-")));
}

void TstBibFields::correctionEnterWhenEmpty()
{
    FormFixture f;
    openWithLines(f, {line1});
    chooseLine(f, 0);
    f.type(QStringLiteral("Text2"), QStringLiteral("\n"));
    QTest::mouseDClick(field(f, "Text2"), Qt::LeftButton);
    QCOMPARE(f.lines(QStringLiteral("List1")), QStringList{line1});
    QCOMPARE(f.label(QStringLiteral("Label14"))->text(), line1);
    QVERIFY(f.label(QStringLiteral("aviso"))->isHidden());
    QVERIFY(f.dialogs.shown.isEmpty());
}

void TstBibFields::finishBibs_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("bib");

    QTest::newRow("empty field") << ""
                                 << "   0";
    QTest::newRow("bib") << "57"
                         << "  57";
    QTest::newRow("negative passes") << "-12"
                                     << " -12";
    QTest::newRow("minus after a digit") << "5-"
                                         << "   5";
    QTest::newRow("lone point") << "."
                                << "   0";
    QTest::newRow("decimal") << "1.5"
                             << " 1.5";
    QTest::newRow("second point swallowed") << "1..5"
                                            << " 1.5";
    QTest::newRow("letters swallowed") << "a7b"
                                       << "   7";
    QTest::newRow("five digits cut by the field") << "12345"
                                                  << "1234";
    QTest::newRow("backspace") << "58\b7"
                               << "  57";
}

void TstBibFields::finishBibs()
{
    QFETCH(QString, typed);
    QFETCH(QString, bib);

    FormFixture f;
    openWithLines(f, {});
    f.click(QStringLiteral("Command1(0)"));
    QCOMPARE(QApplication::focusWidget(), field(f, "Text1"));
    f.tick(30);
    f.type(QStringLiteral("Text1"), typed + u'\n');

    QCOMPARE(f.lines(QStringLiteral("List1")), QStringList{"   1-" + bib + "- 00:00:30 - 0:00:00"});
    QCOMPARE(field(f, "Text1")->text(), QString());
    QVERIFY(f.dialogs.shown.isEmpty());
}

void TstBibFields::finishByDoubleClick()
{
    FormFixture f;
    openWithLines(f, {});
    f.click(QStringLiteral("Command1(0)"));
    f.tick(2);
    f.type(QStringLiteral("Text1"), QStringLiteral("9"));
    QTest::mouseDClick(field(f, "Text1"), Qt::LeftButton);
    QCOMPARE(f.lines(QStringLiteral("List1")), QStringList{"   1-   9- 00:00:02 - 0:00:00"});
    QCOMPARE(field(f, "Text1")->text(), QString());
}

void TstBibFields::focusColours()
{
    FormFixture f;
    openWithLines(f, {line1});
    f.click(QStringLiteral("Command1(0)"));
    QLineEdit* Text1 = field(f, "Text1");
    QLineEdit* Text2 = field(f, "Text2");

    // Focus by Tab would select the whole text: the caret goes after the last character.
    Text1->setText(QStringLiteral("12"));
    f.button(QStringLiteral("Command1(1)"))->setFocus();
    Text1->setFocus(Qt::TabFocusReason);
    QApplication::processEvents();
    QCOMPARE(look::back(Text1), look::navy);
    QCOMPARE(look::fore(Text1), look::windowBackground());
    QVERIFY(!Text1->hasSelectedText());
    QCOMPARE(Text1->cursorPosition(), 2);
    QTest::keyClicks(Text1, QStringLiteral("3"));
    QCOMPARE(Text1->text(), QStringLiteral("123"));

    chooseLine(f, 0);
    QCOMPARE(look::back(Text1), look::olive);
    QCOMPARE(look::fore(Text1), look::buttonText());
    QCOMPARE(look::back(Text2), look::navy);

    // Leaving Text2 ends the correction.
    Text1->setFocus();
    QCOMPARE(look::back(Text2), look::lightYellow);
    QCOMPARE(look::fore(Text2), look::windowText());
    QVERIFY(!Text2->isEnabled());
}

void TstBibFields::startOrderBib_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("bib");

    QTest::newRow("bib") << "   1  41 Lopez Garcia, Ana      10:01:00"
                         << "41";
    QTest::newRow("blank bib") << "   2     Sin dorsal            10:02:00"
                               << "0";
    QTest::newRow("short line") << "   3"
                                << "0";
}

void TstBibFields::startOrderBib()
{
    QFETCH(QString, line);
    QFETCH(QString, bib);

    FormFixture f;
    openWithLines(f, {});
    QListWidget* List2 = f.list(QStringLiteral("List2"));
    List2->addItem(line);
    QTest::mouseClick(List2->viewport(), Qt::LeftButton, {},
                      List2->visualItemRect(List2->item(0)).center());
    QCOMPARE(field(f, "Text1")->text(), bib);
}

QTEST_MAIN(TstBibFields)
#include "tst_bibfields.moc"
