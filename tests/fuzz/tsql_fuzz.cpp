// Arbitrary text through the T-SQL adapter as the embedded database takes it: split
// into statements, translated against the books' tables, and the data statements run
// on an in-memory database with the registered functions, collation and LIKE. A crash,
// a read outside a buffer or undefined behaviour is a finding; an error is an answer.
#include "session/tsql/TSqlAst.h"
#include "session/tsql/TSqlFunctions.h"
#include "session/tsql/TSqlTranslator.h"

#include <QFile>
#include <QRegularExpression>
#include <cstdio>
#include <cstdlib>
#include <sqlite3.h>

using namespace knjige::tsql;

namespace
{

sqlite3* g_db = nullptr;
Catalog g_catalog;
int g_steps = 0;

// A statement may run ten million engine steps at most.
int progress(void*)
{
    return ++g_steps > 10000 ? 1 : 0;
}

// The fuzzed statements may read and change rows, but not touch files, transactions
// or settings.
int authorize(void*, int action, const char*, const char*, const char*, const char*)
{
    switch (action) {
    case SQLITE_ATTACH:
    case SQLITE_DETACH:
    case SQLITE_TRANSACTION:
    case SQLITE_SAVEPOINT:
    case SQLITE_PRAGMA:
        return SQLITE_DENY;
    default:
        return SQLITE_OK;
    }
}

void fatal(const char* what)
{
    std::fprintf(stderr, "tsql_fuzz: %s: %s\n", what, g_db ? sqlite3_errmsg(g_db) : "");
    std::abort();
}

void run(const QString& sql)
{
    const QByteArray bytes = sql.toUtf8();
    sqlite3_stmt* st = nullptr;
    if (sqlite3_prepare_v2(g_db, bytes.constData(), int(bytes.size()), &st, nullptr) != SQLITE_OK || !st)
        return;
    g_steps = 0;
    for (int rows = 0; rows < 1000 && sqlite3_step(st) == SQLITE_ROW; ++rows)
        for (int c = 0; c < sqlite3_column_count(st); ++c)
            sqlite3_column_text(st, c);
    sqlite3_finalize(st);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    QFile schema(QStringLiteral(KNJIGE_SCHEMA));
    if (!schema.open(QIODevice::ReadOnly))
        fatal("cannot read the schema");
    if (sqlite3_open(":memory:", &g_db) != SQLITE_OK || !registerFunctions(g_db))
        fatal("cannot open the database");
    static const QRegularExpression go(QStringLiteral("^\\s*GO\\s*$"), QRegularExpression::MultilineOption);
    for (const QString& batch : QString::fromUtf8(schema.readAll()).split(go)) {
        for (const QString& statement : splitStatements(batch)) {
            // The T-SQL trigger does not run on SQLite; the tables and indexes do.
            const Translation::Statement t = translateStatement(statement, g_catalog);
            sqlite3_exec(g_db, t.sql.toUtf8().constData(), nullptr, nullptr, nullptr);
            if (auto table = parseCreateTable(statement))
                g_catalog.add(*table);
        }
    }
    if (g_catalog.find(QStringLiteral("KnjPrihRashFBiH")) == nullptr)
        fatal("the schema made no tables");
    sqlite3_limit(g_db, SQLITE_LIMIT_LENGTH, 1000000);
    sqlite3_limit(g_db, SQLITE_LIMIT_SQL_LENGTH, 1000000);
    sqlite3_progress_handler(g_db, 1000, progress, nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > 64 * 1024)
        return 0;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    parseCreateTable(text);
    if (sqlite3_exec(g_db, "SAVEPOINT fuzz", nullptr, nullptr, nullptr) != SQLITE_OK)
        fatal("savepoint");
    sqlite3_set_authorizer(g_db, authorize, nullptr);
    for (const QString& statement : splitStatements(text)) {
        const Translation::Statement t = translateStatement(statement, g_catalog);
        static const QRegularExpression dataStatement(
            QStringLiteral("^\\s*(SELECT|INSERT|UPDATE|DELETE|\\()"), QRegularExpression::CaseInsensitiveOption);
        if (t.error.isEmpty() && t.kind != Translation::Kind::NoOp && dataStatement.match(t.sql).hasMatch())
            run(t.sql);
    }
    sqlite3_set_authorizer(g_db, nullptr, nullptr);
    if (sqlite3_exec(g_db, "ROLLBACK TO fuzz; RELEASE fuzz", nullptr, nullptr, nullptr) != SQLITE_OK)
        fatal("rollback");
    return 0;
}
