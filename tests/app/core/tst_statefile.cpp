#include "app/core/statefile.h"
#include "base/cp1252.h"
#include "base/paths.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

namespace
{

RaceState sampleRace()
{
    RaceState s;
    s.inicio = 43200.5;
    s.desfase = 0.5;
    s.horaSalida = QStringLiteral("11:59");
    s.tempsPrimer = QStringLiteral("00:12:30:125");
    s.label5 = QStringLiteral("00:14:02:500");
    s.label8 = QStringLiteral("0:01:32:375");
    s.modoCaptura = 1.0;
    s.combo1 = {QStringLiteral("   1- 00:12:30:125 - 0:00:00:000"),
                QStringLiteral("   2- 00:14:02:500 - 0:01:32:375")};
    s.list1 = {QStringLiteral("   1-  57- 00:12:30:125 - 0:00:00:000"),
               QStringLiteral("   2- 112- 00:14:02:500 - 0:01:32:375")};
    s.list2 = {QStringLiteral("   1-  27 - 0:10:30")};
    return s;
}

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class StateFileTest : public QObject
{
    Q_OBJECT

private slots:
    void writesTheExactFormat()
    {
        RaceState empty;
        empty.horaSalida = QStringLiteral("0");
        QCOMPARE(statefile::encode(empty),
                 cp1252::encodeLines({" 0 ", " 0 ", "0    ", "", "", "", " 2 ", "", " 0 ", " 0 "}));
        QCOMPARE(statefile::encode(sampleRace()),
                 cp1252::encodeLines(
                     {" 43200500000 ", " 500000000000 ", "11:59", "00:12:30:125", "00:14:02:500",
                      "0:01:32:375", " 2 ", " 1 ", " 2 ", "   1- 00:12:30:125 - 0:00:00:000",
                      "   1-  57- 00:12:30:125 - 0:00:00:000", "   2- 00:14:02:500 - 0:01:32:375",
                      "   2- 112- 00:14:02:500 - 0:01:32:375", " 1 ", "   1-  27 - 0:10:30"}));
        RaceState accents;
        accents.tempsPrimer = QStringLiteral("Peñíscola €");
        QVERIFY(statefile::encode(accents).contains("Pe\xF1\xEDscola \x80\r\n"));
    }

    void readsBackWhatItWrote()
    {
        const statefile::Restored r = statefile::decode(statefile::encode(sampleRace()));
        QVERIFY(r.complete);
        QVERIFY(!r.damaged);
        QCOMPARE(r.state, sampleRace());
        QVERIFY(!statefile::decode(statefile::encode(RaceState())).state.modoCaptura.has_value());
    }

    void fieldsAndWholeLines_data()
    {
        QTest::addColumn<QByteArray>("line3");
        QTest::addColumn<QByteArray>("line4");
        QTest::addColumn<QString>("horaSalida");
        QTest::addColumn<QString>("tempsPrimer");
        QTest::newRow("comma cuts a field")
            << QByteArray("10:30") << QByteArray("00:00,05") << "10:30"
            << "00:00";
        QTest::newRow("quotes removed, hora padded")
            << QByteArray("9") << QByteArray("  \"00:01:02\"") << "9    "
            << "00:01:02";
        QTest::newRow("blanks skipped, hora cut to 5")
            << QByteArray("10:30:45") << QByteArray("   00:00:09") << "10:30"
            << "00:00:09";
        QTest::newRow("a whole line keeps its commas")
            << QByteArray("1,2,3") << QByteArray("x") << "1,2,3"
            << "x";
    }

    void fieldsAndWholeLines()
    {
        QFETCH(QByteArray, line3);
        QFETCH(QByteArray, line4);
        QFETCH(QString, horaSalida);
        QFETCH(QString, tempsPrimer);
        const statefile::Restored r =
            statefile::decode(" 1000000 \r\n 0 \r\n" + line3 + "\r\n" + line4 +
                              "\r\n\r\n\r\n 1 \r\n\r\n 1 \r\na\r\nb\r\n 0\r\n");
        QVERIFY(r.complete);
        QCOMPARE(r.state.horaSalida, horaSalida);
        QCOMPARE(r.state.tempsPrimer, tempsPrimer);
        QCOMPARE(r.state.inicio, 1.0);
        QCOMPARE(r.state.list1, QStringList{"b"});
    }

    void cutFileRestoresWhatPrecedesTheCut()
    {
        const RaceState full = sampleRace();
        const QList<QByteArray> lines = statefile::encode(full).split('\n');
        for (int kept = 0; kept < lines.size(); ++kept) {
            QByteArray cut;
            for (int i = 0; i < kept; ++i)
                cut += lines[i] + '\n';
            const statefile::Restored r = statefile::decode(cut);
            QCOMPARE(r.headerLines, qMin(kept, 8));
            QCOMPARE(r.damaged, kept > 0 && kept < 15);
            QCOMPARE(r.state.inicio, kept >= 1 ? full.inicio : 0.0);
            QCOMPARE(r.state.formato, kept >= 7 ? full.formato : Variant(2.0));
            QCOMPARE(r.state.modoCaptura, kept >= 8 ? full.modoCaptura : Variant());
            const int pairLines = qMax(0, kept - 9);
            QCOMPARE(r.state.combo1.size(), qMin(2, (pairLines + 1) / 2));
            QCOMPARE(r.state.list1.size(), qMin(2, pairLines / 2));
            QCOMPARE(r.state.list2.size(), kept >= 15 ? 1 : 0);
        }
    }

    void garbageCostsThatValueOnly_data()
    {
        QTest::addColumn<int>("line");
        for (const int line : {1, 2, 7, 8})
            QTest::newRow(qPrintable(QStringLiteral("line %1").arg(line))) << line;
    }

    void garbageCostsThatValueOnly()
    {
        // A line that is not a number is skipped: that value keeps its start-up value, every
        // other value and the lists are read.
        QFETCH(int, line);
        const RaceState full = sampleRace();
        QList<QByteArray> lines = statefile::encode(full).split('\n');
        lines[line - 1] = "x1x\r";
        const statefile::Restored r = statefile::decode(lines.join('\n'));
        RaceState expected = full;
        const RaceState fresh;
        if (line == 1)
            expected.inicio = fresh.inicio;
        if (line == 2)
            expected.desfase = fresh.desfase;
        if (line == 7)
            expected.formato = fresh.formato;
        if (line == 8)
            expected.modoCaptura = fresh.modoCaptura;
        QCOMPARE(r.state, expected);
        QVERIFY(r.complete);
        QVERIFY(r.damaged);
    }

    void damagedCountKeepsTheLines_data()
    {
        // A file of three finishes and two start lines, one count line of which is damaged.
        QTest::addColumn<int>("line");
        QTest::addColumn<QByteArray>("damage");
        QTest::addColumn<bool>("complete");
        QTest::newRow("finish count not a number") << 9 << QByteArray(" 3O ") << true;
        QTest::newRow("finish count empty") << 9 << QByteArray() << true;
        QTest::newRow("finish count smaller") << 9 << QByteArray(" 1 ") << true;
        QTest::newRow("finish count larger than the lines there") << 9 << QByteArray(" 4 ") << true;
        QTest::newRow("finish count far too large") << 9 << QByteArray(" 2E+9 ") << true;
        QTest::newRow("start count not a number") << 16 << QByteArray(" 2x ") << false;
        QTest::newRow("start count smaller") << 16 << QByteArray(" 1 ") << true;
        QTest::newRow("start count larger") << 16 << QByteArray(" 3 ") << false;
    }

    void damagedCountKeepsTheLines()
    {
        QFETCH(int, line);
        QFETCH(QByteArray, damage);
        QFETCH(bool, complete);
        RaceState race = sampleRace();
        race.combo1 << QStringLiteral("   3- 00:15:00:000 - 0:02:29:875");
        race.list1 << QStringLiteral("   3-   8- 00:15:00:000 - 0:02:29:875");
        race.list2 << QStringLiteral("   2-  31 - 0:11:00");
        QList<QByteArray> lines = statefile::encode(race).split('\n');
        QCOMPARE(lines[line - 1], line == 9 ? QByteArray(" 3 \r") : QByteArray(" 2 \r"));
        lines[line - 1] = damage + '\r';
        const statefile::Restored r = statefile::decode(lines.join('\n'));
        QCOMPARE(r.state.combo1, race.combo1);
        QCOMPARE(r.state.list1, race.list1);
        QCOMPARE(r.state.list2, race.list2);
        QCOMPARE(r.state.tempsPrimer, race.tempsPrimer);
        QCOMPARE(r.complete, complete);
        QVERIFY(r.damaged);
    }

    void garbageAndHugeFiles()
    {
        // A count far beyond the lines that follow takes what there is.
        const statefile::Restored big = statefile::decode(
            " 0 \r\n 0 \r\n\r\n\r\n\r\n\r\n 2 \r\n 0 \r\n 1E+300 \r\na\r\nb\r\nc\r\n");
        QCOMPARE(big.state.combo1, (QStringList{"a", "c"}));
        QCOMPARE(big.state.list1, QStringList{"b"});
        QVERIFY(big.damaged);
        // An 8 MiB line is cut at a sane length instead of being read whole, and the lines after
        // it are read; a missing file restores nothing.
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("MARVO.dat"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(" 0 \r\n 0 \r\n\r\n" + QByteArray(8 * 1024 * 1024, 'x') + "\r\n\r\n\r\n 1 \r\n");
        file.close();
        const statefile::Restored huge = statefile::read(path);
        QCOMPARE(huge.state.tempsPrimer.size(), qsizetype(statefile::maxLineLength));
        QCOMPARE(huge.state.formato, Variant(1.0));
        QCOMPARE(statefile::read(dir.filePath(QStringLiteral("none"))).headerLines, 0);
    }

    void fallbackAndFailure()
    {
        QTemporaryDir dir;
        const QString primary = dir.filePath(QStringLiteral("MARVO.dat"));
        const QString fallback = dir.filePath(QStringLiteral("D/MARVO.dat"));
        QVERIFY(statefile::save(sampleRace(), primary, fallback).outcome ==
                statefile::SaveOutcome::Primary);
        // A folder where the file should be (root writes anywhere): the fallback gets it all,
        // and the previous primary file stays whole.
        QDir().mkpath(dir.filePath(QStringLiteral("D")));
        const QString blocked = dir.filePath(QStringLiteral("blocked"));
        QDir().mkpath(blocked);
        QCOMPARE(statefile::save(RaceState(), blocked, fallback).outcome,
                 statefile::SaveOutcome::Fallback);
        QCOMPARE(readAll(fallback), statefile::encode(RaceState()));
        QCOMPARE(readAll(primary), statefile::encode(sampleRace()));
        // Both out of reach: the caller is told why.
        const statefile::SaveResult r = statefile::save(
            sampleRace(), dir.filePath(QStringLiteral("missing/MARVO.dat")), blocked);
        QCOMPARE(r.outcome, statefile::SaveOutcome::Failed);
        QVERIFY(r.primaryError.contains(QStringLiteral("no existe")));
        QVERIFY(!r.fallbackError.isEmpty());
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{"MARVO.dat"}); // no leftovers
    }

    void fullDiskKeepsThePreviousFile()
    {
        if (::geteuid() != 0)
            QSKIP("a full disk needs a tmpfs mount, which needs root");
        QTemporaryDir dir;
        const QString disk = dir.filePath(QStringLiteral("disk"));
        QDir().mkpath(disk);
        if (QProcess::execute(QStringLiteral("mount"),
                              {QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"),
                               QStringLiteral("size=128k"), QStringLiteral("tmpfs"), disk}) != 0)
            QSKIP("mounting a small tmpfs is not allowed here");
        const auto unmount = qScopeGuard([&] {
            QProcess::execute(QStringLiteral("umount"), {QStringLiteral("-l"), disk});
        });
        RaceState small = sampleRace(), big = sampleRace();
        big.list1 = QStringList(5000, big.list1[0]); // does not fit in 128 KiB
        big.combo1 = QStringList(5000, big.combo1[0]);
        const QString primary = disk + QStringLiteral("/MARVO.dat");
        const QString fallback = dir.filePath(QStringLiteral("MARVO.dat"));
        QCOMPARE(statefile::save(small, primary, fallback).outcome,
                 statefile::SaveOutcome::Primary);
        const statefile::SaveResult r = statefile::save(big, primary, fallback);
        QCOMPARE(r.outcome, statefile::SaveOutcome::Fallback);
        QCOMPARE(r.primaryError, QStringLiteral("no queda espacio en el disco"));
        QCOMPARE(readAll(primary), statefile::encode(small));
        QCOMPARE(QDir(disk).entryList(QDir::Files), QStringList{"MARVO.dat"}); // no leftovers
        QCOMPARE(readAll(fallback), statefile::encode(big));
    }

    void driveMapping()
    {
        QTemporaryDir dir;
        qputenv("MARVOLENDO_DRIVE_C", QFile::encodeName(dir.path()));
        QCOMPARE(paths::local(QStringLiteral("C:\\Carreras\\copias\\a.txt")),
                 dir.path() + QStringLiteral("/Carreras/copias/a.txt"));
        QCOMPARE(paths::local(QStringLiteral("c:\\cri.ent")),
                 dir.path() + QStringLiteral("/cri.ent"));
        QCOMPARE(paths::local(QStringLiteral("Program Files\\x.mdb")),
                 QStringLiteral("Program Files/x.mdb"));
        qunsetenv("MARVOLENDO_DRIVE_Q");
        QCOMPARE(paths::local(QStringLiteral("q:\\x")), QDir::homePath() + QStringLiteral("/x"));
    }
};

QTEST_APPLESS_MAIN(StateFileTest)
#include "tst_statefile.moc"
