// The table of age categories edited in the real window, from "Opciones": edits typed in the
// grid are kept only when the table is sound, a table file is taken whole or not at all, and
// an exported table comes back as it went.
#include "results/categorieswindow.h"
#include "results/core/categories.h"
#include "support/formfixture.h"

#include <QApplication>
#include <QRadioButton>
#include <QSettings>
#include <QTableWidget>

namespace
{

using categories::exportCsv;
using categories::Sex;

QSettings programSettings()
{
    return QSettings(QStringLiteral("Marvolendo"), QStringLiteral("Marvolendo"));
}

// A cell typed into (column 0 to 3), or with column -1 the button named `text` pressed on `row`.
struct Edit {
    int row;
    int column;
    QString text;
};

QTableWidget* openTable(FormFixture& f)
{
    f.trigger("categoriasEdad");
    auto* window = f.child<QDialog>("categoriasVentana");
    QApplication::setActiveWindow(window);
    return f.child<QTableWidget>("categoriasTabla");
}

// Enter opens the cell's editor, the text replaces what it held, Enter keeps it.
void type(QTableWidget* grid, int row, int column, const QString& text)
{
    grid->setCurrentCell(row, column);
    QTest::keyClick(grid, Qt::Key_Return);
    QWidget* editor = grid->indexWidget(grid->currentIndex());
    QVERIFY(editor);
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY(!grid->indexWidget(grid->model()->index(row, column)));
}

void apply(FormFixture& f, QTableWidget* grid, const QList<Edit>& edits)
{
    for (const Edit& e : edits) {
        if (e.column >= 0) {
            type(grid, e.row, e.column, e.text);
        } else {
            grid->setCurrentCell(e.row, 0);
            f.button(e.text)->click();
        }
    }
}

} // namespace

Q_DECLARE_METATYPE(QList<Edit>)

class CategoriesWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void edits_data()
    {
        QTest::addColumn<QList<Edit>>("edits");
        QTest::addColumn<bool>("escape");     // Escape instead of Aceptar
        QTest::addColumn<QString>("problem"); // the red line; empty when the table is kept
        QTest::addColumn<QByteArray>("kept"); // the table kept, as a file; empty for none

        // The two youngest men swapped, and the oldest men and women put together.
        categories::Table merged = categories::defaultTable();
        merged.categories.swapItemsAt(0, 1);
        merged.categories.removeAt(4);
        merged.categories[8].sex = Sex::Both;
        merged.categories[8].name = QStringLiteral("Veteranos C");
        QTest::newRow("rows moved and removed, a category for both sexes")
            << QList<Edit>{{0, -1, "categoriasBajar"},
                           {4, -1, "categoriasQuitar"},
                           {8, 1, "Ambos"},
                           {8, 0, "Veteranos C"}}
            << false << QString() << exportCsv(merged);

        QTest::newRow("overlap")
            << QList<Edit>{{2, 3, "50"}} << false
            << QStringLiteral("Las categorías «Veteranos A» y «Veteranos B» se solapan en las "
                              "edades 45 a 50.")
            << QByteArray();
        QTest::newRow("gap") << QList<Edit>{{6, 3, "30"}} << false
                             << QStringLiteral("Ninguna categoría femenina cubre las edades 31 a "
                                               "34 (entre «Senior femenino» y «Veteranas A»).")
                             << QByteArray();
        // Typed, not chosen with the arrows: the editor takes ages up to 120.
        categories::Table older = categories::defaultTable();
        older.categories[4].ageTo = 110;
        QTest::newRow("the oldest men up to 110")
            << QList<Edit>{{4, 3, "110"}} << false << QString() << exportCsv(older);
        QTest::newRow("a new category left without a name")
            << QList<Edit>{{4, -1, "categoriasAnadir"}} << false
            << QStringLiteral("La categoría número 6 de la tabla no tiene nombre.") << QByteArray();
        QTest::newRow("valid, then Escape")
            << QList<Edit>{{4, 3, "110"}} << true << QString() << QByteArray();
    }

    void edits()
    {
        QFETCH(QList<Edit>, edits);
        QFETCH(bool, escape);
        QFETCH(QString, problem);
        QFETCH(QByteArray, kept);

        FormFixture f;
        f.open();
        QTableWidget* grid = openTable(f);
        auto* window = f.child<QDialog>("categoriasVentana");
        // Nothing kept yet: the usual table, and the window says so.
        QVERIFY(f.label("categoriasNota")->text().contains(QStringLiteral("tabla habitual")));
        QCOMPARE(grid->rowCount(), 10);

        apply(f, grid, edits);
        if (escape) {
            QTest::keyClick(grid, Qt::Key_Escape);
        } else {
            f.button("categoriasAceptar")->click();
        }
        QCOMPARE(window->isVisible(), !problem.isEmpty());
        QLabel* red = f.label("categoriasProblemas");
        QCOMPARE(red->isVisible(), !problem.isEmpty());
        QVERIFY2(red->text().contains(problem), qPrintable(red->text()));
        QCOMPARE(programSettings().contains("categorias/cantidad"), !kept.isEmpty());
        if (!kept.isEmpty()) {
            QCOMPARE(exportCsv(categories::load(programSettings())), kept);
            QCOMPARE(exportCsv(CategoriesWindow::stored()), kept);
            // Opened again, the window shows the kept table.
            grid = openTable(f);
            QVERIFY(!f.label("categoriasNota")->isVisible());
            const Edit& last = edits.last();
            QCOMPARE(grid->item(last.row, last.column)->data(Qt::EditRole).toString(), last.text);
        } else if (escape) {
            QCOMPARE(openTable(f)->item(4, 3)->data(Qt::EditRole).toInt(), 120);
        }
        QVERIFY(!f.dialogs.unexpected);
    }

    void import_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<bool>("taken");
        // Latin-1, commas and the rule in words: the reader of the entrants takes it.
        QTest::newRow("good") << QByteArray("regla,d\xed"
                                            "a de la carrera\r\n"
                                            "categoria,sexo,edad_desde,edad_hasta\r\n"
                                            "J\xf3"
                                            "venes,,0,29\r\nMayores,Ambos,30,120\r\n")
                              << true;
        QTest::newRow("overlap") << QByteArray("regla;31_diciembre\n"
                                               "categoria;sexo;edad_desde;edad_hasta\n"
                                               "A;M;0;40\nB;M;40;120\n")
                                 << false;
    }

    void import()
    {
        QFETCH(QByteArray, file);
        QFETCH(bool, taken);

        FormFixture f;
        f.open();
        f.writeFile("tabla.csv", file);
        QTableWidget* grid = openTable(f);
        f.dialogs.files << f.path("tabla.csv");
        f.click("categoriasImportar");
        const categories::Imported imported = categories::importCsv(file);
        if (taken) {
            QCOMPARE(f.dialogs.shown.size(), 1); // the file dialog alone
            QCOMPARE(grid->item(0, 0)->text(), QStringLiteral("Jóvenes"));
            QVERIFY(f.child<QRadioButton>("edadDiaCarrera")->isChecked());
        } else {
            QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("warn"));
            QCOMPARE(f.dialogs.shown.last().text, imported.refusal);
            QCOMPARE(grid->rowCount(), 10); // the table before, untouched
        }
        f.click("categoriasAceptar");
        QCOMPARE(exportCsv(categories::load(programSettings())),
                 exportCsv(taken ? imported.table : categories::defaultTable()));
    }

    void exportThenImport()
    {
        FormFixture f;
        f.open();
        QTableWidget* grid = openTable(f);
        type(grid, 0, 0, "Infantil");
        f.child<QRadioButton>("edadDiaCarrera")->click();
        categories::Table edited = categories::defaultTable();
        edited.categories[0].name = QStringLiteral("Infantil");
        edited.rule = categories::AgeRule::RaceDay;

        // A folder that is not there: told, and nothing else changes.
        f.dialogs.files << f.path("no-existe/tabla.csv") << f.path("tabla.csv");
        f.click("categoriasExportar");
        QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("warn"));
        QVERIFY(f.dialogs.shown.last().text.startsWith(QStringLiteral("No se pudo escribir")));
        f.click("categoriasExportar");
        QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("save"));
        const QByteArray written = f.readFile("tabla.csv");
        QCOMPARE(written, exportCsv(edited));

        f.dialogs.answers << Dialogs::Ok;
        f.click("categoriasHabitual");
        QCOMPARE(grid->item(0, 0)->text(), QStringLiteral("Sub-20 masculino"));
        f.dialogs.files << f.path("tabla.csv");
        f.click("categoriasImportar");
        f.click("categoriasAceptar");
        QCOMPARE(exportCsv(categories::load(programSettings())), written);
        QVERIFY(!f.dialogs.unexpected);
    }
};

QTEST_MAIN(CategoriesWindowTest)
#include "tst_categorieswindow.moc"
