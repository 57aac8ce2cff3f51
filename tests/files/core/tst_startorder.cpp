#include "files/core/startorder.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

namespace
{

// One record; the skipped text fields hold a name.
QByteArray record(qint16 bib, const QByteArray& start)
{
    QByteArray bytes = "xxGARCIA LOPEZ" + QByteArray(77, ' ') + start.leftJustified(8, ' ', true);
    qToLittleEndian(bib, bytes.data());
    return bytes;
}

// A file cut short while it is read: its size still tells of three records.
class ShrunkFile : public QBuffer
{
    qint64 size() const override { return qMax<qint64>(QBuffer::size(), 3 * 99); }
    bool seek(qint64 pos) override { return QIODevice::seek(pos); } // past the end, as a file
};

} // namespace

class StartOrderTest : public QObject
{
    Q_OBJECT

private slots:
    void lines_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<int>("errores");
        QTest::addColumn<QStringList>("expected");
        const QByteArray three =
            record(11, "00:00:10") + record(22, "00:00:20") + record(33, "00:00:30");

        // Bibs keep their last four characters, the start time its last 7 (Windows-1252); a
        // trailing partial record is not read.
        QTest::newRow("whole records") << record(-5, "ab\xe9") + record(12345, "123456789") +
                                              record(-32768, {}) + three.left(98)
                                       << 0
                                       << QStringList{"   1-  -5 - b\u00e9     ",
                                                      "   2-2345 - 2345678", "   3-2768 -        "};
        // A failed read is tried once more the first time, then skipped: the line is built
        // from the record as it last stood (before any, bib 0 and a blank time).
        QTest::newRow("cut short: last record")
            << three.chopped(99) << 2
            << QStringList{"   1-  11 - 0:00:10", "   2-  22 - 0:00:20", "   3-  22 - 0:00:20"};
        QTest::newRow("cut short: half the second record")
            << three.left(99 + 50) << 3
            << QStringList{"   1-  11 - 0:00:10", "   2-  11 - 0:00:10", "   3-  11 - 0:00:10"};
        QTest::newRow("cut short: nothing left")
            << QByteArray() << 4
            << QStringList{"   1-   0 -        ", "   2-   0 -        ", "   3-   0 -        "};
    }

    void lines()
    {
        QFETCH(QByteArray, contents);
        QFETCH(int, errores);
        QFETCH(QStringList, expected);
        ShrunkFile device;
        device.setData(contents);
        const auto import = startorder::readStartOrder(device);
        QCOMPARE(import.lines, expected);
        QCOMPARE(import.errores, errores);
    }

    void missingFile()
    {
        // The open fails, is tried again and fails (2); the length cannot be taken (3).
        const auto import = startorder::readStartOrder(dir.filePath("nothere.ent"));
        QCOMPARE(import.lines, QStringList());
        QCOMPARE(import.errores, 3);
        QVERIFY(QDir(dir.path()).isEmpty()); // nothing created
    }

    void absurdSize()
    {
        // Sparse files of zeros: the records past the cap are refused as one
        // failure, tried once more; exactly the cap is no failure.
        for (const auto& [size, errores] :
             {std::pair(qint64(2) << 30, 2), std::pair(startorder::maxRecords * 99, 0)}) {
            QFile file(dir.filePath("huge.ent"));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(size));
            file.close();
            const auto import = startorder::readStartOrder(file.fileName());
            QCOMPARE(import.lines.size(), startorder::maxRecords);
            QCOMPARE(import.lines.last(), QStringLiteral("2767-   0 - ") + QString(7, QChar(0)));
            QCOMPARE(import.errores, errores);
        }
    }

private:
    QTemporaryDir dir;
};

QTEST_APPLESS_MAIN(StartOrderTest)
#include "tst_startorder.moc"
