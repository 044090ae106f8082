// Renumbering by date of a book of 100,000 entries with 20,000 linked receivables
// rows, through the component (read, question answered, numbers and links rewritten in
// one transaction), against one set-based UPDATE that gives the same numbers on the
// same data, run on a fresh copy of the book in the same iteration.
//
// Counters: "ratio" = renumbering time / UPDATE time; "statements" = requests the
// renumbering sent to the database. Aim: a ratio of at most 3, and statements that do
// not grow with the rows.
#include "books/Schema.h"
#include "browser/Renumbering.h"
#include "journal/Journal.h"
#include "session/Interaction.h"
#include "session/Session.h"

#include <QDate>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <memory>
#include <sqlite3.h>
#include <vector>

using namespace knjige;

namespace
{

constexpr int kEntries = 100000;
constexpr int kLinks = 20000;
constexpr int kYear = 2016;

// The numbers the book takes, all at once: each entry's place in the order of dates.
const char* const kSetBased
    = "UPDATE KnjPrihRashFBiH AS K SET RBroj = N.Novi FROM (SELECT rowid AS Red, ROW_NUMBER() OVER "
      "(ORDER BY Datum, Vrsta) AS Novi FROM KnjPrihRashFBiH WHERE GodinaKnj=2016 AND BrojPoduzeca=1) AS N "
      "WHERE K.rowid = N.Red";

// Entries numbered in the order they were written, dated in another order.
void fill(const QString& path)
{
    const QString name = QStringLiteral("bench_renumber_fill");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        db.open();
        db.transaction();
        QSqlQuery q(db);
        q.prepare(QStringLiteral("INSERT INTO KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Opis,Vrsta,"
                                 "Iznos,IznosPDV) VALUES (1,?,?,2016,?,?,?,?,0)"));
        for (int i = 1; i <= kEntries; ++i) {
            q.addBindValue(i);
            q.addBindValue(QDate(kYear, 1, 1).addDays(i * 7919 % 366).toString(Qt::ISODate));
            q.addBindValue(QStringLiteral("R-%1").arg(i));
            q.addBindValue(QStringLiteral("Stavka %1").arg(i));
            q.addBindValue(11 + i % 7);
            q.addBindValue(double(i % 9973));
            if (!q.exec())
                std::fprintf(stderr, "fill: %s\n", qPrintable(q.lastError().text()));
        }
        q.prepare(QStringLiteral("INSERT INTO KnjEvidPotrIObvFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,SifKomit,Vrsta,"
                                 "Opis,Iznos,RBrojKPR) VALUES (1,?,'2016-05-05',2016,1,11,'',1,?)"));
        for (int j = 1; j <= kLinks; ++j) {
            q.addBindValue(j);
            q.addBindValue(j * 37 % kEntries + 1);
            q.exec();
        }
        db.commit();
    }
    QSqlDatabase::removeDatabase(name);
}

struct Books {
    QTemporaryDir dir;
    QString master;
    QString work; // renumbered by the component
    QString baseline; // renumbered by the one UPDATE
};

Books& books()
{
    static std::unique_ptr<Books> b = [] {
        auto f = std::make_unique<Books>();
        f->master = f->dir.filePath(QStringLiteral("master.db"));
        f->work = f->dir.filePath(QStringLiteral("work.db"));
        f->baseline = f->dir.filePath(QStringLiteral("baseline.db"));
        QString error;
        if (!books::createEmbeddedDatabase(f->master, &error))
            std::fprintf(stderr, "schema: %s\n", qPrintable(error));
        fill(f->master);
        // The book has been opened before: its journal holds the baseline, and the
        // renumbering adds its own records to it.
        db::Database db;
        QString journalError;
        if (!db.connect(f->master) || !journal::ensureBaseline(db, { 96, 1, kYear, 0 }, &journalError))
            std::fprintf(stderr, "journal: %s\n", qPrintable(journalError + db.errorDescription()));
        return f;
    }();
    return *b;
}

void copyMaster(const QString& to)
{
    QFile::remove(to);
    QFile::copy(books().master, to);
}

// The person at the screen says Yes to the question.
class SaysYes final : public Interaction
{
public:
    Answer show(const Message&) override { return Answer::Yes; }
    int exec(QDialog&) override { return 0; }
    QString chooseSaveFile(const FileChoice&) override { return {}; }
    QString chooseOpenFile(const FileChoice&) override { return {}; }
    bool startProgram(const QString&, const QStringList&) override { return false; }
};

double runSetBased(const QString& path)
{
    sqlite3* db = nullptr;
    const QByteArray file = path.toUtf8();
    sqlite3_open(file.constData(), &db);
    const auto t0 = std::chrono::steady_clock::now();
    if (sqlite3_exec(db, kSetBased, nullptr, nullptr, nullptr) != SQLITE_OK)
        std::fprintf(stderr, "set-based: %s\n", sqlite3_errmsg(db));
    const double took = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    sqlite3_close(db);
    return took;
}

std::vector<qint64> numbers(const QString& path)
{
    std::vector<qint64> out;
    sqlite3* db = nullptr;
    const QByteArray file = path.toUtf8();
    sqlite3_open(file.constData(), &db);
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, "SELECT RBroj FROM KnjPrihRashFBiH ORDER BY rowid", -1, &st, nullptr);
    while (sqlite3_step(st) == SQLITE_ROW)
        out.push_back(sqlite3_column_int64(st, 0));
    sqlite3_finalize(st);
    sqlite3_close(db);
    return out;
}

void BM_RenumberByDateAgainstOneUpdate(benchmark::State& state)
{
    Books& b = books();
    Session& s = session();
    const Session saved = s;
    auto previous = setInteraction(std::make_unique<SaysYes>());
    s.BrojPoduzeca = 1;
    s.RadnaGodina = kYear;
    double ours = 0;
    double setBased = 0;
    quint64 statements = 0;
    for (auto _ : state) {
        state.PauseTiming();
        s.db().disconnect();
        copyMaster(b.work);
        copyMaster(b.baseline);
        s.ConnString = b.work;
        s.db(); // connected before the clock runs
        const quint64 before = s.db().requestCount();
        state.ResumeTiming();

        const auto t0 = std::chrono::steady_clock::now();
        const browser::renumber::After after = browser::renumber::byDate(browser::renumber::sessionBook(96)).after;
        ours += std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        setBased += runSetBased(b.baseline);

        state.PauseTiming();
        statements = s.db().requestCount() - before;
        s.db().disconnect();
        if (after != browser::renumber::After::Reload || numbers(b.work) != numbers(b.baseline))
            state.SkipWithError("the renumbering did not give the numbers of the one UPDATE");
        state.ResumeTiming();
    }
    const double n = double(state.iterations());
    state.counters["renumber_ms"] = ours * 1000 / n;
    state.counters["update_ms"] = setBased * 1000 / n;
    state.counters["ratio"] = setBased > 0 ? ours / setBased : 0;
    state.counters["statements"] = double(statements);
    setInteraction(std::move(previous));
    s.ConnString = saved.ConnString;
    s.BrojPoduzeca = saved.BrojPoduzeca;
    s.RadnaGodina = saved.RadnaGodina;
}
BENCHMARK(BM_RenumberByDateAgainstOneUpdate)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace
