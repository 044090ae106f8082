#pragma once

#include "browser/BrowserRules.h"
#include "browser/FilterClause.h"

#include <QDate>
#include <QString>
#include <optional>
#include <utility>

namespace knjige::browser
{

// What selects one book's rows, from the window that shows them to the paper, the file
// and the checks they go to: the window owns one and hands it on; the commands build
// theirs with commandQuery, so a command's book is the one the window would show.
//
// The rows are always read with sql(): the kind's SELECT text, the WHERE clause of the
// filter in force and the ORDER BY, joined in that order; a filter replaces only the
// WHERE clause. filter.salesPoint is the trade book's sales point in force (0: none),
// which a later filter that names none leaves standing, so it may name a shop the WHERE
// clause no longer narrows to. The period is the filter's (the whole working year
// unless a filter set one). returnTo is a one-time request of the operation that
// changed data: the entry to make current after the next load, 0 for none.
struct BookQuery {
    int bookKind = 0;
    qint16 company = 0;
    qint16 year = 0;
    QString select;
    FilterState filter;
    QString orderBy = knjige::browser::orderBy();
    qint32 returnTo = 0;

    QString sql() const { return select + filter.where + orderBy; }
    qint32 salesPoint() const { return filter.salesPoint; }
};

// The book as it opens: the kind's SELECT, the opening WHERE clause of the company and
// year, the whole year as the period, no description and no sales point.
BookQuery openingQuery(int bookKind, qint16 company, qint16 year);

// Puts a filter in force: WHERE clause, conditions, description and period; the sales
// point only when the filter names one.
void applyFilter(BookQuery& query, const FilterState& filter);

// The book a command names: as it opens without a period or a sales point; otherwise
// what the filter form gives with the period checked (when there is one) and, in a
// trade book, the sales point chosen, named `salesPointName`.
BookQuery commandQuery(int bookKind, qint16 company, qint16 year, const std::optional<std::pair<QDate, QDate>>& period,
    qint32 salesPoint = 0, const QString& salesPointName = {});

} // namespace knjige::browser
