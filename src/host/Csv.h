#pragma once

#include <QString>

class QTextStream;

namespace knjige::db
{
class ResultSet;
} // namespace knjige::db

namespace knjige::host
{

namespace cli
{

// A field as comma-separated text: quoted, with quotes doubled, when it holds a
// comma, a quote or a line break.
QString csvField(const QString& text);
// A fraction in plain decimal notation with a point, up to 15 significant digits and
// no exponent or trailing zeros: "33.3333333333333", "0.0000001", "100000000000000000000".
QString plainNumber(double value);
// A cell as the query command prints it: numbers plainly with a point, amounts with
// their significant decimals, dates as yyyy-mm-dd, flags as 1 and 0, NULL as nothing.
QString csvValue(const db::ResultSet& rows, int row, int column);
// The header line of field names, the line of field types when asked, then the rows.
void writeCsv(const db::ResultSet& rows, bool withTypes, QTextStream& out);
// The same in steps, for a result read in parts: the header lines once, then the rows
// of each part.
void writeCsvHeader(const db::ResultSet& rows, bool withTypes, QTextStream& out);
void writeCsvRows(const db::ResultSet& rows, QTextStream& out);

} // namespace cli
} // namespace knjige::host
