#pragma once

#include "browser/BookQuery.h"

class QTreeWidget;

namespace knjige
{

// Rebuilds the running totals list under a book's grid (lvStanje): clears it, lays the
// kind's columns, reads the rows of the query's period (and sales point) from the
// session's database and adds
// the total row. A kind without a panel leaves the list empty and hidden. A failed
// read is reported to the person and leaves the columns without rows; false then.
bool osvjeziPanel(QTreeWidget& lvStanje, const browser::BookQuery& query);

} // namespace knjige
