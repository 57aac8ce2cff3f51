#include "files/core/exports.h"

#include "app/core/paths.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using exports::Source;

Q_DECLARE_METATYPE(std::optional<TimeFormat>)

namespace
{

// Three finishers, bibs 7, 12 and 345, as the Lap writes them in each format. The split
// lines carry other hours than the results lines so that the source of a time shows.
const QStringList list1Segundos = {"   1-   7- 00:12:34 - 0:00:00", "   2-  12- 00:12:40 - 0:00:06",
                                   "   3- 345- 00:13:01 - 0:00:27"};
const QStringList combo1Segundos = {"   1- 01:12:34 - 0:00:00", "   2- 01:12:40 - 0:00:06",
                                    "   3- 01:13:01 - 0:00:27"};
const QStringList list1Centesimas = {"   1-   7- 00:12:34:56 - 0:00:00:00",
                                     "   2-  12- 00:12:40:01 - 0:00:05:45",
                                     "   3- 345- 00:13:01:99 - 0:00:27:43"};
const QStringList combo1Centesimas = {"   1- 01:12:34:56 - 0:00:00:00",
                                      "   2- 01:12:40:01 - 0:00:05:45",
                                      "   3- 01:13:01:99 - 0:00:27:43"};
const QStringList list1Milesimas = {"   1-   7- 00:12:34:567 - 0:00:00:000",
                                    "   2-  12- 00:12:40:012 - 0:00:05:445",
                                    "   3- 345- 00:13:01:999 - 0:00:27:432"};
const QStringList combo1Milesimas = {"   1- 01:12:34:567 - 0:00:00:000",
                                     "   2- 01:12:40:012 - 0:00:05:445",
                                     "   3- 01:13:01:999 - 0:00:27:432"};

const QByteArray bibs = "   7\r\n  12\r\n 345\r\n";

QByteArray readAll(const QString& windowsPath)
{
    QFile file(paths::local(windowsPath));
    if (!file.open(QIODevice::ReadOnly))
        return "<missing>";
    return file.readAll();
}

} // namespace

class TestExports : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        drive = std::make_unique<QTemporaryDir>();
        QVERIFY(drive->isValid());
        qputenv("MARVOLENDO_DRIVE_C", drive->path().toUtf8());
        QVERIFY(QDir(drive->path()).mkpath("Carreras/copias"));
    }

    void contents_data()
    {
        QTest::addColumn<QStringList>("list1");
        QTest::addColumn<QStringList>("combo1");
        QTest::addColumn<std::optional<TimeFormat>>("format");
        QTest::addColumn<QByteArray>("bibsAndTimes");
        QTest::addColumn<QByteArray>("splitTimes");

        // Segundos: 13 characters a line, the bib with its leading blanks.
        QTest::newRow("Segundos") << list1Segundos << combo1Segundos
                                  << std::optional(TimeFormat::Segundos)
                                  << QByteArray(
                                         "   7,00:12:34\r\n  12,00:12:40\r\n 345,00:13:01\r\n")
                                  << QByteArray("01:12:34\r\n01:12:40\r\n01:13:01\r\n");
        QTest::newRow("Centesimas")
            << list1Centesimas << combo1Centesimas << std::optional(TimeFormat::Centesimas)
            << QByteArray("   7,00:12:34:56\r\n  12,00:12:40:01\r\n 345,00:13:01:99\r\n")
            << QByteArray("01:12:34:56\r\n01:12:40:01\r\n01:13:01:99\r\n");
        QTest::newRow("Milesimas")
            << list1Milesimas << combo1Milesimas << std::optional(TimeFormat::Milesimas)
            << QByteArray("   7,00:12:34:567\r\n  12,00:12:40:012\r\n 345,00:13:01:999\r\n")
            << QByteArray("01:12:34:567\r\n01:12:40:012\r\n01:13:01:999\r\n");
        // The width follows the checked format, not the lines: Segundos lines read as
        // Milesimas take what follows the time.
        QTest::newRow("Segundos lines, Milesimas checked")
            << list1Segundos << combo1Segundos << std::optional(TimeFormat::Milesimas)
            << QByteArray("   7,00:12:34 - 0\r\n  12,00:12:40 - 0\r\n 345,00:13:01 - 0\r\n")
            << QByteArray("01:12:34 - 0\r\n01:12:40 - 0\r\n01:13:01 - 0\r\n");
        // Short lines give short fields; nothing is padded. A missing split line is empty.
        QTest::newRow("short lines")
            << QStringList{"   1-   7- 00:0", "   2-  1", "", "   4-  44- 00:00:44 - 0:00:00"}
            << QStringList{"   1- 01:0", "   2-"} << std::optional(TimeFormat::Segundos)
            << QByteArray("   7,00:0\r\n  1,\r\n,\r\n  44,00:00:44\r\n")
            << QByteArray("01:0\r\n\r\n\r\n\r\n");
        // With no format checked the time is empty, and the split-times file gets no line.
        QTest::newRow("no format") << list1Segundos << combo1Segundos << std::optional<TimeFormat>()
                                   << QByteArray("   7,\r\n  12,\r\n 345,\r\n") << QByteArray();
        QTest::newRow("no finishers")
            << QStringList() << combo1Segundos << std::optional(TimeFormat::Segundos)
            << QByteArray() << QByteArray();
    }

    void contents()
    {
        QFETCH(QStringList, list1);
        QFETCH(QStringList, combo1);
        QFETCH(std::optional<TimeFormat>, format);
        QFETCH(QByteArray, bibsAndTimes);
        QFETCH(QByteArray, splitTimes);
        QByteArray bibLines;
        for (const QString& line : list1)
            bibLines += line.mid(5, 4).toLatin1() + "\r\n";

        // Four files with bib capture, in the order they are opened.
        const Source withBibs{list1, combo1, true, format};
        QVERIFY(exports::exportResults(withBibs).ok());
        QCOMPARE(readAll("C:\\Carreras\\copias\\dorsales-Marvo.txt"), bibLines);
        QCOMPARE(readAll("C:\\Carreras\\copias\\dorsales-Tiempos-Marvo.txt"), bibsAndTimes);
        QCOMPARE(readAll("C:\\Carreras\\copias\\Tiempos-Marvo.txt"), bibLines);
        QCOMPARE(readAll("C:\\Carreras\\copias\\TiemposSalida.txt"), bibsAndTimes);
        QCOMPARE(fileNames(exports::resultsFiles(withBibs)),
                 QStringList({"C:\\Carreras\\copias\\dorsales-Marvo.txt",
                              "C:\\Carreras\\copias\\dorsales-Tiempos-Marvo.txt",
                              "C:\\Carreras\\copias\\Tiempos-Marvo.txt",
                              "C:\\Carreras\\copias\\TiemposSalida.txt"}));

        // One file otherwise, the same dorsales file, holding the split times; the others
        // are left as they are.
        const Source withoutBibs{list1, combo1, false, format};
        QCOMPARE(fileNames(exports::resultsFiles(withoutBibs)),
                 QStringList{"c:\\Carreras\\copias\\dorsales-Marvo.txt"});
        QVERIFY(exports::exportResults(withoutBibs).ok());
        QCOMPARE(readAll("C:\\Carreras\\copias\\dorsales-Marvo.txt"), splitTimes);
        QCOMPARE(readAll("C:\\Carreras\\copias\\dorsales-Tiempos-Marvo.txt"), bibsAndTimes);
        QCOMPARE(readAll("C:\\Carreras\\copias\\TiemposSalida.txt"), bibsAndTimes);
        QCOMPARE(QDir(folder()).entryList(QDir::Files).size(), 4);
    }

    void segundosLinesAreThirteenCharacters()
    {
        const QByteArray bytes =
            exports::bibTimeLines({list1Segundos, {}, true, TimeFormat::Segundos});
        const QList<QByteArray> lines = bytes.split('\n');
        QCOMPARE(lines.size(), 4); // the last one empty: the file ends with CR LF
        for (int i = 0; i < 3; ++i)
            QCOMPARE(lines[i].size(), 13 + 1); // with its CR
        QCOMPARE(exports::bibLines({list1Segundos, {}, true, TimeFormat::Segundos}), bibs);
    }

    void startTimes_data()
    {
        QTest::addColumn<bool>("opp2");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("bibs and times")
            << true << QByteArray("   7,00:12:34\r\n  12,00:12:40\r\n 345,00:13:01\r\n");
        QTest::newRow("other modes empty it") << false << QByteArray();
    }

    void startTimes()
    {
        QFETCH(bool, opp2);
        QFETCH(QByteArray, expected);
        QVERIFY(writeFile("TiemposSalida.txt", "old contents\r\n"));
        const auto result =
            exports::saveStartTimes({list1Segundos, combo1Segundos, opp2, TimeFormat::Segundos});
        QVERIFY(result.ok());
        QCOMPARE(readAll("C:\\Carreras\\copias\\TiemposSalida.txt"), expected);
        QCOMPARE(QDir(folder()).entryList(QDir::Files), QStringList{"TiemposSalida.txt"});
    }

    void missingFolder_data()
    {
        QTest::addColumn<bool>("opp2");
        QTest::addColumn<bool>("startTimesOnly");
        QTest::addColumn<QString>("failedFile");
        QTest::newRow("four files") << true << false << "C:\\Carreras\\copias\\dorsales-Marvo.txt";
        QTest::newRow("single file")
            << false << false << "c:\\Carreras\\copias\\dorsales-Marvo.txt";
        QTest::newRow("start times") << true << true << "C:\\Carreras\\copias\\TiemposSalida.txt";
    }

    void missingFolder()
    {
        QFETCH(bool, opp2);
        QFETCH(bool, startTimesOnly);
        QFETCH(QString, failedFile);
        QVERIFY(QDir(folder()).removeRecursively());
        const Source source{list1Segundos, combo1Segundos, opp2, TimeFormat::Segundos};
        const auto result =
            startTimesOnly ? exports::saveStartTimes(source) : exports::exportResults(source);
        QVERIFY(!result.ok());
        QCOMPARE(result.failedFile, failedFile);
        const QString where = QDir::toNativeSeparators(folder());
        QVERIFY2(
            result.message.startsWith("No se pudieron guardar los resultados en " + where + ": "),
            qPrintable(result.message));
        QVERIFY2(result.message.contains("no existe"), qPrintable(result.message));
        // The folder is not created, and nothing is written anywhere on the drive.
        QCOMPARE(
            QDir(drive->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
            QStringList{"Carreras"});
        QCOMPARE(QDir(drive->path() + "/Carreras")
                     .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
                 QStringList());
    }

    void stopsAtTheFirstFileThatCannotBeWritten()
    {
        // A folder in the way of the third file.
        QVERIFY(QDir(folder()).mkdir("Tiempos-Marvo.txt"));
        const auto result =
            exports::exportResults({list1Segundos, combo1Segundos, true, TimeFormat::Segundos});
        QVERIFY(!result.ok());
        QCOMPARE(result.failedFile, QStringLiteral("C:\\Carreras\\copias\\Tiempos-Marvo.txt"));
        QVERIFY(result.message.startsWith("No se pudieron guardar los resultados en "));
        QCOMPARE(readAll("C:\\Carreras\\copias\\dorsales-Marvo.txt"), bibs);
        QVERIFY(QFile::exists(folder() + "/dorsales-Tiempos-Marvo.txt"));
        QVERIFY(!QFile::exists(folder() + "/TiemposSalida.txt"));
    }

private:
    static QString folder() { return paths::local("C:\\Carreras\\copias"); }

    static bool writeFile(const QString& name, const QByteArray& bytes)
    {
        QFile file(folder() + u'/' + name);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }

    static QStringList fileNames(const QList<exports::File>& files)
    {
        QStringList names;
        for (const auto& file : files)
            names.append(file.windowsPath);
        return names;
    }

    std::unique_ptr<QTemporaryDir> drive;
};

QTEST_APPLESS_MAIN(TestExports)
#include "tst_exports.moc"
