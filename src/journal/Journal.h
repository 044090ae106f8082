#pragma once

#include "session/db/Database.h"
#include "session/db/ResultSet.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>
#include <utility>
#include <vector>

// The change journal: every change the component makes to a book leaves a record in
// dbo.KnjDnevnik, written in the transaction of the change itself, so the two stand or
// fall together. Records of one company and year form a chain: each carries a SHA-256
// hash over its own fields and the hash of the record before it, so a record changed,
// removed or slipped in afterwards breaks the chain where it was touched.
//
// Rows travel in one canonical text form: the columns in the order of their names,
// "NAME=value", separated by tabs; numbers in their shortest exact form, dates as
// yyyy-MM-dd, NULL as \N, texts with backslash, tab and line breaks escaped.
namespace knjige::journal
{

// The record kinds (the Radnja column).
namespace RecordKind
{
inline const QString Osnova = QStringLiteral("osnova"); // baseline: every row as it stood
inline const QString Unos = QStringLiteral("unos");
inline const QString Izmjena = QStringLiteral("izmjena");
inline const QString Brisanje = QStringLiteral("brisanje");
inline const QString BrisanjePrikazanih = QStringLiteral("brisanje prikazanih");
inline const QString Umetanje = QStringLiteral("umetanje");
inline const QString Renumeracija = QStringLiteral("renumeracija");
inline const QString Veze = QStringLiteral("veze");
inline const QString PocetnaStanja = QStringLiteral("početna stanja");
inline const QString Generiranje = QStringLiteral("generiranje");
inline const QString Zakljucavanje = QStringLiteral("zaključavanje");
inline const QString Otkljucavanje = QStringLiteral("otključavanje");
} // namespace RecordKind

// One book of one company and year; brojProd is the sales point of a trade book.
struct Scope {
    int tip = 0;
    qint16 company = 0;
    qint16 year = 0;
    qint32 brojProd = 0;
};

struct Record {
    qint64 redni = 0; // place in the chain of the company and year, from 1
    int tip = 0;
    qint32 brojProd = 0;
    QString vrijeme; // server time, yyyy-MM-dd hh:mm:ss.zzz
    QString operater;
    QString radnja;
    std::optional<qint64> rBroj;
    QString prije;
    QString poslije;
    QString hash;
};

// --- Canonical text -----------------------------------------------------------------
QString valueText(const QVariant& value);
QString rowText(const db::ResultSet& rows, int row);
QString rowText(const db::RowChange::Values& values);
// Back from text: upper-case column name -> value text.
QMap<QString, QString> parseRow(const QString& text);
// The columns an update leaves as they were, with those it writes.
db::RowChange::Values merged(const db::RowChange::Values& original, const db::RowChange::Values& written);
// What tells apart two rows of one number in a list of number changes: a short hash of
// their date and description.
QString rowMark(const QString& datum, const QString& opis);
QString rowMark(const db::ResultSet& rows, int row);

// SHA-256 (hex) over the record's fields and the previous record's hash.
QString recordHash(qint16 company, qint16 year, const Record& r, const QString& previousHash);

// --- The table ----------------------------------------------------------------------
// Whether the database has dbo.KnjDnevnik; asked once per connection.
bool available(db::Database& db);
// Whether the database has the table; asked once per connection and table.
bool hasTable(db::Database& db, const QString& table);
// Every record of the company and year, in chain order. False when unreadable.
bool readChain(db::Database& db, qint16 company, qint16 year, std::vector<Record>& out);
// The chain's rows as read, for a chain too long to hold as records all at once, and
// one record of them; without `texts` its Prije and Poslije stay empty (read them from
// `rows` where each is needed).
bool readChain(db::Database& db, qint16 company, qint16 year, db::ResultSet& rows);
Record chainRecord(const db::ResultSet& rows, int row, bool texts = true);

// The table whose rows the kind keeps; two kinds may share one (97 and 102, 98 and 106).
QString tableOf(int tip);
// The kinds that share the table of tip.
QList<int> kindsOfTable(int tip);

// --- Writing ------------------------------------------------------------------------
// A change of one book: append() fills in time, operator, chain place and hash. Every
// call belongs in the transaction of the change. Without the table each call does
// nothing and succeeds. On failure *error holds the data layer's text.
struct Change {
    QString radnja;
    std::optional<qint64> rBroj;
    QString prije;
    QString poslije;
};
bool append(db::Database& db, const Scope& scope, const Change& change, QString* error);

// The first record of a book is its baseline: every row of its table for the company
// and year as it stands. Call before a change is made (the baseline must not contain
// it) and when a book is opened. The income and expense book FBiH and the receivables
// linked to it take their baselines together. A baseline of more than kBaselineRows
// rows is several records, written in one transaction: the first as any baseline, each
// further one with its place (2, 3, ...) as its number.
inline constexpr int kBaselineRows = 10000;
bool ensureBaseline(db::Database& db, const Scope& scope, QString* error);

// A baseline for every company and year found in every book (a database just filled).
bool baselineEveryBook(db::Database& db, QString* error);

// A single row written by an editor or generation.
bool appendRowChange(db::Database& db, const Scope& scope, const db::RowChange& change, QString* error);

// Number changes as one record's text: "old>new" lines, "old#mark>new" where the old
// number is shared by more than one row.
QString numberChanges(
    const db::ResultSet& rows, const QString& column, const std::vector<std::optional<qint64>>& changes);
// Link value changes that move every row of the value: "=old>new" lines.
QString valueChanges(const std::vector<std::pair<qint64, qint64>>& pairs);
// Rows as one text, one per line.
QString rowsText(const db::ResultSet& rows);

} // namespace knjige::journal
