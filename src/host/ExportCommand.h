#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

namespace knjige::cli {

// knjige export: a book of one company and year written as the browser's
// "Prebaci u Excel" writes it. Exit codes as the other commands: 0 done, 1 the work
// failed, 2 the command line is wrong.
int runExport(const QStringList& args);
QString exportUsage();

// An output file the command may not write, refused with its message and exit code:
// a folder, or a file that exists while --force is not given. 0 when it may be written.
// (The open database itself is refused at writing, --force or not.)
int refuseOutput(const QString& path, bool force);

// The browser's WHERE clause for a book narrowed to a period (both dates valid) or,
// with invalid dates, to the year from 1 January, and for the trade books to a sales
// point when `salesPoint` is not 0: the form the filter gives the same choices.
QString exportWhere(int kind, const QDate& from, const QDate& to, int company, int year, int salesPoint);

} // namespace knjige::cli
