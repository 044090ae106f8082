#include "output/ReportHeader.h"

#include "books/BookKind.h"
#include "browser/FilterClause.h"
#include "output/ReportLayout.h"
#include "session/Session.h"

namespace knjige::output::report
{
namespace
{

QString value(const db::ResultSet& rs, const QString& column)
{
    const int c = rs.indexOf(column);
    return c < 0 || rs.isEmpty() || rs.isNull(0, c) ? QString() : rs.text(0, c).simplified();
}

// Non-empty parts joined; empty when every part is empty.
QString joined(const QStringList& parts, const QString& separator)
{
    QStringList kept;
    for (const QString& p : parts)
        if (!p.trimmed().isEmpty())
            kept << p.trimmed();
    return kept.join(separator);
}

QString labelled(const QString& label, const QString& text)
{
    return text.isEmpty() ? QString() : label + text;
}

} // namespace

QStringList companyLines(const db::ResultSet& c)
{
    const QString place
        = joined({ value(c, QStringLiteral("PostBroj")), value(c, QStringLiteral("Mjesto")) }, QStringLiteral(" "));
    const QStringList lines = {
        joined({ value(c, QStringLiteral("Adresa")), place }, QStringLiteral(", ")),
        joined({ labelled(QStringLiteral("ID broj: "), value(c, QStringLiteral("IdBroj"))),
                   labelled(QStringLiteral("PDV broj: "), value(c, QStringLiteral("PDVBroj"))) },
            QStringLiteral(", ")),
        joined({ labelled(QStringLiteral("Tel: "), value(c, QStringLiteral("Telefon"))),
                   labelled(QStringLiteral("Žiro račun: "), value(c, QStringLiteral("ZiroRacun"))) },
            QStringLiteral(", ")),
        labelled(QStringLiteral("Djelatnost: "), value(c, QStringLiteral("Djelatnost"))),
        labelled(QStringLiteral("Vlasnik: "), value(c, QStringLiteral("Vlasnik"))),
    };
    QStringList out;
    for (const QString& l : lines)
        if (!l.isEmpty())
            out << l;
    return out;
}

QString periodLine(const QDate& from, const QDate& to)
{
    const QString f = QStringLiteral("dd.MM.yyyy");
    return QStringLiteral("Period od %1 do %2").arg(from.toString(f), to.toString(f));
}

QString pageLine(int page, int pages)
{
    return QStringLiteral("Strana %1 od %2").arg(page).arg(pages);
}

QString printedLine(const QDateTime& printed, const QString& operatorName)
{
    QString line = QStringLiteral("Ispisano: ") + printed.toString(QStringLiteral("dd.MM.yyyy HH:mm"));
    if (!operatorName.isEmpty())
        line += QStringLiteral(", operater: ") + operatorName;
    return line;
}

QString salesPointLine(qint32 salesPoint, const QString& name)
{
    if (salesPoint == 0)
        return QStringLiteral("Prodajno mjesto: sva");
    return joined({ QStringLiteral("Prodajno mjesto: ") + QString::number(salesPoint), name }, QStringLiteral(" "));
}

Header bookHeader(const browser::BookQuery& query, const db::ResultSet& rows)
{
    const int bookKind = query.bookKind;
    const browser::FilterState& filter = query.filter;
    const Session& s = session();
    Header h;
    h.company = s.NazivFirme;
    h.companyLines = companyLines(s.Konfiguracija);
    const Layout layout = bookLayout(bookKind);
    h.title = layout.title;
    h.form = layout.form;
    h.period = periodLine(filter.periodStart, filter.periodEnd);
    h.filter = browser::filterLine(filter.description);
    if (books::isTradeBook(bookKind)) {
        QString name;
        const int shop = rows.indexOf(QStringLiteral("BrojProd"));
        const int shopName = rows.indexOf(QStringLiteral("ImeProd"));
        for (int r = 0; shop >= 0 && shopName >= 0 && r < rows.rowCount() && name.isEmpty(); ++r)
            if (rows.integer(r, shop) == filter.salesPoint)
                name = rows.text(r, shopName);
        h.salesPoint = salesPointLine(filter.salesPoint, name);
    }
    h.operatorName = s.ImeOperatera;
    h.printed = QDateTime::currentDateTime();
    return h;
}

Header recapitulationHeader(const QString& filterDescription)
{
    Header h;
    h.company = session().NazivFirme;
    h.title = recapitulationLayout().title;
    h.filter = browser::filterLine(filterDescription);
    h.operatorName = session().ImeOperatera;
    h.printed = QDateTime::currentDateTime();
    return h;
}

} // namespace knjige::output::report
