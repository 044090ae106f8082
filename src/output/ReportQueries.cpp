#include "output/ReportQueries.h"

#include "books/BookKind.h"
#include "browser/BrowserRules.h"
#include "browser/TotalsPanel.h"
#include "session/Dates.h"
#include "session/Session.h"

namespace knjige::output::report
{

QString recapitulationSql(const QString& whereClause)
{
    return QStringLiteral(
               "SELECT TOP 100 PERCENT K.Vrsta,CASE K.Vrsta WHEN 11 THEN 'Prihod u gotovini' WHEN 12 THEN 'Prihodi "
               "preko bank.računa' WHEN 13 THEN 'Prihod u stvarima i usl' WHEN 16 THEN 'Rashod za nabavku rob/mat' "
               "WHEN 17 THEN 'Rashod za bruto plaće' WHEN 18 THEN 'Rashod za plaćene dop p.' WHEN 19 THEN 'Ostali "
               "rashodi' END As Naziv,SUM(CASE WHEN K.Vrsta>=11 AND K.Vrsta<=13 THEN K.Iznos ELSE 0 END) AS "
               "Prihod,SUM(CASE WHEN K.Vrsta>=11 AND K.Vrsta<=13 THEN K.IznosPDV ELSE 0 END) AS PDVPrihod,SUM(CASE "
               "WHEN K.Vrsta>=16 AND K.Vrsta<=19 THEN K.Iznos ELSE 0 END) AS Rashod,SUM(CASE WHEN K.Vrsta>=16 AND "
               "K.Vrsta<=19 THEN K.IznosPDV ELSE 0 END) AS PDVRashod FROM dbo.KnjPrihRashFBiH K ")
        + whereClause + QStringLiteral(" GROUP BY K.Vrsta ORDER BY K.Vrsta");
}

namespace
{

QString dateRange(const QDate& from, const QDate& to)
{
    return QStringLiteral("K.Datum>='") + dates::sqlLiteral(from) + QStringLiteral("' AND K.Datum<='")
        + dates::sqlLiteral(to) + QStringLiteral("'");
}

// The printed sums of these books are the totals panel's columns one for one (both are
// the form's numbered columns), so when only the period narrows the book, the panel's
// own "Promet do" statement gives the figures and paper and window cannot disagree. A
// trade book printed for all its sales points is not one the panel sums.
bool panelSumsAsPrinted(int summedColumns, const browser::BookQuery& query)
{
    const int bookKind = query.bookKind;
    const browser::FilterState& filter = query.filter;
    return browser::totalsPanelHeaders(bookKind).size() == summedColumns
        && !(books::isTradeBook(bookKind) && filter.salesPoint == 0)
        && filter.where
        == browser::periodFilter(
            bookKind, filter.periodStart, filter.periodEnd, query.company, query.year, filter.salesPoint)
               .where;
}

} // namespace

bool broughtForward(const browser::BookQuery& query, const Layout& layout, BroughtForward* out, QString* error)
{
    *out = {};
    const int bookKind = query.bookKind;
    const qint16 year = query.year;
    const qint16 company = query.company;
    const QDate from = query.filter.periodStart;
    const QDate to = query.filter.periodEnd;
    QVector<int> summed;
    for (int c = 0; c < layout.columns.size(); ++c)
        if (layout.columns[c].sums)
            summed << c;
    const QDate yearStart = dates::firstOfYear(year);
    // An asset list is what is owned, dated by acquisition, and a year's list holds the
    // assets bought in the years before: its rows dated before a period are no part of
    // a running book, so a period of it prints as a selection, with nothing brought.
    if (summed.isEmpty() || books::isAssetList(bookKind) || !from.isValid() || from <= yearStart)
        return true;
    const QDate before = from.addDays(-1);
    out->continues = true;
    out->sums = QVector<Money>(summed.size());
    const QString f = QStringLiteral("dd.MM.yyyy");
    out->totalLabel = QStringLiteral("Ukupno od %1 do %2:").arg(yearStart.toString(f), to.toString(f));
    db::Database& db = session().db();
    db::ResultSet rs;
    if (panelSumsAsPrinted(int(summed.size()), query)) {
        if (!db.open(browser::totalsPanelSql(bookKind, company, year, query.salesPoint(), from, to), rs)) {
            *error = db.errorDescription();
            return false;
        }
        const browser::TotalsPanelRows panel = browser::totalsPanelRows(bookKind, rs);
        if (panel.rows.isEmpty() || !panel.rows.first().label.startsWith(QStringLiteral("Promet do "))) {
            *error = QStringLiteral("nema prometa do %1").arg(before.toString(f));
            return false;
        }
        out->sums = panel.rows.first().values;
        return true;
    }
    // Any other book, or a filter with more than the period: the book's own rows
    // before the period under the same conditions, summed as the printed columns sum.
    const QString period = dateRange(from, to);
    QString where = query.filter.where;
    const qsizetype at = where.indexOf(period);
    if (at < 0) {
        *error = QStringLiteral("filter knjige nema razdoblja od %1 do %2").arg(from.toString(f), to.toString(f));
        return false;
    }
    where.replace(at, period.size(), dateRange(yearStart, before));
    if (!db.open(query.select + where, rs)) {
        *error = db.errorDescription();
        return false;
    }
    const auto bound = BoundLayout::bind(layout, rs, error);
    if (!bound)
        return false;
    for (int r = 0; r < rs.rowCount(); ++r)
        for (int i = 0; i < summed.size(); ++i)
            out->sums[i] += bound->money(rs, r, summed[i]);
    return true;
}

} // namespace knjige::output::report
