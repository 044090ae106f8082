#include "output/ReportQueries.h"

#include "books/BookKind.h"
#include "browser/BrowserRules.h"
#include "session/Dates.h"

#include <QRegularExpression>

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

std::optional<Period> parsePeriod(const QString& text)
{
    static const QRegularExpression form(
        QStringLiteral("^\\s*(\\d{1,2}\\.\\d{1,2}\\.\\d{4})\\s*-\\s*(\\d{1,2}\\.\\d{1,2}\\.\\d{4})\\s*$"));
    const QRegularExpressionMatch m = form.match(text);
    if (!m.hasMatch())
        return std::nullopt;
    const QDate from = dates::parseDayFirst(m.captured(1));
    const QDate to = dates::parseDayFirst(m.captured(2));
    if (!from.isValid() || !to.isValid() || to < from)
        return std::nullopt;
    return Period { from, to };
}

Selection bookSelection(int bookKind, qint16 company, qint16 year, const std::optional<Period>& period,
    qint32 salesPoint, const QString& salesPointName)
{
    Selection s;
    s.from = period ? period->from : browser::periodStart(year);
    s.to = period ? period->to : browser::periodEnd(year);
    const bool shop = isTradeBook(bookKind) && salesPoint != 0;
    if (!period && !shop) {
        s.where = browser::openingWhere(s.from, year, company);
        return s;
    }
    const QString y = QString::number(year);
    QString conditions = QStringLiteral(" K.Datum>='") + dates::sqlLiteral(s.from) + u'\'';
    if (period) {
        conditions += QStringLiteral(" AND K.Datum<='") + dates::sqlLiteral(s.to) + u'\'';
        s.description
            = QStringLiteral("Period od ") + dates::display(s.from) + QStringLiteral(" do ") + dates::display(s.to);
    } else {
        s.description = QStringLiteral("Period od ") + dates::display(s.from);
    }
    conditions += QStringLiteral(" AND K.GodinaKnj=") + y;
    if (shop) {
        s.salesPoint = salesPoint;
        conditions += QStringLiteral(" AND  K.BrojProd=") + QString::number(salesPoint);
        s.description += QStringLiteral(",Broj prod.: ") + QString::number(salesPoint) + u' ' + salesPointName;
    }
    s.where
        = QStringLiteral(" WHERE K.BrojPoduzeca=") + QString::number(company) + QStringLiteral(" AND ") + conditions;
    return s;
}

} // namespace knjige::report
