#include "session/db/ReadAside.h"

#include "session/db/Database.h"

namespace knjige::db
{

ReadAside::ReadAside(Database& db, const QString& connection, QString sql)
    : m_db(db)
    , m_sql(std::move(sql))
{
    if (!db.isConnected() || db.inTransaction() || db.dialect() != SqlDialect::Sqlite)
        return;
    m_future = std::async(std::launch::async, [sql = m_sql, connection] {
        Outcome out;
        Database aside;
        if (!aside.connect(connection)) {
            out.error = aside.errorDescription();
            return out;
        }
        out.ok = aside.open(sql, out.rows);
        out.error = aside.errorDescription();
        return out;
    });
}

ReadAside::~ReadAside()
{
    if (m_future.valid())
        m_future.wait();
}

bool ReadAside::wait(ResultSet& rows, QString* error)
{
    if (!m_future.valid()) {
        const bool ok = m_db.open(m_sql, rows);
        *error = m_db.errorDescription();
        return ok;
    }
    Outcome out = m_future.get();
    if (!out.ok) {
        // A connection of its own may be refused where the session's works (a file
        // that allows one reader only): the session's connection has the last word.
        m_future = {};
        return wait(rows, error);
    }
    rows = std::move(out.rows);
    error->clear();
    return true;
}

} // namespace knjige::db
