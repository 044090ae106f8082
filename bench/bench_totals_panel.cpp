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
#include "session/tsql/TSqlFunctions.h"

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

void BM_TotalsPanelAgainstPlainFetch(benchmark::State& state)
{
    bench::PlainFetch plain;
    const bool march = state.range(0) == 1;
    const QDate from = march ? QDate(kYear, 3, 1) : QDate(kYear, 1, 1);
    const QDate to = march ? QDate(kYear, 3, 31) : QDate(kYear, 12, 31);
    const browser::BookQuery query
        = browser::commandQuery(Knjiga::PrihRashFBiH, 1, qint16(kYear), std::make_pair(from, to));
    QTreeWidget lvStanje;
    double plainTime = 0;
    double panelTime = 0;
    std::clock_t plainCpu = 0;
    std::clock_t panelCpu = 0;
    int rows = 0;
    for (auto _ : state) {
        auto t0 = std::chrono::steady_clock::now();
        std::clock_t c0 = std::clock();
        rows = plain.run();
        plainTime += bench::seconds(t0);
        plainCpu += std::clock() - c0;
        t0 = std::chrono::steady_clock::now();
        c0 = std::clock();
        if (!browser::osvjeziPanel(lvStanje, query))
            state.SkipWithError("the panel's read failed");
        QApplication::processEvents();
        panelTime += bench::seconds(t0);
        panelCpu += std::clock() - c0;
    }
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
