// The data control of the readings database. It is left unbound, ready for the readings to be
// attached: no connection string, no record source, and the settings a new control has.
#pragma once

#include <QObject>
#include <QString>

class AdoDataControl : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString caption MEMBER caption)
    Q_PROPERTY(QString connectionString MEMBER connectionString)
    Q_PROPERTY(QString recordSource MEMBER recordSource)
    Q_PROPERTY(int connectionTimeout MEMBER connectionTimeout)
    Q_PROPERTY(int commandTimeout MEMBER commandTimeout)
    Q_PROPERTY(int cacheSize MEMBER cacheSize)
    Q_PROPERTY(int maxRecords MEMBER maxRecords)

public:
    using QObject::QObject;

    QString caption = QStringLiteral("Adodc1");
    QString connectionString;
    QString recordSource;
    int connectionTimeout = 15; // seconds
    int commandTimeout = 30;    // seconds
    int cacheSize = 50;
    int maxRecords = 0; // no maximum
    // Client-side static cursor, optimistic locking, command type unknown.
    QString cursorLocation = QStringLiteral("cliente");
    QString cursorType = QStringLiteral("estatico");
    QString lockType = QStringLiteral("optimista");
    QString commandType = QStringLiteral("desconocido");
};
