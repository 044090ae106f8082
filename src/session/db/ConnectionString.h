#pragma once

#include <QString>
#include <QStringList>

namespace knjige::db
{

// Where a connection string leads. The host hands over ADO-style strings
// ("Provider=SQLOLEDB.1;Data Source=srv;Initial Catalog=db;User ID=sa;Password=x");
// those go to SQL Server through ODBC. A string that names a database file (a bare
// path, "sqlite:path", or "Data Source=path" with a SQLite provider or without a
// catalog) opens the embedded database. Strings that already are ODBC ("Driver=...",
// "DSN=...") go to the driver manager as they stand, except that those for FreeTDS or
// a DSN have their values written anew. A value no form carries whole to its driver
// makes the string invalid: none can end early and add keys of its own.
struct ConnectionTarget {
    enum class Kind { Invalid, Sqlite, Odbc };
    Kind kind = Kind::Invalid;
    QString sqlitePath; // Kind::Sqlite
    QString odbc; // Kind::Odbc: the string for the ODBC driver manager
    QString error; // Kind::Invalid: what is wrong, in words (never the password)
};

// Maps with the SQL Server driver of this machine (sqlServerOdbcDriver()).
ConnectionTarget parseConnectionString(const QString& text);
// Maps ADO-style SQL Server strings for the named ODBC driver. A driver whose name
// contains "TDS" gets FreeTDS's keys (PORT apart from SERVER, TDS_Version,
// ClientCharset); any other gets Microsoft's ("SERVER=host,port", Trusted_Connection).
// An explicit "Driver=" in an ADO-style string wins over `driver`.
ConnectionTarget parseConnectionString(const QString& text, const QString& driver);

// The ODBC driver that reaches SQL Server: the environment variable
// KNJIGE_ODBC_DRIVER when set, otherwise "ODBC Driver 18 for SQL Server" on Windows
// and "FreeTDS" elsewhere.
QString sqlServerOdbcDriver();

// The value of a key of a "Key=Value;..." string as ADO reads it: the last one given,
// synonyms included ("Data Source" also finds "Server"), quotes taken off. Empty when
// the key is absent or the string cannot be read.
QString connectionValue(const QString& text, const QString& key);

// The statements run once on every new SQL Server connection.
QStringList sqlServerSessionSetup();

} // namespace knjige::db
