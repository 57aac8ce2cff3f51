// A full disk, on a small tmpfs mounted for the test (root only; skipped elsewhere).
#include "app/core/statefile.h"

#include <QCoreApplication>
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
    void writesInPlaceWhereTheFolderTakesNoNewFile();
    void childWrite();

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
    if (qEnvironmentVariableIsSet("MARVOLENDO_CHILD_STATE"))
        return; // the child of writesInPlaceWhereTheFolderTakesNoNewFile mounts nothing
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

void FullDiskTest::writesInPlaceWhereTheFolderTakesNoNewFile()
{
    // A folder the user cannot write holding a MARVO.dat the user can: the state is written
    // over it in place, not to the fallback. Root may write anywhere, so the save runs in a
    // child process as "nobody".
    if (::geteuid() != 0)
        QSKIP("switching to another user needs root");
    QTemporaryDir folder(QStringLiteral("/tmp/marvolendo-XXXXXX"));
    QFile::setPermissions(folder.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                             QFileDevice::ExeOwner | QFileDevice::ReadOther |
                                             QFileDevice::ExeOther);
    const QString primary = folder.filePath(QStringLiteral("MARVO.dat"));
    QFile stale(primary);
    QVERIFY(stale.open(QIODevice::WriteOnly));
    stale.write(statefile::encode(raceOf(1)));
    stale.close();
    QFile::setPermissions(primary, QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                       QFileDevice::ReadOther | QFileDevice::WriteOther);
    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("MARVOLENDO_CHILD_STATE"), primary);
    child.setProcessEnvironment(env);
    child.start(QStringLiteral("setpriv"),
                {QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                 QStringLiteral("--clear-groups"),
                 QFile::symLinkTarget(QStringLiteral("/proc/self/exe")),
                 QStringLiteral("childWrite")});
    if (!child.waitForFinished(20000) || child.exitCode() != 0)
        QFAIL(qPrintable(
            QString::fromLocal8Bit(child.readAllStandardOutput() + child.readAllStandardError())));
    QCOMPARE(statefile::read(primary).state.list1, raceOf(3).list1);
}

void FullDiskTest::childWrite()
{
    const QString primary = qEnvironmentVariable("MARVOLENDO_CHILD_STATE");
    if (primary.isEmpty())
        QSKIP("run by writesInPlaceWhereTheFolderTakesNoNewFile only");
    const statefile::SaveResult r =
        statefile::save(raceOf(3), primary, primary + QStringLiteral(".fallback"));
    QCOMPARE(int(r.outcome), int(statefile::SaveOutcome::Primary));
}

QTEST_APPLESS_MAIN(FullDiskTest)
#include "tst_fulldisk.moc"
