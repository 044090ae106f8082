#pragma once

#include "session/db/ResultSet.h"

#include <QString>

namespace knjige::db
{

// The field type of a result column from the ODBC driver's description of it: the
// SQL type code (SQL_INTEGER, SQL_DECIMAL, ...), the column size and the decimal
// digits. SQL Server's money and smallmoney arrive as DECIMAL(19,4) and DECIMAL(10,4)
// and are currency; other decimals stay decimal.
FieldType odbcFieldType(int sqlType, int columnSize, int decimalDigits);

// The text Qt's ODBC driver wants as database name for an ODBC connection string: it
// passes a string naming DRIVER= or SERVER= on as it stands and puts "DSN=" before
// any other, so a "DSN=name;..." string loses its own key. It ends with a ';'.
QString qodbcDatabaseName(const QString& odbcConnectionString);

} // namespace knjige::db
