#include "browser/BookQuery.h"

#include "books/BookKind.h"

namespace knjige::browser
{

BookQuery openingQuery(int bookKind, qint16 company, qint16 year)
{
    BookQuery q;
    q.bookKind = bookKind;
    q.company = company;
    q.year = year;
    if (const books::BookKind* book = books::findBook(bookKind))
        q.select = book->selectSql;
    q.filter.periodStart = periodStart(year);
    q.filter.periodEnd = periodEnd(year);
    q.filter.where = openingWhere(q.filter.periodStart, year, company);
    return q;
}

void applyFilter(BookQuery& query, const FilterState& filter)
{
    const qint32 remembered = query.filter.salesPoint;
    query.filter = filter;
    if (filter.salesPoint == 0)
        query.filter.salesPoint = remembered;
}

BookQuery commandQuery(int bookKind, qint16 company, qint16 year, const std::optional<std::pair<QDate, QDate>>& period,
    qint32 salesPoint, const QString& salesPointName)
{
    BookQuery q = openingQuery(bookKind, company, year);
    const bool trade = books::isTradeBook(bookKind);
    if (!period && !(trade && salesPoint != 0))
        return q;
    FilterInput in;
    in.chkPoDatumima = period.has_value();
    if (period) {
        in.dpDatum = period->first;
        in.dpDatumDo = period->second;
    }
    if (trade) {
        in.prodavnica = salesPoint;
        in.imeProdavnice = salesPointName;
    }
    applyFilter(q, buildFilter(bookKind, company, year, in));
    return q;
}

} // namespace knjige::browser
