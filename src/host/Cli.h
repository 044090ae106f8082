#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

namespace knjige::host::cli
{

// The exit codes of every command: 0 done, 1 the work failed, 2 the command line is
// wrong, 3 the reader of standard output went away before everything was written
// (`knjige query ... | head -1`), which is no failure worth a message.
enum Exit { Done = 0, Failed = 1, Usage = 2, OutputClosed = 3 };

// A write to a pipe whose reader has gone fails as a write instead of ending the
// process (POSIX sends SIGPIPE); the commands that print results call it first.
void reportClosedOutputAsWriteError();
// Whether standard output failed because its reader has gone.
bool outputClosedByReader();

// Writes a problem to standard error and gives the exit code to return.
int complain(const QString& message, int code = Failed);

// The console commands. Each takes the arguments after its name, writes results to
// standard output and problems to standard error, and returns the exit code:
// 0 done, 1 the work failed, 2 the command line is wrong.
int runInit(const QStringList& args);
int runQuery(const QStringList& args);

QString initUsage();
QString queryUsage();

// Where `knjige init` puts the database when no --db is given.
QString defaultDatabasePath();
// Why `path` cannot be opened as an existing database file (a folder, a device, no
// such file); empty when it can. `missing` ends the text for a file that is not there.
QString databaseFileProblem(const QString& path, const QString& missing);

// The statements of a batch, in order: split at the ';' outside literals, comments
// and parentheses, pieces holding nothing but comments left out.
QStringList batchStatements(const QString& sql);

// Whether a statement gives rows to print (SELECT, WITH, EXEC ...), judged by its
// first word past comments and opening parentheses.
bool returnsRows(const QString& sql);

// A command line taken apart: options by name ("--db PATH" or "--db=PATH"), flags,
// the remaining arguments, or the error of an unknown or incomplete option.
struct Options {
    QMap<QString, QString> values;
    QSet<QString> flags;
    QStringList positional;
    QString error;
};
Options commandOptions(const QStringList& args, const QStringList& valueOptions, const QStringList& flagOptions);
// The connection string that --db or --conn names; empty, with the message printed and
// *code set to the exit code, when it names none or a database file that is missing.
QString commandConnection(const Options& options, const QString& usage, int* code);

} // namespace knjige::host::cli
