#include "results/core/finishedit.h"

#include <QRandomGenerator>
#include <QtTest>

class FinishEditCoreTest : public QObject
{
    Q_OBJECT

private slots:
    void linesOfAFinish_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<QString>("combo1");
        QTest::addColumn<QString>("list1");
        QTest::addColumn<int>("beforeTwelve"); // where a finish at 0:00:12 goes among two of these
        // Rank 2, bib 23, at 0:00:12.25 with the first at 0:00:09.9: the difference is cut from
        // the exact one, as the running clock's is.
        QTest::newRow("Segundos") << 0 << "   2- 00:00:12 - 0:00:02"
                                  << "   2-  23- 00:00:12 - 0:00:02" << 2;
        QTest::newRow("Centesimas") << 1 << "   2- 00:00:12:25 - 0:00:02:35"
                                    << "   2-  23- 00:00:12:25 - 0:00:02:35" << 0;
        QTest::newRow("Milesimas") << 2 << "   2- 00:00:12:250 - 0:00:02:350"
                                   << "   2-  23- 00:00:12:250 - 0:00:02:350" << 0;
    }

    void linesOfAFinish()
    {
        QFETCH(int, format);
        QFETCH(QString, combo1);
        QFETCH(QString, list1);
        QFETCH(int, beforeTwelve);
        const auto lines = finishedit::linesOf(2, u"23", 12.25 / 3600, 9.9 / 3600,
                                               static_cast<TimeFormat>(format));
        QCOMPARE(lines.combo1, combo1);
        QCOMPARE(lines.list1, list1);
        QCOMPARE(finishedit::insertionIndex({list1, list1}, 12.25 / 3600), 2);
        QCOMPARE(finishedit::insertionIndex({list1, list1}, 12.0 / 3600), beforeTwelve);
    }

    void differencesAgainstANewFirst()
    {
        QStringList list1{"   1-  23- 00:00:12:250 - 0:00:02:350",
                          "   2-  57- 00:01:02:000 - 0:00:52:100", "   3-   4"};
        QStringList combo1{"   1- 00:00:12:250 - 0:00:02:350", "   2- 00:01:02:000 - 0:00:52:100",
                           "   3-   4"};
        finishedit::recomputeDifferences(combo1, list1, TimeFormat::Milesimas);
        QCOMPARE(list1, (QStringList{"   1-  23- 00:00:12:250 - 0:00:00:000",
                                     "   2-  57- 00:01:02:000 - 0:00:49:750", "   3-   4"}));
        QCOMPARE(combo1[1], QStringLiteral("   2- 00:01:02:000 - 0:00:49:750"));
    }

    void bibChecksLineByLineMatchTheWholeList()
    {
        // Random finishes and corrections: the checks kept line by line always equal the checks
        // of the whole list made afresh.
        QRandomGenerator random(7);
        const QSet<int> entered{1, 2, 3, 4, 5};
        finishedit::BibChecks kept;
        kept.reset({}, entered);
        QStringList list1;
        const auto line = [&](int bib) {
            return QStringLiteral("%1-%2- 00:00:01").arg(1, 4).arg(bib, 4);
        };
        for (int step = 0; step < 400; ++step) {
            const int bib = random.bounded(8); // 0 (no bib), entered, and not entered
            if (list1.isEmpty() || random.bounded(3) > 0) {
                list1 << line(bib);
                kept.append(list1.last());
            } else {
                const int at = random.bounded(int(list1.size()));
                list1[at] = line(bib);
                kept.rewrite(at, list1[at]);
            }
            finishedit::BibChecks fresh;
            fresh.reset(list1, entered);
            for (int i = 0; i < list1.size(); ++i)
                QCOMPARE(kept.problem(i), fresh.problem(i));
            QCOMPARE(kept.noBib(), fresh.noBib());
            QCOMPARE(kept.repeated(), fresh.repeated());
            QCOMPARE(kept.notEntered(), fresh.notEntered());
        }
        QVERIFY(kept.repeated() > 0 && kept.noBib() > 0 && kept.notEntered() > 0);
    }

    void repeatedCountsBibs_data()
    {
        QTest::addColumn<QList<int>>("bibs");
        QTest::addColumn<int>("repeated");
        QTest::addColumn<int>("noBib");
        QTest::newRow("one bib on two lines") << QList<int>{7, 3, 7} << 1 << 0;
        QTest::newRow("one bib on three lines, another on two")
            << QList<int>{5, 5, 9, 5, 9, 1} << 2 << 0;
        QTest::newRow("lines without a bib are not repeats") << QList<int>{0, 0, 4} << 0 << 2;
    }

    void repeatedCountsBibs()
    {
        // "repetidos" under the list counts the bibs that are repeated, not their lines; kept up
        // to date line by line it says the same as the whole list checked afresh.
        QFETCH(QList<int>, bibs);
        QFETCH(int, repeated);
        QFETCH(int, noBib);
        QStringList list1;
        finishedit::BibChecks kept;
        kept.reset({}, std::nullopt);
        for (const int bib : bibs) {
            list1 << QStringLiteral("%1-%2- 00:00:01").arg(list1.size() + 1, 4).arg(bib, 4);
            kept.append(list1.last());
        }
        finishedit::BibChecks fresh;
        fresh.reset(list1, std::nullopt);
        QCOMPARE(fresh.repeated(), repeated);
        QCOMPARE(kept.repeated(), repeated);
        QCOMPARE(fresh.noBib(), noBib);
        // Every later line of a bib corrected to a bib of its own: no repeat is left.
        QSet<int> seen;
        for (int i = 0; i < list1.size(); ++i) {
            if (bibs[i] == 0 || !seen.contains(bibs[i])) {
                seen.insert(bibs[i]);
                continue;
            }
            list1[i] = QStringLiteral("%1-%2- 00:00:01").arg(i + 1, 4).arg(1000 + i, 4);
            kept.rewrite(i, list1[i]);
        }
        QCOMPARE(kept.repeated(), 0);
    }
};

QTEST_APPLESS_MAIN(FinishEditCoreTest)
#include "tst_finishedit.moc"
