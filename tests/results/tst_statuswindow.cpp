// The runners' statuses set from their window in the real program: the keys of the list, the
// filter, the reason of a disqualification, a bib typed directly, undo from either window, and
// the finish keys while the window has the keyboard.
#include "results/core/entrants.h"
#include "results/core/runnerstatus.h"
#include "support/formfixture.h"
#include "support/races.h"

#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QTableWidget>

namespace
{

const QByteArray entered = "dorsal;nombre;apellidos;club;categoria\n"
                           "8;Íñigo;Sáez;Trail Ávila;Veterano\n"
                           "31;José;García;Atlético Ávila;Senior\n"
                           "57;Ana;Pérez;Club Norte;Senior\n";

// The race of stoppedRace (57 first, 112 second and not entered) with the window open on it.
QDialog* openWindow(FormFixture& f, const QByteArray& marks = {})
{
    f.writeFile(QLatin1String(entrants::keptFile), entered);
    if (!marks.isEmpty())
        f.writeFile(QLatin1String(runnerstatus::keptFile), marks);
    f.open(stoppedRace());
    f.trigger("situaciones");
    auto* window = f.child<QDialog>("situacionesVentana");
    QApplication::setActiveWindow(window);
    return window;
}

QLineEdit* field(FormFixture& f, const char* name)
{
    return f.child<QLineEdit>(QLatin1String(name));
}

QTableWidget* table(FormFixture& f)
{
    return f.child<QTableWidget>("situacionesLista");
}

QStringList visibleBibs(FormFixture& f)
{
    QStringList bibs;
    for (int r = 0; r < table(f)->rowCount(); ++r)
        if (!table(f)->isRowHidden(r))
            bibs << table(f)->item(r, 0)->text();
    return bibs;
}

QStringList row(FormFixture& f, const QString& bib)
{
    QStringList cells;
    for (int r = 0; r < table(f)->rowCount(); ++r)
        if (table(f)->item(r, 0)->text() == bib)
            for (int c = 0; c < table(f)->columnCount(); ++c)
                cells << table(f)->item(r, c)->text();
    return cells;
}

// The bib typed in the filter, then Down into the list, which then has the keyboard.
void choose(FormFixture& f, const QString& bib)
{
    QLineEdit* filter = field(f, "situacionesFiltro");
    filter->clear();
    filter->setFocus();
    QTest::keyClicks(filter, bib);
    QTest::keyClick(filter, Qt::Key_Down);
    QCOMPARE(QApplication::focusWidget(), table(f));
}

QByteArray keptMarks(FormFixture& f)
{
    return f.readFile(QLatin1String(runnerstatus::keptFile));
}

} // namespace

class StatusWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void keys_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QString>("bib");
        QTest::addColumn<int>("key");
        QTest::addColumn<QByteArray>("after");
        QTest::addColumn<QString>("shown");
        QTest::newRow("T") << QByteArray() << "57" << int(Qt::Key_T) << QByteArray("57\tDNF\t\r\n")
                           << "No terminado";
        QTest::newRow("S") << QByteArray() << "57" << int(Qt::Key_S) << QByteArray("57\tDNS\t\r\n")
                           << "No salió";
        QTest::newRow("F, not entered") << QByteArray() << "112" << int(Qt::Key_F)
                                        << QByteArray("112\tFC\t\r\n") << "Fuera de control";
        QTest::newRow("C") << QByteArray("31\tDNF\t\r\n") << "31" << int(Qt::Key_C) << QByteArray()
                           << "No salió";
        QTest::newRow("Delete") << QByteArray("57\tDSQ\tAtajo\r\n") << "57" << int(Qt::Key_Delete)
                                << QByteArray() << "Clasificado";
    }

    void keys()
    {
        QFETCH(QByteArray, before);
        QFETCH(QString, bib);
        QFETCH(int, key);
        QFETCH(QByteArray, after);
        QFETCH(QString, shown);
        FormFixture f;
        openWindow(f, before);
        choose(f, bib);
        QTest::keyClick(table(f), Qt::Key(key));
        QCOMPARE(keptMarks(f), after);
        QCOMPARE(row(f, bib).last(), shown);
        QVERIFY(f.dialogs.shown.isEmpty());
    }

    void filter_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("bibs");
        QTest::newRow("name without accents") << "perez" << QStringList{"57"};
        QTest::newRow("club in capitals") << "ÁVILA" << QStringList{"8", "31"};
        QTest::newRow("two words") << "jose avila" << QStringList{"31"};
        QTest::newRow("category") << "senior" << QStringList{"31", "57"};
        QTest::newRow("start of a bib") << "11" << QStringList{"112"};
        QTest::newRow("not entered") << "inscrito" << QStringList{"112"};
        QTest::newRow("nobody") << "zz" << QStringList{};
    }

    void filter()
    {
        QFETCH(QString, typed);
        QFETCH(QStringList, bibs);
        FormFixture f;
        QDialog* window = openWindow(f);
        QCOMPARE(window->focusWidget(), field(f, "situacionesFiltro"));
        QTest::keyClicks(field(f, "situacionesFiltro"), typed);
        QCOMPARE(visibleBibs(f), bibs);
    }

    void disqualify()
    {
        // D asks the reason: a cancel changes nothing, a reason goes with the status.
        FormFixture f;
        openWindow(f);
        choose(f, "57");
        f.dialogs.texts = {QString()};
        QTest::keyClick(table(f), Qt::Key_D);
        QCOMPARE(f.dialogs.shown.size(), 1);
        QCOMPARE(f.dialogs.shown[0].kind, QStringLiteral("text"));
        QCOMPARE(row(f, "57").last(), QStringLiteral("Clasificado"));
        QVERIFY(keptMarks(f).isEmpty());
        f.dialogs.texts = {QStringLiteral("Atajo")};
        f.click("situacionDescalificado");
        QCOMPARE(row(f, "57").last(), QStringLiteral("Descalificado: Atajo"));
        QCOMPARE(keptMarks(f), QByteArray("57\tDSQ\tAtajo\r\n"));
        // The bib that finished without being entered is listed, and counted.
        QCOMPARE(row(f, "112")[1], QStringLiteral("(no inscrito)"));
        QCOMPARE(f.label("situacionesCuentas")->text(),
                 QStringLiteral("Clasificados 1 · No terminado 0 · No salió 2 · Descalificado 1 · "
                                "Fuera de control 0"));
    }

    void byBib_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<QByteArray>("after");
        QTest::addColumn<QString>("said");
        const int dnf = int(runnerstatus::Kind::DidNotFinish);
        const int dsq = int(runnerstatus::Kind::Disqualified);
        QTest::newRow("empty") << "" << dnf << "" << QByteArray() << "Escriba un dorsal.";
        for (const char* bad : {"abc", "0", "10000", "-4", "1.5"})
            QTest::newRow(bad) << bad << dnf << "" << QByteArray()
                               << QStringLiteral("«%1» no es un dorsal válido: escriba un número "
                                                 "de 1 a 9999.")
                                      .arg(QLatin1String(bad));
        QTest::newRow("listed") << " 31 " << dnf << "" << QByteArray("31\tDNF\t\r\n")
                                << "Dorsal 31: No terminado.";
        QTest::newRow("not listed")
            << "77" << int(runnerstatus::Kind::OutOfTime) << "" << QByteArray("77\tFC\t\r\n")
            << "Dorsal 77: Fuera de control. Aviso: el dorsal 77 no estaba en la lista (ni "
               "inscrito ni llegado).";
        QTest::newRow("no reason")
            << "57" << dsq << "" << QByteArray() << "Escriba el motivo de la descalificación.";
        QTest::newRow("reason") << "57" << dsq << "Sin chip" << QByteArray("57\tDSQ\tSin chip\r\n")
                                << "Dorsal 57: Descalificado: Sin chip.";
    }

    void byBib()
    {
        QFETCH(QString, typed);
        QFETCH(int, kind);
        QFETCH(QString, reason);
        QFETCH(QByteArray, after);
        QFETCH(QString, said);
        FormFixture f;
        openWindow(f);
        auto* choice = f.child<QComboBox>("situacionesTipo");
        choice->setCurrentIndex(choice->findData(kind));
        QTest::keyClicks(field(f, "situacionesMotivo"), reason);
        QLineEdit* bib = field(f, "situacionesDorsal");
        QTest::keyClicks(bib, typed);
        QTest::keyClick(bib, Qt::Key_Return);
        QCOMPARE(f.label("situacionesEstado")->text(), said);
        QCOMPARE(keptMarks(f), after);
        QVERIFY(f.dialogs.shown.isEmpty());
        if (!after.isEmpty())
            QVERIFY(!row(f, typed.trimmed()).isEmpty());
    }

    void undo()
    {
        // Ctrl+Z takes back the last status, in the main window and in this one alike.
        FormFixture f;
        QDialog* window = openWindow(f);
        choose(f, "57");
        QTest::keyClick(table(f), Qt::Key_T);
        choose(f, "31");
        QTest::keyClick(table(f), Qt::Key_F);
        QApplication::setActiveWindow(&f.form());
        QTest::keyClick(&f.form(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(keptMarks(f), QByteArray("57\tDNF\t\r\n"));
        QCOMPARE(row(f, "31").last(), QStringLiteral("No salió"));
        QApplication::setActiveWindow(window);
        field(f, "situacionesFiltro")->setFocus();
        QTest::keyClick(field(f, "situacionesFiltro"), Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(keptMarks(f).isEmpty());
        QCOMPARE(row(f, "57").last(), QStringLiteral("Clasificado"));
        QCOMPARE(field(f, "situacionesFiltro")->text(), QStringLiteral("31"));
    }

    void finishKeys()
    {
        FormFixture f;
        RaceState s;
        s.formato = 2;
        s.modoCaptura = 0;
        f.open(s);
        f.click("Command1(0)");
        f.tick(5);
        f.trigger("situaciones");
        auto* window = f.child<QDialog>("situacionesVentana");
        QApplication::setActiveWindow(window);
        QTest::keyClick(field(f, "situacionesFiltro"), Qt::Key_F1);
        QCOMPARE(f.lines("List1").size(), 1);
        QVERIFY(window->isVisible());
        QVERIFY(field(f, "situacionesFiltro")->text().isEmpty());
    }
};

QTEST_MAIN(StatusWindowTest)
#include "tst_statuswindow.moc"
