#pragma once

#include "session/tsql/TSqlAst.h"
#include "session/tsql/TSqlEdits.h"

namespace knjige::tsql
{

struct Analysis {
    // A query's result columns as SQL Server types them; empty when one cannot be
    // counted (a * over a table the catalog does not know), and for other statements.
    QVector<SqlType> columnTypes;
    // Their names, alongside: an alias or a plain column's own name; empty for an
    // expression without an alias, which SQL Server leaves unnamed.
    QStringList columnNames;
    // Why the statement must not run (a literal that cannot become the date it stands
    // for), in the server's words; empty when it may.
    QString error;
};

// Types every expression of a parsed data statement from the catalog, bottom up, and
// records on its nodes and in `edits` what the embedded database needs rewritten:
// date literals in the stored form, text comparisons under the server's collation,
// range checks where money and whole numbers are stored, T-SQL functions SQLite lacks.
// Throws NestingError when the thread's stack runs low.
Analysis analyze(ParsedStatement& statement, const Catalog& catalog, Edits& edits);

// The collation text comparisons take on the embedded database (registered on every
// connection): case-insensitive, accent-sensitive, trailing blanks ignored.
inline constexpr const char* kCollation = "tsql_ci_as";

} // namespace knjige::tsql
