#pragma once

#include <QString>
#include <QVector>
#include <QtGlobal>

namespace knjige::db
{
class Database;
} // namespace knjige::db

namespace knjige::demo
{

// The demonstration company: what a new user sees in the embedded database before
// keeping books of their own. Everything it holds is made up.
constexpr qint16 BrojPoduzeca = 1;
// Partner codes of the company's two shops; the trade books are kept for both.
constexpr qint32 Maloprodaja1 = 501;
constexpr qint32 Maloprodaja2 = 502;

QString nazivFirme();

// Fills a database that already has the book tables, dbo.Komitent and dbo.CONFIG with
// the demonstration company: its configuration row, partners and shops, a working
// year of entries in every book for `year`, asset list rows of the year before (so
// the opening state can be generated) and a few entries of the year after. The same
// year always gives the same rows. Everything is written in one transaction: on
// failure nothing is left behind and *error holds the data layer's text.
bool fillDemoData(db::Database& db, int year, QString* error);
// The same for the current calendar year, which is the year the browser opens.
bool fillDemoData(db::Database& db, QString* error);

} // namespace knjige::demo
