#pragma once

#include "session/db/Database.h"
#include "session/db/ResultSet.h"

#include <QString>
#include <future>

namespace knjige::db
{

// A SELECT read on a connection and in a thread of its own while the caller goes on
// with other work: a book's running totals are summed while its rows are read. wait()
// hands the rows over. Inside a transaction, and on a server, the session's own
// connection reads it at wait(): only that connection sees the transaction's changes,
// and a second login to a server costs more than it saves.
class ReadAside
{
public:
    // db is the caller's connection; connection is its connection string, with which
    // the read aside opens a connection of its own.
    ReadAside(Database& db, const QString& connection, QString sql);
    ~ReadAside();
    ReadAside(const ReadAside&) = delete;
    ReadAside& operator=(const ReadAside&) = delete;

    // False when the read failed; *error then holds the data layer's description.
    bool wait(ResultSet& rows, QString* error);

private:
    struct Outcome {
        bool ok = false;
        ResultSet rows;
        QString error;
    };
    Database& m_db;
    QString m_sql;
    std::future<Outcome> m_future;
};

} // namespace knjige::db
