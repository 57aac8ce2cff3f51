// A whole race timed through the race session, with no window: started, finishes, bibs
// assigned and corrected, a false finish removed and taken back, a missed one added, stopped;
// killed after any of these steps, the next session finds in the journal the race exactly as
// it stood, and brings it back.
#include "app/core/archive.h"
#include "app/core/racesession.h"
#include "results/core/resultline.h"
#include "support/fakeclock.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>

namespace
{

using Step = std::function<void(RaceSession&, FakeClock&)>;

// The race, step by step; each step is one or more changes of the race.
const QList<std::pair<const char*, Step>>& steps()
{
    static const QList<std::pair<const char*, Step>> all{
        {"start", [](RaceSession& s, FakeClock& c) { s.start(c.timer(), c.timeOfDay()); }},
        {"first finish",
         [](RaceSession& s, FakeClock& c) {
             c.advance(61.25);
             s.recordFinish(QStringLiteral("57"));
         }},
        {"finish without bib",
         [](RaceSession& s, FakeClock& c) {
             c.advance(2.5);
             s.recordFinish(QString());
         }},
        {"third finish",
         [](RaceSession& s, FakeClock& c) {
             c.advance(0.125);
             s.recordFinish(QStringLiteral("12"));
         }},
        {"bib assigned",
         [](RaceSession& s, FakeClock&) {
             QVERIFY(s.perform(raceedits::bibAssignment(s.race().record(), s.nextWithoutBib(),
                                                        QStringLiteral("33"))));
         }},
        {"bib corrected",
         [](RaceSession& s, FakeClock&) {
             const std::optional<QString> line =
                 resultline::rewriteBib(s.race().list1()[2], QStringLiteral("21"));
             QVERIFY(s.perform(raceedits::bibCorrection(s.race().record(), 2, *line)));
         }},
        {"first finish removed",
         [](RaceSession& s, FakeClock&) {
             QVERIFY(s.perform(raceedits::removal(s.race().record(), 0, s.editContext())));
         }},
        {"removal taken back", [](RaceSession& s, FakeClock&) { QVERIFY(s.undo()); }},
        {"missed finish added",
         [](RaceSession& s, FakeClock&) {
             QVERIFY(s.recordFinishAt(62.0 / 3600.0, QStringLiteral("8")));
         }},
        {"start order",
         [](RaceSession& s, FakeClock&) {
             s.race().apply(RaceChange::startOrder({resultline::startLine(1, 57, u"0:00:00"),
                                                    resultline::startLine(2, 8, u"0:00:30")}));
         }},
        {"stopped",
         [](RaceSession& s, FakeClock& c) {
             c.advance(10);
             s.stop();
         }},
    };
    return all;
}

} // namespace

class RaceSessionTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        dir = std::make_unique<QTemporaryDir>();
        QVERIFY(dir->isValid());
        // The fallback folder of the state file and the journal, away from the real home.
        qputenv("MARVOLENDO_DRIVE_D", QFile::encodeName(dir->filePath(QStringLiteral("D"))));
    }

    void killedAfterAnyStepIsRecoveredWhole_data()
    {
        QTest::addColumn<int>("stepsDone");
        for (int i = 0; i < steps().size(); ++i)
            QTest::newRow(steps()[i].first) << i + 1;
    }

    void killedAfterAnyStepIsRecoveredWhole()
    {
        QFETCH(int, stepsDone);
        const QString folder = dir->path() + u'/';
        FakeClock clock;
        RaceRecord before;
        {
            RaceSession session(clock, folder);
            session.startJournal();
            for (int i = 0; i < stepsDone; ++i) {
                steps()[i].second(session, clock);
                if (QTest::currentTestFailed())
                    return;
            }
            before = session.race().snapshot();
            // Killed here: the session goes without a word, no clean mark in its journal.
        }
        QVERIFY(!before.state.list1.isEmpty() || stepsDone < 2);

        RaceSession next(clock, folder);
        const std::optional<JournalKeeper::Unfinished> found = next.journal().unfinished();
        if (!found) {
            // Nothing but what the state file already holds: the race as it stood.
            QCOMPARE(next.readSaved().state, before.state);
            return;
        }
        QCOMPARE(found->contents.record, before);
        next.recover(*found);
        // The state file holds the recovered race, the journal the captions it lacks.
        QCOMPARE(statefile::read(folder + QLatin1String(statefile::fileName)).state, before.state);
        const statefile::Restored saved = next.readSaved();
        next.race().restore(saved.state.combo1, saved.state.list1, saved.state.list2);
        next.startJournal();
        QCOMPARE(next.race().record().label2, before.label2);
        QCOMPARE(next.race().record().label4, before.label4);
        QCOMPARE(next.race().list1(), before.state.list1);
    }

    void aWholeRace()
    {
        // The lines the steps leave, as the lists show them.
        FakeClock clock;
        RaceSession session(clock, dir->path() + u'/');
        session.startJournal();
        for (const auto& step : steps())
            step.second(session, clock);
        QCOMPARE(session.race().list1(),
                 QStringList({QStringLiteral("   1-  57- 00:01:01:250 - 0:00:00:000"),
                              QStringLiteral("   2-   8- 00:01:02:000 - 0:00:00:750"),
                              QStringLiteral("   3-  33- 00:01:03:750 - 0:00:02:500"),
                              QStringLiteral("   4-  21- 00:01:03:875 - 0:00:02:625")}));
        QCOMPARE(session.race().record().label2, QStringLiteral("4"));
        QCOMPARE(session.race().state().inicio, 0.0);
        QCOMPARE(session.race().record().label1, QStringLiteral("00:01:13"));
        QCOMPARE(session.bibChecks().noBib(), 0);
        // An undo of the addition leaves the three finishes of the Laps.
        QVERIFY(session.undo());
        QCOMPARE(session.race().list1().size(), 3);
    }

    void aRecoveryKeepsTheReplacedRaceOnce()
    {
        // The state file's race is already the newest kept one (an earlier recovery of the
        // same journal kept it): recovering again keeps no second copy.
        const QString folder = dir->path() + u'/';
        FakeClock clock;
        {
            RaceSession s(clock, folder);
            s.startJournal();
            for (int i = 0; i < 4; ++i)
                steps()[i].second(s, clock);
        }
        RaceSession next(clock, folder);
        const std::optional<JournalKeeper::Unfinished> found = next.journal().unfinished();
        QVERIFY(found);
        QVERIFY(next.keep(next.readSaved().state));
        next.recover(*found);
        QCOMPARE(archive::list(next.archiveFolder()).size(), 1);
    }

    void aReplacementIsJournaledWhole()
    {
        // A kept race made the current one, the program killed half-way: the journal holds the
        // race before, whole; once done, the race after, whole. Never the lines of one with
        // the first and last times of the other.
        const QString folder = dir->path() + u'/';
        FakeClock clock;
        RaceSession session(clock, folder);
        session.startJournal();
        for (const auto& step : steps())
            step.second(session, clock);
        const RaceRecord before = session.race().snapshot();
        const QString path = folder + QLatin1String(journal::fileName);
        Race& race = session.race();
        RaceChange captions = RaceChange::of(RaceChange::Kind::Captions);
        captions.label2 = QStringLiteral("1");
        captions.tempsPrimer = QStringLiteral("00:08:21:507");
        captions.label4 = captions.tempsPrimer;
        captions.label5 = captions.tempsPrimer;
        {
            const Race::Replacement replacement(race);
            race.setTempsPrimer(captions.tempsPrimer);
            race.apply(RaceChange::of(RaceChange::Kind::StartOrderEmptied));
            race.restore({QStringLiteral("   1- 00:08:21:507 - 0:00:00:000")},
                         {QStringLiteral("   1- 501- 00:08:21:507 - 0:00:00:000")}, {});
            race.apply(captions);
            QCOMPARE(journal::read(path).record, before);
        }
        const RaceRecord after = race.snapshot();
        QVERIFY(after != before);
        QCOMPARE(journal::read(path).record, after);
    }

    void marksComeBack_data()
    {
        QTest::addColumn<bool>("killed");
        QTest::newRow("killed: from the journal") << true;
        QTest::newRow("a normal end: from beside the state file") << false;
    }

    void marksComeBack()
    {
        // The timekeeper's word on runners is part of the race: undone like an edit, and back
        // after an abnormal end as after a normal one.
        QFETCH(bool, killed);
        using runnerstatus::Kind;
        const QString folder = dir->path() + u'/';
        FakeClock clock;
        {
            RaceSession s(clock, folder);
            s.startJournal();
            for (int i = 0; i < 4; ++i)
                steps()[i].second(s, clock);
            QVERIFY(s.setMark(57, runnerstatus::Mark{Kind::DidNotFinish, {}}));
            QVERIFY(!s.setMark(57, runnerstatus::Mark{Kind::DidNotFinish, {}}));
            QVERIFY(
                s.setMark(12, runnerstatus::Mark{Kind::Disqualified, QStringLiteral("Sin chip")}));
            QVERIFY(s.setMark(40, runnerstatus::Mark{Kind::OutOfTime, {}}));
            QVERIFY(s.undo());
            QCOMPARE(s.race().marks().size(), 2);
            if (!killed)
                s.end();
        }
        const runnerstatus::Marks expected{{12, {Kind::Disqualified, QStringLiteral("Sin chip")}},
                                           {57, {Kind::DidNotFinish, {}}}};
        RaceSession next(clock, folder);
        const std::optional<JournalKeeper::Unfinished> found = next.journal().unfinished();
        QCOMPARE(found.has_value(), killed);
        if (found)
            next.recover(*found);
        next.startJournal();
        QCOMPARE(next.race().marks(), expected);
    }

    void theNewerStateFileIsRead_data()
    {
        QTest::addColumn<bool>("fallbackNewer");
        QTest::newRow("the fallback newer") << true;
        QTest::newRow("MARVO.dat newer") << false;
    }

    void theNewerStateFileIsRead()
    {
        // A race folder that took no save sent the race to the fallback; the stale MARVO.dat
        // left there is not the race, and the race not read is kept before any save.
        QFETCH(bool, fallbackNewer);
        const QString folder = dir->path() + u'/';
        const QString fallback = dir->filePath(QStringLiteral("D/MARVO.dat"));
        QVERIFY(QDir().mkpath(dir->filePath(QStringLiteral("D"))));
        RaceState stale;
        RaceState race;
        race.list1 = {QStringLiteral("   1-  57- 00:01:01:250 - 0:00:00:000")};
        race.combo1 = {QStringLiteral("   1- 00:01:01:250 - 0:00:00:000")};
        const QString newerPath = fallbackNewer ? fallback : folder + "MARVO.dat";
        const QString olderPath = fallbackNewer ? folder + "MARVO.dat" : fallback;
        QVERIFY(statefile::save(stale, olderPath, olderPath).outcome !=
                statefile::SaveOutcome::Failed);
        QVERIFY(statefile::save(race, newerPath, newerPath).outcome !=
                statefile::SaveOutcome::Failed);
        QFile older(olderPath);
        QVERIFY(older.open(QIODevice::ReadWrite));
        QVERIFY(older.setFileTime(QDateTime::currentDateTime().addSecs(-3600),
                                  QFileDevice::FileModificationTime));
        older.close();

        FakeClock clock;
        RaceSession session(clock, folder);
        QCOMPARE(statefile::encode(session.readSaved().state), statefile::encode(race));
        QCOMPARE(QFileInfo(session.stateFile()).absoluteFilePath(),
                 QFileInfo(newerPath).absoluteFilePath());
        const QList<archive::Kept> kept = archive::list(session.archiveFolder());
        QCOMPARE(kept.size(), 1);
        QCOMPARE(statefile::encode(kept.first().race), statefile::encode(stale));
    }

    void aDamagedStateFileIsKeptAsItWas()
    {
        // The count of finishes damaged (" 2O " for " 2 "): both finishes are read, and the
        // file as it was is kept before any save writes over it.
        const QString folder = dir->path() + u'/';
        const QByteArray damaged = " 0 \r\n 0 \r\n     \r\n00:00:01:001\r\n\r\n\r\n 2 \r\n 0 \r\n"
                                   " 2O \r\n   1- 00:00:01:001 - 0:00:00:000\r\n"
                                   "   1-   7- 00:00:01:001 - 0:00:00:000\r\n"
                                   "   2- 00:00:02:002 - 0:00:01:001\r\n"
                                   "   2-   8- 00:00:02:002 - 0:00:01:001\r\n 0 \r\n";
        QFile file(folder + QStringLiteral("MARVO.dat"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(damaged) == damaged.size());
        file.close();
        FakeClock clock;
        RaceSession session(clock, folder);
        QSignalSpy notices(&session, &RaceSession::notice);
        QCOMPARE(session.readSaved().state.list1.size(), 2);
        QCOMPARE(notices.size(), 1);
        const QList<archive::Kept> kept = archive::list(session.archiveFolder());
        QCOMPARE(kept.size(), 1);
        QVERIFY(!kept.first().readable);
        QFile copy(kept.first().path);
        QVERIFY(copy.open(QIODevice::ReadOnly));
        QCOMPARE(copy.readAll(), damaged);
    }

private:
    std::unique_ptr<QTemporaryDir> dir;
};

QTEST_GUILESS_MAIN(RaceSessionTest)
#include "tst_racesession.moc"
