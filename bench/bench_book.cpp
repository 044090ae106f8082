#include "bench_book.h"

#include "books/BookKind.h"
#include "books/Schema.h"
#include "browser/BrowserRules.h"
#include "session/Session.h"
#include "session/tsql/TSqlFunctions.h"
#include "session/tsql/TSqlTranslator.h"

#include <QDate>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <memory>
#include <sqlite3.h>

namespace knjige::bench
{
namespace
{

void fill(const QString& path)
{
    const QString name = QStringLiteral("bench_fill");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        db.open();
        db.transaction();
        QSqlQuery q(db);
        q.prepare(QStringLiteral("INSERT INTO KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Opis,Vrsta,"
                                 "Iznos,IznosPDV) VALUES (1,?,?,?,?,?,?,?,?)"));
        const int kinds[] = { 11, 12, 13, 16, 17, 18, 19 };
        // Descriptions with the letters the collation places: Č, Ć, Đ, Š, Ž.
        const QString words[] = { QStringLiteral("Šećer"), QStringLiteral("Čelik"), QStringLiteral("cement"),
            QStringLiteral("Ćevapi"), QStringLiteral("Đurđa"), QStringLiteral("Žito"), QStringLiteral("Sol"),
            QStringLiteral("zebra"), QStringLiteral("Dalmacija") };
        for (int i = 1; i <= kEntries; ++i) {
            const QDate d = QDate(kYear, 1, 1).addDays(i % 365);
            const double iznos = double((i * 7919) % 1000000) / 100.0;
            q.addBindValue(i);
            q.addBindValue(d.toString(Qt::ISODate));
            q.addBindValue(kYear);
            q.addBindValue(QStringLiteral("R-%1").arg((i * 7) % kEntries));
            q.addBindValue(words[(i * 13) % 9] + QStringLiteral(" stavka %1").arg((i * 31) % kEntries));
            q.addBindValue(kinds[i % 7]);
            q.addBindValue(iznos);
            q.addBindValue(iznos * 17.0 / 117.0);
            if (!q.exec())
                std::fprintf(stderr, "fill: %s\n", qPrintable(q.lastError().text()));
        }
        // The rights table of a host's database, empty: every operator may do all.
        // Without it the export command refuses, as it must where rights cannot be read.
        if (!q.exec(QStringLiteral("CREATE TABLE PRAVA (OPERATER nvarchar(30) NULL, PROGRAM nvarchar(30) NULL, "
                                   "PRAVO nvarchar(30) NULL)")))
            std::fprintf(stderr, "fill: %s\n", qPrintable(q.lastError().text()));
        db.commit();
    }
    QSqlDatabase::removeDatabase(name);
}

QString translated(const QString& tsql)
{
    tsql::Catalog catalog;
    for (const QString& statement : books::schemaStatements())
        if (auto table = tsql::parseCreateTable(statement))
            catalog.add(*table);
    return tsql::translateStatement(tsql, catalog).sql;
}

} // namespace

BookFile& book()
{
    static std::unique_ptr<BookFile> file = [] {
        auto f = std::make_unique<BookFile>();
        f->path = f->dir.filePath(QStringLiteral("bench.db"));
        QString error;
        if (!books::createEmbeddedDatabase(f->path, &error))
            std::fprintf(stderr, "schema: %s\n", qPrintable(error));
        fill(f->path);
        f->tsql = books::findBook(Knjiga::PrihRashFBiH)->selectSql
            + browser::openingWhere(browser::periodStart(kYear), kYear, 1) + browser::orderBy();
        f->sqlite = translated(f->tsql);
        Session& s = session();
        s.ConnString = f->path;
        s.BrojPoduzeca = 1;
        s.RadnaGodina = kYear;
        s.NivoPristupa = QStringLiteral("0");
        s.ImeOperatera = QStringLiteral("Bench");
        return f;
    }();
    return *file;
}

PlainFetch::PlainFetch()
{
    const QByteArray path = book().path.toUtf8();
    if (sqlite3_open_v2(path.constData(), &m_db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK
        || !tsql::registerFunctions(m_db))
        std::fprintf(stderr, "plain: %s\n", sqlite3_errmsg(m_db));
    m_sql = book().sqlite.toUtf8();
}

PlainFetch::~PlainFetch()
{
    sqlite3_close(m_db);
}

int PlainFetch::run()
{
    sqlite3_stmt* st = nullptr;
    if (sqlite3_prepare_v2(m_db, m_sql.constData(), int(m_sql.size()), &st, nullptr) != SQLITE_OK) {
        std::fprintf(stderr, "plain: %s\n", sqlite3_errmsg(m_db));
        return 0;
    }
    const int columns = sqlite3_column_count(st);
    int rows = 0;
    qint64 seen = 0;
    while (sqlite3_step(st) == SQLITE_ROW) {
        for (int c = 0; c < columns; ++c) {
            switch (sqlite3_column_type(st, c)) {
            case SQLITE_INTEGER:
                seen += sqlite3_column_int64(st, c);
                break;
            case SQLITE_FLOAT:
                seen += qint64(sqlite3_column_double(st, c));
                break;
            case SQLITE_TEXT:
                benchmark::DoNotOptimize(sqlite3_column_text(st, c));
                seen += sqlite3_column_bytes(st, c);
                break;
            default:
                break;
            }
        }
        ++rows;
    }
    sqlite3_finalize(st);
    benchmark::DoNotOptimize(seen);
    return rows;
}

} // namespace knjige::bench
