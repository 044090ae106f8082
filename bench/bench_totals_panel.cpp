// The running totals panel on a book of 100,000 entries: what its rebuild adds to a
// refresh, against a plain fetch of the browser's rows through SQLite's own C API.
//
// Counters: "ratio" = panel time / plain fetch time, both measured in the same
// iterations; "cpu_ratio" the same in processor time, which a machine busy with other
// work does not distort (both parts are bound by the processor: the file is cached).
// Aim: at most 0.3. Argument: 0 the whole year (one part), 1 March (the
// months before it and March, two parts).
#include "bench_book.h"
#include "books/BookKind.h"
#include "browser/widgets/TotalsPanelView.h"
#include "session/TSqlFunctions.h"

#include <QApplication>
#include <QTreeWidget>
#include <benchmark/benchmark.h>
#include <chrono>
#include <ctime>
#include <sqlite3.h>

using namespace knjige;

namespace
{

using bench::kYear;

double seconds(std::chrono::steady_clock::time_point since)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// Every column of every row of the opening query read once in its stored type.
int plainFetch(sqlite3* db, const QByteArray& sql)
{
    sqlite3_stmt* st = nullptr;
    if (sqlite3_prepare_v2(db, sql.constData(), int(sql.size()), &st, nullptr) != SQLITE_OK)
        return 0;
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

void BM_TotalsPanelAgainstPlainFetch(benchmark::State& state)
{
    const QByteArray plainSql = bench::book().sqlite.toUtf8();
    sqlite3* plain = nullptr;
    if (sqlite3_open_v2(bench::book().path.toUtf8().constData(), &plain, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK
        || !tsql::registerFunctions(plain))
        state.SkipWithError("the plain connection failed");
    const bool march = state.range(0) == 1;
    const QDate from = march ? QDate(kYear, 3, 1) : QDate(kYear, 1, 1);
    const QDate to = march ? QDate(kYear, 3, 31) : QDate(kYear, 12, 31);
    QTreeWidget lvStanje;
    double plainTime = 0;
    double panelTime = 0;
    std::clock_t plainCpu = 0;
    std::clock_t panelCpu = 0;
    int rows = 0;
    for (auto _ : state) {
        auto t0 = std::chrono::steady_clock::now();
        std::clock_t c0 = std::clock();
        rows = plainFetch(plain, plainSql);
        plainTime += seconds(t0);
        plainCpu += std::clock() - c0;
        t0 = std::chrono::steady_clock::now();
        c0 = std::clock();
        if (!osvjeziPanel(lvStanje, Knjiga::PrihRashFBiH, 0, from, to))
            state.SkipWithError("the panel's read failed");
        QApplication::processEvents();
        panelTime += seconds(t0);
        panelCpu += std::clock() - c0;
    }
    sqlite3_close(plain);
    if (lvStanje.topLevelItemCount() != (march ? 3 : 2))
        state.SkipWithError("the panel lacks rows");
    const double n = double(state.iterations());
    state.counters["rows"] = rows;
    state.counters["plain_ms"] = plainTime * 1000 / n;
    state.counters["panel_ms"] = panelTime * 1000 / n;
    state.counters["ratio"] = plainTime > 0 ? panelTime / plainTime : 0;
    state.counters["cpu_ratio"] = plainCpu > 0 ? double(panelCpu) / double(plainCpu) : 0;
}
BENCHMARK(BM_TotalsPanelAgainstPlainFetch)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace
