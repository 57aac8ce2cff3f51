// The link to the Access database in which the companion RFID application keeps its tag
// readings. The companion application's file is named by a Jet OLE DB connection string;
// this program reaches the same file through ODBC: the Microsoft Access driver on Windows,
// the MDBTools driver elsewhere (read-only there).
//
// Every operation returns its failure as a Spanish text for the operator (empty on success).
// Built without ODBC, every operation fails with "Enlace ODBC no disponible".
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

namespace readings
{

// Where the companion application keeps its database, after the folder prefix `carpeta`
// (which may be empty: the path is then relative to the current directory).
inline constexpr char databaseFile[] = "Program Files\\Dolvane\\Feltrasquino\\feltrasRFID.mdb";

// carpeta + databaseFile, as a Windows path (map it through paths::local to open it).
QString databasePath(const QString& carpeta);

// The companion application's connection string for the file at path, exactly.
QString connectionString(const QString& path);

// The ODBC connection string this program uses for the file at path.
QString driverConnectionString(const QString& path);

inline constexpr char unavailableText[] = "Enlace ODBC no disponible";

// The rows of a query, every value as text (NULL as an empty text).
struct Rows {
    QStringList columns;
    QList<QStringList> rows;
    QString error; // empty on success
    bool ok() const { return error.isEmpty(); }
};

struct Tables {
    QStringList names;
    QString error; // empty on success
    bool ok() const { return error.isEmpty(); }
};

class ReadingsLink
{
public:
    // Login and query time-outs, in seconds.
    static constexpr int connectionTimeout = 30;
    static constexpr int queryTimeout = 30;

    ReadingsLink();
    ~ReadingsLink();
    ReadingsLink(const ReadingsLink&) = delete;
    ReadingsLink& operator=(const ReadingsLink&) = delete;

    // Opens the database file (a local path), closing any earlier connection first. The
    // driver is the Access driver found on this system unless one is named (its registered
    // name, or on other systems than Windows the path of its library).
    QString open(const QString& file, const QString& driver = {});
    void close();
    bool isOpen() const;

    // The user tables, without the system tables (MSys*).
    Tables tables();
    // Runs one SELECT and returns all its rows.
    Rows select(const QString& sql);

private:
    struct Handles;
    std::unique_ptr<Handles> d;
};

} // namespace readings
