#pragma once

#include "journal/Journal.h"
#include "session/Failure.h"

#include <QString>

namespace knjige::browser
{
struct BookQuery;
}

namespace knjige::browser::renumber
{

// The numbers an operation rewrites: one book of a company and year and, in the trade
// books, one sales point.
using Book = journal::Scope;

// The book of the session's company and year.
Book sessionBook(int tip, qint32 brojProd = 0);
// The book a query reads: its kind, company, year and sales point.
Book bookOf(const browser::BookQuery& query);

// Whether the book takes part in insertion and renumbering, as its record says (all
// but the asset lists).
bool takesPart(int tip);

// The offset that lifts every number (and every link to it) out of the way during a
// renumbering by date; a book is taken to hold fewer entries.
constexpr qint64 kOffset = 100000;

// --- The statements, as the system writes them -----------------------------------
// Shifts the numbers from n up by one; in the trade books those of every sales point.
QString shiftSql(const Book& b, qint32 n);
// The blank entry numbered n, dated 1 January of the year.
QString blankEntrySql(const Book& b, qint32 n);
// The book's rows, whole, with `order` (" order by RBroj") appended; the trade books
// are read for their sales point.
QString rowsSql(const Book& b, const QString& order);
// " order by Datum,Vrsta", or " order by Datum" for the books without entry kinds.
QString dateOrder(int tip);
// The receivables rows that link to an entry of the income and expense book FBiH.
QString linkedReceivablesSql(const Book& b);

// --- The operations ---------------------------------------------------------------
// Each runs in one transaction: it changes every number it should or, on any failure,
// none. Their questions go through the interaction seam as the work reaches them; the
// refusal or failure they end with is returned, for the caller to tell.

// Whether the browser re-reads the book afterwards.
enum class After { Stay, Reload };

// How an operation ended: whether the book changed (or may have) and what to tell the
// operator; an empty notice when all went well or the operator said no.
struct Outcome {
    After after = After::Stay;
    Notice notice;
};

// Opens a gap at number n and puts a blank entry into it, without a question: Reload
// when the entry is in. Stay when nothing changed: n is 0, the book takes no part, a
// statement failed (the data layer keeps its words), or a locked period refuses it
// (the notice says so).
Outcome insertAt(const Book& b, qint32 n);

// Closes gaps and duplicates in the order of the numbers, after asking. In the income
// and expense book FBiH the first receivables row linked to a changed number follows it.
Outcome byOrdinal(const Book& b);

// Numbers the book 1, 2, 3, ... in the order of the dates, after asking. In the income
// and expense book FBiH every receivables link follows its entry.
Outcome byDate(const Book& b);

} // namespace knjige::browser::renumber
