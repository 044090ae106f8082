#pragma once

#include <QDate>
#include <QString>
#include <optional>

namespace knjige::report
{

// The recapitulation of the FBiH income and expense book: one row per entry kind with
// its name, income, VAT on income, expense and VAT on expense, for the rows the
// browser's WHERE clause selects.
QString recapitulationSql(const QString& whereClause);

// The rows of a book to print without a window, and the filter state they stand for.
struct Selection {
    QString where; // the WHERE clause, as the browser would hold it
    QString description; // the filter description; empty for the whole year
    QDate from;
    QDate to;
    qint32 salesPoint = 0;
};

struct Period {
    QDate from;
    QDate to;
};

// Reads "dd.mm.yyyy-dd.mm.yyyy"; nothing when either date is not a day of the
// calendar or the period ends before it starts.
std::optional<Period> parsePeriod(const QString& text);

// The selection of a printed book: the whole working year as the book opens, or, with a
// period or a sales point, the conditions the filter makes of them ("Period od ... do
// ...", "Broj prod.: ..."), in the filter's words and order.
Selection bookSelection(int bookKind, qint16 company, qint16 year, const std::optional<Period>& period,
    qint32 salesPoint = 0, const QString& salesPointName = {});

} // namespace knjige::report
