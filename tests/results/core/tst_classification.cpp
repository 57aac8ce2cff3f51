// The classification rules (finish time or riding time, repeats, unknown bibs, categories) and
// the files people read: the spreadsheet byte for byte, the web page parsed back.
#include "results/core/classification.h"
#include "results/core/resultsreport.h"

#include <QXmlStreamReader>
#include <QtTest>

namespace
{

using classification::Status;

// A List1 line of a finish in "Milesimas".
QString line(int rank, int bib, const char* time)
{
    return QStringLiteral("%1-%2- %3 - 00:00:00:000")
        .arg(rank, 4)
        .arg(bib, 4)
        .arg(QLatin1String(time));
}

entrants::Entrant entrant(int bib, const QString& category, std::optional<qint64> start = {})
{
    entrants::Entrant e;
    e.bib = bib;
    e.nombre = QStringLiteral("N%1").arg(bib);
    e.categoria = category;
    e.salidaMs = start;
    return e;
}

const QStringList race = {line(1, 5, "00:10:00:000"),  line(2, 0, "00:10:01:000"),
                          line(3, 9, "00:10:02:500"),  line(4, 5, "00:10:03:000"),
                          line(5, 77, "00:10:04:000"), line(6, 2, "00:10:05:250")};

// Each row as status/bib/position/time/gap/category position/category gap.
QString describe(const classification::Results& r)
{
    static const char* statuses[] = {"R", "B", "S", "U", "D"};
    QStringList rows;
    for (const classification::Row& row : r.rows)
        rows << QStringLiteral("%1%2 p%3 t%4 g%5 c%6 cg%7")
                    .arg(QLatin1String(statuses[int(row.status)]))
                    .arg(row.bib)
                    .arg(row.position)
                    .arg(row.timeMs ? QString::number(*row.timeMs) : QStringLiteral("-"))
                    .arg(row.gapMs ? QString::number(*row.gapMs) : QStringLiteral("-"))
                    .arg(row.categoryPosition)
                    .arg(row.categoryGapMs ? QString::number(*row.categoryGapMs)
                                           : QStringLiteral("-"));
    return rows.join(QStringLiteral(" | "));
}

} // namespace

class ClassificationTest : public QObject
{
    Q_OBJECT

private slots:
    void rules_data()
    {
        QTest::addColumn<QList<entrants::Entrant>>("entered");
        QTest::addColumn<QStringList>("list2");
        QTest::addColumn<QString>("expected");

        QTest::newRow("no entrants: by finish time, bib 0 unidentified, a repeat counts first")
            << QList<entrants::Entrant>{} << QStringList{}
            << "R5 p1 t600000 g0 c0 cg- | R9 p2 t602500 g2500 c0 cg- | R77 p3 t604000 g4000 c0 cg- "
               "| R2 p4 t605250 g5250 c0 cg- | U0 p0 t- g- c0 cg- | D5 p0 t- g- c0 cg-";
        QTest::newRow("entrants with categories: a bib nobody has is unidentified")
            << QList<entrants::Entrant>{entrant(5, "M"), entrant(9, "F"), entrant(2, "M")}
            << QStringList{}
            << "R5 p1 t600000 g0 c1 cg0 | R9 p2 t602500 g2500 c1 cg0 | R2 p3 t605250 g5250 c2 "
               "cg5250 | U0 p0 t- g- c0 cg- | U77 p0 t- g- c0 cg- | D5 p0 t- g- c0 cg-";
        QTest::newRow("time trial from the entrants: riding time ranks, no start kept apart")
            << QList<entrants::Entrant>{entrant(5, "M", 60000), entrant(9, "M", 120000),
                                        entrant(2, "M", 0), entrant(77, "M")}
            << QStringList{}
            << "R9 p1 t482500 g0 c1 cg0 | R5 p2 t540000 g57500 c2 cg57500 | R2 p3 t605250 "
               "g122750 c3 cg122750 | S77 p0 t- g- c0 cg- | U0 p0 t- g- c0 cg- | D5 p0 t- g- c0 "
               "cg-";
        QTest::newRow("time trial: a finish before the rider's start is kept apart, first")
            << QList<entrants::Entrant>{entrant(5, "M", 60000), entrant(9, "M", 700000),
                                        entrant(2, "M", 0), entrant(77, "M")}
            << QStringList{}
            << "R5 p1 t540000 g0 c1 cg0 | R2 p2 t605250 g65250 c2 cg65250 | B9 p0 t- g- c0 cg- "
               "| S77 p0 t- g- c0 cg- | U0 p0 t- g- c0 cg- | D5 p0 t- g- c0 cg-";
        QTest::newRow("time trial from the start order; the entrant's own start goes first")
            << QList<entrants::Entrant>{entrant(5, {}), entrant(9, {}), entrant(2, {}, 300000),
                                        entrant(77, {})}
            << QStringList{QStringLiteral("   1-   5 - 0:01:00"),
                           QStringLiteral("   2-   9 - 0:09:00"),
                           QStringLiteral("   3-   2 - 0:02:00"),
                           QStringLiteral("   4-  77 -        ")}
            << "R9 p1 t62500 g0 c0 cg- | R2 p2 t305250 g242750 c0 cg- | R5 p3 t540000 g477500 c0 "
               "cg- | S77 p0 t- g- c0 cg- | U0 p0 t- g- c0 cg- | D5 p0 t- g- c0 cg-";
    }

    void rules()
    {
        QFETCH(QList<entrants::Entrant>, entered);
        QFETCH(QStringList, list2);
        QFETCH(QString, expected);
        QCOMPARE(describe(classification::classify(race, entered, list2)), expected);
    }

    void spreadsheet()
    {
        entrants::Entrant a = entrant(5, QStringLiteral("Élite"));
        a.apellidos = QStringLiteral("Gil; \"Peque\"");
        a.club = QStringLiteral("C.D.");
        const QList<entrants::Entrant> entered{a, entrant(9, QStringLiteral("Élite"))};
        const QStringList lines{line(1, 5, "01:02:03:450"), line(2, 9, "01:02:04:000"),
                                line(3, 0, "01:02:05:000")};
        const QByteArray csv =
            resultsreport::csv(classification::classify(lines, entered, {}), entered, 2);
        QCOMPARE(csv,
                 QByteArray("\xEF\xBB\xBF"
                            "Puesto;Dorsal;Nombre;Apellidos;Club;Categoría;Sexo;Puesto "
                            "categoría;Llegada;Tiempo;Diferencia;Observaciones\r\n"
                            "1;5;N5;\"Gil; \"\"Peque\"\"\";C.D.;Élite;;1;1:02:03,45;1:02:03,45;;"
                            "\r\n"
                            "2;9;N9;;;Élite;;2;1:02:04,00;1:02:04,00;+0:00:00,55;\r\n"
                            ";0;;;;;;;1:02:05,00;;;Sin identificar\r\n"));
    }

    void webPage()
    {
        entrants::Entrant a = entrant(5, QStringLiteral("F"));
        a.nombre = QStringLiteral("<Ana & Eva>");
        const QList<entrants::Entrant> entered{a, entrant(9, QStringLiteral("M"))};
        const classification::Results results =
            classification::classify(race, entered, QStringList{});
        const resultsreport::Report report = resultsreport::report(
            results, entered, 3, QStringLiteral("Trail «A&B»"), QDate(2026, 11, 23));
        const QByteArray page = resultsreport::html(report);
        QVERIFY(page.startsWith("<!DOCTYPE html>"));
        QVERIFY(page.contains("width=device-width"));

        // Read back as XML: every element closed, every text escaped.
        QXmlStreamReader xml(page);
        QStringList headings, cells, index, summary;
        bool inIndex = false, inSummary = false;
        while (!xml.atEnd()) {
            const QXmlStreamReader::TokenType token = xml.readNext();
            if (token == QXmlStreamReader::EndElement && xml.name() == u"nav")
                inIndex = false;
            if (token == QXmlStreamReader::EndElement && xml.name() == u"p")
                inSummary = false;
            if (token == QXmlStreamReader::Characters && inSummary)
                summary << xml.text().toString();
            if (token != QXmlStreamReader::StartElement)
                continue;
            if (xml.name() == u"nav")
                inIndex = true;
            else if (xml.name() == u"p" &&
                     xml.attributes().value(QStringLiteral("class")) == u"resumen")
                inSummary = true;
            else if (xml.name() == u"a" && (inIndex || inSummary)) {
                const QString href = xml.attributes().value(QStringLiteral("href")).toString();
                (inIndex ? index : summary) << href + u' ' + xml.readElementText();
            } else if (xml.name() == u"h1" || xml.name() == u"h2")
                headings << xml.readElementText(QXmlStreamReader::IncludeChildElements)
                                .remove(QStringLiteral("↑ índice"));
            else if (xml.name() == u"td")
                cells << xml.readElementText();
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
        QCOMPARE(headings, (QStringList{"Trail «A&B»", "Clasificación general", "Categoría F",
                                        "Categoría M", "Sin identificar", "Repetidos"}));
        // The index links to each classification, the summary to each kind kept apart.
        QCOMPARE(index, (QStringList{"#t0 General", "#t1 F", "#t2 M"}));
        QCOMPARE(summary.join(QString()),
                 QStringLiteral("Clasificados: 2 · #t3 Sin identificar: 3 · #t4 Repetidos: 1"));
        // The general classification's first row, then the category tables' rows.
        QCOMPARE(cells.mid(0, 7),
                 (QStringList{"1", "5", "<Ana & Eva>", "", "F", "0:10:00,000", ""}));
        QCOMPARE(cells.mid(14, 7),
                 (QStringList{"1", "5", "<Ana & Eva>", "", "F", "0:10:00,000", ""}));
        QCOMPARE(cells.mid(21, 7), (QStringList{"1", "9", "N9", "", "M", "0:10:02,500", ""}));
        // The unidentified: arrival number, bib, the entrant's columns blank, the finish time.
        QCOMPARE(cells.mid(28, 6), (QStringList{"2", "0", "", "", "", "0:10:01,000"}));
    }

    void gapsAsTheScreen_data()
    {
        QTest::addColumn<QStringList>("list1");
        QTest::addColumn<QList<entrants::Entrant>>("entered");
        QTest::addColumn<QString>("expected");

        // In "Segundos" the first finished at 0:10:00.9 and the second at 0:10:02.1: the screen
        // wrote 0:00:01, the clock's difference cut, and the results give the same.
        const QStringList segundos{"   1-   5- 00:10:00 - 0:00:00", "   2-   9- 00:10:02 - 0:00:01",
                                   "   3-   2- 00:10:04 - 0:00:04",
                                   "   4-   7- 00:10:05 - 0:00:04"};
        QTest::newRow("Segundos: the differences of the lines")
            << segundos << QList<entrants::Entrant>{}
            << "R5 p1 t600000 g0 c0 cg- | R9 p2 t602000 g1000 c0 cg- | R2 p3 t604000 g4000 c0 cg- "
               "| R7 p4 t605000 g4000 c0 cg-";
        QTest::newRow("Segundos, categories: a category's gap is the difference of the screen's")
            << segundos
            << QList<entrants::Entrant>{entrant(5, "A"), entrant(9, "B"), entrant(2, "A"),
                                        entrant(7, "B")}
            << "R5 p1 t600000 g0 c1 cg0 | R9 p2 t602000 g1000 c1 cg0 | R2 p3 t604000 g4000 c2 "
               "cg4000 | R7 p4 t605000 g4000 c2 cg3000";
        QTest::newRow("Segundos, the first line not ranked: from the leader's screen difference")
            << QStringList{"   1-   0- 00:10:00 - 0:00:00", "   2-   9- 00:10:02 - 0:00:01",
                           "   3-   2- 00:10:04 - 0:00:04"}
            << QList<entrants::Entrant>{}
            << "R9 p1 t602000 g0 c0 cg- | R2 p2 t604000 g3000 c0 cg- | U0 p0 t- g- c0 cg-";
        // The bibs-and-times mode writes the difference as it stands, which does not run: the
        // gaps come from the times.
        QTest::newRow("differences that do not fit the times: from the times")
            << QStringList{"   1-   5- 00:10:00 - 0:00:00", "   2-   9- 00:10:02 - 0:00:00",
                           "   3-   2- 00:10:04 - 0:00:00"}
            << QList<entrants::Entrant>{}
            << "R5 p1 t600000 g0 c0 cg- | R9 p2 t602000 g2000 c0 cg- | R2 p3 t604000 g4000 c0 cg-";
        QTest::newRow("a line whose difference cannot be read: from the times")
            << QStringList{"   1-   5- 00:10:00 - 0:00:00", "   2-   9- 00:10:02 - 0:00:01",
                           "   3-   2- 00:10:04 - x"}
            << QList<entrants::Entrant>{}
            << "R5 p1 t600000 g0 c0 cg- | R9 p2 t602000 g2000 c0 cg- | R2 p3 t604000 g4000 c0 cg-";
    }

    void gapsAsTheScreen()
    {
        QFETCH(QStringList, list1);
        QFETCH(QList<entrants::Entrant>, entered);
        QFETCH(QString, expected);
        QCOMPARE(describe(classification::classify(list1, entered, {})), expected);
    }

    void spreadsheetInSegundos()
    {
        const QStringList lines{"   1-   5- 00:10:00 - 0:00:00", "   2-   9- 00:10:02 - 0:00:01"};
        QCOMPARE(resultsreport::csv(classification::classify(lines, {}, {}), {}, 0),
                 QByteArray("\xEF\xBB\xBF"
                            "Puesto;Dorsal;Llegada;Tiempo;Diferencia;Observaciones\r\n"
                            "1;5;0:10:00;0:10:00;;\r\n"
                            "2;9;0:10:02;0:10:02;+0:00:01;\r\n"));
    }

    void finishBeforeStart()
    {
        // Bib 9 starts at 0:12:00 and finishes at 0:10:02.5: named for what it is, right after
        // the ranked, with both times, and counted at the top.
        const QList<entrants::Entrant> entered{entrant(5, "M", 60000), entrant(9, "M", 720000),
                                               entrant(2, "M", 0)};
        const classification::Results results = classification::classify(race, entered, {});
        const resultsreport::Report report =
            resultsreport::report(results, entered, 3, QStringLiteral("CRI"), QDate(2026, 5, 1));
        QStringList titles;
        for (const resultsreport::Table& t : report.tables)
            titles << t.title;
        QCOMPARE(titles,
                 (QStringList{"Clasificación general", "Categoría M", "Llegada antes de su salida",
                              "Sin identificar", "Repetidos"}));
        const resultsreport::Table& early = report.tables[2];
        QCOMPARE(early.header, (QStringList{"Llegada", "Dorsal", "Nombre", "Club", "Categoría",
                                            "Salida", "Tiempo"}));
        QCOMPARE(early.rows,
                 (QList<QStringList>{{"3", "9", "N9", "", "M", "0:12:00,000", "0:10:02,500"}}));
        QStringList summary;
        for (const resultsreport::Summary& part : report.summary)
            summary << QStringLiteral("%1 %2").arg(part.text).arg(part.table);
        QCOMPARE(summary, (QStringList{"Clasificados: 2 0", "Llegada antes de su salida: 1 2",
                                       "Sin identificar: 2 3", "Repetidos: 1 4"}));

        const QByteArray csv = resultsreport::csv(results, entered, 0);
        QVERIFY2(csv.contains("\r\n;9;N9;;;M;;;0:12:00;0:10:02;;;Llegada antes de su salida\r\n"),
                 csv.constData());
    }
};

QTEST_APPLESS_MAIN(ClassificationTest)
#include "tst_classification.moc"
