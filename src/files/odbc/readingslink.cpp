#include "readingslink.h"

#include <QDir>
#include <QFileInfo>

#ifdef MARVOLENDO_HAVE_ODBC
#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include <cstdint>
#endif

namespace readings
{

namespace
{

#ifdef _WIN32
const QString accessDriver = QStringLiteral("Microsoft Access Driver (*.mdb)");
#else
const QString accessDriver = QStringLiteral("MDBTools");
#endif

[[maybe_unused]] QString native(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

} // namespace

QString databasePath(const QString& carpeta)
{
    return carpeta + QLatin1String(databaseFile);
}

QString connectionString(const QString& path)
{
    return QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=") + path +
           QStringLiteral(";Mode=Read|Write;Persist Security Info=False");
}

namespace
{

// A driver given by a file goes in as it is, a registered one in braces.
QString connectionStringFor(const QString& driver, const QString& path)
{
    const QString name =
        driver.contains(u'/') || driver.contains(u'\\') ? driver : u'{' + driver + u'}';
    return QStringLiteral("Driver=") + name + QStringLiteral(";DBQ=") + path + u';';
}

} // namespace

QString driverConnectionString(const QString& path)
{
    return connectionStringFor(accessDriver, path);
}

#ifndef MARVOLENDO_HAVE_ODBC

struct ReadingsLink::Handles {
};

ReadingsLink::ReadingsLink() = default;
ReadingsLink::~ReadingsLink() = default;

QString ReadingsLink::open(const QString&, const QString&)
{
    return QLatin1String(unavailableText);
}

void ReadingsLink::close() {}

bool ReadingsLink::isOpen() const
{
    return false;
}

Tables ReadingsLink::tables()
{
    return {{}, QLatin1String(unavailableText)};
}

Rows ReadingsLink::select(const QString&)
{
    return {{}, {}, QLatin1String(unavailableText)};
}

#else

namespace
{

// One ODBC handle, freed with its owner.
template <SQLSMALLINT Type> class Handle
{
public:
    Handle() = default;
    ~Handle() { reset(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    bool allocate(SQLHANDLE parent)
    {
        reset();
        return SQL_SUCCEEDED(SQLAllocHandle(Type, parent, &h));
    }
    void reset()
    {
        if (h != SQL_NULL_HANDLE)
            SQLFreeHandle(Type, h);
        h = SQL_NULL_HANDLE;
    }
    SQLHANDLE get() const { return h; }

private:
    SQLHANDLE h = SQL_NULL_HANDLE;
};

using Statement = Handle<SQL_HANDLE_STMT>;

SQLPOINTER integerAttribute(SQLULEN value)
{
    return reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(value));
}

// The driver's own messages, joined; the driver manager's prefixes are kept.
QString diagnostics(SQLSMALLINT type, SQLHANDLE handle, QString* states = nullptr)
{
    QStringList texts;
    for (SQLSMALLINT i = 1; i <= 10; ++i) {
        SQLCHAR state[6] = {};
        SQLINTEGER native = 0;
        SQLCHAR message[1024] = {};
        SQLSMALLINT length = 0;
        if (!SQL_SUCCEEDED(
                SQLGetDiagRec(type, handle, i, state, &native, message, sizeof message, &length)))
            break;
        const QString text =
            QString::fromLocal8Bit(reinterpret_cast<const char*>(message)).trimmed();
        if (!text.isEmpty())
            texts.append(text);
        if (states)
            *states += QString::fromLatin1(reinterpret_cast<const char*>(state)) + u' ';
    }
    return texts.join(QStringLiteral("; "));
}

QString withDetail(const QString& text, const QString& detail)
{
    return detail.isEmpty() ? text : text + QStringLiteral(": ") + detail;
}

// The drivers the driver manager knows.
QStringList registeredDrivers(SQLHENV env)
{
    QStringList names;
    SQLUSMALLINT direction = SQL_FETCH_FIRST;
    for (;;) {
        SQLCHAR name[512] = {};
        SQLCHAR attributes[2048] = {};
        SQLSMALLINT nameLength = 0;
        SQLSMALLINT attributesLength = 0;
        const SQLRETURN r = SQLDrivers(env, direction, name, sizeof name, &nameLength, attributes,
                                       sizeof attributes, &attributesLength);
        if (!SQL_SUCCEEDED(r))
            break;
        names.append(QString::fromLocal8Bit(reinterpret_cast<const char*>(name)));
        direction = SQL_FETCH_NEXT;
    }
    return names;
}

// The Access driver: its registered name, or on other systems than Windows the driver file
// itself when it is installed but not registered. Empty when there is none.
QString findAccessDriver(SQLHENV env)
{
    const QStringList names = registeredDrivers(env);
    for (const QString& name : names) {
        if (name.compare(accessDriver, Qt::CaseInsensitive) == 0)
            return name;
    }
#ifndef _WIN32
    for (const QString& name : names) {
        if (name.contains(accessDriver, Qt::CaseInsensitive))
            return name;
    }
    static const char* const files[] = {"/usr/lib/x86_64-linux-gnu/odbc/libmdbodbc.so",
                                        "/usr/lib/aarch64-linux-gnu/odbc/libmdbodbc.so",
                                        "/usr/lib/odbc/libmdbodbc.so",
                                        "/usr/lib64/libmdbodbc.so",
                                        "/usr/local/lib/odbc/libmdbodbc.so",
                                        "/usr/local/lib/libmdbodbc.so"};
    for (const char* file : files) {
        if (QFileInfo::exists(QLatin1String(file)))
            return QLatin1String(file);
    }
    return {};
#else
    // The driver manager may know it by a name that is not listed: let the connection tell.
    return accessDriver;
#endif
}

bool isDriverMissing(const QString& states, const QString& detail)
{
    return states.contains(QLatin1String("IM002")) || states.contains(QLatin1String("IM003")) ||
           detail.contains(QLatin1String("Can't open lib"), Qt::CaseInsensitive);
}

QString missingDriverText(const QString& driver)
{
    return QStringLiteral("No está instalado el controlador ODBC de Access (%1)").arg(driver);
}

// Reads one value whole, in as many parts as the driver gives it.
bool readValue(SQLHSTMT stmt, SQLUSMALLINT column, QString* value)
{
    constexpr SQLLEN bufferSize = 4096;
    constexpr qsizetype maxValue = 64 * 1024 * 1024;
    char buffer[bufferSize];
    QByteArray bytes;
    for (;;) {
        SQLLEN indicator = 0;
        const SQLRETURN r = SQLGetData(stmt, column, SQL_C_CHAR, buffer, bufferSize, &indicator);
        if (r == SQL_NO_DATA)
            break;
        if (!SQL_SUCCEEDED(r))
            return false;
        if (indicator == SQL_NULL_DATA)
            break;
        const bool partial = indicator == SQL_NO_TOTAL || indicator >= bufferSize;
        bytes.append(buffer, partial ? bufferSize - 1 : static_cast<qsizetype>(indicator));
        if (r == SQL_SUCCESS || !partial || bytes.size() > maxValue)
            break;
    }
    *value = QString::fromLocal8Bit(bytes);
    return true;
}

// Column names and every row of the statement's result.
Rows fetchAll(SQLHSTMT stmt)
{
    Rows result;
    SQLSMALLINT count = 0;
    if (!SQL_SUCCEEDED(SQLNumResultCols(stmt, &count))) {
        result.error = diagnostics(SQL_HANDLE_STMT, stmt);
        return result;
    }
    for (SQLUSMALLINT c = 1; c <= count; ++c) {
        SQLCHAR name[256] = {};
        SQLSMALLINT nameLength = 0;
        SQLSMALLINT dataType = 0;
        SQLULEN size = 0;
        SQLSMALLINT decimals = 0;
        SQLSMALLINT nullable = 0;
        if (!SQL_SUCCEEDED(SQLDescribeCol(stmt, c, name, sizeof name, &nameLength, &dataType, &size,
                                          &decimals, &nullable)))
            name[0] = 0;
        result.columns.append(QString::fromLocal8Bit(reinterpret_cast<const char*>(name)));
    }
    for (;;) {
        const SQLRETURN r = SQLFetch(stmt);
        if (r == SQL_NO_DATA)
            break;
        if (!SQL_SUCCEEDED(r)) {
            result.error = diagnostics(SQL_HANDLE_STMT, stmt);
            if (result.error.isEmpty())
                result.error = QStringLiteral("no se pudo leer una fila");
            return result;
        }
        QStringList row;
        row.reserve(count);
        for (SQLUSMALLINT c = 1; c <= count; ++c) {
            QString value;
            if (!readValue(stmt, c, &value)) {
                result.error = diagnostics(SQL_HANDLE_STMT, stmt);
                if (result.error.isEmpty())
                    result.error = QStringLiteral("no se pudo leer la columna %1").arg(c);
                return result;
            }
            row.append(value);
        }
        result.rows.append(row);
    }
    return result;
}

} // namespace

struct ReadingsLink::Handles {
    Handle<SQL_HANDLE_ENV> env;
    Handle<SQL_HANDLE_DBC> dbc;
    bool connected = false;

    void disconnect()
    {
        if (connected)
            SQLDisconnect(dbc.get());
        connected = false;
        dbc.reset();
    }
    ~Handles() { disconnect(); }
};

ReadingsLink::ReadingsLink() : d(std::make_unique<Handles>()) {}

ReadingsLink::~ReadingsLink() = default;

QString ReadingsLink::open(const QString& file, const QString& chosenDriver)
{
    close();
    // The driver says nothing useful about a missing file, so it is looked for first.
    const QFileInfo info(file);
    if (!info.exists())
        return QStringLiteral("No se encuentra la base de datos de lecturas %1").arg(native(file));
    if (!info.isFile())
        return QStringLiteral("%1 no es un fichero de base de datos").arg(native(file));

    if (d->env.get() == SQL_NULL_HANDLE) {
        if (!d->env.allocate(SQL_NULL_HANDLE))
            return QStringLiteral("No se pudo iniciar el enlace ODBC");
        SQLSetEnvAttr(d->env.get(), SQL_ATTR_ODBC_VERSION, integerAttribute(SQL_OV_ODBC3), 0);
    }
    const QString driver = chosenDriver.isEmpty() ? findAccessDriver(d->env.get()) : chosenDriver;
    if (driver.isEmpty())
        return missingDriverText(accessDriver);
    if (!d->dbc.allocate(d->env.get()))
        return QStringLiteral("No se pudo iniciar el enlace ODBC");
    SQLSetConnectAttr(d->dbc.get(), SQL_ATTR_LOGIN_TIMEOUT, integerAttribute(connectionTimeout), 0);
    SQLSetConnectAttr(d->dbc.get(), SQL_ATTR_CONNECTION_TIMEOUT,
                      integerAttribute(connectionTimeout), 0);

    QByteArray in = connectionStringFor(driver, info.absoluteFilePath()).toLocal8Bit();
    SQLCHAR out[2048] = {};
    SQLSMALLINT outLength = 0;
    const SQLRETURN r =
        SQLDriverConnect(d->dbc.get(), nullptr, reinterpret_cast<SQLCHAR*>(in.data()), SQL_NTS, out,
                         sizeof out, &outLength, SQL_DRIVER_NOPROMPT);
    if (!SQL_SUCCEEDED(r)) {
        QString states;
        const QString detail = diagnostics(SQL_HANDLE_DBC, d->dbc.get(), &states);
        d->dbc.reset();
        if (isDriverMissing(states, detail))
            return missingDriverText(driver);
        return withDetail(
            QStringLiteral("No se pudo abrir la base de datos de lecturas %1").arg(native(file)),
            detail);
    }
    d->connected = true;
    return {};
}

void ReadingsLink::close()
{
    d->disconnect();
}

bool ReadingsLink::isOpen() const
{
    return d->connected;
}

namespace
{

const QString notOpenText = QStringLiteral("La base de datos de lecturas no está abierta");

// A statement with the query time-out set.
bool prepareStatement(Statement& stmt, SQLHDBC dbc)
{
    if (!stmt.allocate(dbc))
        return false;
    SQLSetStmtAttr(stmt.get(), SQL_ATTR_QUERY_TIMEOUT, integerAttribute(ReadingsLink::queryTimeout),
                   0);
    return true;
}

} // namespace

Tables ReadingsLink::tables()
{
    const QString failed =
        QStringLiteral("No se pudo leer la lista de tablas de la base de datos de lecturas");
    if (!isOpen())
        return {{}, notOpenText};
    Statement stmt;
    if (!prepareStatement(stmt, d->dbc.get()))
        return {{}, failed};
    SQLCHAR type[] = "TABLE";
    if (!SQL_SUCCEEDED(SQLTables(stmt.get(), nullptr, 0, nullptr, 0, nullptr, 0, type, SQL_NTS)))
        return {{}, withDetail(failed, diagnostics(SQL_HANDLE_STMT, stmt.get()))};
    const Rows rows = fetchAll(stmt.get());
    if (!rows.ok())
        return {{}, withDetail(failed, rows.error)};
    // Columns 3 and 4: TABLE_NAME and TABLE_TYPE. Some drivers list the system tables
    // whatever type was asked for.
    Tables result;
    for (const QStringList& row : rows.rows) {
        if (row.size() < 4 || row.at(3).compare(QLatin1String("TABLE"), Qt::CaseInsensitive) != 0)
            continue;
        if (row.at(2).startsWith(QLatin1String("MSys"), Qt::CaseInsensitive))
            continue;
        result.names.append(row.at(2));
    }
    return result;
}

Rows ReadingsLink::select(const QString& sql)
{
    const QString failed = QStringLiteral("Falló la consulta a la base de datos de lecturas");
    if (!isOpen())
        return {{}, {}, notOpenText};
    Statement stmt;
    if (!prepareStatement(stmt, d->dbc.get()))
        return {{}, {}, failed};
    QByteArray text = sql.toLocal8Bit();
    // After a failed execution the statement holds nothing that may be read: stop here.
    if (!SQL_SUCCEEDED(SQLExecDirect(stmt.get(), reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS)))
        return {{}, {}, withDetail(failed, diagnostics(SQL_HANDLE_STMT, stmt.get()))};
    Rows rows = fetchAll(stmt.get());
    if (!rows.ok())
        return {{}, {}, withDetail(failed, rows.error)};
    return rows;
}

#endif

} // namespace readings
