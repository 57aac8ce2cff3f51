#include "results/core/resultline.h"

#include <QTest>

using namespace resultline;

Q_DECLARE_METATYPE(TimeFormat)

class TstResultLine : public QObject
{
    Q_OBJECT

private slots:
    void fields_data();
    void fields();
    void lapLines_data();
    void lapLines();
    void bibOnlyLine();
    void rewrite_data();
    void rewrite();
    void indexOfRank_data();
    void indexOfRank();
    void startLineBib_data();
    void startLineBib();
};

void TstResultLine::fields_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("field");

    QTest::newRow("empty") << ""
                           << "   0";
    QTest::newRow("one digit") << "7"
                               << "   7";
    QTest::newRow("four digits") << "9999"
                                 << "9999";
    QTest::newRow("five digits keep last four") << "12345"
                                                << "2345";
    QTest::newRow("decimal") << "1.5"
                             << " 1.5";
    QTest::newRow("negative") << "-5"
                              << "  -5";
    QTest::newRow("leading number") << "57abc"
                                    << "  57";
    QTest::newRow("no number") << "abc"
                               << "   0";
    QTest::newRow("leading blank") << " 3"
                                   << "   3";
}

void TstResultLine::fields()
{
    QFETCH(QString, text);
    QFETCH(QString, field);
    QCOMPARE(rankField(text), field);
    QCOMPARE(bibField(text), field);
}

void TstResultLine::lapLines_data()
{
    QTest::addColumn<TimeFormat>("format");
    QTest::addColumn<QString>("rank");
    QTest::addColumn<QString>("bib");
    QTest::addColumn<QString>("time");
    QTest::addColumn<QString>("difference");
    QTest::addColumn<QString>("list1");
    QTest::addColumn<QString>("combo1");

    QTest::newRow("segundos") << TimeFormat::Segundos << "3"
                              << "57"
                              << "00:12:34"
                              << "0:00:05"
                              << "   3-  57- 00:12:34 - 0:00:05"
                              << "   3- 00:12:34 - 0:00:05";
    QTest::newRow("first finisher, empty bib") << TimeFormat::Segundos << "1"
                                               << ""
                                               << "00:00:09"
                                               << "0:00:00"
                                               << "   1-   0- 00:00:09 - 0:00:00"
                                               << "   1- 00:00:09 - 0:00:00";
    QTest::newRow("segundos cuts the full form") << TimeFormat::Segundos << "3"
                                                 << "57"
                                                 << "00:12:34:567"
                                                 << "0:00:05:123"
                                                 << "   3-  57- 00:12:34 - 0:00:05"
                                                 << "   3- 00:12:34 - 0:00:05";
    QTest::newRow("centesimas") << TimeFormat::Centesimas << "12"
                                << "400"
                                << "01:02:03:456"
                                << "0:00:05:123"
                                << "  12- 400- 01:02:03:45 - 0:00:05:12"
                                << "  12- 01:02:03:45 - 0:00:05:12";
    QTest::newRow("milesimas") << TimeFormat::Milesimas << "2"
                               << "8"
                               << "00:00:01:239"
                               << "0:00:00:001"
                               << "   2-   8- 00:00:01:239 - 0:00:00:001"
                               << "   2- 00:00:01:239 - 0:00:00:001";
    QTest::newRow("milesimas: List1 keeps longer texts whole")
        << TimeFormat::Milesimas << "2"
        << "8"
        << "00:00:01:2399"
        << "0:00:00:0011"
        << "   2-   8- 00:00:01:2399 - 0:00:00:0011"
        << "   2- 00:00:01:239 - 0:00:00:001";
    QTest::newRow("shorter texts as they are") << TimeFormat::Centesimas << "4"
                                               << "9"
                                               << "00:00:01"
                                               << "0:00:00"
                                               << "   4-   9- 00:00:01 - 0:00:00"
                                               << "   4- 00:00:01 - 0:00:00";
    QTest::newRow("five-digit rank and bib") << TimeFormat::Segundos << "12345"
                                             << "67890"
                                             << "02:00:00"
                                             << "1:00:00"
                                             << "2345-7890- 02:00:00 - 1:00:00"
                                             << "2345- 02:00:00 - 1:00:00";
    QTest::newRow("negative bib") << TimeFormat::Segundos << "5"
                                  << "-5"
                                  << "00:10:00"
                                  << "0:01:00"
                                  << "   5-  -5- 00:10:00 - 0:01:00"
                                  << "   5- 00:10:00 - 0:01:00";
}

// Builds both lines the way a Lap does, from the caption, the field and the clock texts.
void TstResultLine::lapLines()
{
    QFETCH(TimeFormat, format);
    QFETCH(QString, rank);
    QFETCH(QString, bib);
    QFETCH(QString, time);
    QFETCH(QString, difference);
    QFETCH(QString, list1);
    QFETCH(QString, combo1);

    const QString r = rankField(rank);
    QCOMPARE(fullLine(r, bibField(bib), cutTime(time, format, Target::List1),
                      cutDifference(difference, format, Target::List1)),
             list1);
    QCOMPARE(comboLine(r, cutTime(time, format, Target::Combo1),
                       cutDifference(difference, format, Target::Combo1)),
             combo1);
}

void TstResultLine::bibOnlyLine()
{
    QCOMPARE(bibLine(rankField(u"3"), bibField(u"57")), "   3-  57");
    QCOMPARE(bibLine(rankField(u"1"), bibField(u"")), "   1-   0");
}

void TstResultLine::rewrite_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("rewritten"); // null: nothing to rewrite

    const QString line = QStringLiteral("   3-   0- 00:12:34 - 0:00:05");
    QTest::newRow("full line") << line << "57"
                               << "   3-  57- 00:12:34 - 0:00:05";
    QTest::newRow("one digit") << line << "7"
                               << "   3-   7- 00:12:34 - 0:00:05";
    QTest::newRow("five digits keep last four") << line << "12345"
                                                << "   3-2345- 00:12:34 - 0:00:05";
    QTest::newRow("typed text as it stands") << line << "1.5"
                                             << "   3- 1.5- 00:12:34 - 0:00:05";
    QTest::newRow("negative") << line << "-5"
                              << "   3-  -5- 00:12:34 - 0:00:05";
    QTest::newRow("bibs-only line") << "   3-   0"
                                    << "57"
                                    << "   3-  57";
    QTest::newRow("milesimas line") << "  12- 400- 01:02:03:456 - 0:00:05:123"
                                    << "401"
                                    << "  12- 401- 01:02:03:456 - 0:00:05:123";
    QTest::newRow("shorter than a line") << "   3-  "
                                         << "57" << QString();
    QTest::newRow("empty") << ""
                           << "57" << QString();
}

void TstResultLine::rewrite()
{
    QFETCH(QString, line);
    QFETCH(QString, typed);
    QFETCH(QString, rewritten);

    const std::optional<QString> result = rewriteBib(line, typed);
    QCOMPARE(result.has_value(), !rewritten.isNull());
    if (result)
        QCOMPARE(*result, rewritten);
}

void TstResultLine::indexOfRank_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("index");

    QTest::newRow("rank 3") << "   3-  57- 00:12:34 - 0:00:05" << 2;
    QTest::newRow("rank 1") << "   1-   0" << 0;
    QTest::newRow("four digits") << "2345-7890- 02:00:00 - 1:00:00" << 2344;
    QTest::newRow("rank 0") << "   0-  57" << -1;
    QTest::newRow("empty") << "" << -1;
    QTest::newRow("only the first four characters") << "  123456" << 11;
    QTest::newRow("fraction rounds half to even") << " 2.5-  57" << 2;
    QTest::newRow("beyond int") << "1E99-  57" << -1;
}

void TstResultLine::indexOfRank()
{
    QFETCH(QString, line);
    QFETCH(int, index);
    QCOMPARE(lineIndexOfRank(line), index);
}

void TstResultLine::startLineBib_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("bib");

    QTest::newRow("start order line") << "   3-  27 - 0:10:30"
                                      << "27";
    QTest::newRow("four digits") << "   1-2345 - 0:10:30"
                                 << "2345";
    QTest::newRow("blank bib") << "   3-     - 0:10:30"
                               << "0";
    QTest::newRow("empty") << ""
                           << "0";
    QTest::newRow("negative") << "   3-  -5 - 0:10:30"
                              << "-5";
    QTest::newRow("only characters 6 to 9") << "   3-  4112345"
                                            << "41";
}

void TstResultLine::startLineBib()
{
    QFETCH(QString, line);
    QFETCH(QString, bib);
    QCOMPARE(bibOfStartLine(line), bib);
}

QTEST_APPLESS_MAIN(TstResultLine)
#include "tst_resultline.moc"
