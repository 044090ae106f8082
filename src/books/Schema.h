#pragma once

#include <QString>
#include <QStringList>

namespace knjige::db
{
class Database;
} // namespace knjige::db

namespace knjige::books
{

// Creates the book tables, dbo.Komitent and dbo.CONFIG on a new embedded database by
// running the T-SQL schema script through the dialect adapter, then the embedded
// database's own triggers (the asset lists number rows inserted without RBroj).
// Returns false with *error set to the data layer's text when a statement fails.
bool createSchema(db::Database& db, QString* error);

// Runs the statements in order in one transaction; false, with nothing kept and *error
// set to the data layer's text, when one fails or there are none.
bool runScript(db::Database& db, QStringList statements, QString* error);

// Makes a new embedded database file at `path` with the whole schema. Fails when the
// file exists already (an existing book database is never overwritten).
bool createEmbeddedDatabase(const QString& path, QString* error);

// The statements of the T-SQL schema script (sql/schema.sql), one per entry, without
// the batch separators. Useful to create the schema on SQL Server.
QStringList schemaStatements();
// The statements of any T-SQL script written like it: batches separated by GO lines,
// comments before a batch left out.
QStringList scriptStatements(const QString& script);

// The declared width of a text column, from the same script the tables are made from.
// `table` as the system names it ("dbo.KnjPrihRashFBiH" or "KnjPrihRashFBiH"); names
// are case-insensitive. 0 when the table or column is unknown or not a text column.
int textColumnWidth(const QString& table, const QString& column);

} // namespace knjige::books
