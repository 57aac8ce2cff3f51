#include "results/core/resultline.h"

#include <QTest>

using namespace resultline;

Q_DECLARE_METATYPE(TimeFormat)

class ResultLineTest : public QObject
{
    Q_OBJECT

private slots:
    // The lines of a Lap from the caption of Label2, the text of Text1, the running time and the
    // caption of Label7: the List1 line and the Combo1 line, and the bibs-only line as the first 9
    // characters of the List1 line.
    void lapLines_data()
    {
        QTest::addColumn<TimeFormat>("format");
        QTest::addColumn<QStringList>("in");
        QTest::addColumn<QStringList>("lines"); // List1, Combo1
        const auto row = [](const char* name, TimeFormat f, const QStringList& in,
                            const QStringList& lines) { QTest::newRow(name) << f << in << lines; };
        const auto s = TimeFormat::Segundos, c = TimeFormat::Centesimas, m = TimeFormat::Milesimas;

        row("segundos", s, {"3", "57", "00:12:34", "0:00:05"},
            {"   3-  57- 00:12:34 - 0:00:05", "   3- 00:12:34 - 0:00:05"});
        row("first finisher, empty bib", s, {"1", "", "00:00:09", "0:00:00"},
            {"   1-   0- 00:00:09 - 0:00:00", "   1- 00:00:09 - 0:00:00"});
        row("segundos cuts, five digits", s, {"12345", "67890x", "02:00:00:567", "1:00:00:123"},
            {"2345-7890- 02:00:00 - 1:00:00", "2345- 02:00:00 - 1:00:00"});
        row("centesimas cuts, shorter as it is", c, {" 12", "-5", "01:02:03:456", "0:00:05"},
            {"  12-  -5- 01:02:03:45 - 0:00:05", "  12- 01:02:03:45 - 0:00:05"});
        row("milesimas: List1 keeps longer texts", m,
            {"abc", "1.5", "00:00:01:2399", "0:00:00:0011"},
            {"   0- 1.5- 00:00:01:2399 - 0:00:00:0011", "   0- 00:00:01:239 - 0:00:00:001"});
    }

    void lapLines()
    {
        QFETCH(TimeFormat, format);
        QFETCH(QStringList, in);
        QFETCH(QStringList, lines);

        const QString r = rankField(in[0]), b = bibField(in[1]);
        const Target l = Target::List1, c = Target::Combo1;
        QCOMPARE(fullLine(r, b, cutTime(in[2], format, l), cutDifference(in[3], format, l)),
                 lines[0]);
        QCOMPARE(comboLine(r, cutTime(in[2], format, c), cutDifference(in[3], format, c)),
                 lines[1]);
        QCOMPARE(bibLine(r, b), lines[0].left(9));
    }

    // A line taken apart by character position: the List1 index named by the rank in 1-4 (-1 for
    // none), the bib in 6-9 as a click on a List2 line reads it, and the line with a typed bib.
    void byPosition_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("bib");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("rewritten"); // null: no results line to rewrite
        const auto row = [](const char* name, const QString& line, int index, const QString& bib,
                            const QString& typed, const QString& rewritten) {
            QTest::newRow(name) << line << index << bib << typed << rewritten;
        };
        const char* line = "   3-   0- 00:12:34 - 0:00:05";

        row("57", line, 2, "0", "57", "   3-  57- 00:12:34 - 0:00:05");
        row("five digits", line, 2, "0", "12345", "   3-2345- 00:12:34 - 0:00:05");
        row("bibs-only", "   3-   0", 2, "0", "57", "   3-  57");
        row("too short", "   3-  ", 2, "0", "57", QString());
        row("rank 0, negative bib", "   0-  -5", -1, "-5", "5", "   0-   5");
        row("beyond int", "1E99-  57", -1, "57", "5", "1E99-   5");
        row("start order line", "   1  41 Lopez", 0, "41", "7", "   1    7Lopez");
        row("blank bib, typed text", "   1-     - 0:10:30", 0, "0", "07", "   1-  07 - 0:10:30");
        row("characters 1-4, 6-9", "  123  4112345", 11, "41", "7", "  123   712345");
    }

    void byPosition()
    {
        QFETCH(QString, line);
        QFETCH(int, index);
        QFETCH(QString, bib);
        QFETCH(QString, typed);
        QFETCH(QString, rewritten);

        QCOMPARE(lineIndexOfRank(line), index);
        QCOMPARE(bibOfStartLine(line), bib);
        const std::optional<QString> result = rewriteBib(line, typed);
        QCOMPARE(result.has_value(), !rewritten.isNull());
        QCOMPARE(result.value_or(QString()), rewritten);
    }
};

QTEST_APPLESS_MAIN(ResultLineTest)
#include "tst_resultline.moc"
