#pragma once

#include "browser/BookQuery.h"

#include <QString>
#include <QStringList>

namespace knjige::books
{
struct BookKind;
} // namespace knjige::books

namespace knjige::host::cli
{

struct Options;

// The book (code or class name), company, year and, in the trade books, sales point
// that a command names.
struct BookOptions {
    const books::BookKind* book = nullptr;
    int company = 0;
    int year = 0;
    int salesPoint = 0;

    // The book as the browser would read it, narrowed to `period` when one is given.
    browser::BookQuery query(const std::optional<std::pair<QDate, QDate>>& period = std::nullopt) const;
};
// Reads them from the command line, with the options the command also requires; 0
// when complete, else the exit code with the message (and `usage`) printed.
int readBook(const Options& o, const QString& usage, BookOptions& b, const QStringList& alsoRequired = {});

// knjige check: the book check's report on standard output. Exit 0 when it finds
// nothing, 1 when it reports findings, 2 when the book cannot be read or the command
// line is wrong.
int runCheck(const QStringList& args);
QString checkUsage();

// knjige lock: closes a book's period up to a date, or opens it with a reason.
int runLock(const QStringList& args);
QString lockUsage();

// knjige renumber and knjige insert: the browser's renumberings and insertion at a
// position, run unattended (--yes answers the window's question).
int runRenumber(const QStringList& args);
QString renumberUsage();
int runInsert(const QStringList& args);
QString insertUsage();

} // namespace knjige::host::cli
