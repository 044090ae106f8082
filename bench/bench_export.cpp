// "Prebaci u Excel" on the 100,000-entry book against the sqlite3 command-line tool's
// CSV export of the same query, both measured in the same iterations.
//
// Counters: "shell_ms" the sqlite3 tool (a process reading the query and writing CSV
// to a file); "export_ms" the component's export command without its process: the
// query into a result set and the file written (Windows-1250, texts in quotation
// marks); "write_ms" the dialog's part alone, writing the rows the browser already
// holds; "command_ms" `knjige export` as a process, like the shell. "ratio" =
// export_ms / shell_ms, "ratio_command" = command_ms / shell_ms. Aim: at most 1.5.
// Needs the sqlite3 tool (Debian package sqlite3).
#include "bench_book.h"
#include "output/OfficeExport.h"
#include "session/Session.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <benchmark/benchmark.h>
#include <chrono>

using namespace knjige;
using namespace knjige::bench;

namespace
{

// Runs a program with its standard output going to `out`; false unless it ends well.
bool run(const QString& program, const QStringList& arguments, const QString& out = {})
{
    QProcess p;
    // A failure says why on the benchmark's own error output.
    p.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    if (!out.isEmpty())
        p.setStandardOutputFile(out);
    p.start(program, arguments);
    return p.waitForFinished(120000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
}

qint64 lines(const QString& path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    qint64 n = 0;
    while (!f.atEnd()) {
        f.readLine();
        ++n;
    }
    return n;
}

void BM_ExportAgainstSqliteShell(benchmark::State& state)
{
    const QString shell = QStandardPaths::findExecutable(QStringLiteral("sqlite3"));
    if (shell.isEmpty()) {
        state.SkipWithError("the sqlite3 tool is not installed (apt-get install sqlite3)");
        return;
    }
    const BookFile& b = book();
    const QString shellOut = b.dir.filePath(QStringLiteral("shell.csv"));
    const QString ours = b.dir.filePath(QStringLiteral("export.csv"));
    const QString command = b.dir.filePath(QStringLiteral("command.csv"));
    const QStringList shellArgs = { QStringLiteral("-csv"), QStringLiteral("-header"), b.path, b.sqlite };
    const QStringList commandArgs = { QStringLiteral("export"), QStringLiteral("96"), QStringLiteral("--db"), b.path,
        QStringLiteral("--company"), QStringLiteral("1"), QStringLiteral("--year"), QString::number(kYear),
        QStringLiteral("--out"), command, QStringLiteral("--quote"), QStringLiteral("--force") };
    double shellTime = 0, exportTime = 0, writeTime = 0, commandTime = 0;
    qint64 rows = 0;
    for (auto _ : state) {
        auto t0 = std::chrono::steady_clock::now();
        if (!run(shell, shellArgs, shellOut))
            state.SkipWithError("the sqlite3 tool failed on the query");
        shellTime += seconds(t0);

        t0 = std::chrono::steady_clock::now();
        db::ResultSet rs;
        if (!session().db().open(b.tsql, rs))
            state.SkipWithError("the query failed");
        const output::ExportResult written = output::exportToFile(rs, {}, ours);
        exportTime += seconds(t0);
        rows = written.rows;

        t0 = std::chrono::steady_clock::now();
        output::exportToFile(rs, {}, ours);
        writeTime += seconds(t0);

        t0 = std::chrono::steady_clock::now();
        if (!run(QStringLiteral(KNJIGE_PROGRAM), commandArgs))
            state.SkipWithError("knjige export failed");
        commandTime += seconds(t0);
    }
    if (rows != kEntries || lines(shellOut) != kEntries + 1 || lines(command) != kEntries + 1)
        state.SkipWithError("the files do not hold every entry");
    const double n = double(state.iterations());
    state.counters["rows"] = double(rows);
    state.counters["shell_ms"] = shellTime * 1000 / n;
    state.counters["export_ms"] = exportTime * 1000 / n;
    state.counters["write_ms"] = writeTime * 1000 / n;
    state.counters["command_ms"] = commandTime * 1000 / n;
    state.counters["ratio"] = exportTime / shellTime;
    state.counters["ratio_command"] = commandTime / shellTime;
}
BENCHMARK(BM_ExportAgainstSqliteShell)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace
