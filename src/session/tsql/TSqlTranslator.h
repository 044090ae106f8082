#pragma once

#include "session/tsql/TSqlTypes.h"

#include <QHash>
#include <QString>
#include <QVector>
#include <memory>
#include <optional>

namespace knjige::tsql
{

// A T-SQL text as the embedded database runs it.
struct Translation {
    enum class Kind {
        Query, // returns rows; columnTypes as SQL Server would type them
        Command, // changes data or schema
        NoOp, // has no meaning on the embedded database (SET options)
    };
    struct Statement {
        QString sql;
        Kind kind = Kind::Command;
        // One entry per result column when the adapter could type them all; empty
        // when it could not (the backend then types columns from their values).
        QVector<SqlType> columnTypes;
        QStringList columnNames; // alongside columnTypes; empty: an unnamed expression
        bool changesSchema = false; // CREATE, DROP, ALTER: the catalog must be re-read
        // Why the statement must not run, in SQL Server's words (nested too deeply, a
        // date literal that is no date); the backend reports it instead of running it.
        QString error;
    };
    QVector<Statement> statements;
};

// Translates one statement (no ';' separators) for the embedded database, using the
// catalog for the column types. A statement the parser cannot read is passed on with
// the plain token rewrites only, so the engine reports its own error for it; one that
// nests deeper than the parser allows (or than the thread's stack holds) gets an error.
// Never reads outside the text, whatever it holds.
Translation::Statement translateStatement(const QString& tsql, const Catalog& catalog);

// The table a T-SQL CREATE TABLE statement defines, with its columns' types and text
// widths; nothing for any other statement.
std::optional<TableDef> parseCreateTable(const QString& tsql);

// Translates whole texts (statements separated by ';') and keeps the results: the
// same few statements run thousands of times. The cache must be cleared when the
// catalog changes.
class Translator
{
public:
    explicit Translator(const Catalog& catalog)
        : m_catalog(catalog)
    {
    }
    std::shared_ptr<const Translation> translate(const QString& tsql);
    void clearCache() { m_cache.clear(); }

private:
    const Catalog& m_catalog;
    QHash<QString, std::shared_ptr<const Translation>> m_cache;
};

} // namespace knjige::tsql
