// A full disk, on a small tmpfs mounted for the test (root only; skipped elsewhere).
#include "app/core/journal.h"
#include "app/core/statefile.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

class FullDiskTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void stateKeepsPreviousFileAndTakesTheFallback();
    void journalReportsTheFullDisk();

private:
    QTemporaryDir dir;
    QString disk;
    bool mounted = false;
};

namespace
{

RaceState raceOf(int finishers)
{
    RaceState s;
    s.inicio = 36000;
    for (int i = 1; i <= finishers; ++i) {
        s.combo1 << QStringLiteral("%1- 00:12:30:125 - 0:00:00:000").arg(i, 4);
        s.list1 << QStringLiteral("%1-  57- 00:12:30:125 - 0:00:00:000").arg(i, 4);
    }
    return s;
}

} // namespace

void FullDiskTest::initTestCase()
{
#ifdef Q_OS_LINUX
    disk = dir.filePath(QStringLiteral("disk"));
    QDir().mkpath(disk);
    if (::geteuid() != 0)
        QSKIP("a full disk needs a tmpfs mount, which needs root");
    const int rc =
        QProcess::execute(QStringLiteral("mount"),
                          {QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"),
                           QStringLiteral("size=128k"), QStringLiteral("tmpfs"), disk});
    if (rc != 0)
        QSKIP("mounting a small tmpfs is not allowed here");
    mounted = true;
#else
    QSKIP("a full disk is only simulated on Linux");
#endif
}

void FullDiskTest::cleanupTestCase()
{
    if (mounted)
        QProcess::execute(QStringLiteral("umount"), {QStringLiteral("-l"), disk});
}

void FullDiskTest::stateKeepsPreviousFileAndTakesTheFallback()
{
    const QString primary = disk + QStringLiteral("/MARVO.dat");
    const QString fallback = dir.filePath(QStringLiteral("MARVO.dat"));
    QCOMPARE(statefile::save(raceOf(10), primary, fallback).outcome,
             statefile::SaveOutcome::Primary);
    const QByteArray before = statefile::encode(raceOf(10));

    // 5,000 finishers do not fit in 128 KiB.
    const statefile::SaveResult r = statefile::save(raceOf(5000), primary, fallback);
    QCOMPARE(r.outcome, statefile::SaveOutcome::Fallback);
    QVERIFY2(r.primaryError.contains(QStringLiteral("lleno")), qPrintable(r.primaryError));
    QFile kept(primary);
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), before);
    QCOMPARE(QDir(disk).entryList(QDir::Files), QStringList{"MARVO.dat"}); // no leftovers
    QFile taken(fallback);
    QVERIFY(taken.open(QIODevice::ReadOnly));
    QCOMPARE(taken.readAll(), statefile::encode(raceOf(5000)));
}

void FullDiskTest::journalReportsTheFullDisk()
{
    const QString path = disk + QStringLiteral("/MARVO.jrn");
    Journal j;
    QVERIFY(j.start(path, RaceRecord{raceOf(1), {}, {}, {}}));
    bool failed = false;
    for (int i = 0; i < 100 && !failed; ++i)
        failed = !j.append(journal::encodeSnapshot(RaceRecord{raceOf(200), {}, {}, {}}));
    QVERIFY(failed);
    QVERIFY(!j.error().isEmpty());
    // What was written before the disk filled up reads back.
    QVERIFY(journal::read(path).valid);
}

QTEST_APPLESS_MAIN(FullDiskTest)
#include "tst_fulldisk.moc"
