#pragma once

#include "session/Money.h"
#include "session/db/ResultSet.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVector>

namespace knjige::browser
{

// The running totals under a book's grid: the turnover of the working year before the
// shown period ("Promet do ..."), the turnover of the period, and their total, which is
// the running total of the year up to the period's end. Books 96, 109, 98, 125 and 126
// have one; every other kind has none.

// Column widths in twips: the label column, then each value column.
constexpr int kPanelLabelWidth = 2000;
constexpr int kPanelValueWidth = 1200;

// Whether a book kind has a panel.
bool hasTotalsPanel(int bookKind);

// The headers of the value columns, in order (the label column's header is " ");
// empty for a kind without a panel.
QStringList totalsPanelHeaders(int bookKind);

// The statement that reads the panel's rows, in the server's dialect: a "Promet do" part
// when the period does not start on 1 January, then the period part. Empty for a kind
// without a panel. `salesPoint` counts for the trade books only.
QString totalsPanelSql(
    int bookKind, qint16 company, qint16 year, qint32 salesPoint, const QDate& periodStart, const QDate& periodEnd);

// The message shown when that statement fails.
QString totalsPanelFailure();

struct PanelRow {
    QString label;
    QVector<Money> values; // one per value column; NULL read as 0
    bool labelBold = false;
    QVector<bool> bold; // per value column
};

struct TotalsPanelRows {
    QStringList headers; // as totalsPanelHeaders
    QVector<PanelRow> rows; // the rows read, then the total row
};

// The panel's rows from what the statement returned: the "Promet do" row before the
// period row whatever order the server returned them in, then the total row ("Ukupno:"
// for the income and expense books; "UKUPNO:" in bold with its first value column, or
// both for the commission book, for the turnover and trade books).
TotalsPanelRows totalsPanelRows(int bookKind, const db::ResultSet& rs);

} // namespace knjige::browser
