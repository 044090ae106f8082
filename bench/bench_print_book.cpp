// Printing the 100,000-entry FBiH income and expense book into a PDF file.
//
// BM_PrintCommand runs `knjige print` as a nightly job would, in a process of its own,
// and reports its wall time and peak resident memory (aims: at most 10 s and 300 MB).
// BM_PrintInProcess splits the same work: reading the rows, and laying out and
// writing the pages.
#include "books/BookKind.h"
#include "books/Schema.h"
#include "browser/BrowserRules.h"
#include "output/ReportHeader.h"
#include "output/ReportLayout.h"
#include "output/widgets/ReportPrinter.h"
#include "session/Session.h"

#include <QDate>
#include <QFileInfo>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <memory>

#ifdef Q_OS_UNIX
#include <sys/resource.h>
#endif

using namespace knjige;

namespace {

constexpr int kEntries = 100000;
constexpr int kYear = 2016;

struct PrintFile {
    QTemporaryDir dir;
    QString db;
    QString pdf;
};

// Entries of every kind with descriptions of differing length, so that some wrap.
void fill(const QString& path)
{
    const QString name = QStringLiteral("bench_print_fill");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        db.open();
        db.transaction();
        QSqlQuery q(db);
        q.prepare(QStringLiteral("INSERT INTO KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Opis,Vrsta,"
                                 "Iznos,IznosPDV) VALUES (1,?,?,?,?,?,?,?,?)"));
        const int kinds[] = {11, 12, 13, 16, 17, 18, 19};
        const QString texts[] = {QStringLiteral("Uplata pazara"), QStringLiteral("Nabavka robe po fakturi"),
                                 QStringLiteral("Bruto plaće za mjesec i doprinosi za penzijsko osiguranje"),
                                 QStringLiteral("Gorivo"), QStringLiteral("Zakup poslovnog prostora u ulici Ferhadija")};
        for (int i = 1; i <= kEntries; ++i) {
            const double iznos = double((i * 7919) % 1000000) / 100.0;
            q.addBindValue(i);
            q.addBindValue(QDate(kYear, 1, 1).addDays(i * 365 / kEntries).toString(Qt::ISODate));
            q.addBindValue(kYear);
            q.addBindValue(QStringLiteral("D-%1").arg(i));
            q.addBindValue(texts[i % 5] + QStringLiteral(" %1").arg(i));
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

PrintFile& book()
{
    static std::unique_ptr<PrintFile> file = [] {
        auto f = std::make_unique<PrintFile>();
        f->db = f->dir.filePath(QStringLiteral("print.db"));
        f->pdf = f->dir.filePath(QStringLiteral("knjiga.pdf"));
        QString error;
        if (!createEmbeddedDatabase(f->db, &error))
            std::fprintf(stderr, "schema: %s\n", qPrintable(error));
        fill(f->db);
        return f;
    }();
    return *file;
}

double seconds(std::chrono::steady_clock::time_point since)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

void BM_PrintCommand(benchmark::State& state)
{
    const PrintFile& f = book();
    double total = 0;
    for (auto _ : state) {
        const auto t0 = std::chrono::steady_clock::now();
        QProcess knjige;
        knjige.start(QStringLiteral(KNJIGE_PROGRAM),
                     {QStringLiteral("print"), QStringLiteral("96"), QStringLiteral("--db"), f.db,
                      QStringLiteral("--company"), QStringLiteral("1"), QStringLiteral("--year"),
                      QString::number(kYear), QStringLiteral("--pdf"), f.pdf});
        if (!knjige.waitForFinished(120000) || knjige.exitCode() != 0) {
            state.SkipWithError(knjige.readAllStandardError().constData());
            return;
        }
        total += seconds(t0);
    }
    state.counters["seconds"] = total / double(state.iterations());
    state.counters["pdf_mb"] = double(QFileInfo(f.pdf).size()) / (1024.0 * 1024.0);
#ifdef Q_OS_UNIX
    // The largest child waited for: the print processes alone.
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    state.counters["peak_rss_mb"] = double(usage.ru_maxrss) / 1024.0;
#endif
}
BENCHMARK(BM_PrintCommand)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_PrintInProcess(benchmark::State& state)
{
    const PrintFile& f = book();
    Session& s = session();
    s.ConnString = QStringLiteral("sqlite:") + f.db;
    s.BrojPoduzeca = 1;
    s.RadnaGodina = kYear;
    const QString sql = findBook(Knjiga::PrihRashFBiH)->selectSql
        + browser::openingWhere(browser::periodStart(kYear), kYear, 1) + browser::orderBy();
    double read = 0;
    double write = 0;
    int pages = 0;
    for (auto _ : state) {
        auto t0 = std::chrono::steady_clock::now();
        ResultSet rows;
        if (!s.db().open(sql, rows)) {
            state.SkipWithError("the query failed");
            return;
        }
        read += seconds(t0);
        t0 = std::chrono::steady_clock::now();
        const report::BookFilter filter{{}, browser::periodStart(kYear), browser::periodEnd(kYear), 0};
        ReportPrinter printer(report::bookLayout(Knjiga::PrihRashFBiH),
                              report::bookHeader(Knjiga::PrihRashFBiH, filter, rows), rows);
        QString error;
        if (!printer.writePdf(f.pdf, &error)) {
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
    s.db().disconnect();
}
BENCHMARK(BM_PrintInProcess)->Unit(benchmark::kMillisecond)->Iterations(2);

} // namespace
