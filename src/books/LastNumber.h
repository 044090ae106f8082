#pragma once

#include "session/Failure.h"

#include <QString>

// The shared routines every window calls to number a new entry; the module keeps its
// own name in the root namespace.
namespace knjige::DefVarijabli
{

// The SQL text that reads the highest ordinal number of a book for the company and
// year (and sales point in the trade books), as the book's record words it; empty for
// an unknown kind.
QString ZadnjiRBrojSql(int tipKnjige, qint16 brojPoduzeca, qint16 godina, qint32 brojProd = 0);

// The highest ordinal number in use, 0 for an empty book or an unknown kind; a failed
// query gives 0 and "Desila se greška: " + the data layer's text for the caller to tell.
struct LastNumber {
    qint32 number = 0;
    Notice failure;
};
// Reads the session's company and working year.
LastNumber ZadnjiRBroj(int tipKnjige, qint32 brojProd = 0);
// The same for another year of the session's company (the asset lists carried into
// the next year), leaving the session's working year as it is.
LastNumber lastNumberIn(int tipKnjige, qint16 godina, qint32 brojProd = 0);

} // namespace knjige::DefVarijabli
