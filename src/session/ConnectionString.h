#pragma once

#include <QString>

namespace knjige {

// Where a connection string leads. The host hands over ADO-style strings
// ("Provider=SQLOLEDB.1;Data Source=srv;Initial Catalog=db;User ID=sa;Password=x");
// those go to SQL Server through ODBC. A string that names a database file (a bare
// path, or "Data Source=path" with a SQLite provider) opens the embedded database.
struct ConnectionTarget {
    enum class Kind { Invalid, Sqlite, Odbc };
    Kind kind = Kind::Invalid;
    QString sqlitePath;   // Kind::Sqlite
    QString odbc;         // Kind::Odbc: the string for the ODBC driver manager
    QString error;        // Kind::Invalid: what is wrong, in words
};

ConnectionTarget parseConnectionString(const QString& text);

// The statements run once on every new SQL Server connection.
QStringList sqlServerSessionSetup();

} // namespace knjige
