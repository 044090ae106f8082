#pragma once

#include "journal/Journal.h"

#include <QDate>
#include <QString>
#include <optional>
#include <vector>

// Closed periods. A book's period is closed up to a date (dbo.KnjZakljucano, one row
// per company, year and book): no entry dated on or before it changes, and no such
// entry changes its number. Every write path asks here before it writes and refuses
// with the text of refusal().
namespace knjige::journal::periodlock
{

// Whether the database has dbo.KnjZakljucano; asked once per connection.
bool available(db::Database& db);

// The date the book is closed up to (a lock of a kind that shares the book's table
// counts too); invalid when open. False when the lock cannot be read.
bool lockDate(db::Database& db, const journal::Scope& scope, QDate* date, QString* error);

// "Razdoblje knjige je zaključano do dd.mm.yyyy. " followed by `what`.
QString refusal(const QDate& lock, const QString& what);

// Checks a write about to happen: every date given (the entry's old and new dates)
// must be after the lock. Empty when allowed, else the refusal; also the text of a
// lock that cannot be read.
QString refuseDates(db::Database& db, const journal::Scope& scope, const QList<QDate>& dates,
    const QString& what = QStringLiteral("Stavka datirana %1 ne može se mijenjati ni brisati."));
// The same for rows read whole: those with a change (every row without `changes`);
// `what` takes the row's number (%1) and date (%2).
QString refuseRows(db::Database& db, const journal::Scope& scope, const db::ResultSet& rows,
    const std::vector<std::optional<qint64>>* changes, const QString& what);
// The same against a lock date the caller has read already (invalid when open).
QString refuseRows(const QDate& lock, const db::ResultSet& rows, const std::vector<std::optional<qint64>>* changes,
    const QString& what);

// Closes the period up to `to` (on or after any earlier lock of the book), journaled.
bool lock(db::Database& db, const journal::Scope& scope, const QDate& to, QString* error);
// Opens it again; the reason goes into the journal.
bool unlock(db::Database& db, const journal::Scope& scope, const QString& reason, QString* error);

// Only operators of this access level close or open periods.
inline const QString kLevel = QStringLiteral("0");

} // namespace knjige::journal::periodlock
