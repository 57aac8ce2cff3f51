#include "results/core/resultline.h"

#include <QTest>

using namespace resultline;

Q_DECLARE_METATYPE(TimeFormat)

namespace
{

// A reading that may be missing, as a table cell (an empty reading is not a missing one).
const QString none = QStringLiteral("(none)");

QString cell(const std::optional<QString>& reading)
{
    return reading.value_or(none);
}

} // namespace

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

        // Read back: every field as it went in, whatever the format.
        const QString time = cutTime(in[2], format, l), comboTime = cutTime(in[2], format, c);
        const QString difference = cutDifference(in[3], format, l);
        QCOMPARE(rankOf(lines[0]), lines[0].left(4).toInt());
        QCOMPARE(bibOf(lines[0]), lines[0].mid(5, 4).toDouble());
        QCOMPARE(bibText(lines[0]), b);
        QCOMPARE(cell(list1Time(lines[0])), time);
        QCOMPARE(cell(list1Difference(lines[0])), difference);
        QCOMPARE(cell(combo1Time(lines[1])), comboTime);
        QCOMPARE(cell(combo1Difference(lines[1])), cutDifference(in[3], format, c));
        QCOMPARE(list1TimeText(lines[0], timevalue::timeWidth(format)), cutTime(in[2], format, c));
        QCOMPARE(combo1TimeText(lines[1], timevalue::timeWidth(format)), comboTime);
        QCOMPARE(withList1Difference(lines[0], u"X"), fullLine(r, b, time, u"X"));
        QCOMPARE(withCombo1Difference(lines[1], u"X"), comboLine(r, comboTime, u"X"));
    }

    // Lines that are not whole: the bib as Val reads characters 6-9, no time unless a " - "
    // follows character 11, and a difference rewritten only where there is a time.
    void list1Readings_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<double>("bib");
        QTest::addColumn<QString>("bibChars");
        QTest::addColumn<QString>("time"); // `none`: no time
        QTest::addColumn<QString>("difference");
        QTest::addColumn<QString>("timeText"); // 8 characters from character 12
        QTest::addColumn<QString>("withX");    // the difference made "X"
        const auto row = [](const char* name, const QString& line, double bib,
                            const QString& bibChars, const QString& time, const QString& difference,
                            const QString& timeText, const QString& withX) {
            QTest::newRow(name) << line << bib << bibChars << time << difference << timeText
                                << withX;
        };
        const QString bibsOnly = "   3-  57";
        const QString noDifference = "   3-  57- 00:12:34";

        row("bibs-only", bibsOnly, 57, "  57", none, none, "", bibsOnly);
        row("empty", "", 0, "", none, none, "", "");
        row("time without difference", noDifference, 57, "  57", none, none, "00:12:34",
            noDifference);
        row("empty time", "   3-  57-  - 0:00:05", 57, "  57", "", "0:00:05",
            " - 0:00:", "   3-  57-  - X");
        row("second separator", "   3-  57- 00:12:34 - 0:00:05 - 1", 57, "  57", "00:12:34",
            "0:00:05 - 1", "00:12:34", "   3-  57- 00:12:34 - X");
        row("bib not a number", "   3- abc- 00:00:01 - 0", 0, " abc", "00:00:01", "0", "00:00:01",
            "   3- abc- 00:00:01 - X");
    }

    void list1Readings()
    {
        QFETCH(QString, line);
        QFETCH(double, bib);
        QFETCH(QString, bibChars);
        QFETCH(QString, time);
        QFETCH(QString, difference);
        QFETCH(QString, timeText);
        QFETCH(QString, withX);

        QCOMPARE(bibOf(line), bib);
        QCOMPARE(bibText(line), bibChars);
        QCOMPARE(cell(list1Time(line)), time);
        QCOMPARE(cell(list1Difference(line)), difference);
        QCOMPARE(list1TimeText(line, 8), timeText);
        QCOMPARE(withList1Difference(line, u"X"), withX);
    }

    // The rank in characters 1-4 as renumbering reads it, and the line renumbered: the new rank
    // right-aligned in 4 (its last 4 when longer), the rest untouched.
    void ranks_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("rank");
        QTest::addColumn<int>("newRank");
        QTest::addColumn<QString>("renumbered");

        QTest::newRow("plain") << "   3-  57- x" << 3 << 12 << "  12-  57- x";
        QTest::newRow("negative") << "  -1-  57" << -1 << -2 << "  -2-  57";
        QTest::newRow("fraction cut toward zero") << " 1.9-" << 1 << 2 << "   2-";
        QTest::newRow("exponent, longer rank keeps its last 4")
            << "21E8-" << 2100000000 << 2100000001 << "0001-";
        QTest::newRow("beyond int") << "1E99-  57" << 0 << 1 << "   1-  57";
        QTest::newRow("short line") << "  7" << 7 << 8 << "   8";
        QTest::newRow("empty") << "" << 0 << 5 << "   5";
    }

    void ranks()
    {
        QFETCH(QString, line);
        QFETCH(int, rank);
        QFETCH(int, newRank);
        QFETCH(QString, renumbered);

        QCOMPARE(rankOf(line), rank);
        QCOMPARE(withRank(line, newRank), renumbered);
    }

    // A start-order record's line: record number and bib right-aligned in 4, the start time's
    // last 7 characters.
    void startLines_data()
    {
        QTest::addColumn<qint64>("record");
        QTest::addColumn<int>("bib");
        QTest::addColumn<QString>("startTime");
        QTest::addColumn<QString>("line");

        QTest::newRow("record 3") << qint64(3) << 27 << "00:10:30"
                                  << "   3-  27 - 0:10:30";
        QTest::newRow("negative bib, short time") << qint64(1) << -5 << "9:00"
                                                  << "   1-  -5 - 9:00";
        QTest::newRow("five digits") << qint64(12345) << 32767 << "12:00:00"
                                     << "2345-2767 - 2:00:00";
    }

    void startLines()
    {
        QFETCH(qint64, record);
        QFETCH(int, bib);
        QFETCH(QString, startTime);
        QFETCH(QString, line);

        QCOMPARE(startLine(record, static_cast<qint16>(bib), startTime), line);
    }

    // A List2 line read: the bib as a number and as the text Text1 takes, the start time as the
    // countdown reads it (the last 7) and as the classification reads it (from character 13).
    void startLineReadings_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("bib");
        QTest::addColumn<QString>("bibText");
        QTest::addColumn<QString>("countdownTime");
        QTest::addColumn<QString>("classificationTime");

        QTest::newRow("whole") << "   3-  27 - 0:10:30" << 27 << "27"
                               << "0:10:30"
                               << "0:10:30";
        QTest::newRow("short time") << "   1-  -5 - 9:00" << -5 << "-5"
                                    << " - 9:00"
                                    << "9:00";
        QTest::newRow("short line") << "   1-" << 0 << "0"
                                    << "   1-"
                                    << "";
        QTest::newRow("bib beyond int") << "   1-1E99 - 0:00:01" << 0 << "1E+99"
                                        << "0:00:01"
                                        << "0:00:01";
    }

    void startLineReadings()
    {
        QFETCH(QString, line);
        QFETCH(int, bib);
        QFETCH(QString, bibText);
        QFETCH(QString, countdownTime);
        QFETCH(QString, classificationTime);

        QCOMPARE(startBibOf(line), bib);
        QCOMPARE(bibOfStartLine(line), bibText);
        QCOMPARE(startTimeText(line), countdownTime);
        QCOMPARE(startTimeField(line).toString(), classificationTime);
        QCOMPARE(startBibs({line, line, QStringLiteral("   9-   8 - 0:00:02")}),
                 (QSet<int>{bib, 8}));
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
