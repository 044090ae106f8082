#pragma once

#include "session/db/Database.h"

#include <QString>
#include <QVariantList>
#include <memory>

namespace knjige::db
{

// What a database engine must do for the helper. A backend reports failures by
// returning false and setting *error to the engine's own description.
class DatabaseBackend
{
public:
    virtual ~DatabaseBackend() = default;

    virtual SqlDialect dialect() const = 0;
    virtual bool select(const QString& tsql, ResultSet& result, QString* error) = 0;
    // As Database::openInParts. An engine that cannot do better reads the whole
    // result and hands it over as one part.
    virtual bool selectInParts(const QString& tsql, const std::function<bool(const ResultSet&)>& part, QString* error)
    {
        ResultSet whole;
        if (!select(tsql, whole, error))
            return false;
        return part(whole) || stopped(error);
    }
    // The description of a read its consumer stopped.
    static bool stopped(QString* error)
    {
        *error = QStringLiteral("Čitanje rezultata je prekinuto.");
        return false;
    }
    virtual bool execute(const QString& tsql, int* rowsAffected, QString* error) = 0;
    // A statement with `?` placeholders written by the component itself (never a
    // system text), run with the values bound in order.
    virtual bool executeBound(const QString& sql, const QVariantList& values, int* rowsAffected, QString* error) = 0;
    // A statement in the engine's own dialect, run directly (not prepared: a temporary
    // table made by a prepared statement on SQL Server ends with it).
    virtual bool executeNative(const QString& sql, int* rowsAffected, QString* error) = 0;
    virtual bool begin(QString* error) = 0;
    virtual bool commit(QString* error) = 0;
    virtual bool rollback(QString* error) = 0;
};

// The embedded database: a file path. `create` allows a missing file to be made.
std::unique_ptr<DatabaseBackend> openSqliteBackend(const QString& path, bool create, QString* error);
// SQL Server through ODBC: an ODBC connection string ready for the driver manager.
std::unique_ptr<DatabaseBackend> openOdbcBackend(const QString& odbcConnectionString, QString* error);

// The parameterised statement that writes exactly one row (see RowChange).
struct BoundStatement {
    QString sql;
    QVariantList values;
};
BoundStatement rowStatement(const RowChange& change, SqlDialect dialect);
// The INSERT of a new entry that writes nothing when its number is already taken in
// its scope (see Database::insertUnderFreeNumber).
BoundStatement insertIfFreeStatement(const RowChange& change, const NumberSlot& slot, SqlDialect dialect);

} // namespace knjige::db
