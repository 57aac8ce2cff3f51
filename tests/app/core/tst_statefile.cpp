#include "app/core/cp1252.h"
#include "app/core/paths.h"
#include "app/core/statefile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class StateFileTest : public QObject
{
    Q_OBJECT

private slots:
    void emptyRaceIsTenLines();
    void fullRaceByteForByte();
    void readsBackWhatItWrote();
    void fieldsAndWholeLines_data();
    void fieldsAndWholeLines();
    void cutFileRestoresWhatPrecedesTheCut();
    void garbageAndHugeFiles();
    void fallbackWhenPrimaryCannotBeWritten();
    void failsWhenBothCannotBeWritten();
    void failedSaveKeepsPreviousFile();
    void driveMapping();
};

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
    s.formato = 2.0;
    s.modoCaptura = 1.0;
    s.combo1 = QStringList{QStringLiteral("   1- 00:12:30:125 - 0:00:00:000"),
                           QStringLiteral("   2- 00:14:02:500 - 0:01:32:375")};
    s.list1 = QStringList{QStringLiteral("   1-  57- 00:12:30:125 - 0:00:00:000"),
                          QStringLiteral("   2- 112- 00:14:02:500 - 0:01:32:375")};
    s.list2 = QStringList{QStringLiteral("   1-  27 - 0:10:30")};
    return s;
}

QByteArray crlf(const QStringList& lines)
{
    return cp1252::encodeLines(lines);
}

} // namespace

void StateFileTest::emptyRaceIsTenLines()
{
    RaceState s;
    s.horaSalida = QStringLiteral("0");
    QCOMPARE(statefile::encode(s),
             crlf({" 0 ", " 0 ", "0    ", "", "", "", " 2 ", "", " 0 ", " 0 "}));
}

void StateFileTest::fullRaceByteForByte()
{
    QCOMPARE(statefile::encode(sampleRace()),
             crlf({" 43200500000 ", " 500000000000 ", "11:59", "00:12:30:125", "00:14:02:500",
                   "0:01:32:375", " 2 ", " 1 ", " 2 ", "   1- 00:12:30:125 - 0:00:00:000",
                   "   1-  57- 00:12:30:125 - 0:00:00:000", "   2- 00:14:02:500 - 0:01:32:375",
                   "   2- 112- 00:14:02:500 - 0:01:32:375", " 1 ", "   1-  27 - 0:10:30"}));
    // Text outside ASCII is written in the code page.
    RaceState s;
    s.tempsPrimer = QStringLiteral("Peñíscola €");
    QVERIFY(statefile::encode(s).contains("Pe\xF1\xEDscola \x80\r\n"));
}

void StateFileTest::readsBackWhatItWrote()
{
    const RaceState s = sampleRace();
    const statefile::Restored r = statefile::decode(statefile::encode(s));
    QVERIFY(r.complete);
    QCOMPARE(r.headerLines, 8);
    QCOMPARE(r.state.inicio, 43200.5);
    QCOMPARE(r.state.desfase, 0.5);
    QCOMPARE(r.state.horaSalida, s.horaSalida);
    QCOMPARE(r.state.tempsPrimer, s.tempsPrimer);
    QCOMPARE(r.state.formato, s.formato);
    QCOMPARE(r.state.modoCaptura, s.modoCaptura);
    QCOMPARE(r.state.combo1, s.combo1);
    QCOMPARE(r.state.list1, s.list1);
    QCOMPARE(r.state.list2, s.list2);
    // An empty capture mode stays empty.
    RaceState empty;
    QVERIFY(!statefile::decode(statefile::encode(empty)).state.modoCaptura.has_value());
}

void StateFileTest::fieldsAndWholeLines_data()
{
    QTest::addColumn<QByteArray>("line4");
    QTest::addColumn<QByteArray>("line3");
    QTest::addColumn<QString>("tempsPrimer");
    QTest::addColumn<QString>("horaSalida");
    QTest::newRow("comma cuts a field") << QByteArray("00:00,05") << QByteArray("10:30") << "00:00"
                                        << "10:30";
    QTest::newRow("quotes are removed")
        << QByteArray("  \"00:01:02\"") << QByteArray("9") << "00:01:02"
        << "9    ";
    QTest::newRow("leading blanks skipped, hora cut to 5")
        << QByteArray("   00:00:09") << QByteArray("10:30:45") << "00:00:09"
        << "10:30";
    QTest::newRow("whole line keeps its comma") << QByteArray("x") << QByteArray("1,2,3") << "x"
                                                << "1,2,3";
}

void StateFileTest::fieldsAndWholeLines()
{
    QFETCH(QByteArray, line4);
    QFETCH(QByteArray, line3);
    QFETCH(QString, tempsPrimer);
    QFETCH(QString, horaSalida);
    const QByteArray file = " 1000000 \r\n 0 \r\n" + line3 + "\r\n" + line4 +
                            "\r\n\r\n\r\n 1 \r\n\r\n 1 \r\na\r\nb\r\n 0\r\n";
    const statefile::Restored r = statefile::decode(file);
    QVERIFY(r.complete);
    QCOMPARE(r.state.tempsPrimer, tempsPrimer);
    QCOMPARE(r.state.horaSalida, horaSalida);
    QCOMPARE(r.state.inicio, 1.0);
    QCOMPARE(r.state.formato, Variant(1.0));
    QCOMPARE(r.state.combo1, QStringList{"a"});
    QCOMPARE(r.state.list1, QStringList{"b"});
}

void StateFileTest::cutFileRestoresWhatPrecedesTheCut()
{
    const RaceState full = sampleRace();
    const QByteArray bytes = statefile::encode(full);
    const QList<QByteArray> lines = bytes.split('\n');
    // Cut after every whole line, and in the middle of each line.
    for (int kept = 0; kept < lines.size(); ++kept) {
        QByteArray cut;
        for (int i = 0; i < kept; ++i)
            cut += lines[i] + '\n';
        const statefile::Restored r = statefile::decode(cut);
        const RaceState defaults;
        QCOMPARE(r.headerLines, qMin(kept, 8));
        QCOMPARE(r.state.inicio, kept >= 1 ? full.inicio : defaults.inicio);
        QCOMPARE(r.state.tempsPrimer, kept >= 4 ? full.tempsPrimer : QString());
        QCOMPARE(r.state.formato, kept >= 7 ? full.formato : defaults.formato);
        QCOMPARE(r.state.modoCaptura, kept >= 8 ? full.modoCaptura : Variant());
        const int pairsLines = qMax(0, kept - 9);
        QCOMPARE(r.state.combo1.size(), qMin(2, (pairsLines + 1) / 2));
        QCOMPARE(r.state.list1.size(), qMin(2, pairsLines / 2));
        QCOMPARE(r.state.list2.size(), kept >= 15 ? 1 : 0);
    }
}

void StateFileTest::garbageAndHugeFiles()
{
    // Garbage in a number line stops the reading there; nothing after it is taken.
    const statefile::Restored g = statefile::decode("not a number\r\n 5 \r\n");
    QCOMPARE(g.headerLines, 0);
    QCOMPARE(g.state.inicio, 0.0);
    const statefile::Restored f = statefile::decode(" 1 \r\n 0 \r\n\r\n\r\n\r\n\r\nxx\r\n 1 \r\n");
    QCOMPARE(f.headerLines, 6);
    QCOMPARE(f.state.formato, Variant(2.0));
    // Binary noise never crashes.
    QByteArray noise;
    for (int i = 0; i < 100000; ++i)
        noise += char((i * 7919) % 256);
    statefile::decode(noise);
    // A count far beyond the lines that follow takes what there is.
    const statefile::Restored big = statefile::decode(
        " 0 \r\n 0 \r\n\r\n\r\n\r\n\r\n 2 \r\n 0 \r\n 1E+300 \r\na\r\nb\r\nc\r\n");
    QCOMPARE(big.state.combo1, (QStringList{"a", "c"}));
    QCOMPARE(big.state.list1, QStringList{"b"});
    QVERIFY(!big.complete);
    // An over-long line is read whole; a huge file of one line is only a number line that
    // cannot be read.
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("MARVO.dat"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(" 0 \r\n 0 \r\n");
    file.write(QByteArray(8 * 1024 * 1024, 'x'));
    file.close();
    const statefile::Restored huge = statefile::read(path);
    QCOMPARE(huge.headerLines, 3);
    QCOMPARE(huge.state.horaSalida, QStringLiteral("xxxxx"));
    // A missing file restores nothing.
    QCOMPARE(statefile::read(dir.filePath(QStringLiteral("none.dat"))).headerLines, 0);
}

void StateFileTest::fallbackWhenPrimaryCannotBeWritten()
{
    QTemporaryDir dir;
    qputenv("MARVOLENDO_DRIVE_D", QFile::encodeName(dir.filePath(QStringLiteral("D"))));
    QDir(dir.path()).mkpath(QStringLiteral("D"));
    // A folder where the file should be: no save can replace it, also as root.
    const QString primary = dir.filePath(QStringLiteral("MARVO.dat"));
    QDir().mkpath(primary);
    const QString fallback = paths::local(QStringLiteral("d:\\MARVO.dat"));
    QCOMPARE(fallback, dir.filePath(QStringLiteral("D/MARVO.dat")));
    const statefile::SaveResult r = statefile::save(sampleRace(), primary, fallback);
    QCOMPARE(r.outcome, statefile::SaveOutcome::Fallback);
    QFile written(fallback);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.readAll(), statefile::encode(sampleRace()));
}

void StateFileTest::failsWhenBothCannotBeWritten()
{
    QTemporaryDir dir;
    const QString primary = dir.filePath(QStringLiteral("missing/MARVO.dat"));
    const QString fallback = dir.filePath(QStringLiteral("also-missing/MARVO.dat"));
    const statefile::SaveResult r = statefile::save(sampleRace(), primary, fallback);
    QCOMPARE(r.outcome, statefile::SaveOutcome::Failed);
    QVERIFY(r.primaryError.contains(QStringLiteral("no existe")));
    QVERIFY(!r.fallbackError.isEmpty());
}

void StateFileTest::failedSaveKeepsPreviousFile()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("MARVO.dat"));
    QVERIFY(statefile::save(sampleRace(), path, path).outcome == statefile::SaveOutcome::Primary);
    const QByteArray before = statefile::encode(sampleRace());
    // The save that fails leaves no temporary file and the old contents in place.
    const QString blocked = dir.filePath(QStringLiteral("sub"));
    QDir().mkpath(blocked);
    statefile::save(RaceState(), blocked, dir.filePath(QStringLiteral("nowhere/x")));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), before);
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{"MARVO.dat"});
}

void StateFileTest::driveMapping()
{
    QTemporaryDir dir;
    qputenv("MARVOLENDO_DRIVE_C", QFile::encodeName(dir.path()));
    QCOMPARE(paths::local(QStringLiteral("C:\\Carreras\\copias\\a.txt")),
             dir.path() + QStringLiteral("/Carreras/copias/a.txt"));
    QCOMPARE(paths::local(QStringLiteral("c:\\cri.ent")), dir.path() + QStringLiteral("/cri.ent"));
    QCOMPARE(paths::local(QStringLiteral("Program Files\\x.mdb")),
             QStringLiteral("Program Files/x.mdb"));
    qunsetenv("MARVOLENDO_DRIVE_Q");
    QCOMPARE(paths::local(QStringLiteral("q:\\x")), QDir::homePath() + QStringLiteral("/x"));
}

QTEST_APPLESS_MAIN(StateFileTest)
#include "tst_statefile.moc"
