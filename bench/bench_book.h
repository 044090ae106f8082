#pragma once

// The book every benchmark measures: 100,000 entries of the income and expense book
// FBiH (96) of company 1 for 2016, in a throwaway embedded database made once per run.
#include <QByteArray>
#include <QString>
#include <QTemporaryDir>
#include <chrono>

struct sqlite3;

namespace knjige::bench
{

constexpr int kEntries = 100000;
constexpr int kYear = 2016;

struct BookFile {
    QTemporaryDir dir;
    QString path;
    QString tsql; // the browser's opening query as the system writes it
    QString sqlite; // the same query as the embedded database runs it
};

// Made on first use; the session then points at it (company 1, year 2016, level "0").
BookFile& book();

// Seconds since `since`, on the steady clock.
inline double seconds(std::chrono::steady_clock::time_point since)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// The yardstick: SQLite's own API on an open connection to book(), every column of
// every row of its opening query read once in its stored type, nothing kept. What any
// grid must at least do.
class PlainFetch
{
public:
    PlainFetch();
    ~PlainFetch();
    PlainFetch(const PlainFetch&) = delete;
    PlainFetch& operator=(const PlainFetch&) = delete;
    // Returns the number of rows.
    int run();

private:
    sqlite3* m_db = nullptr;
    QByteArray m_sql;
};

} // namespace knjige::bench
