#pragma once

#include "session/db/ResultSet.h"

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace knjige::db
{

class DatabaseBackend;

enum class SqlDialect { SqlServer, Sqlite };

// One row to insert, change or delete. Column values are given in the order the
// system writes them. `original` is the row as it was read: a change or deletion
// touches exactly one row that matches it in every column given, so two entries that
// share an ordinal number are never changed together.
struct RowChange {
    enum class Kind { Insert, Update, Delete };
    using Values = QVector<std::pair<QString, QVariant>>;

    Kind kind = Kind::Insert;
    QString table; // as the system names it: "dbo.KnjPrihRashFBiH"
    Values values; // Insert and Update
    Values original; // Update and Delete
};

// Where a new entry's ordinal number lives: its column, and the columns within whose
// values the numbers run (company and year; in the trade books the shop too). Each
// of them must be among the entry's values.
struct NumberSlot {
    QString column;
    QStringList scope;
};

// The one data-access helper of the process. Every statement is T-SQL as the system
// writes it; on the embedded database it runs through the dialect adapter. Failures
// are values: each call reports success, and errorDescription() holds the data
// layer's own text. lastSql() keeps the last statement text run, for error reports.
class Database
{
public:
    Database();
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Opens (or re-opens, when the text differs) the connection named by the string.
    bool connect(const QString& connectionString);
    void disconnect();
    bool isConnected() const;
    QString connectionString() const { return m_connectionString; }
    SqlDialect dialect() const;

    // Reads the whole result of a SELECT.
    bool open(const QString& sql, ResultSet& result);
    // Reads a SELECT in parts of a few hundred rows and hands each to `part` as soon as
    // it is read, so that a result of any size can be written out without being held:
    // every part has the result's fields and only its own rows, and the last part,
    // handed over even when empty, ends the result. `part` returns false to stop the
    // read, which then fails. A failure met after some parts fails the read too.
    bool openInParts(const QString& sql, const std::function<bool(const ResultSet& part)>& part);
    std::optional<ResultSet> query(const QString& sql);
    bool execute(const QString& sql, int* rowsAffected = nullptr);

    bool beginTransaction();
    bool commit();
    bool rollback();
    bool inTransaction() const { return m_inTransaction; }

    bool writeRow(const RowChange& change);
    // Inserts a new entry under the number it carries in slot.column while that number
    // is free in its scope, otherwise under the next free one (the highest plus one).
    // Checking and writing are one statement, so two writers never take one number.
    // *number receives the number the entry was saved under.
    bool insertUnderFreeNumber(const RowChange& change, const NumberSlot& slot, qint64* number);

    // A statement the component writes itself in the engine's own dialect (never a
    // system text): it goes to the engine unchanged. Used where the engines differ in
    // form, such as temporary tables for changes of many rows at once.
    bool executeNative(const QString& sql, int* rowsAffected = nullptr);

    // How many requests went to the database engine so far: statements, rows written,
    // and the start and end of transactions. On a server each is a round trip.
    quint64 requestCount() const { return m_requests; }

    QString errorDescription() const { return m_error; }
    QString lastSql() const { return m_lastSql; }

private:
    bool ensureConnected();
    bool fail(const QString& description);

    std::unique_ptr<DatabaseBackend> m_backend;
    QString m_connectionString;
    QString m_error;
    QString m_lastSql;
    bool m_inTransaction = false;
    quint64 m_requests = 0;
};

// Commits on commit(); rolls back when it goes out of scope uncommitted.
class TransactionGuard
{
public:
    explicit TransactionGuard(Database& db)
        : m_db(db)
        , m_active(db.beginTransaction())
    {
    }
    ~TransactionGuard()
    {
        if (m_active)
            m_db.rollback();
    }
    TransactionGuard(const TransactionGuard&) = delete;
    TransactionGuard& operator=(const TransactionGuard&) = delete;
    bool isActive() const { return m_active; }
    bool commit()
    {
        if (!m_active)
            return false;
        m_active = false;
        return m_db.commit();
    }

private:
    Database& m_db;
    bool m_active;
};

} // namespace knjige::db
