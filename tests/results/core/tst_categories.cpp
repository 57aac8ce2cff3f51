// Categories from the dates of birth: reading the dates, the age under either rule, the category
// each runner gets, the checks of a table, its file and its keeping for the next race.
#include "results/core/categories.h"

#include <QTemporaryDir>
#include <QtTest>

using categories::AgeRule;
using categories::Sex;

Q_DECLARE_METATYPE(AgeRule)

namespace
{

// "name:sex:from:to|...", sex M, F or A (both).
categories::Table tableOf(const QString& rows, AgeRule rule = AgeRule::EndOfYear)
{
    categories::Table table;
    table.rule = rule;
    for (const QString& item : rows.split(u'|', Qt::SkipEmptyParts)) {
        const QStringList f = item.split(u':');
        const Sex sex = f[1] == u"M" ? Sex::Male : f[1] == u"F" ? Sex::Female : Sex::Both;
        table.categories << categories::Category{f[0], sex, f[2].toInt(), f[3].toInt()};
    }
    return table;
}

QString dateText(const std::optional<entrants::BirthDate>& birth)
{
    if (!birth)
        return QStringLiteral("-");
    return birth->date ? birth->date->toString(Qt::ISODate) : QString::number(birth->year);
}

} // namespace

class CategoriesTest : public QObject
{
    Q_OBJECT

private slots:
    void birthDates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("read"); // ISO date, the year alone, or "-" when refused

        // Read on 15 June 2025.
        const char* rows[][2] = {{"05/03/1984", "1984-03-05"},
                                 {"5/3/1984", "1984-03-05"},
                                 {"1984-03-05", "1984-03-05"},
                                 {" 1984 ", "1984"},
                                 {"31/02/1990", "-"},
                                 {"abc", "-"},
                                 {"1899", "-"},
                                 {"15/06/2025", "2025-06-15"},
                                 {"2025-06-16", "-"},
                                 {"2026", "-"}};
        for (const auto& row : rows)
            QTest::newRow(row[0]) << QString::fromUtf8(row[0]) << QString::fromUtf8(row[1]);
    }

    void birthDates()
    {
        QFETCH(QString, text);
        QFETCH(QString, read);
        QCOMPARE(dateText(entrants::readBirthDate(text, QDate(2025, 6, 15))), read);
    }

    void fileWithBirthDates_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("loaded"); // bib:birth:team
        QTest::addColumn<QString>("refusal");

        const QByteArray header("dorsal;nombre;club;equipo;nacimiento\n");
        QTest::newRow("every form, the team from equipo or else the club")
            << header + "1;Ana;C1;;05/03/1984\n"
                        "2;Luis;C2;E2;1990\n"
                        "3;Eva;C3;;\n"
            << "1:1984-03-05:C1|2:1990:E2|3:-:C3"
            << "";
        QTest::newRow("one unreadable date refuses the whole file")
            << header + "1;Ana;C1;;05/03/1984\n"
                        "2;Luis;C2;;31/02/1990\n"
            << ""
            << "No se entiende la fecha de nacimiento de la línea 3. Escríbala como dd/mm/aaaa, "
               "aaaa-mm-dd o solo el año, de 1900 a " +
                   QString::number(QDate::currentDate().year()) + ". No se ha cargado nada.";
        QTest::newRow("the lines named, a row with a bad bib too")
            << header +
                   "1;Ana;C1;;abc\n"
                   "x;Luis;C2;;1850\n"
                   "3;Eva;C3;;1990\n"
                   "4;Pio;C4;;" +
                   QByteArray::number(QDate::currentDate().year() + 1) + "\n"
            << ""
            << "de las líneas 2, 3, 5.";
    }

    void fileWithBirthDates()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, loaded);
        QFETCH(QString, refusal);
        const entrants::Loaded got = entrants::read(bytes);
        QStringList entries;
        for (const entrants::Entrant& e : got.entrants)
            entries << QStringLiteral("%1:%2:%3").arg(e.bib).arg(dateText(e.nacimiento), e.team());
        QCOMPARE(entries.join(u'|'), loaded);
        QVERIFY2(refusal.isEmpty() ? got.refusal.isEmpty() : got.refusal.contains(refusal),
                 qPrintable(got.refusal));
    }

    void age_data()
    {
        QTest::addColumn<QString>("birth");
        QTest::addColumn<QDate>("raceDay");
        QTest::addColumn<int>("onRaceDay");
        QTest::addColumn<int>("atEndOfYear");

        QTest::newRow("the day before the birthday")
            << "05/03/1984" << QDate(2024, 3, 4) << 39 << 40;
        QTest::newRow("the birthday") << "05/03/1984" << QDate(2024, 3, 5) << 40 << 40;
        QTest::newRow("born on 31 December, raced on 1 January")
            << "31/12/1984" << QDate(2024, 1, 1) << 39 << 40;
        QTest::newRow("29 February, common year, 27 February")
            << "29/02/2000" << QDate(2023, 2, 27) << 22 << 23;
        QTest::newRow("29 February, common year, 28 February")
            << "29/02/2000" << QDate(2023, 2, 28) << 23 << 23;
        QTest::newRow("29 February, leap year, 29 February")
            << "29/02/2000" << QDate(2024, 2, 29) << 24 << 24;
        QTest::newRow("the year alone, early in the year")
            << "1984" << QDate(2024, 1, 1) << 40 << 40;
    }

    void age()
    {
        QFETCH(QString, birth);
        QFETCH(QDate, raceDay);
        QFETCH(int, onRaceDay);
        QFETCH(int, atEndOfYear);
        const std::optional<entrants::BirthDate> read = entrants::readBirthDate(birth);
        QVERIFY(read);
        QCOMPARE(categories::age(*read, raceDay, AgeRule::RaceDay), onRaceDay);
        QCOMPARE(categories::age(*read, raceDay, AgeRule::EndOfYear), atEndOfYear);
    }

    void assignment_data()
    {
        QTest::addColumn<QString>("sexo");
        QTest::addColumn<QString>("birth");
        QTest::addColumn<QString>("given"); // the file's category
        QTest::addColumn<AgeRule>("rule");
        QTest::addColumn<QString>("category");
        QTest::addColumn<QString>("report"); // after "Sin categoría: dorsal 7 "

        // The race on 12 May 2024, under the table of assignment().
        const AgeRule year = AgeRule::EndOfYear;
        const struct {
            const char *name, *sexo, *birth, *given;
            AgeRule rule;
            const char *category, *report;
        } rows[] = {
            {"18, no sex needed below 20", "", "2006", "", year, "Junior", ""},
            {"40 at 31 December", "H", "20/12/1984", "", year, "Veteranos", ""},
            {"39 on the race day", "H", "20/12/1984", "", AgeRule::RaceDay, "Senior M", ""},
            {"mujer, 44", "mujer", "1980", "", year, "Senior F", ""},
            {"a woman of 45", "F", "1979", "", year, "", "(45 años, ninguna categoría femenina)."},
            {"a man of 60", "Masculino", "1964", "", year, "",
             "(60 años, ninguna categoría masculina)."},
            {"no date of birth", "M", "", "", year, "", "(sin fecha de nacimiento)."},
            {"no sex at 30", "", "1994", "", year, "", "(sin sexo)."},
            {"an unknown sex at 30", "X", "1994", "", year, "", "(sexo «X» desconocido)."},
            {"the file's category kept", "M", "1964", "Élite", year, "Élite", ""}};
        for (const auto& r : rows)
            QTest::newRow(r.name) << QString::fromUtf8(r.sexo) << QString::fromUtf8(r.birth)
                                  << QString::fromUtf8(r.given) << r.rule
                                  << QString::fromUtf8(r.category) << QString::fromUtf8(r.report);
    }

    void assignment()
    {
        QFETCH(QString, sexo);
        QFETCH(QString, birth);
        QFETCH(QString, given);
        QFETCH(AgeRule, rule);
        QFETCH(QString, category);
        QFETCH(QString, report);

        const categories::Table table =
            tableOf("Junior:A:0:19|Senior M:M:20:39|Veteranos:M:40:59|Senior F:F:20:44", rule);
        QVERIFY(categories::validate(table).isEmpty());
        entrants::Entrant entrant;
        entrant.bib = 7;
        entrant.sexo = sexo;
        entrant.categoria = given;
        if (!birth.isEmpty())
            entrant.nacimiento = entrants::readBirthDate(birth);
        QList<entrants::Entrant> list{entrant};
        const QList<categories::Unassigned> missing =
            categories::apply(list, table, QDate(2024, 5, 12));
        QCOMPARE(list.first().categoria, category);
        QCOMPARE(categories::unassignedMessage(missing),
                 report.isEmpty() ? QString()
                                  : QStringLiteral("Sin categoría: dorsal 7 ") + report);
    }

    void longReport()
    {
        QList<entrants::Entrant> list(23);
        for (int i = 0; i < list.size(); ++i)
            list[i].bib = i + 1;
        const QString message = categories::unassignedMessage(
            categories::apply(list, categories::defaultTable(), QDate(2024, 5, 12)));
        QVERIFY2(message.endsWith(QStringLiteral(", dorsal 20 (sin fecha de nacimiento) y 3 más.")),
                 qPrintable(message));
    }

    void validation_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("message");

        QTest::newRow("men and women on the same ages") << "Senior M:M:20:34|Senior F:F:20:34"
                                                        << "";
        QTest::newRow("an overlap of one sex")
            << "Veteranos A:M:35:44|Veteranos B:M:40:54"
            << "Las categorías «Veteranos A» y «Veteranos B» se solapan en las edades 40 a 44.";
        QTest::newRow("a category for both overlaps a woman's")
            << "Junior:A:0:19|Senior F:F:19:34"
            << "Las categorías «Junior» y «Senior F» se solapan en la edad 19.";
        QTest::newRow("a gap for women only")
            << "Senior F:F:20:29|Veteranas:F:35:50|Senior M:M:20:50"
            << "Ninguna categoría femenina cubre las edades 30 a 34 (entre «Senior F» y "
               "«Veteranas»).";
        QTest::newRow("a gap in a table without sexes")
            << "A:A:0:19|B:A:21:40"
            << "Ninguna categoría cubre la edad 20 (entre «A» y «B»).";
        QTest::newRow("ages in the wrong order")
            << "Veteranos:M:45:40"
            << "La categoría «Veteranos» empieza en 45 años y acaba en 40: la primera edad no "
               "puede ser mayor que la última.";
        QTest::newRow("no name") << " :M:0:19"
                                 << "La categoría número 1 de la tabla no tiene nombre.";
        QTest::newRow("one name twice, case aside")
            << "Senior:M:20:34|senior:F:20:34"
            << "Hay más de una categoría llamada «senior»: cada una necesita su propio nombre.";
    }

    void validation()
    {
        QFETCH(QString, table);
        QFETCH(QString, message);
        QCOMPARE(categories::validate(tableOf(table)), message);
    }

    void defaultTableIsValid() { QCOMPARE(categories::validate(categories::defaultTable()), ""); }

    void exportAndImport()
    {
        const categories::Table table = tableOf(
            "Sub-20; \"Los jóvenes\":A:0:19|Senior M:M:20:99|Senior F:F:20:99", AgeRule::RaceDay);
        const QByteArray bytes = categories::exportCsv(table);
        QCOMPARE(bytes, QByteArray("\xEF\xBB\xBF"
                                   "regla;dia_carrera\r\n"
                                   "categoria;sexo;edad_desde;edad_hasta\r\n"
                                   "\"Sub-20; \"\"Los jóvenes\"\"\";Ambos;0;19\r\n"
                                   "Senior M;M;20;99\r\n"
                                   "Senior F;F;20;99\r\n"));
        const categories::Imported back = categories::importCsv(bytes);
        QCOMPARE(back.refusal, "");
        QCOMPARE(categories::exportCsv(back.table), bytes);
    }

    void importing_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("refusal");  // a part of it; empty when the file is taken
        QTest::addColumn<QByteArray>("taken"); // the table taken, written back

        QTest::newRow("a spreadsheet's commas and code page, the other ways of a sex")
            << QByteArray("regla,31 de diciembre\n"
                          "Categor\xED"
                          "a,Sexo,Edad desde,Edad hasta\n"
                          "J\xF3venes,,0,19\n"
                          "Senior,Hombre,20,50\n")
            << ""
            << QByteArray("\xEF\xBB\xBF"
                          "regla;31_diciembre\r\n"
                          "categoria;sexo;edad_desde;edad_hasta\r\n"
                          "J\xC3\xB3venes;Ambos;0;19\r\n"
                          "Senior;M;20;50\r\n");
        QTest::newRow("no rule line") << QByteArray("categoria;sexo;edad_desde;edad_hasta\n"
                                                    "Senior;M;20;34\n")
                                      << "La línea 1 debe dar la regla de la edad" << QByteArray();
        QTest::newRow("a column missing")
            << QByteArray("regla;dia_carrera\nnombre;sexo;edad_desde;edad_hasta\n")
            << "A la cabecera de la línea 2 le falta la columna «categoria»." << QByteArray();
        QTest::newRow("bad lines named") << QByteArray("regla;dia_carrera\n"
                                                       "categoria;sexo;edad_desde;edad_hasta\n"
                                                       "Senior;X;20;34\n"
                                                       "Veteranos;M;3a;50\n"
                                                       ";M;51;60\n")
                                         << "Línea 3: el sexo «X» no es M, F ni Ambos.\n"
                                            "Línea 4: la edad «3a» no es un número.\n"
                                            "Línea 5: la categoría no tiene nombre."
                                         << QByteArray();
        QTest::newRow("an overlap refuses the table")
            << QByteArray("regla;dia_carrera\n"
                          "categoria;sexo;edad_desde;edad_hasta\n"
                          "A;M;20;40\n"
                          "B;M;40;50\n")
            << "Las categorías «A» y «B» se solapan en la edad 40." << QByteArray();
    }

    void importing()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, refusal);
        QFETCH(QByteArray, taken);
        const categories::Imported got = categories::importCsv(bytes);
        if (refusal.isEmpty()) {
            QCOMPARE(got.refusal, "");
            QCOMPARE(categories::exportCsv(got.table), taken);
        } else {
            QVERIFY2(got.refusal.contains(refusal), qPrintable(got.refusal));
            QVERIFY(got.table.categories.isEmpty());
        }
    }

    void keptForTheNextRace()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QString path = dir.filePath(QStringLiteral("opciones.ini"));
        categories::Table small = tableOf("A:A:0:50|B:A:51:120", AgeRule::RaceDay);
        {
            QSettings settings(path, QSettings::IniFormat);
            QVERIFY(categories::load(settings).categories.isEmpty());
            categories::save(settings, categories::defaultTable());
            categories::save(settings, small); // replaces the longer table whole
        }
        {
            const QSettings settings(path, QSettings::IniFormat);
            QCOMPARE(categories::exportCsv(categories::load(settings)),
                     categories::exportCsv(small));
        }
        {
            QSettings settings(path, QSettings::IniFormat);
            settings.setValue(QStringLiteral("categorias/2/desde"), 40); // now overlaps A
        }
        const QSettings settings(path, QSettings::IniFormat);
        QVERIFY(categories::load(settings).categories.isEmpty());
    }
};

QTEST_APPLESS_MAIN(CategoriesTest)
#include "tst_categories.moc"
