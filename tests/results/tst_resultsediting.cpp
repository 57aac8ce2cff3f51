// Editing the results after the fact, in the real window: an operator who taps every crossing,
// types the bibs afterwards, removes a double press and adds a missed runner ends with what a
// race taken right the first time has; the captions after a removal or an addition; undo; the
// bibs window while F1 goes on; the bib checks. (Edits after a crash: e2e/edit_recovery.sh.)
#include "app/core/journal.h"
#include "app/core/statefile.h"
#include "results/core/entrants.h"
#include "results/core/resultline.h"
#include "support/formfixture.h"
#include "support/races.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace
{

void prepare(FormFixture& f, int format, double mode)
{
    f.makeResultsFolder();
    RaceState s;
    s.formato = format;
    s.modoCaptura = mode;
    f.open(s);
}

void select(FormFixture& f, int row)
{
    if (f.list("List1")->isHidden())
        f.child<QComboBox>("Combo1")->setCurrentIndex(row);
    else
        f.list("List1")->setCurrentRow(row);
}

// The results files and the state file, as Command6 and Command5 write them.
QList<QByteArray> files(FormFixture& f)
{
    f.button("Command6")->click();
    f.button("Command5")->click();
    QList<QByteArray> out{f.readFile("MARVO.dat")};
    for (const char* name :
         {"Tiempos-Marvo.txt", "dorsales-Tiempos-Marvo.txt", "dorsales-Marvo.txt"})
        out << f.readFile(QStringLiteral("C/Carreras/copias/") + name);
    return out;
}

} // namespace

class FinishEditTest : public QObject
{
    Q_OBJECT

private slots:
    void timeFirstBibsAfter_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<double>("mode");
        QTest::newRow("Segundos, bibs and times") << 0 << 1.0;
        QTest::newRow("Centesimas, bibs and times") << 1 << 1.0;
        QTest::newRow("Milesimas, Lap") << 2 << 0.0;
    }

    void timeFirstBibsAfter()
    {
        QFETCH(int, format);
        QFETCH(double, mode);
        const auto finish = [&](FormFixture& f, const QString& bib) {
            mode == 1 ? f.type("Text1", bib + "\n") : f.click("Command3");
        };
        // Right the first time: 8 at 9 s, 23 at 12.25 s, 57 at 14.75 s (no bibs in the Lap mode).
        // Taken whole before the second window, which moves the current folder.
        const QStringList bibs = mode == 1 ? QStringList{"8", "23", "57"} : QStringList{"", "", ""};
        QStringList rightLines, rightCombo, rightLabels;
        QList<QByteArray> rightFiles;
        {
            FormFixture right;
            prepare(right, format, mode);
            right.click("Command1(0)");
            const double gaps[] = {9, 3.25, 2.5};
            for (int i = 0; i < 3; ++i) {
                right.tick(gaps[i]);
                finish(right, bibs[i]);
            }
            right.click("Command1(1)");
            rightLines = right.lines("List1");
            rightCombo = right.comboLines();
            for (const char* l : {"Label2", "Label4", "Label5", "Label8"})
                rightLabels << right.label(l)->text();
            rightFiles = files(right);
        }

        // Time first: a double press at 10.5 s, the runner of 12.25 s missed.
        FormFixture f;
        prepare(f, format, mode);
        f.click("Command1(0)");
        for (const double gap : {9.0, 1.5, 4.25}) {
            f.tick(gap);
            finish(f, QString());
        }
        const QStringList tapped = f.lines("List1");
        select(f, 1);
        f.dialogs.answers = {Dialogs::Ok};
        f.trigger("borrar");
        f.dialogs.fieldAnswers = {{"0:00:12,250", bibs[1]}};
        f.trigger("anadir");
        QCOMPARE(f.lines("List1").size(), 3);
        // The bibs in arrival order; the added finish has its bib already. F1 while the bibs
        // window has the focus takes a finish, which waits for its bib like the others.
        f.trigger("asignar");
        auto* window = f.child<QDialog>("asignarVentana");
        QVERIFY(window->isVisible());
        if (mode == 1) {
            QVERIFY(f.label("asignarSiguiente")->text().startsWith(QStringLiteral("Puesto 1")));
            f.type("asignarDorsal", "8\n57\n");
            QVERIFY(f.label("asignarSiguiente")->text().contains(QStringLiteral("No hay")));
        }
        QApplication::setActiveWindow(window);
        f.tick(1);
        QTest::keyClick(window, Qt::Key_F1);
        QCOMPARE(f.lines("List1").size(), 4);
        QCOMPARE(f.label("asignarPendientes")->text(),
                 mode == 1 ? QStringLiteral("Queda 1 llegada sin dorsal")
                           : QStringLiteral("Quedan 4 llegadas sin dorsal"));
        f.dialogs.answers = {Dialogs::Ok};
        select(f, 3);
        f.trigger("borrar");
        f.click("Command1(1)");

        QCOMPARE(f.lines("List1"), rightLines);
        QCOMPARE(f.comboLines(), rightCombo);
        QStringList labels;
        for (const char* l : {"Label2", "Label4", "Label5", "Label8"})
            labels << f.label(l)->text();
        QCOMPARE(labels, rightLabels);
        QCOMPARE(files(f), rightFiles);
        // The journal holds it all too.
        QCOMPARE(journal::read(f.path("MARVO.jrn")).record.state.list1, rightLines);

        // Undo, step by step back to the taps: the removal after F1, F1 is no edit, the two bibs,
        // the addition, the first removal.
        for (int i = 0; i < (mode == 1 ? 5 : 3); ++i)
            f.trigger("deshacer");
        QCOMPARE(f.lines("List1").mid(0, 3), tapped);
        QVERIFY(!f.action("deshacer")->isEnabled());
        QVERIFY(!f.dialogs.unexpected);
    }

    void theBibsWindow()
    {
        // The runner of the bib being typed is named, the window stands clear of the list, and
        // Ctrl+Z in it takes back the last assignment, not the field's text.
        FormFixture f;
        f.writeFile(QLatin1String(entrants::keptFile),
                    "dorsal;nombre;apellidos;categoria\n57;Ana;Pérez;Senior\n");
        RaceState s = stoppedRace(2, 1);
        for (QString& line : s.list1)
            line = *resultline::rewriteBib(line, u"0");
        f.open(s);
        f.trigger("asignar");
        auto* window = f.child<QDialog>("asignarVentana");
        QListWidget* list = f.list("List1");
        QVERIFY(!window->frameGeometry().intersects(
            QRect(list->mapToGlobal(QPoint(0, 0)), list->size())));
        QLabel* runner = f.label("asignarCorredor");
        auto* field = f.child<QLineEdit>("asignarDorsal");
        field->setText("57");
        QCOMPARE(runner->text(), QStringLiteral("Ana Pérez · Senior"));
        field->setText("58");
        QCOMPARE(runner->text(), QStringLiteral("Dorsal 58: no está entre los inscritos"));
        field->clear();
        f.type("asignarDorsal", "57\n");
        QCOMPARE(f.lines("List1")[0], QStringLiteral("   1-  57- 00:12:30:125 - 0:00:00:000"));
        QApplication::setActiveWindow(window);
        field->setFocus();
        QTest::keyClick(field, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(f.lines("List1"), s.list1);
        QVERIFY(field->text().isEmpty());
    }

    void refusedAdditions()
    {
        FormFixture f;
        prepare(f, 2, 1);
        f.click("Command1(0)");
        f.tick(30);
        const QStringList answers[] = {{"0:00:31", "5"}, {"doce", "5"}, {"0:00:10", "12345"}};
        for (const QStringList& a : answers) {
            f.dialogs.fieldAnswers = {a};
            f.trigger("anadir");
            QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("warn"));
        }
        QVERIFY(f.lines("List1").isEmpty());
        QCOMPARE(f.label("Label2")->text(), QStringLiteral("0"));
        // Nothing chosen to remove: a notice, no question.
        f.trigger("borrar");
        QVERIFY(!f.label("aviso")->isHidden());
        QCOMPARE(f.dialogs.shown.size(), 6); // three questions and three warnings
    }

    void bibChecks()
    {
        FormFixture f;
        RaceState s = stoppedRace(2, 1); // start order: bibs 27 and 31
        s.list1 = {"   1-  27- 00:12:30:125 - 0:00:00:000", "   2-   0- 00:13:00:000 - 0:00:29:875",
                   "   3-  27- 00:13:30:000 - 0:00:59:875",
                   "   4-  99- 00:14:00:000 - 0:01:29:875"};
        s.combo1 = s.list1;
        f.open(s);
        QListWidget* list = f.list("List1");
        const auto tip = [&](int row) { return list->item(row)->toolTip(); };
        QVERIFY(tip(0).contains(QStringLiteral("repetido")));
        QVERIFY(tip(1).contains(QStringLiteral("sin dorsal")));
        QVERIFY(tip(3).contains(QStringLiteral("orden de salida")));
        QVERIFY(list->item(1)->background() != list->item(0)->background());
        QLabel* status = f.label("estadoDorsales");
        QVERIFY(!status->isHidden());
        QCOMPARE(status->text(),
                 QStringLiteral("sin dorsal: 1   dorsales repetidos: 1   no inscritos: 1"));
        QVERIFY(status->geometry().top() > list->geometry().bottom());
        // Correcting the repeated bib clears both lines; the text of the lines is untouched.
        list->setCurrentRow(2);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {},
                           list->visualItemRect(list->item(2)).center());
        f.type("Text2", "31\n");
        QVERIFY(tip(0).isEmpty());
        QCOMPARE(status->text(), QStringLiteral("sin dorsal: 1   no inscritos: 1"));
        QCOMPARE(f.lines("List1")[2], QStringLiteral("   3-  31- 00:13:30:000 - 0:00:59:875"));
    }
};

QTEST_MAIN(FinishEditTest)
#include "tst_resultsediting.moc"
