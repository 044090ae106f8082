#pragma once

#include <QString>
#include <QStringList>

namespace knjige::host::cli
{

// knjige export: a book of one company and year written as the browser's
// "Prebaci u Excel" writes it. Exit codes as the other commands: 0 done, 1 the work
// failed, 2 the command line is wrong.
int runExport(const QStringList& args);
QString exportUsage();

// An output file the command may not write, refused with its message and exit code:
// a folder, or a file that exists while --force is not given. 0 when it may be written.
// (The open database itself is refused at writing, --force or not.)
int refuseOutput(const QString& path, bool force);

} // namespace knjige::host::cli
