#include "base/fileerror.h"
#include "base/savefile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class FileErrorTest : public QObject
{
    Q_OBJECT

private slots:
    void savedFileSaysWhy()
    {
        // The system's English text ("File name too long") never reaches the operator.
        QTemporaryDir dir;
        QCOMPARE(savefile::write(dir.filePath(QString(300, u'x')), "x"),
                 QStringLiteral("el nombre es demasiado largo"));
    }

    void writeCutShortWithoutAnError_data()
    {
        QTest::addColumn<int>("systemError");
        QTest::addColumn<QString>("reason");
        QTest::newRow("the system says the disk is full")
            << ENOSPC << "no queda espacio en el disco";
        QTest::newRow("a number left over from an earlier call")
            << ENOENT << "el disco no admitió todos los datos; puede estar lleno";
        QTest::newRow("no number") << 0 << "el disco no admitió todos los datos; puede estar lleno";
    }

    void writeCutShortWithoutAnError()
    {
        QFETCH(int, systemError);
        QFETCH(QString, reason);
        // A write cut short leaves the file without an error of its own.
        QCOMPARE(fileerror::describe(QFile(), systemError), reason);
    }
};

QTEST_APPLESS_MAIN(FileErrorTest)
#include "tst_fileerror.moc"
