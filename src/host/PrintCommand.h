#pragma once

#include <QString>
#include <QStringList>

namespace knjige::host
{

// `knjige print KNJIGA --db|--conn ... --company C --year Y [--period OD-DO] [--prod N]
// --pdf IZLAZ.pdf`: the book as the browser's Print lays it out, written to a PDF
// file without a window. Returns 0 done, 1 the work failed, 2 the command line is
// wrong. It needs fonts but no screen.
int runPrint(const QStringList& args);
QString printUsage();

} // namespace knjige::host
