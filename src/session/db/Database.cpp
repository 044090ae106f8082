#include "session/db/Database.h"

#include "session/db/ConnectionString.h"
#include "session/db/DatabaseBackend.h"

#include <limits>

namespace knjige::db
{

Database::Database() = default;
Database::~Database() = default;

bool Database::fail(const QString& description)
{
    m_error = description;
    return false;
}

bool Database::connect(const QString& connectionString)
{
    if (m_backend && connectionString == m_connectionString)
        return true;
    disconnect();
    m_connectionString = connectionString;
    const ConnectionTarget target = parseConnectionString(connectionString);
    QString error;
    switch (target.kind) {
    case ConnectionTarget::Kind::Invalid:
        return fail(target.error);
    case ConnectionTarget::Kind::Sqlite:
        m_backend = openSqliteBackend(target.sqlitePath, false, &error);
        break;
    case ConnectionTarget::Kind::Odbc:
        m_backend = openOdbcBackend(target.odbc, &error);
        break;
    }
    if (!m_backend)
        return fail(error);
    m_error.clear();
    return true;
}

void Database::disconnect()
{
    m_backend.reset();
    m_inTransaction = false;
}

bool Database::isConnected() const
{
    return bool(m_backend);
}

SqlDialect Database::dialect() const
{
    return m_backend ? m_backend->dialect() : SqlDialect::SqlServer;
}

bool Database::ensureConnected()
{
    if (m_backend)
        return true;
    if (m_connectionString.isEmpty())
        return fail(QStringLiteral("Nije zadana veza prema bazi podataka (connection string je prazan)."));
    const QString text = m_connectionString;
    m_connectionString.clear();
    return connect(text);
}

bool Database::open(const QString& sql, ResultSet& result)
{
    m_lastSql = sql;
    if (!ensureConnected())
        return false;
    ++m_requests;
    QString error;
    ResultSet fresh;
    if (!m_backend->select(sql, fresh, &error))
        return fail(error);
    result = std::move(fresh);
    m_error.clear();
    return true;
}

bool Database::openInParts(const QString& sql, const std::function<bool(const ResultSet& part)>& part)
{
    m_lastSql = sql;
    if (!ensureConnected())
        return false;
    ++m_requests;
    QString error;
    if (!m_backend->selectInParts(sql, part, &error))
        return fail(error);
    m_error.clear();
    return true;
}

std::optional<ResultSet> Database::query(const QString& sql)
{
    ResultSet rs;
    if (!open(sql, rs))
        return std::nullopt;
    return rs;
}

bool Database::execute(const QString& sql, int* rowsAffected)
{
    m_lastSql = sql;
    if (!ensureConnected())
        return false;
    ++m_requests;
    QString error;
    if (!m_backend->execute(sql, rowsAffected, &error))
        return fail(error);
    m_error.clear();
    return true;
}

bool Database::beginTransaction()
{
    if (!ensureConnected())
        return false;
    ++m_requests;
    QString error;
    if (!m_backend->begin(&error))
        return fail(error);
    m_inTransaction = true;
    return true;
}

bool Database::commit()
{
    if (!m_backend)
        return fail(QStringLiteral("Nema otvorene veze prema bazi podataka."));
    ++m_requests;
    QString error;
    m_inTransaction = false;
    if (!m_backend->commit(&error))
        return fail(error);
    return true;
}

bool Database::rollback()
{
    if (!m_backend)
        return fail(QStringLiteral("Nema otvorene veze prema bazi podataka."));
    ++m_requests;
    QString error;
    m_inTransaction = false;
    if (!m_backend->rollback(&error))
        return fail(error);
    return true;
}

bool Database::writeRow(const RowChange& change)
{
    if (!ensureConnected())
        return false;
    const BoundStatement st = rowStatement(change, m_backend->dialect());
    m_lastSql = st.sql;
    ++m_requests;
    QString error;
    int affected = 0;
    if (!m_backend->executeBound(st.sql, st.values, &affected, &error))
        return fail(error);
    if (change.kind != RowChange::Kind::Insert && affected == 0)
        return fail(
            QStringLiteral("Zapis više ne postoji u bazi podataka: promijenio ga je ili obrisao drugi korisnik."));
    m_error.clear();
    return true;
}

bool Database::insertUnderFreeNumber(const RowChange& change, const NumberSlot& slot, qint64* number)
{
    if (!ensureConnected())
        return false;
    RowChange attempt = change;
    qsizetype at = -1;
    QStringList scope;
    for (qsizetype i = 0; i < attempt.values.size(); ++i) {
        const QString& name = attempt.values[i].first;
        if (name.compare(slot.column, Qt::CaseInsensitive) == 0)
            at = i;
        else if (slot.scope.contains(name, Qt::CaseInsensitive))
            scope << name + u'=' + QString::number(attempt.values[i].second.toLongLong());
    }
    if (at < 0 || scope.size() != slot.scope.size())
        return fail(QStringLiteral("Redni broj nove stavke nije zadan."));
    // Another writer may take the next number too between the two steps; a few rounds
    // settle any race two operators can make.
    for (int round = 0; round < 20; ++round) {
        const BoundStatement st = insertIfFreeStatement(attempt, slot, m_backend->dialect());
        m_lastSql = st.sql;
        QString error;
        int affected = 0;
        ++m_requests;
        if (!m_backend->executeBound(st.sql, st.values, &affected, &error))
            return fail(error);
        if (affected > 0) {
            *number = attempt.values[at].second.toLongLong();
            m_error.clear();
            return true;
        }
        ResultSet highest;
        if (!open(QStringLiteral("SELECT MAX(%1) AS BROJ FROM %2 WHERE %3")
                      .arg(slot.column, change.table, scope.join(QStringLiteral(" AND "))),
                highest))
            return false;
        const qint64 next = (highest.isEmpty() || highest.isNull(0, 0) ? 0 : highest.integer(0, 0)) + 1;
        if (next > std::numeric_limits<qint32>::max())
            return fail(QStringLiteral("Redni broj bi prešao najveći dozvoljeni broj."));
        attempt.values[at].second = qint32(next);
    }
    return fail(QStringLiteral("Slobodan redni broj nije pronađen: drugi korisnici upravo upisuju u istu knjigu. "
                               "Pokušajte ponovo."));
}

bool Database::executeNative(const QString& sql, int* rowsAffected)
{
    m_lastSql = sql;
    if (!ensureConnected())
        return false;
    ++m_requests;
    QString error;
    if (!m_backend->executeNative(sql, rowsAffected, &error))
        return fail(error);
    m_error.clear();
    return true;
}

} // namespace knjige::db
