#include "files/core/exports.h"

#include "base/paths.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using exports::Source;
Q_DECLARE_METATYPE(Source)

namespace
{

// Bibs 7, 12 and 345. The split lines carry other hours than the results lines so that the
// source of a time shows, and every line goes on past the widest time so that a field read
// too wide shows. One split line more than there are results: the results bound every file.
const QStringList list1 = {"   1-   7- 00:12:34:567 - 0:00:00:000",
                           "   2-  12- 00:12:40:012 - 0:00:05:445",
                           "   3- 345- 00:13:01:999 - 0:00:27:432"};
const QStringList combo1 = {"   1- 01:12:34:567 - 0", "   2- 01:12:40:012 - 0",
                            "   3- 01:13:01:999 - 0", "   4- 01:14:00:000 - 0"};

// The four results files, "<missing>" for a file that is not there.
QList<QByteArray> files()
{
    QList<QByteArray> out;
    for (const char* name : {exports::dorsalesFile, exports::dorsalesTiemposFile,
                             exports::tiemposFile, exports::tiemposSalidaFile}) {
        QFile file(paths::local(name));
        out << (file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>"));
    }
    return out;
}

} // namespace

class ExportsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("MARVOLENDO_DRIVE_C", drive.path().toUtf8()); }
    void init() { QVERIFY(QDir(drive.path()).mkpath("Carreras/copias")); }

    void contents_data()
    {
        QTest::addColumn<Source>("source");
        QTest::addColumn<QByteArray>("bibsAndTimes");
        QTest::addColumn<QByteArray>("splitTimes");

        // 13 characters a line, the bib with its leading blanks.
        QTest::newRow("Segundos") << Source{list1, combo1, true, TimeFormat::Segundos}
                                  << QByteArray(
                                         "   7,00:12:34\r\n  12,00:12:40\r\n 345,00:13:01\r\n")
                                  << QByteArray("01:12:34\r\n01:12:40\r\n01:13:01\r\n");
        QTest::newRow("Centesimas")
            << Source{list1, combo1, true, TimeFormat::Centesimas}
            << QByteArray("   7,00:12:34:56\r\n  12,00:12:40:01\r\n 345,00:13:01:99\r\n")
            << QByteArray("01:12:34:56\r\n01:12:40:01\r\n01:13:01:99\r\n");
        QTest::newRow("Milesimas")
            << Source{list1, combo1, true, TimeFormat::Milesimas}
            << QByteArray("   7,00:12:34:567\r\n  12,00:12:40:012\r\n 345,00:13:01:999\r\n")
            << QByteArray("01:12:34:567\r\n01:12:40:012\r\n01:13:01:999\r\n");
        // Lines shorter than the time field give short fields, nothing padded; a missing split
        // line is an empty one.
        QTest::newRow("short lines")
            << Source{{"   1-   7- 00:0", "   2-  1", "", "   4-  44- 00:00:44 - 0:00:00"},
                      {"   1- 01:0", "   2-"},
                      true,
                      TimeFormat::Segundos}
            << QByteArray("   7,00:0\r\n  1,\r\n,\r\n  44,00:00:44\r\n")
            << QByteArray("01:0\r\n\r\n\r\n\r\n");
        // No format checked: no times, and no line at all in the split-times file.
        QTest::newRow("no format") << Source{list1, combo1, true, {}}
                                   << QByteArray("   7,\r\n  12,\r\n 345,\r\n") << QByteArray();
    }

    void contents()
    {
        QFETCH(Source, source);
        QFETCH(QByteArray, bibsAndTimes);
        QFETCH(QByteArray, splitTimes);
        QByteArray bibs;
        for (const QString& line : source.list1)
            bibs += line.mid(5, 4).toLatin1() + "\r\n";

        // Bibs-and-times capture: four files, Tiempos holding the bibs as well.
        QVERIFY(exports::exportResults(source).ok());
        QCOMPARE(files(), QList<QByteArray>({bibs, bibsAndTimes, bibs, bibsAndTimes}));
        // Otherwise the dorsales file alone, holding the split times.
        QVERIFY(QFile::remove(paths::local(exports::tiemposFile)));
        source.opp2 = false;
        QVERIFY(exports::exportResults(source).ok());
        QCOMPARE(files(), QList<QByteArray>({splitTimes, bibsAndTimes, "<missing>", bibsAndTimes}));
    }

    void missingFolder()
    {
        QVERIFY(QDir(drive.path() + "/Carreras").removeRecursively());
        const QString expected = "No se pudieron guardar los resultados en " +
                                 QDir::toNativeSeparators(paths::local("C:\\Carreras\\copias")) +
                                 ": ";
        for (const auto& result : {exports::exportResults({list1, combo1, true, {}}),
                                   exports::exportResults({list1, combo1, false, {}}),
                                   exports::saveStartTimes({list1, combo1, true, {}})})
            QVERIFY2(result.message.startsWith(expected) && result.message.contains("no existe"),
                     qPrintable(result.message));
        // Nothing is created on the drive.
        QVERIFY(QDir(drive.path()).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden));
    }

private:
    QTemporaryDir drive;
};

QTEST_APPLESS_MAIN(ExportsTest)
#include "tst_exports.moc"
