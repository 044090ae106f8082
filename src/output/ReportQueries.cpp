#include "output/ReportQueries.h"

#include "books/BookKind.h"
#include "browser/BrowserRules.h"

namespace knjige::report
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

browser::FilterState bookSelection(int bookKind, qint16 company, qint16 year,
    const std::optional<std::pair<QDate, QDate>>& period, qint32 salesPoint, const QString& salesPointName)
{
    const QDate from = period ? period->first : browser::periodStart(year);
    const QDate to = period ? period->second : browser::periodEnd(year);
    if (!period && !(isTradeBook(bookKind) && salesPoint != 0)) {
        browser::FilterState opening;
        opening.where = browser::openingWhere(from, year, company);
        opening.periodStart = from;
        opening.periodEnd = to;
        return opening;
    }
    return browser::periodFilter(bookKind, from, to, company, year, salesPoint, salesPointName);
}

} // namespace knjige::report
