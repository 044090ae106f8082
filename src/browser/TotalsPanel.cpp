#include "browser/TotalsPanel.h"

#include "books/BookKind.h"
#include "session/Dates.h"
#include "session/Failure.h"

#include <algorithm>

namespace knjige::browser
{
namespace
{

const QString kPrometDo = QStringLiteral("Promet do ");

} // namespace

bool hasTotalsPanel(int bookKind)
{
    return !totalsPanelHeaders(bookKind).isEmpty();
}

QStringList totalsPanelHeaders(int bookKind)
{
    const books::BookKind* book = books::findBook(bookKind);
    return book ? book->panel.headers : QStringList();
}

QString totalsPanelSql(
    int bookKind, qint16 company, qint16 year, qint32 salesPoint, const QDate& periodStart, const QDate& periodEnd)
{
    const books::BookKind* book = books::findBook(bookKind);
    if (!book || book->panel.headers.isEmpty())
        return {};
    const books::TotalsPanelLayout& f = book->panel;
    const QString y = QString::number(year);
    QString tail = QStringLiteral("' and ") + f.alias + QStringLiteral(".brojpoduzeca=") + QString::number(company)
        + QStringLiteral(" AND ") + f.alias + QStringLiteral(".GodinaKnj=") + y;
    if (book->family == books::BookFamily::Trade)
        tail += QStringLiteral(" AND K.BrojProd=") + QString::number(salesPoint);
    const QString upTo = QStringLiteral("' AND ") + f.alias + QStringLiteral(".Datum<='");

    QString sql;
    if (periodStart != dates::firstOfYear(year)) {
        const QDate before = periodStart.addDays(-1);
        sql = QStringLiteral("SELECT '") + kPrometDo + dates::dayFirstShort(before) + QStringLiteral("' AS Opis,")
            + f.headUpTo + QStringLiteral("01.01.") + y + upTo + dates::sqlLiteral(before) + tail
            + QStringLiteral(" UNION ");
    }
    sql += QStringLiteral("SELECT '") + f.periodLabel + dates::dayFirstShort(periodStart) + QStringLiteral(" do ")
        + dates::monthFirstShort(periodEnd) + QStringLiteral("' AS Opis,") + f.headPeriod
        + dates::sqlLiteral(periodStart) + upTo + dates::sqlLiteral(periodEnd) + tail;
    return sql;
}

QString totalsPanelFailure()
{
    return failureText(QStringLiteral("u čitanju podataka o prethodnom periodu!"));
}

TotalsPanelRows totalsPanelRows(int bookKind, const db::ResultSet& rs)
{
    TotalsPanelRows out;
    const books::BookKind* book = books::findBook(bookKind);
    if (!book || book->panel.headers.isEmpty())
        return out;
    out.headers = book->panel.headers;
    const int n = int(out.headers.size());
    PanelRow total;
    total.values.fill(Money(), n);
    total.bold.fill(false, n);
    for (int r = 0; r < rs.rowCount(); ++r) {
        PanelRow row;
        row.label = rs.fieldCount() > 0 && !rs.isNull(r, 0) ? rs.text(r, 0) : QString();
        row.bold.fill(false, n);
        for (int c = 0; c < n; ++c) {
            const int field = c + 1;
            const Money v = field < rs.fieldCount() && !rs.isNull(r, field) ? rs.money(r, field) : Money();
            row.values.append(v);
            total.values[c] += v;
        }
        out.rows.append(row);
    }
    // The year before the period reads first, whatever order the union came back in.
    std::stable_sort(out.rows.begin(), out.rows.end(), [](const PanelRow& a, const PanelRow& b) {
        return a.label.startsWith(kPrometDo) && !b.label.startsWith(kPrometDo);
    });
    if (book->family == books::BookFamily::IncomeExpense) {
        total.label = QStringLiteral("Ukupno:");
    } else {
        total.label = QStringLiteral("UKUPNO:");
        total.labelBold = true;
    }
    for (int c = 0; c < std::min(n, book->panel.boldTotals); ++c)
        total.bold[c] = true;
    out.rows.append(total);
    return out;
}

} // namespace knjige::browser
