#pragma once

#include "output/ReportHeader.h"
#include "output/ReportLayout.h"

#include <QDate>
#include <QString>

namespace knjige::output::report
{

// The recapitulation of the FBiH income and expense book: one row per entry kind with
// its name, income, VAT on income, expense and VAT on expense, for the rows the
// browser's WHERE clause selects.
QString recapitulationSql(const QString& whereClause);

// What a book printed for a period brings forward from its year before the period
// ("Donos"): the sums of the layout's summed columns over the book's rows from 1 January
// to the day before the period, selected as the printed rows are in all but the dates.
// The total to date ("Ukupno od 01.01. ...") is these sums and the period's together.
struct BroughtForward {
    bool continues = false; // false: the period opens the year, or the book carries nothing
    QVector<Money> sums; // one per summed column, in column order
    QString totalLabel; // the label of the total from 1 January to the period's end
};

// The figures for the query's company and year. False, with *error, when they could
// not be read; a printout without them would start its year at zero.
bool broughtForward(const browser::BookQuery& query, const Layout& layout, BroughtForward* out, QString* error);

} // namespace knjige::output::report
