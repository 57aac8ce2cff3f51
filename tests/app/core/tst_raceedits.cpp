// The edits of the results as data: what a removal or an addition makes of the lines and the
// captions, and that its undo puts the race back.
#include "app/core/raceedits.h"

#include <QtTest>

namespace
{

// Two finishes in Milesimas, the first finisher's captions as a Lap left them.
RaceRecord twoFinishes()
{
    RaceRecord r;
    r.state.tempsPrimer = QStringLiteral("00:12:30:125");
    r.state.label5 = QStringLiteral("00:14:02:500");
    r.state.label8 = QStringLiteral("0:01:32:375");
    r.state.combo1 = {QStringLiteral("   1- 00:12:30:125 - 0:00:00:000"),
                      QStringLiteral("   2- 00:14:02:500 - 0:01:32:375")};
    r.state.list1 = {QStringLiteral("   1-  57- 00:12:30:125 - 0:00:00:000"),
                     QStringLiteral("   2- 112- 00:14:02:500 - 0:01:32:375")};
    r.label1 = QStringLiteral("00:21:00");
    r.label2 = QStringLiteral("2");
    r.label4 = QStringLiteral("00:12:30:125");
    return r;
}

// The race after the changes, as the window would show it: List1, then the captions.
QStringList shown(const RaceRecord& r)
{
    return r.state.list1 +
           QStringList{r.label2, r.label4, r.state.label5, r.state.label8, r.state.tempsPrimer};
}

} // namespace

class RaceEditsTest : public QObject
{
    Q_OBJECT

private slots:
    void removalAndAddition_data()
    {
        QTest::addColumn<QString>("edit"); // "remove N" or "add h:mm:ss"
        QTest::addColumn<bool>("differenceRuns");
        QTest::addColumn<QStringList>("expected"); // List1, Label2, Label4, Label5, Label8, first
        QTest::newRow("first removed") << "remove 0" << true
                                       << QStringList{"   1- 112- 00:14:02:500 - 0:00:00:000",
                                                      "1",
                                                      "00:14:02:500",
                                                      "00:14:02:500",
                                                      "0:00:00:000",
                                                      "00:14:02:500"};
        QTest::newRow("last removed") << "remove 1" << true
                                      << QStringList{"   1-  57- 00:12:30:125 - 0:00:00:000",
                                                     "1",
                                                     "00:12:30:125",
                                                     "00:12:30:125",
                                                     "0:00:00:000",
                                                     "00:12:30:125"};
        QTest::newRow("added before the first")
            << "add 0:12:00" << true
            << QStringList{"   1-   9- 00:12:00:000 - 0:00:00:000",
                           "   2-  57- 00:12:30:125 - 0:00:30:125",
                           "   3- 112- 00:14:02:500 - 0:02:02:500",
                           "3",
                           "00:12:00:000",
                           "00:14:02:500",
                           "0:02:02:500",
                           "00:12:00:000"};
        QTest::newRow("added between") << "add 0:13:00" << true
                                       << QStringList{"   1-  57- 00:12:30:125 - 0:00:00:000",
                                                      "   2-   9- 00:13:00:000 - 0:00:29:875",
                                                      "   3- 112- 00:14:02:500 - 0:01:32:375",
                                                      "3",
                                                      "00:12:30:125",
                                                      "00:14:02:500",
                                                      "0:01:32:375",
                                                      "00:12:30:125"};
        // Bibs and times: the difference stands still, the first finisher's captions too.
        QTest::newRow("standing difference, added first")
            << "add 0:12:00" << false
            << QStringList{"   1-   9- 00:12:00:000 - 0:00:07:000",
                           "   2-  57- 00:12:30:125 - 0:00:00:000",
                           "   3- 112- 00:14:02:500 - 0:01:32:375",
                           "3",
                           "00:12:30:125",
                           "00:14:02:500",
                           "0:01:32:375",
                           "00:12:30:125"};
    }

    void removalAndAddition()
    {
        QFETCH(QString, edit);
        QFETCH(bool, differenceRuns);
        QFETCH(QStringList, expected);
        const RaceRecord before = twoFinishes();
        const raceedits::Context context{2, differenceRuns};
        const std::optional<RaceCommand> command =
            edit.startsWith(u"remove")
                ? raceedits::removal(before, edit.back().digitValue(), context)
                : raceedits::addition(before, edit.mid(4).split(u':')[1].toInt() / 60.0,
                                      QStringLiteral("9"), context, QStringLiteral("0:00:07:000"));
        QVERIFY(command);
        QVERIFY(command->saves);
        RaceRecord r = before;
        for (const RaceChange& c : command->redo)
            QVERIFY(applyChange(r, c));
        QCOMPARE(shown(r), expected);
        for (const RaceChange& c : command->undo)
            QVERIFY(applyChange(r, c));
        QCOMPARE(r.state.list1, before.state.list1);
        QCOMPARE(r.state.combo1, before.state.combo1);
        QCOMPARE(r.label2, QStringLiteral("2"));
    }

    void theOnlyFinishRemoved()
    {
        // The captions go back to the templates of the format.
        RaceRecord r = twoFinishes();
        for (int i = 0; i < 2; ++i) {
            const std::optional<RaceCommand> command = raceedits::removal(r, 0, {1, true});
            QVERIFY(command);
            for (const RaceChange& c : command->redo)
                applyChange(r, c);
        }
        QVERIFY(r.state.list1.isEmpty());
        QCOMPARE(shown(r),
                 QStringList({"0", "00:00:00:00", "0:00:00:00", "0:00:00:00", "00:00:00:00"}));
        QVERIFY(!raceedits::removal(r, 0, {1, true}));
    }
};

QTEST_APPLESS_MAIN(RaceEditsTest)
#include "tst_raceedits.moc"
