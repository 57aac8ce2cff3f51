#include "app/core/race.h"

#include <QSignalSpy>
#include <QtTest>

namespace
{

// Twelve finishes in the line forms of one format: rank, bib and the rest of the line.
RaceLines race(const QString& list1Tail, const QString& combo1Tail)
{
    RaceLines l;
    for (int rank = 1; rank <= 12; ++rank) {
        const QString r = QStringLiteral("%1").arg(rank, 4);
        l.list1 << r + QStringLiteral("-%1").arg(100 + rank, 4) + list1Tail.arg(rank);
        l.combo1 << r + combo1Tail.arg(rank);
    }
    return l;
}

} // namespace

class RaceTest : public QObject
{
    Q_OBJECT

private slots:
    void removeAndInsertRenumber_data()
    {
        QTest::addColumn<QString>("list1Tail");
        QTest::addColumn<QString>("combo1Tail");
        QTest::newRow("Segundos") << "- 00:01:%1 - 0:00:05"
                                  << "- 00:01:%1 - 0:00:05";
        QTest::newRow("Centesimas") << "- 00:01:%1:50 - 0:00:05:50"
                                    << "- 00:01:%1:50 - 0:00:05:50";
        QTest::newRow("Milesimas") << "- 00:01:%1:500 - 0:00:05:500"
                                   << "- 00:01:%1:500 - 0:00:05:50";
        QTest::newRow("bibs only") << ""
                                   << "-%1";
    }

    void removeAndInsertRenumber()
    {
        QFETCH(QString, list1Tail);
        QFETCH(QString, combo1Tail);
        const RaceLines original = race(list1Tail, combo1Tail);
        Race r;
        r.restore(original.combo1, original.list1, {});
        QSignalSpy changed(&r, &Race::changed);

        // The first finisher removed: every later line one rank up, in both lists, ranks 10 to 12
        // included (their field loses a digit).
        QVERIFY(r.apply(RaceChange::remove(0)));
        QCOMPARE(r.list1().size(), 11);
        for (int i = 0; i < 11; ++i) {
            const QString rank = QStringLiteral("%1").arg(i + 1, 4);
            QCOMPARE(r.list1()[i], rank + original.list1[i + 1].mid(4));
            QCOMPARE(r.combo1()[i], rank + original.combo1[i + 1].mid(4));
        }
        QVERIFY(r.list1()[8].startsWith(QStringLiteral("   9- 110")));
        // Put back where it was: the race as it stood, line for line.
        QVERIFY(r.apply(RaceChange::insert(0, original.combo1[0], original.list1[0])));
        QCOMPARE(r.list1(), original.list1);
        QCOMPARE(r.combo1(), original.combo1);
        // The last one removed renumbers nothing; inserting after the last appends.
        QVERIFY(r.apply(RaceChange::remove(11)));
        QCOMPARE(r.list1(), original.list1.first(11));
        QVERIFY(r.apply(RaceChange::insert(11, original.combo1[11], original.list1[11])));
        QCOMPARE(r.list1(), original.list1);
        QCOMPARE(changed.size(), 4);
        QCOMPARE(changed[0][0].value<RaceChange>().kind, RaceChange::Kind::Remove);
    }

    void changesThatDoNotFitAreRefused()
    {
        Race r;
        r.restore({QStringLiteral("   1- a")}, {QStringLiteral("   1-   7- a")}, {});
        QSignalSpy changed(&r, &Race::changed);
        for (const RaceChange& c :
             {RaceChange::bib(1, QStringLiteral("x")), RaceChange::bib(-1, QStringLiteral("x")),
              RaceChange::remove(1), RaceChange::insert(2, QString(), QString())})
            QVERIFY(!r.apply(c));
        QCOMPARE(changed.size(), 0);
        QCOMPARE(r.list1(), QStringList{QStringLiteral("   1-   7- a")});
        // The start order is appended to, and emptied apart from the results.
        QVERIFY(r.apply(RaceChange::startOrder({QStringLiteral("s1"), QStringLiteral("s2")})));
        QVERIFY(r.apply(RaceChange::of(RaceChange::Kind::ResultsEmptied)));
        QCOMPARE(r.list2().size(), 2);
        QVERIFY(r.apply(RaceChange::of(RaceChange::Kind::StartOrderEmptied)));
        QVERIFY(r.list2().isEmpty());
    }
};

QTEST_APPLESS_MAIN(RaceTest)
#include "tst_race.moc"
