#pragma once

#include <QString>
#include <QStringList>

namespace knjige::cli {

// knjige check: the book check's report on standard output. Exit 0 when it finds
// nothing, 1 when it reports findings, 2 when the book cannot be read or the command
// line is wrong.
int runCheck(const QStringList& args);
QString checkUsage();

} // namespace knjige::cli
