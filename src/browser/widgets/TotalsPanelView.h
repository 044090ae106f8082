#pragma once

#include <QDate>

#include <memory>

class QTreeWidget;

namespace knjige
{

class ReadAside;

// Starts the read of the panel's rows aside (see ReadAside), to be handed to
// osvjeziPanel once the grid is filled; nothing for a kind without a panel.
std::unique_ptr<ReadAside> pocniCitanjePanela(
    int bookKind, qint32 salesPoint, const QDate& periodStart, const QDate& periodEnd);

// Rebuilds the running totals list under a book's grid (lvStanje): clears it, lays the
// kind's columns, reads the rows of the period from the session's database and adds
// the total row. A kind without a panel leaves the list empty and hidden. A failed
// read is reported to the person and leaves the columns without rows; false then.
// `started` is the read pocniCitanjePanela started for the same arguments, if any.
bool osvjeziPanel(QTreeWidget& lvStanje, int bookKind, qint32 salesPoint, const QDate& periodStart,
    const QDate& periodEnd, ReadAside* started = nullptr);

} // namespace knjige
