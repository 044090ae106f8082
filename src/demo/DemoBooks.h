#pragma once

// The entries of the demonstration company, book by book, before they are numbered
// and written. Only DemoData.cpp and the generators use this header.

#include "session/Money.h"
#include "session/db/Database.h"

#include <QDate>
#include <QString>
#include <QVector>

namespace knjige::demo
{

// A small generator with a fixed algorithm (splitmix64), so that the same seed gives
// the same demonstration data on every platform and library.
class Rng
{
public:
    explicit Rng(quint64 seed)
        : m_state(seed)
    {
    }
    quint64 next();
    // A whole number from lo to hi inclusive.
    int between(int lo, int hi);
    // An amount from lo up to (not including) hi with cents.
    Money amount(int lo, int hi);
    bool chance(int percent) { return between(1, 100) <= percent; }

private:
    quint64 m_state;
};

// One entry before numbering. `values` are the columns after BrojPoduzeca, RBroj,
// Datum and GodinaKnj (and BrojProd in the trade books), which the writer adds.
struct Draft {
    QDate datum;
    db::RowChange::Values values;
    // For income and expense FBiH entries that settle an invoice: the partner and the
    // invoice, from which the receivables and liabilities entries are made.
    qint32 partner = 0;
    QString invoice;
    int vrsta = 0;
    Money iznos;
    // Document numbers run in date order, so they are given after sorting: every '#'
    // in the texts becomes the next number of `series`, every '@' the next number of
    // `invoiceSeries` (see numberDocuments).
    QString series;
    QString invoiceSeries;
};

// A book to write: its rows are numbered 1, 2, ... in date order (stable for equal
// dates) within company, year and, for the trade books, shop.
struct DemoBook {
    QString table;
    int year = 0;
    qint32 brojProd = 0; // trade books only
    QVector<Draft> rows;
};

struct DemoPartner {
    qint32 code;
    QString name;
    QString address;
    QString postCode;
    QString city;
    QString idNumber;
};

const QVector<DemoPartner>& partners();
QVector<qint32> customerCodes();
QVector<qint32> supplierCodes();
QString partnerName(qint32 code);

// Bosnian month name in the nominative, "mart" for 3.
QString monthName(int month);
// The VAT contained in a gross amount at 17 %, as the income and expense editor
// computes it.
Money vatShare(Money gross);
// Sorts the rows by date, keeping the generated order of equal dates, and numbers
// their documents in that order.
void sortByDate(QVector<Draft>& rows);
void numberDocuments(QVector<Draft>& rows);

QVector<Draft> prihRashFBiH(int year);
// Receivables and liabilities for the invoices settled in the (sorted) FBiH book: an
// invoice and its payment each, both linked to the FBiH entry number.
QVector<Draft> evidPotObv(const QVector<Draft>& sortedFBiH, int year);
QVector<Draft> prihRashDB(int year);
QVector<Draft> prihodaRS(int year);
QVector<Draft> rashodaRS(int year);
QVector<Draft> prometa(int year);
// Assets bought in `year`, carried at their purchase value. The company's older
// assets (`older`) are the ones it bought the year before the working year.
QVector<Draft> popisnaLista(int year, bool older);
QVector<Draft> trgUsluga(int year, qint32 shop);
QVector<Draft> trgKomisiona(int year, qint32 shop);
// The first days of the following year: a few entries already kept for it.
QVector<Draft> prihRashFBiHNextYear(int year);
QVector<Draft> prometaNextYear(int year);

} // namespace knjige::demo
