// Opening and refreshing a book of 100,000 entries, against a plain forward-only
// fetch of the same query, and a header sort of the same rows.
//
// Counters: "ratio" = open time / plain fetch time, measured in the same iterations.
// Aims: ratio within 1.5, a header sort under 0.3 s.
#include "books/BookKind.h"
#include "books/Schema.h"
#include "browser/BookModel.h"
#include "browser/BrowserRules.h"
#include "session/Session.h"
#include "session/TSqlTranslator.h"

#include <QDate>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <memory>

using namespace knjige;

namespace {

constexpr int kEntries = 100000;
constexpr int kYear = 2016;

struct BookFile {
    QTemporaryDir dir;
    QString path;
    QString tsql;     // the browser's query as the system writes it
    QString sqlite;   // the same query as the embedded database runs it
};

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
        const int kinds[] = {11, 12, 13, 16, 17, 18, 19};
        for (int i = 1; i <= kEntries; ++i) {
            const QDate d = QDate(kYear, 1, 1).addDays(i % 365);
            const double iznos = double((i * 7919) % 1000000) / 100.0;
            q.addBindValue(i);
            q.addBindValue(d.toString(Qt::ISODate));
            q.addBindValue(kYear);
            q.addBindValue(QStringLiteral("R-%1").arg(i));
            q.addBindValue(QStringLiteral("Stavka knjige broj %1").arg((i * 31) % kEntries));
            q.addBindValue(kinds[i % 7]);
            q.addBindValue(iznos);
            q.addBindValue(iznos * 17.0 / 117.0);
            if (!q.exec())
                std::fprintf(stderr, "fill: %s\n", qPrintable(q.lastError().text()));
        }
        db.commit();
    }
    QSqlDatabase::removeDatabase(name);
}

QString translated(const QString& tsql)
{
    tsql::Catalog catalog;
    for (const QString& statement : schemaStatements())
        if (auto table = tsql::parseCreateTable(statement))
            catalog.add(*table);
    return tsql::translateStatement(tsql, catalog).sql;
}

BookFile& book()
{
    static std::unique_ptr<BookFile> file = [] {
        auto f = std::make_unique<BookFile>();
        f->path = f->dir.filePath(QStringLiteral("bench.db"));
        QString error;
        if (!createEmbeddedDatabase(f->path, &error))
            std::fprintf(stderr, "schema: %s\n", qPrintable(error));
        fill(f->path);
        f->tsql = findBook(Knjiga::PrihRashFBiH)->selectSql
            + browser::openingWhere(browser::periodStart(kYear), kYear, 1) + browser::orderBy();
        f->sqlite = translated(f->tsql);
        Session& s = session();
        s.ConnString = f->path;
        s.BrojPoduzeca = 1;
        s.RadnaGodina = kYear;
        return f;
    }();
    return *file;
}

double seconds(std::chrono::steady_clock::time_point since)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// Every field of every row, read once: what any grid must at least do.
int plainFetch(const QString& sql)
{
    const QString name = QStringLiteral("bench_plain");
    int rows = 0;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(book().path);
        db.open();
        QSqlQuery q(db);
        q.setForwardOnly(true);
        q.exec(sql);
        const int fields = q.record().count();
        while (q.next()) {
            for (int c = 0; c < fields; ++c)
                benchmark::DoNotOptimize(q.value(c));
            ++rows;
        }
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}

int openBook(BookModel& model)
{
    const QString sql = book().tsql;
    ResultSet rs;
    if (!session().db().open(sql, rs))
        std::fprintf(stderr, "open: %s\n", qPrintable(session().db().errorDescription()));
    model.setResultSet(std::move(rs));
    return model.entryCount();
}

void BM_OpenBookAgainstPlainFetch(benchmark::State& state)
{
    book();
    double plain = 0;
    double open = 0;
    int rows = 0;
    for (auto _ : state) {
        auto t0 = std::chrono::steady_clock::now();
        rows = plainFetch(book().sqlite);
        plain += seconds(t0);
        t0 = std::chrono::steady_clock::now();
        BookModel model;
        model.setBookKind(Knjiga::PrihRashFBiH);
        benchmark::DoNotOptimize(openBook(model));
        open += seconds(t0);
    }
    state.counters["rows"] = rows;
    state.counters["plain_ms"] = plain * 1000 / state.iterations();
    state.counters["open_ms"] = open * 1000 / state.iterations();
    state.counters["ratio"] = plain > 0 ? open / plain : 0;
}
BENCHMARK(BM_OpenBookAgainstPlainFetch)->Unit(benchmark::kMillisecond)->Iterations(5);

// A refresh: the same query again, the header sort in force re-applied, totals rebuilt.
void BM_RefreshSortedBook(benchmark::State& state)
{
    BookModel model;
    model.setBookKind(Knjiga::PrihRashFBiH);
    openBook(model);
    model.headerSort(5);   // Opis
    for (auto _ : state)
        benchmark::DoNotOptimize(openBook(model));
}
BENCHMARK(BM_RefreshSortedBook)->Unit(benchmark::kMillisecond)->Iterations(5);

// The model's own share of an open: taking the rows, the totals and the sort check.
void BM_ModelTakesRows(benchmark::State& state)
{
    const QString sql = book().tsql;
    ResultSet rows;
    session().db().open(sql, rows);
    BookModel model;
    model.setBookKind(Knjiga::PrihRashFBiH);
    for (auto _ : state) {
        state.PauseTiming();
        ResultSet copy = rows;
        state.ResumeTiming();
        model.setResultSet(std::move(copy));
    }
}
BENCHMARK(BM_ModelTakesRows)->Unit(benchmark::kMillisecond)->Iterations(5);

// One header click on 100,000 rows; argument: the grid column (5 Opis, 3 Datum,
// 8 Prihodi).
void BM_HeaderSort(benchmark::State& state)
{
    BookModel model;
    model.setBookKind(Knjiga::PrihRashFBiH);
    openBook(model);
    for (auto _ : state)
        benchmark::DoNotOptimize(model.headerSort(int(state.range(0))));
}
BENCHMARK(BM_HeaderSort)->Arg(5)->Arg(3)->Arg(8)->Unit(benchmark::kMillisecond)->Iterations(6);

// What the view asks for: the display text of one screenful of cells.
void BM_VisibleCells(benchmark::State& state)
{
    BookModel model;
    model.setBookKind(Knjiga::PrihRashFBiH);
    openBook(model);
    const int middle = model.rowCount() / 2;
    for (auto _ : state)
        for (int r = middle; r < middle + 40; ++r)
            for (int c = 0; c < model.columnCount(); ++c)
                benchmark::DoNotOptimize(model.data(model.index(r, c)));
}
BENCHMARK(BM_VisibleCells)->Unit(benchmark::kMicrosecond);

} // namespace
