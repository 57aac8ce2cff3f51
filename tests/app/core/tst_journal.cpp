#include "app/core/journal.h"

#include "app/core/race.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

RaceRecord startRecord()
{
    RaceRecord r;
    r.state.inicio = 36000.123456;
    r.state.desfase = 1.0 / 60;
    r.state.horaSalida = QStringLiteral("09:59");
    r.state.formato = 0.0;
    r.state.list2 = {QStringLiteral("   1-  27 - 0:10:30")};
    r.label2 = QStringLiteral("0");
    r.label4 = QStringLiteral("00:00:00");
    return r;
}

// The lines of the finish at `minute` standing at `rank`.
QString combo1Line(int rank, int minute)
{
    return QStringLiteral("%1- 00:0%2:00 - 0:00:00").arg(rank, 4).arg(minute);
}

QString list1Line(int rank, int minute)
{
    return QStringLiteral("%1-   0- 00:0%2:00 - 0:00:00").arg(rank, 4).arg(minute);
}

RaceChange finish(int rank, bool lines = true)
{
    RaceChange e;
    e.label2 = QString::number(rank);
    e.hasLines = lines;
    e.combo1Line = combo1Line(rank, rank);
    e.list1Line = list1Line(rank, rank);
    e.tempsPrimer = QStringLiteral("00:01:00");
    e.label4 = QStringLiteral("00:01:00");
    e.label5 = QStringLiteral("00:0%1:00").arg(rank);
    e.label8 = QStringLiteral("0:00:00");
    return e;
}

} // namespace

class JournalTest : public QObject
{
    Q_OBJECT

private slots:
    void replaysEveryKindOfEntry()
    {
        QByteArray bytes = journal::encodeSnapshot(startRecord());
        bytes += journal::encodeChange(finish(1));
        bytes += journal::encodeChange(finish(2));
        bytes += journal::encodeChange(finish(3, false)); // no format checked: rank only
        bytes += journal::encodeChange(
            RaceChange::bib(1, QStringLiteral("   2-  57- 00:02:00 - 0:00:00")));
        bytes +=
            journal::encodeChange(RaceChange::bib(9, QStringLiteral("out of the list is ignored")));
        // A finish inserted before the first and then removed again: the ranks go and come back.
        bytes += journal::encodeChange(
            RaceChange::insert(0, QStringLiteral("   1- x"), QStringLiteral("   1-   8- x")));
        bytes += journal::encodeChange(RaceChange::remove(0));
        bytes += journal::encodeChange(RaceChange::of(RaceChange::Kind::StartOrderEmptied));
        bytes += journal::encodeChange(RaceChange::startOrder({QStringLiteral("a\tb"), QString()}));
        const journal::Contents c = journal::decode(bytes);
        QVERIFY(c.valid);
        QVERIFY(!c.clean);
        QCOMPARE(c.changes, 9);
        const RaceState& s = c.record.state;
        QCOMPARE(s.inicio, 36000.123456); // exact, unlike the state file's scaled integers
        QCOMPARE(s.desfase, 1.0 / 60);
        QCOMPARE(s.formato, Variant(0.0));
        QVERIFY(!s.modoCaptura.has_value());
        QCOMPARE(c.record.label2, QStringLiteral("3"));
        QCOMPARE(s.list1,
                 (QStringList{"   1-   0- 00:01:00 - 0:00:00", "   2-  57- 00:02:00 - 0:00:00"}));
        QCOMPARE(s.combo1.size(), 2);
        QCOMPARE(s.label5, QStringLiteral("00:03:00"));
        QCOMPARE(s.list2, (QStringList{"a\tb", ""}));
        bytes += journal::encodeChange(RaceChange::of(RaceChange::Kind::ResultsEmptied));
        QVERIFY(journal::decode(bytes).record.state.list1.isEmpty());
        // A later snapshot replaces everything, and text with tabs, line ends and accents survives.
        RaceRecord odd = startRecord();
        odd.state.list1 = {QStringLiteral("a\tb\\c\r\nñ")};
        odd.state.combo1 = {QString()};
        bytes += journal::encodeSnapshot(odd);
        const journal::Contents d = journal::decode(bytes);
        QCOMPARE(d.record.state, odd.state);
        QCOMPARE(d.changes, 11);

        // The timekeeper's marks: set, changed, cleared; a snapshot carries those standing,
        // with a reason that holds tabs and accents.
        using runnerstatus::Kind;
        bytes += journal::encodeChange(
            RaceChange::marked(12, runnerstatus::Mark{Kind::DidNotFinish, {}}));
        bytes += journal::encodeChange(RaceChange::marked(
            40, runnerstatus::Mark{Kind::Disqualified, QStringLiteral("atajó\tpor el parque")}));
        bytes +=
            journal::encodeChange(RaceChange::marked(7, runnerstatus::Mark{Kind::OutOfTime, {}}));
        bytes += journal::encodeChange(RaceChange::marked(7, std::nullopt));
        const runnerstatus::Marks marks{
            {12, {Kind::DidNotFinish, {}}},
            {40, {Kind::Disqualified, QStringLiteral("atajó\tpor el parque")}}};
        QCOMPARE(journal::decode(bytes).record.marks, marks);
        RaceRecord marked = journal::decode(bytes).record;
        bytes += journal::encodeSnapshot(marked);
        QCOMPARE(journal::decode(bytes).record, marked);
        QCOMPARE(journal::decode(bytes).record.state, odd.state);
    }

    void cutAnywhereKeepsWhatPrecedes()
    {
        QList<QByteArray> entries{journal::encodeSnapshot(startRecord())};
        for (int rank = 1; rank <= 4; ++rank)
            entries << journal::encodeChange(finish(rank));
        QByteArray all;
        QList<qsizetype> ends;
        for (const QByteArray& e : entries) {
            all += e;
            ends << all.size();
        }
        for (qsizetype cut = 0; cut <= all.size(); ++cut) {
            const journal::Contents c = journal::decode(QByteArrayView(all).first(cut));
            const qsizetype whole =
                std::count_if(ends.begin(), ends.end(), [&](qsizetype e) { return e <= cut; });
            QCOMPARE(c.valid, whole >= 1);
            if (whole >= 1)
                QCOMPARE(c.record.state.list1.size(), whole - 1);
        }
    }

    void damagedEntriesAndTheCleanMark()
    {
        const QByteArray start = journal::encodeSnapshot(startRecord());
        QByteArray bad = journal::encodeChange(finish(1));
        bad[5] = 'X';
        // A damaged entry is passed over and the next one is read; so is a torn one (a full disk)
        // followed, once there is room again, by a line end and a whole snapshot.
        const journal::Contents afterBad =
            journal::decode(start + bad + journal::encodeChange(finish(2)));
        QCOMPARE(afterBad.changes, 1);
        QCOMPARE(afterBad.skipped, 1);
        // The finish left takes the rank of the lost one.
        QCOMPARE(afterBad.record.state.list1, QStringList{list1Line(1, 2)});
        QCOMPARE(afterBad.record.label2, QStringLiteral("1"));
        RaceRecord later = startRecord();
        later.state.list1 = later.state.combo1 = {QStringLiteral("after the disk was freed")};
        const QByteArray torn = journal::encodeChange(finish(1)).first(20);
        QCOMPARE(
            journal::decode(start + torn + "\r\n" + journal::encodeSnapshot(later)).record.state,
            later.state);
        // A journal that does not begin with a snapshot holds nothing.
        QVERIFY(!journal::decode(journal::encodeChange(finish(1))).valid);
        QVERIFY(!journal::decode("garbage\r\n\x01\x02\r\n").valid);
        // The clean mark counts only as the last entry.
        QVERIFY(journal::decode(start + journal::encodeClean()).clean);
        QVERIFY(!journal::decode(start + journal::encodeClean() + journal::encodeChange(finish(1)))
                     .clean);
    }

    void damagedEntryCostsThatEntryOnly_data()
    {
        // A snapshot and the finishes at minutes 1, 2 and 3, one entry of which is damaged; the
        // state file holds the race as it was before the first finish, or after it.
        QTest::addColumn<int>("damaged");
        QTest::addColumn<int>("savedFinishes");
        QTest::addColumn<bool>("withBase");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<QList<int>>("minutes"); // of the finishes read, in rank order
        QTest::addColumn<bool>("emptied");       // the whole line gone, its line end left
        QTest::newRow("snapshot, onto the state file")
            << 0 << 0 << true << true << QList{1, 2, 3} << false;
        QTest::newRow("snapshot, the state file holds the first finish")
            << 0 << 1 << true << true << QList{1, 2, 3} << false;
        QTest::newRow("snapshot, no state file")
            << 0 << 0 << false << false << QList<int>{} << false;
        QTest::newRow("first finish") << 1 << 0 << true << true << QList{2, 3} << false;
        QTest::newRow("middle finish") << 2 << 0 << false << true << QList{1, 3} << false;
        QTest::newRow("last finish") << 3 << 0 << true << true << QList{1, 2} << false;
        QTest::newRow("middle finish emptied") << 2 << 0 << true << true << QList{1, 3} << true;
    }

    void damagedEntryCostsThatEntryOnly()
    {
        QFETCH(int, damaged);
        QFETCH(int, savedFinishes);
        QFETCH(bool, withBase);
        QFETCH(bool, valid);
        QFETCH(QList<int>, minutes);
        QFETCH(bool, emptied);
        QList<QByteArray> entries{journal::encodeSnapshot(startRecord())};
        for (int rank = 1; rank <= 3; ++rank)
            entries << journal::encodeChange(finish(rank));
        QByteArray& hit = entries[damaged];
        if (emptied)
            hit = "\r\n";
        else
            hit[hit.size() / 2] = hit[hit.size() / 2] == '#' ? '$' : '#';
        RaceRecord saved = startRecord();
        for (int rank = 1; rank <= savedFinishes; ++rank)
            applyChange(saved, finish(rank));
        const journal::Contents c =
            journal::decode(entries.join(), withBase ? std::optional(saved) : std::nullopt);
        QCOMPARE(c.valid, valid);
        QCOMPARE(c.onBase, valid && damaged == 0);
        QCOMPARE(c.skipped, valid ? 1 : 4); // without a snapshot, every change is passed over
        if (!valid)
            return;
        QStringList list1;
        QStringList combo1;
        for (int i = 0; i < minutes.size(); ++i) {
            list1 << list1Line(i + 1, minutes[i]);
            combo1 << combo1Line(i + 1, minutes[i]);
        }
        QCOMPARE(c.record.state.list1, list1);
        QCOMPARE(c.record.state.combo1, combo1);
        QCOMPARE(c.record.state.list2, startRecord().state.list2);
        QCOMPARE(c.record.label2, QString::number(minutes.size())); // the next finish follows
    }

    void writerAppendsAndMarksClean()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("MARVO.jrn"));
        {
            Journal j;
            QVERIFY(j.start(path, startRecord()));
            QVERIFY(j.append(journal::encodeChange(finish(1))));
            // Already in the file, before any sync or close: a killed program keeps it.
            const journal::Contents c = journal::read(path);
            QCOMPARE(c.record.state.list1.size(), 1);
            QVERIFY(!c.clean);
            j.markClean();
            QVERIFY(!j.isOpen());
            QVERIFY(!j.append(journal::encodeChange(finish(2))));
        }
        QVERIFY(journal::read(path).clean);
        // Starting again begins a new journal.
        Journal again;
        QVERIFY(again.start(path, startRecord()));
        QCOMPARE(journal::read(path).changes, 0);
    }

    void refusedJournalSaysWhy_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("reason");
        QTest::newRow("full disk") << "/dev/full"
                                   << "no queda espacio en el disco";
        QTest::newRow("missing folder") << "missing/MARVO.jrn"
                                        << "la carpeta o el archivo no existe";
        QTest::newRow("a folder of that name") << "MARVO.jrn"
                                               << "MARVO.jrn es una carpeta";
    }

    void refusedJournalSaysWhy()
    {
        QFETCH(QString, path);
        QFETCH(QString, reason);
        if (path.startsWith(u'/') && !QFile::exists(path))
            QSKIP("no such device here");
        QTemporaryDir dir;
        QDir(dir.path()).mkdir(QStringLiteral("MARVO.jrn"));
        Journal j;
        QVERIFY(!j.start(path.startsWith(u'/') ? path : dir.filePath(path), startRecord()));
        QVERIFY2(j.error().endsWith(reason), qPrintable(j.error()));
    }
};

QTEST_APPLESS_MAIN(JournalTest)
#include "tst_journal.moc"
