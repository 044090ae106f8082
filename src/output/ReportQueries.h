#pragma once

#include "browser/FilterClause.h"
#include "output/ReportHeader.h"
#include "output/ReportLayout.h"

#include <QDate>
#include <QString>
#include <optional>
#include <utility>

namespace knjige::report
{

// The recapitulation of the FBiH income and expense book: one row per entry kind with
// its name, income, VAT on income, expense and VAT on expense, for the rows the
// browser's WHERE clause selects.
QString recapitulationSql(const QString& whereClause);

// The filter of a book printed without a window: the whole working year as the book
// opens when neither a period nor a sales point is given; otherwise the filter the
// operator sets for that period (the whole year when none is given) and sales point.
browser::FilterState bookSelection(int bookKind, qint16 company, qint16 year,
    const std::optional<std::pair<QDate, QDate>>& period, qint32 salesPoint = 0, const QString& salesPointName = {});

// What a book printed for a period brings forward from its year before the period
// ("Donos"): the sums of the layout's summed columns over the book's rows from 1 January
// to the day before the period, selected as the printed rows are in all but the dates.
// The total to date ("Ukupno od 01.01. ...") is these sums and the period's together.
struct BroughtForward {
    bool continues = false; // false: the period opens the year, or the book carries nothing
    QVector<Money> sums; // one per summed column, in column order
    QString totalLabel; // the label of the total from 1 January to the period's end
};

// The figures for the session's company and working year. False, with *error, when
// they could not be read; a printout without them would start its year at zero.
bool broughtForward(int bookKind, const Layout& layout, const BookFilter& filter, BroughtForward* out, QString* error);

} // namespace knjige::report
