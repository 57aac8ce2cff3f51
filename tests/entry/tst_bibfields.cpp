// The two bib fields in the window: Text1 records a finish with the typed bib, Text2 rewrites
// the bib of the line chosen in List1. Bad input must never crash nor touch a line it cannot
// place.
#include "support/formfixture.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>

namespace
{

// A race in whole seconds, capturing bibs and times, with the given results lines.
void openWithLines(FormFixture& f, const QStringList& lines)
{
    RaceState s;
    s.formato = 0.0;
    s.modoCaptura = 1.0;
    s.list1 = s.combo1 = lines; // Combo1 is neither read nor changed by the bib fields
    s.list2 = QStringList{"   1  41 Lopez Garcia, Ana      10:01:00"};
    f.open(s);
}

// Click and double-click a line of List1, or the list's top corner when there is no such line.
void chooseLine(FormFixture& f, int row)
{
    QListWidget* list = f.list("List1");
    const QRect r = list->item(row) ? list->visualItemRect(list->item(row)) : QRect(0, 0, 8, 8);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, r.center());
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, r.center());
}

const QString line1 = QStringLiteral("   1-   5- 00:00:01 - 0:00:00");
const QString line2 = QStringLiteral("   2-   0- 00:00:02 - 0:00:01");
const QString line3 = QStringLiteral("   3-   0- 00:12:34 - 0:00:05");

} // namespace

class BibFieldsTest : public QObject
{
    Q_OBJECT

private slots:
    // Keys typed into a bib field of a running race, then Enter ("\n") or else a double-click on
    // the field. Row -1: Text1 records a finish (-2: after a click on the List2 line that puts its
    // bib there); otherwise Text2 corrects that line of List1.
    void typing_data()
    {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("after"); // List1 afterwards; empty: as it was
        QTest::addColumn<QString>("notice");    // the notice or message shown, if any
        const auto row = [](const char* name, const QStringList& lines, int line, const char* typed,
                            const QStringList& after, const QString& notice = {}) {
            QTest::newRow(name) << lines << line << QString(typed) << after << notice;
        };
        const QStringList three{line1, line2, line3};
        const QString notThere = "No se puede corregir: la línea %1 no está en la lista";
        const QString noLine = "No se puede corregir: no hay ninguna línea de la lista elegida";

        row("finish, empty field", {}, -1, "\n", {"   1-   0- 00:00:30 - 0:00:00"});
        // Letters and a second point swallowed, a minus passes, the field takes 4 characters.
        row("finish, filtered", {}, -1, "a-1..59\n", {"   1--1.5- 00:00:30 - 0:00:00"});
        row("finish, picked from List2", {}, -2, "\n", {"   1-  41- 00:00:30 - 0:00:00"});
        row("finish by double-click", {}, -1, "9", {"   1-   9- 00:00:30 - 0:00:00"});
        row("correct by double-click", three, 2, "7",
            {line1, line2, "   3-   7- 00:12:34 - 0:00:05"});
        row("nothing typed", three, 0, "", {});
        // Bad input: the list unchanged, the typed bib kept, a notice.
        row("rank beyond the list", {line1, "  99-   6"}, 1, "7\n", {}, notThere.arg("99"));
        row("empty Label14", {line1, ""}, 1, "7\n", {}, noLine);
        row("five-digit bib", three, 1, "12345\n", {}, "El valor no puede ser mayor que  9999");
        row("double-click on an empty list", {}, 0, "7\n", {}, noLine);
    }

    void typing()
    {
        QFETCH(QStringList, lines);
        QFETCH(int, row);
        QFETCH(QString, typed);
        QFETCH(QStringList, after);
        QFETCH(QString, notice);

        FormFixture f;
        openWithLines(f, lines);
        const QStringList labels{f.label("Label4")->text(), f.label("Label5")->text()};
        f.click("Command1(0)");
        f.tick(30);
        auto* edit = f.child<QLineEdit>(row < 0 ? "Text1" : "Text2");
        if (row >= 0)
            chooseLine(f, row);
        QCOMPARE(QApplication::focusWidget(), edit);
        if (row == -2) // the first line of List2 lies in its top corner
            QTest::mouseClick(f.list("List2")->viewport(), Qt::LeftButton, {}, QPoint(4, 4));
        f.type(edit->objectName(), typed);
        if (!typed.endsWith(u'\n'))
            QTest::mouseDClick(edit, Qt::LeftButton);

        QCOMPARE(f.lines("List1"), after.isEmpty() ? lines : after);
        QString shown = f.label("aviso")->isHidden() ? QString() : f.label("aviso")->text();
        for (const ScriptedDialogs::Shown& dialog : f.dialogs.shown)
            shown += dialog.text;
        QCOMPARE(shown, notice);
        QCOMPARE(edit->text(), after.isEmpty() ? QString(typed).remove(u'\n') : QString());
        // Capturing bibs and times, a finish leaves the time labels alone.
        QCOMPARE((QStringList{f.label("Label4")->text(), f.label("Label5")->text()}), labels);
    }

    void finishDuringCorrectionKeepsTheChosenLine()
    {
        // A runner crosses while the timekeeper types a corrected bib: F1 records the finish and
        // the correction still lands on the line that was double-clicked.
        FormFixture f;
        openWithLines(f, {line1, line2, line3});
        chooseLine(f, 1);
        QLineEdit* Text2 = f.child<QLineEdit>(QStringLiteral("Text2"));
        QTest::keyClicks(Text2, QStringLiteral("4"));
        f.pressF(1);
        QCOMPARE(f.lines(QStringLiteral("List1")).size(), 4);
        QTest::keyClicks(Text2, QStringLiteral("2"));
        QTest::keyClick(Text2, Qt::Key_Return);
        QCOMPARE(f.lines(QStringLiteral("List1")).value(1),
                 QStringLiteral("   2-  42- 00:00:02 - 0:00:01"));
        QVERIFY(f.lines(QStringLiteral("List1")).value(3).startsWith(QStringLiteral("   4-   0-")));
    }
};

QTEST_MAIN(BibFieldsTest)
#include "tst_bibfields.moc"
