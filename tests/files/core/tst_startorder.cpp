#include "files/core/startorder.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

using startorder::readStartOrder;

namespace
{

struct Runner {
    qint16 bib;
    QByteArray start; // 8 characters
};

QByteArray record(const Runner& runner)
{
    QByteArray bytes(startorder::recordSize, ' ');
    qToLittleEndian<qint16>(runner.bib, bytes.data());
    // The skipped text fields hold whatever the preparing program put there.
    bytes.replace(2, 12, "GARCIA LOPEZ");
    bytes.replace(startorder::timeOffset, 8, runner.start.leftJustified(8, ' ', true));
    return bytes;
}

QByteArray records(const QList<Runner>& runners)
{
    QByteArray bytes;
    for (const Runner& runner : runners)
        bytes += record(runner);
    return bytes;
}

// A device that promises more bytes than it holds, as a file cut short while it is read.
class ShrunkFile : public QBuffer
{
public:
    ShrunkFile(const QByteArray& data, qint64 size) : declared(size) { setData(data); }
    qint64 size() const override { return declared; }
    // Past the end a read finds nothing, as in a file.
    bool seek(qint64 pos) override { return QIODevice::seek(pos); }

private:
    qint64 declared;
};

} // namespace

class TestStartOrder : public QObject
{
    Q_OBJECT

private slots:
    void init() { QVERIFY(dir.isValid()); }

    void lines_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<QStringList>("expected");

        const QByteArray three = records({{27, "00:10:30"}, {12345, "01:02:03"}, {-5, "00:00:00"}});
        const QStringList threeLines = {"   1-  27 - 0:10:30", "   2-2345 - 1:02:03",
                                        "   3-  -5 - 0:00:00"};
        QTest::newRow("three records") << three << threeLines;
        QTest::newRow("trailing partial record is not read")
            << three + QByteArray(50, 'x') << threeLines;
        QTest::newRow("98 bytes") << QByteArray(98, ' ') << QStringList();
        QTest::newRow("empty file") << QByteArray() << QStringList();
        QTest::newRow("zero and extremes")
            << records({{0, "12:00:00"}, {32767, "00:00:01"}, {-32768, "00:00:02"}})
            << QStringList{"   1-   0 - 2:00:00", "   2-2767 - 0:00:01", "   3-2768 - 0:00:02"};
        // The last 7 of the 8 characters, whatever they are; Windows-1252 text.
        QTest::newRow("time field taken as it stands")
            << records({{7, "ab\xe9"}, {8, "123456789"}})
            << QStringList{QStringLiteral("   1-   7 - b\u00e9     "), "   2-   8 - 2345678"};
    }

    void lines()
    {
        QFETCH(QByteArray, contents);
        QFETCH(QStringList, expected);
        const QString path = write("cri.ent", contents);
        const auto import = readStartOrder(path);
        QCOMPARE(import.lines, expected);
        QCOMPARE(import.errores, 0);
        for (const QString& line : import.lines)
            QCOMPARE(line.size(), 19);
        // The file is only read.
        QCOMPARE(QFileInfo(path).size(), contents.size());
    }

    void recordNumbersKeepTheirLastFourDigits()
    {
        QCOMPARE(startorder::line(3, 27, "00:10:30"), QStringLiteral("   3-  27 - 0:10:30"));
        QCOMPARE(startorder::line(12345, 1, "00:10:30"), QStringLiteral("2345-   1 - 0:10:30"));
    }

    void sameFileTwiceGivesEveryRunnerTwice()
    {
        const QString path = write("cri.ent", records({{1, "00:00:30"}, {2, "00:01:00"}}));
        QStringList list2 = readStartOrder(path).lines;
        list2 += readStartOrder(path).lines;
        QCOMPARE(list2, QStringList({"   1-   1 - 0:00:30", "   2-   2 - 0:01:00",
                                     "   1-   1 - 0:00:30", "   2-   2 - 0:01:00"}));
    }

    void missingFile()
    {
        const QString path = dir.filePath("nothere.ent");
        const auto import = readStartOrder(path);
        QVERIFY(import.lines.isEmpty());
        // The open fails, is tried again and fails (2); the length cannot be taken (3).
        QCOMPARE(import.errores, 3);
        QVERIFY(!QFile::exists(path));
    }

    void folderInsteadOfFile()
    {
        const auto import = readStartOrder(dir.path());
        QVERIFY(import.lines.isEmpty());
        QCOMPARE(import.errores, 3);
    }

    void fileCutShortWhileRead_data()
    {
        QTest::addColumn<int>("held");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<int>("errores");

        // Four records promised. A read that fails is tried once more (the first failure),
        // then skipped: the line is built from the record as it last stood.
        QTest::newRow("last record missing")
            << 3 * 99
            << QStringList{"   1-  11 - 0:00:10", "   2-  22 - 0:00:20", "   3-  33 - 0:00:30",
                           "   4-  33 - 0:00:30"}
            << 2;
        QTest::newRow("half of the second record")
            << 99 + 50
            << QStringList{"   1-  11 - 0:00:10", "   2-  11 - 0:00:10", "   3-  11 - 0:00:10",
                           "   4-  11 - 0:00:10"}
            << 4;
        QTest::newRow("nothing left") << 0
                                      << QStringList{"   1-   0 -        ", "   2-   0 -        ",
                                                     "   3-   0 -        ", "   4-   0 -        "}
                                      << 5;
    }

    void fileCutShortWhileRead()
    {
        QFETCH(int, held);
        QFETCH(QStringList, expected);
        QFETCH(int, errores);
        const QByteArray full =
            records({{11, "00:00:10"}, {22, "00:00:20"}, {33, "00:00:30"}, {44, "00:00:40"}});
        ShrunkFile device(full.left(held), full.size());
        const auto import = readStartOrder(device);
        QCOMPARE(import.lines, expected);
        QCOMPARE(import.errores, errores);
        QVERIFY(!device.isOpen());
    }

    void absurdSizeIsCapped()
    {
        // A sparse file of 2 GB of zeros: 21 million records declared.
        const QString path = dir.filePath("huge.ent");
        {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            QVERIFY(file.write(record({9, "00:00:09"})) == 99);
            QVERIFY(file.resize(qint64(2) * 1024 * 1024 * 1024));
        }
        const auto import = readStartOrder(path);
        QCOMPARE(import.lines.size(), qsizetype(startorder::maxRecords));
        QCOMPARE(import.lines.first(), QStringLiteral("   1-   9 - 0:00:09"));
        QCOMPARE(import.lines.last(), QStringLiteral("2767-   0 - ") + QString(7, QChar(0)));
        // The refused rest is one failure, tried once more.
        QCOMPARE(import.errores, 2);
    }

    void exactlyTheCapIsNoFailure()
    {
        const QString path = dir.filePath("full.ent");
        {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            QVERIFY(file.resize(startorder::maxRecords * startorder::recordSize));
        }
        const auto import = readStartOrder(path);
        QCOMPARE(import.lines.size(), qsizetype(startorder::maxRecords));
        QCOMPARE(import.errores, 0);
    }

private:
    QString write(const QString& name, const QByteArray& contents)
    {
        const QString path = dir.filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }

    QTemporaryDir dir;
};

QTEST_APPLESS_MAIN(TestStartOrder)
#include "tst_startorder.moc"
