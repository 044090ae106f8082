#pragma once

#include "browser/FilterClause.h"

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

} // namespace knjige::report
