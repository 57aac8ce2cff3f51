#include "files/odbc/readingslink.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class ReadingsLinkTest : public QObject
{
    Q_OBJECT

private slots:
    void connectionString()
    {
        // What the companion application opens, exactly.
        QCOMPARE(readings::connectionString(readings::databasePath(QString())),
                 QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=Program "
                                "Files\\Dolvane\\Feltrasquino\\feltrasRFID.mdb;Mode=Read|Write;"
                                "Persist Security Info=False"));
    }

    void sampleDatabase()
    {
        const QString folder = qEnvironmentVariable("MARVOLENDO_TEST_DATA");
        const QString path = QDir(folder).filePath("DateTestDatabase.mdb");
        if (folder.isEmpty() || !QFile::exists(path))
            QSKIP("the sample database is not available: set MARVOLENDO_TEST_DATA to the folder "
                  "that holds DateTestDatabase.mdb");
        readings::ReadingsLink link;
        const QString error = link.open(path);
        if (error == QLatin1String(readings::unavailableText))
            QSKIP("built without ODBC: every operation answers \"Enlace ODBC no disponible\"");
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QCOMPARE(link.tables().names, QStringList{"DateTest"}); // the MSys* tables left out

        const auto rows = link.select("SELECT IDCol, ShortTextCol FROM DateTest");
        QVERIFY2(rows.ok(), qPrintable(rows.error));
        QCOMPARE(rows.columns, QStringList({"IDCol", "ShortTextCol"}));
        QCOMPARE(rows.rows, QList<QStringList>({{"1", "Hello"},
                                                {"2", "Year 1999"},
                                                {"3", "Pre-1900 years"},
                                                {"4", "Pre-1000 years"},
                                                {"5", "Escaped new line \\r\\n in field"},
                                                {"6", "No new line"}}));

        // A failed query says so and leaves the link usable.
        const auto failed = link.select("SELECT IDCol FROM Lecturas");
        QVERIFY2(failed.error.startsWith("Falló la consulta a la base de datos de lecturas"),
                 qPrintable(failed.error));
        QCOMPARE(link.select("SELECT * FROM DateTest").rows.size(), 6);
    }

    void openFailure_data()
    {
        QTest::addColumn<QByteArray>("contents"); // "<none>": no file
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("expected"); // %1: the file
        QTest::newRow("missing file") << QByteArray("<none>") << QString()
                                      << "No se encuentra la base de datos de lecturas %1";
        QTest::newRow("not a database") << QByteArray(3000, 'x') << QString()
                                        << "No se pudo abrir la base de datos de lecturas %1";
        // The driver is loaded before the file is read.
        QTest::newRow("missing driver")
            << QByteArray() << "Controlador Inexistente"
            << "No está instalado el controlador ODBC de Access (Controlador Inexistente)";
    }

    void openFailure()
    {
        QFETCH(QByteArray, contents);
        QFETCH(QString, driver);
        QFETCH(QString, expected);
        QTemporaryDir dir;
        QFile file(dir.filePath("feltrasRFID.mdb"));
        if (contents != "<none>")
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size());
        file.close();
        readings::ReadingsLink link;
        const QString error = link.open(file.fileName(), driver);
        if (error == QLatin1String(readings::unavailableText))
            QSKIP("built without ODBC: every operation answers \"Enlace ODBC no disponible\"");
        expected.replace("%1", QDir::toNativeSeparators(file.fileName()));
        QVERIFY2(error.startsWith(expected), qPrintable(error));
        QCOMPARE(link.tables().error,
                 QStringLiteral("La base de datos de lecturas no está abierta"));
    }
};

QTEST_APPLESS_MAIN(ReadingsLinkTest)
#include "tst_readingslink.moc"
