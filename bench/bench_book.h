#pragma once

// The book every benchmark measures: 100,000 entries of the income and expense book
// FBiH (96) of company 1 for 2016, in a throwaway embedded database made once per run.
#include <QString>
#include <QTemporaryDir>

namespace knjige::bench {

constexpr int kEntries = 100000;
constexpr int kYear = 2016;

struct BookFile {
    QTemporaryDir dir;
    QString path;
    QString tsql;     // the browser's opening query as the system writes it
    QString sqlite;   // the same query as the embedded database runs it
};

// Made on first use; the session then points at it (company 1, year 2016, level "0").
BookFile& book();

} // namespace knjige::bench
