#include "app/core/archive.h"
#include "app/core/statefile.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

RaceState twoFinishes()
{
    RaceState s;
    s.horaSalida = QStringLiteral("10:00");
    s.tempsPrimer = QStringLiteral("00:12:30:125");
    s.combo1 = {QStringLiteral("   1- 00:12:30:125 - 0:00:00:000"),
                QStringLiteral("   2- 00:14:02:500 - 0:01:32:375")};
    s.list1 = {QStringLiteral("   1-  57- 00:12:30:125 - 0:00:00:000"),
               QStringLiteral("   2- 112- 00:14:02:500 - 0:01:32:375")};
    return s;
}

QByteArray randomBytes(qsizetype size)
{
    QRandomGenerator random(20260501);
    QByteArray bytes(size, '\0');
    for (char& c : bytes)
        c = static_cast<char>(random.bounded(256));
    return bytes;
}

} // namespace

class ArchiveListTest : public QObject
{
    Q_OBJECT

private slots:
    void onlyWholeStateFilesAreReadable_data()
    {
        const QByteArray whole = statefile::encode(twoFinishes());
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("readable");
        QTest::newRow("a kept race") << whole << true;
        QTest::newRow("random bytes") << randomBytes(4096) << false;
        QTest::newRow("text lines with counts in place")
            << QByteArray("zq\r\n#\r\n\r\n\r\n\r\nhello\r\nx\r\n-\r\n 0 \r\n 0 \r\n") << false;
        QTest::newRow("empty") << QByteArray() << false;
        QTest::newRow("cut in the middle") << whole.first(whole.size() / 2) << false;
        QTest::newRow("a damaged count")
            << QByteArray(whole).replace("\r\n 2 \r\n", "\r\n 2O \r\n") << false;
    }

    void onlyWholeStateFilesAreReadable()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, readable);
        QTemporaryDir dir;
        QFile file(dir.filePath(QStringLiteral("MARVO-20260501-100000.dat")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        const QList<archive::Kept> kept = archive::list(dir.path());
        QCOMPARE(kept.size(), 1);
        QCOMPARE(kept[0].readable, readable);
        if (readable)
            QCOMPARE(kept[0].race, twoFinishes());
    }
};

QTEST_APPLESS_MAIN(ArchiveListTest)
#include "tst_archivelist.moc"
