#pragma once

#include "browser/BookQuery.h"

#include <memory>

class QTreeWidget;

namespace knjige::db
{
class ReadAside;
} // namespace knjige::db

namespace knjige::browser
{

// Starts the read of the panel's rows aside (see ReadAside), to be handed to
// osvjeziPanel once the grid is filled; nothing for a kind without a panel.
std::unique_ptr<db::ReadAside> pocniCitanjePanela(const browser::BookQuery& query);

// Rebuilds the running totals list under a book's grid (lvStanje): clears it, lays the
// kind's columns, reads the rows of the query's period (and sales point) from the
// session's database and adds
// the total row. A kind without a panel leaves the list empty and hidden. A failed
// read is reported to the person and leaves the columns without rows; false then.
// `started` is the read pocniCitanjePanela started for the same query, if any.
bool osvjeziPanel(QTreeWidget& lvStanje, const browser::BookQuery& query, db::ReadAside* started = nullptr);

} // namespace knjige::browser
