#pragma once

#include <QString>
#include <QStringList>

namespace knjige::db
{
class Database;
} // namespace knjige::db

namespace knjige::demo
{

// The documents of the host's other modules that the DB income and expense book is
// generated from, for the demonstration company. They live in the same embedded
// file as the books, so that the generator's default source (the host's own
// database) finds them.

// The organisational units of the outgoing and incoming invoices: the first shop
// (daily takings, wholesale invoices, incoming invoices) and the second (daily
// takings only).
constexpr int OrgJed = 1;
constexpr int OrgJedDruga = 2;
// The supplier whose invoices are settled by compensation: every third day.
constexpr int CompensationSupplier = 201;
// The receiver of most internal dispatch notes (every fifth goes to 102).
constexpr int Primatelj = 101;

// The T-SQL statements of sql/sources.sql, which make the source tables.
QStringList sourceStatements();

// Makes the source tables (Ifakture, IFAKTUplate, KUF, KUFUplate, MOtpremInt,
// RIntOtprem, PRAVA) in a database that has none yet.
bool createSourceTables(db::Database& db, QString* error);

// Fills the source tables with a year of documents of the demonstration company:
// daily takings of both shops on every day but Sunday, wholesale invoices three days
// a week with their payments, incoming invoices of several suppliers with payments
// by bank statement or cash desk slip, internal dispatch notes of the warehouse and
// of the shops every other day, and the rights of `operators` (cut to 10 characters)
// to warehouse 501 and shops 501 and 502. Payments that would fall after the year
// are left out. The same year always gives the same rows. One transaction.
bool fillDemoSources(db::Database& db, int year, const QStringList& operators, QString* error);

} // namespace knjige::demo
