// Printing the 100,000-entry FBiH income and expense book into a PDF file.
//
// BM_PrintCommand runs `knjige print` as a nightly job would, in a process of its own,
// and reports its wall time and peak resident memory (aims: at most 10 s and 300 MB).
// BM_PrintInProcess splits the same work: reading the rows, and laying out and
// writing the pages; "ratio" is the two together over the plain fetch of the same
// query in the same iterations (aim: at most 30). Its argument 1 writes the PDF in parts
// on several cores as the program does, 0 in one piece, for the two side by side.
#include "bench_book.h"
#include "books/BookKind.h"
#include "browser/BrowserRules.h"
#include "output/ReportHeader.h"
#include "output/ReportLayout.h"
#include "output/widgets/ReportPrinter.h"
#include "output/widgets/ReportText.h"
#include "session/Session.h"

#include <QDate>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <benchmark/benchmark.h>
#include <chrono>

#ifdef Q_OS_UNIX
#include <sys/resource.h>
#endif

using namespace knjige;
using knjige::bench::seconds;

namespace
{

QString pdfPath()
{
    return bench::book().dir.filePath(QStringLiteral("knjiga.pdf"));
}

#ifdef Q_OS_UNIX
double childCpuSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_CHILDREN, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}
#endif

// Peak memory is that of the largest child process waited for in the run: run this
// benchmark alone (--benchmark_filter=BM_PrintCommand) for the print's own figure.
void BM_PrintCommand(benchmark::State& state)
{
    const QString db = bench::book().path;
    const QString pdf = pdfPath();
    double total = 0;
#ifdef Q_OS_UNIX
    const double cpuBefore = childCpuSeconds();
#endif
    for (auto _ : state) {
        const auto t0 = std::chrono::steady_clock::now();
        QProcess knjige;
        knjige.start(QStringLiteral(KNJIGE_PROGRAM),
            { QStringLiteral("print"), QStringLiteral("96"), QStringLiteral("--db"), db, QStringLiteral("--company"),
                QStringLiteral("1"), QStringLiteral("--year"), QString::number(bench::kYear), QStringLiteral("--pdf"),
                pdf });
        if (!knjige.waitForFinished(120000) || knjige.exitCode() != 0) {
            state.SkipWithError(knjige.readAllStandardError().constData());
            return;
        }
        total += seconds(t0);
    }
    const double n = double(state.iterations());
    state.counters["seconds"] = total / n;
    state.counters["pdf_mb"] = double(QFileInfo(pdf).size()) / (1024.0 * 1024.0);
#ifdef Q_OS_UNIX
    state.counters["cpu_seconds"] = (childCpuSeconds() - cpuBefore) / n;
    rusage usage {};
    getrusage(RUSAGE_CHILDREN, &usage);
    state.counters["peak_rss_mb"] = double(usage.ru_maxrss) / 1024.0;
#endif
}
BENCHMARK(BM_PrintCommand)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_PrintInProcess(benchmark::State& state)
{
    const QString sql = bench::book().tsql;
    const QString pdf = pdfPath();
    Session& s = session();
    const int kYear = bench::kYear;
    bench::PlainFetch plain;
    double plainTime = 0;
    double read = 0;
    double write = 0;
    int pages = 0;
    output::ReportPrinter::setParallelPdfFrom(state.range(0) ? output::ReportPrinter::kParallelPdfPages : 0);
    for (auto _ : state) {
        auto t0 = std::chrono::steady_clock::now();
        plain.run();
        plainTime += seconds(t0);
        t0 = std::chrono::steady_clock::now();
        db::ResultSet rows;
        if (!s.db().open(sql, rows)) {
            state.SkipWithError("the query failed");
            return;
        }
        read += seconds(t0);
        t0 = std::chrono::steady_clock::now();
        const browser::BookQuery query = browser::openingQuery(Knjiga::PrihRashFBiH, 1, kYear);
        output::ReportPrinter printer(
            output::report::bookLayout(Knjiga::PrihRashFBiH), output::report::bookHeader(query, rows), rows);
        QString error;
        if (!printer.writePdf(pdf, &error)) {
            state.SkipWithError(qPrintable(error));
            return;
        }
        write += seconds(t0);
        pages = int(printer.pages().size());
    }
    const double n = double(state.iterations());
    state.counters["pages"] = pages;
    state.counters["read_ms"] = read * 1000 / n;
    state.counters["layout_and_pdf_ms"] = write * 1000 / n;
    state.counters["plain_ms"] = plainTime * 1000 / n;
    state.counters["ratio"] = plainTime > 0 ? (read + write) / plainTime : 0;
    output::ReportPrinter::setParallelPdfFrom(output::ReportPrinter::kParallelPdfPages);
}
BENCHMARK(BM_PrintInProcess)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(2);

// One description of N characters without a blank, wrapped into a column thirty
// characters wide: the time should grow with N, not with a power of it.
void BM_WrapUnbrokenText(benchmark::State& state)
{
    const QImage device(8, 8, QImage::Format_RGB32);
    const output::GlyphText font(QFont(), device);
    const QString text(qsizetype(state.range(0)), u'W');
    const qreal width = font.advance(u'W') * 30.5;
    for (auto _ : state)
        benchmark::DoNotOptimize(output::wrapText(text, width, font));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_WrapUnbrokenText)
    ->Arg(2500)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity(benchmark::oN);

} // namespace
