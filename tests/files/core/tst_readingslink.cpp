#include "files/odbc/readingslink.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using readings::ReadingsLink;

// Skips the test unless the shared test database can be opened; path names its file.
#define REQUIRE_DATABASE(path)                                                                     \
    QString path;                                                                                  \
    if (const QString why = locateDatabase(&path); !why.isEmpty())                                 \
    QSKIP(qPrintable(why))

#define REQUIRE_ODBC()                                                                             \
    if (const QString why = withoutOdbc(); !why.isEmpty())                                         \
    QSKIP(qPrintable(why))

class TestReadingsLink : public QObject
{
    Q_OBJECT

private slots:
    void connectionStringIsTheCompanionContract()
    {
        QCOMPARE(readings::connectionString(readings::databasePath(QString())),
                 QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=Program "
                                "Files\\Dolvane\\Feltrasquino\\feltrasRFID.mdb;Mode=Read|Write;"
                                "Persist Security Info=False"));
        QCOMPARE(readings::databasePath("D:\\"),
                 QStringLiteral("D:\\Program Files\\Dolvane\\Feltrasquino\\feltrasRFID.mdb"));
    }

    void readsTheTestDatabase()
    {
        REQUIRE_DATABASE(database);
        ReadingsLink link;
        const QString error = link.open(database);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QVERIFY(link.isOpen());

        const auto tables = link.tables();
        QVERIFY2(tables.ok(), qPrintable(tables.error));
        QCOMPARE(tables.names, QStringList{"DateTest"});

        const auto rows = link.select("SELECT * FROM DateTest");
        QVERIFY2(rows.ok(), qPrintable(rows.error));
        QVERIFY(rows.columns.contains("IDCol"));
        QVERIFY(rows.columns.contains("ShortTextCol"));
        QCOMPARE(rows.rows.size(), 6);
        const auto id = rows.columns.indexOf("IDCol");
        const auto text = rows.columns.indexOf("ShortTextCol");
        QStringList ids;
        for (const QStringList& row : rows.rows) {
            QCOMPARE(row.size(), rows.columns.size());
            ids.append(row.at(id));
        }
        QCOMPARE(ids, QStringList({"1", "2", "3", "4", "5", "6"}));
        QCOMPARE(rows.rows.first().at(text), QStringLiteral("Hello"));
    }

    void driverGivenByItsLibrary()
    {
        REQUIRE_DATABASE(database);
        const QString library = "/usr/lib/x86_64-linux-gnu/odbc/libmdbodbc.so";
        if (!QFile::exists(library))
            QSKIP("the MDBTools driver library is not at its Debian place");
        ReadingsLink link;
        QCOMPARE(link.open(database, library), QString());
        QCOMPARE(link.tables().names, QStringList{"DateTest"});
    }

    void selectedColumns()
    {
        REQUIRE_DATABASE(database);
        ReadingsLink link;
        QCOMPARE(link.open(database), QString());
        const auto rows = link.select("SELECT IDCol, ShortTextCol FROM DateTest WHERE IDCol = 1");
        QVERIFY2(rows.ok(), qPrintable(rows.error));
        QCOMPARE(rows.columns, QStringList({"IDCol", "ShortTextCol"}));
        QCOMPARE(rows.rows, QList<QStringList>{QStringList({"1", "Hello"})});
    }

    void failedQueryLeavesTheLinkUsable_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::newRow("not SQL") << "esto no es SQL";
        QTest::newRow("unknown table") << "SELECT IDCol FROM Lecturas";
    }

    void failedQueryLeavesTheLinkUsable()
    {
        REQUIRE_DATABASE(database);
        QFETCH(QString, sql);
        ReadingsLink link;
        QCOMPARE(link.open(database), QString());
        const auto failed = link.select(sql);
        QVERIFY(!failed.ok());
        QVERIFY2(failed.error.startsWith("Fallo la consulta a la base de datos de lecturas"),
                 qPrintable(failed.error));
        QVERIFY(failed.rows.isEmpty());
        QCOMPARE(link.select("SELECT IDCol FROM DateTest").rows.size(), 6);
    }

    void reopening()
    {
        REQUIRE_DATABASE(database);
        ReadingsLink link;
        QCOMPARE(link.open(database), QString());
        QCOMPARE(link.open(database), QString());
        link.close();
        QVERIFY(!link.isOpen());
        QCOMPARE(link.tables().error,
                 QStringLiteral("La base de datos de lecturas no esta abierta"));
        QCOMPARE(link.open(database), QString());
        QCOMPARE(link.tables().names, QStringList{"DateTest"});
    }

    void missingFile()
    {
        REQUIRE_ODBC();
        QTemporaryDir dir;
        const QString path = dir.filePath(readings::databasePath(QString()).replace('\\', '/'));
        ReadingsLink link;
        QCOMPARE(link.open(path), QStringLiteral("No se encuentra la base de datos de lecturas ") +
                                      QDir::toNativeSeparators(path));
        QVERIFY(!link.isOpen());
        QCOMPARE(link.select("SELECT 1").error,
                 QStringLiteral("La base de datos de lecturas no esta abierta"));
        QVERIFY(!link.tables().ok());
    }

    void notADatabase()
    {
        REQUIRE_ODBC();
        QTemporaryDir dir;
        const QString path = dir.filePath("feltrasRFID.mdb");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write(QByteArray("esto no es una base de datos\r\n").repeated(100)) > 0);
        file.close();
        ReadingsLink link;
        const QString error = link.open(path);
        QVERIFY2(error.startsWith("No se pudo abrir la base de datos de lecturas " +
                                  QDir::toNativeSeparators(path)),
                 qPrintable(error));
        QVERIFY(!link.isOpen());
    }

    void missingDriver()
    {
        REQUIRE_ODBC();
        // The driver is loaded before the file is read: any existing file will do.
        QTemporaryDir dir;
        const QString path = dir.filePath("feltrasRFID.mdb");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        ReadingsLink link;
        const QString error = link.open(path, "Controlador Inexistente");
        QCOMPARE(error,
                 QStringLiteral("No esta instalado el controlador ODBC de Access (Controlador "
                                "Inexistente)"));
        QVERIFY(!link.isOpen());
    }

private:
    // Built without ODBC every operation says so, and there is nothing more to test: the
    // reason to skip, or empty.
    static QString withoutOdbc()
    {
        ReadingsLink link;
        if (link.open(QStringLiteral("/nonexistent/x.mdb")) !=
            QLatin1String(readings::unavailableText))
            return {};
        if (link.tables().error != QLatin1String(readings::unavailableText) ||
            link.select("SELECT 1").error != QLatin1String(readings::unavailableText))
            return {};
        return QStringLiteral("built without ODBC: every operation answers \"Enlace ODBC no "
                              "disponible\"");
    }

    // The shared test database, or the reason to skip.
    static QString locateDatabase(QString* path)
    {
        if (const QString why = withoutOdbc(); !why.isEmpty())
            return why;
        const QString folder = qEnvironmentVariable("MARVOLENDO_TEST_DATA");
        *path = QDir(folder).filePath("DateTestDatabase.mdb");
        if (folder.isEmpty() || !QFile::exists(*path))
            return QStringLiteral("the test database is not available: set MARVOLENDO_TEST_DATA "
                                  "to the folder that holds DateTestDatabase.mdb");
        return {};
    }
};

QTEST_APPLESS_MAIN(TestReadingsLink)
#include "tst_readingslink.moc"
