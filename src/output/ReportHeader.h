#pragma once

#include "browser/BookQuery.h"
#include "session/db/ResultSet.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace knjige::output::report
{

// The texts at the head and foot of a printed report. Empty texts are not printed.
struct Header {
    QString company; // NazivFirme
    QStringList companyLines; // address, identification, ... from the configuration row
    QString title;
    QString form; // "Obrazac KPR-1041": the form the book is kept on, as its paper names it
    QString period; // "Period od 01.01.2016 do 31.12.2016"
    QString filter; // "Filter : ..." or "Filter: Svi"
    QString salesPoint; // trade books: "Prodajno mjesto: 501 ..."
    QString operatorName;
    QDateTime printed;
};

// The company's address and identification, one line each, from whichever of the
// known columns the configuration row has and fills: address with post code and
// place, identification and VAT numbers, telephone, bank account, activity, owner.
QStringList companyLines(const db::ResultSet& configuration);

QString periodLine(const QDate& from, const QDate& to);
QString pageLine(int page, int pages);
QString printedLine(const QDateTime& printed, const QString& operatorName);
// "Prodajno mjesto: 501 Maloprodaja 1"; "Prodajno mjesto: sva" for 0.
QString salesPointLine(qint32 salesPoint, const QString& name);

// A book's header from the session (company, configuration row, operator) and the
// query that read the rows: its period, filter and sales point, which is named from
// the rows' ImeProd.
Header bookHeader(const browser::BookQuery& query, const db::ResultSet& rows);
// The recapitulation's: the company's name, its title and the filter text.
Header recapitulationHeader(const QString& filterDescription);

} // namespace knjige::output::report
