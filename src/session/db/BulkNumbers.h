#pragma once

#include "session/db/Database.h"
#include "session/db/ResultSet.h"

#include <QString>
#include <optional>
#include <utility>
#include <vector>

namespace knjige::db
{

// Where many rows of one table take new values of one integer column: the rows that
// `scope` picks, told apart by `keyColumn` (which may be `column` itself).
struct NumberTarget {
    QString table; // as the system names it: "dbo.KnjPrihRashFBiH"
    QString column; // the column that takes the new values
    QString keyColumn; // the column whose value picks a row
    QString scope; // conditions on the table's own columns, joined by AND
};

// Every row of the scope whose key column holds the first number of a pair takes the
// second in `column`, all rows in one statement: a row given a number that is the key
// of another pair is not picked again, as it would be by one statement per pair. The
// pairs reach the server in a few statements, through a temporary table that lives
// only inside the caller's transaction, which must be open.
//
// On failure *error holds the data layer's text, or says that the count of rows
// changed is not `expectedRows` (someone else changed the rows since they were read);
// the caller rolls back.
bool remapNumbers(Database& db, const NumberTarget& target, const std::vector<std::pair<qint64, qint64>>& pairs,
    qint64 expectedRows, QString* error);

// Gives rows read whole from the target's table (`rows`, every column, exactly the
// rows of the scope) new values: row i takes newValues[i] where that is set. Rows
// whose key is unique among `rows` change through remapNumbers; a row that shares its
// key changes alone, matched on every column as it was read. Rows alike in every
// column cannot be told apart by anyone, so which of them takes which value does not
// change the book.
bool rewriteNumbers(Database& db, const NumberTarget& target, const ResultSet& rows,
    const std::vector<std::optional<qint64>>& newValues, QString* error);

} // namespace knjige::db
