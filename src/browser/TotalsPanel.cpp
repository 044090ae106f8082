#include "browser/TotalsPanel.h"

#include "books/BookKind.h"
#include "session/Dates.h"
#include "session/Failure.h"

#include <algorithm>

namespace knjige::browser
{
namespace
{

QString sumsFBiH()
{
    return QStringLiteral("sum(case when P.Vrsta=11 then P.Iznos else 0 end) as P11,"
                          "sum(case when P.Vrsta=12 then P.Iznos else 0 end) as P12,"
                          "sum(case when P.Vrsta=13 then P.Iznos else 0 end) as P13,"
                          "sum(case when P.Vrsta>=11 and P.Vrsta<=13 then P.IznosPDV else 0 end) as P14,"
                          "sum(case when P.Vrsta>=11 and P.Vrsta<=13 then P.Iznos-P.IznosPDV else 0 end) as P15,"
                          "sum(case when P.Vrsta=16 then P.Iznos else 0 end) as P16,"
                          "sum(case when P.Vrsta=17 then P.Iznos else 0 end) as P17,"
                          "sum(case when P.Vrsta=18 then P.Iznos else 0 end) as P18,"
                          "sum(case when P.Vrsta=19 then P.Iznos else 0 end) as P19,"
                          "sum(case when P.Vrsta>=16 and P.Vrsta<=19 then P.IznosPDV else 0 end) as P20,"
                          "sum(case when P.Vrsta>=16 and P.Vrsta<=19 then P.Iznos-P.IznosPDV else 0 end) as P21 ");
}

// Column 17 of the DB form: kinds 9 to 15 less kind 16.
QString sumsDB()
{
    return QStringLiteral("sum(case when P.Vrsta=5 then P.Iznos else 0 end) as P5,"
                          "sum(case when P.Vrsta=6 then P.Iznos else 0 end) as P6,"
                          "sum(case when P.Vrsta=7 then P.Iznos else 0 end) as P7,"
                          "sum(case when P.Vrsta>=5 and P.Vrsta<=7 then P.Iznos else 0 end) as P8,"
                          "sum(case when P.Vrsta=9 then P.Iznos else 0 end) as P9,"
                          "sum(case when P.Vrsta=10 then P.Iznos else 0 end) as P10,"
                          "sum(case when P.Vrsta=11 then P.Iznos else 0 end) as P11,"
                          "sum(case when P.Vrsta=12 then P.Iznos else 0 end) as P12,"
                          "sum(case when P.Vrsta=13 then P.Iznos else 0 end) as P13,"
                          "sum(case when P.Vrsta=14 then P.Iznos else 0 end) as P14,"
                          "sum(case when P.Vrsta=15 then P.Iznos else 0 end) as P15,"
                          "sum(case when P.Vrsta=16 then P.Iznos else 0 end) as P16,"
                          "sum(case when P.Vrsta>=9 and P.Vrsta<=15 then P.Iznos else 0 end)"
                          "-sum(case when P.Vrsta=16 then P.Iznos else 0 end) as P17 ");
}

// One book's statement: the two SELECTs differ in their label, their sums and their
// date range; the rest of each is the same frame.
struct Frame {
    QString periodLabel; // "Pr.od " or "Promet od "
    QString headA; // from the sums up to "Datum>='" of the "Promet do" part
    QString headB; // the same of the period part
    QString alias; // "P" or "K"
    bool bySalesPoint = false;
};

Frame frameOf(int bookKind)
{
    switch (bookKind) {
    case Knjiga::PrihRashFBiH: {
        const QString head = sumsFBiH() + QStringLiteral("FROM dbo.KnjPrihRashFBiH P where P.Datum>='");
        return { QStringLiteral("Pr.od "), head, head, QStringLiteral("P") };
    }
    case Knjiga::PrihRashDB: {
        const QString head = sumsDB() + QStringLiteral("FROM dbo.KnjPrihRashDB P where P.Datum>='");
        return { QStringLiteral("Pr.od "), head, head, QStringLiteral("P") };
    }
    case Knjiga::PrometaFBiH:
        return { QStringLiteral("Promet od "),
            QStringLiteral(" SUM(K.IznosGot) As Gotovina,SUM(K.IznosCek) AS Cek FROM KnjPrometaFBiH K where "
                           "K.Datum>='"),
            QStringLiteral("SUM(K.IznosGot) AS gotovina,SUM(K.IznosCek) As Cek FROM KnjPrometaFBiH K where "
                           "K.Datum>='"),
            QStringLiteral("K") };
    case Knjiga::TrgUsluga:
        return { QStringLiteral("Promet od "),
            QStringLiteral(" SUM(K.Iznos) As Iznos FROM dbo.TrgKnjUsluga K where K.Datum>='"),
            QStringLiteral("SUM(K.Iznos) AS Iznos FROM dbo.TrgKnjUsluga K where K.Datum>='"), QStringLiteral("K"),
            true };
    case Knjiga::TrgKomisiona: {
        const QString head
            = QStringLiteral("ISNULL(SUM(K.Zaduzenje),0) As Zaduzenje,ISNULL(SUM(K.Razduzenje),0) As Razduzenje FROM "
                             "dbo.TrgKnjKomisiona K where K.Datum>='");
        return { QStringLiteral("Promet od "), head, head, QStringLiteral("K"), true };
    }
    default:
        return {};
    }
}

const QString kPrometDo = QStringLiteral("Promet do ");

} // namespace

bool hasTotalsPanel(int bookKind)
{
    return !totalsPanelHeaders(bookKind).isEmpty();
}

QStringList totalsPanelHeaders(int bookKind)
{
    switch (bookKind) {
    case Knjiga::PrihRashFBiH:
        return { QStringLiteral("11. Gotovina"), QStringLiteral("12. Bank.račun"), QStringLiteral("13. U stvarima"),
            QStringLiteral("14. PDV prihodi"), QStringLiteral("15. Ukupni prihodi"),
            QStringLiteral("16. Nab.robe/mat."), QStringLiteral("17. Bruto plaće"),
            QStringLiteral("18. Plaćeni doprinosi"), QStringLiteral("19. Ostali rashodi"),
            QStringLiteral("20. PDV u rashodima"), QStringLiteral("21. Ukupni rashodi") };
    case Knjiga::PrihRashDB:
        return { QStringLiteral(" 5.P.Gotovina"), QStringLiteral(" 6.P.Žiro račun"), QStringLiteral(" 7.P.U stvarima"),
            QStringLiteral(" 8.Uk.prihodi"), QStringLiteral(" 9.R.u gotovini"), QStringLiteral("10.R.Žiro račun"),
            QStringLiteral("11.R.U stvarima"), QStringLiteral("12.R.Amortizacija"), QStringLiteral("13.R.Akciza"),
            QStringLiteral("14.R.PPP"), QStringLiteral("15.R.PPU"), QStringLiteral("16.R.PPDOH"),
            QStringLiteral("17.Ukupni rashodi") };
    case Knjiga::PrometaFBiH:
        return { QStringLiteral("11. Gotovina"), QStringLiteral("12. Čekovi") };
    case Knjiga::TrgUsluga:
        return { QStringLiteral("Iznos") };
    case Knjiga::TrgKomisiona:
        return { QStringLiteral("Zaduženje"), QStringLiteral("Razduženje") };
    default:
        return {};
    }
}

QString totalsPanelSql(
    int bookKind, qint16 company, qint16 year, qint32 salesPoint, const QDate& periodStart, const QDate& periodEnd)
{
    if (!hasTotalsPanel(bookKind))
        return {};
    const Frame f = frameOf(bookKind);
    const QString y = QString::number(year);
    QString tail = QStringLiteral("' and ") + f.alias + QStringLiteral(".brojpoduzeca=") + QString::number(company)
        + QStringLiteral(" AND ") + f.alias + QStringLiteral(".GodinaKnj=") + y;
    if (f.bySalesPoint)
        tail += QStringLiteral(" AND K.BrojProd=") + QString::number(salesPoint);
    const QString upTo = QStringLiteral("' AND ") + f.alias + QStringLiteral(".Datum<='");

    QString sql;
    if (periodStart != dates::firstOfYear(year)) {
        const QDate before = periodStart.addDays(-1);
        sql = QStringLiteral("SELECT '") + kPrometDo + dates::dayFirstShort(before) + QStringLiteral("' AS Opis,")
            + f.headA + QStringLiteral("01.01.") + y + upTo + dates::sqlLiteral(before) + tail
            + QStringLiteral(" UNION ");
    }
    sql += QStringLiteral("SELECT '") + f.periodLabel + dates::dayFirstShort(periodStart) + QStringLiteral(" do ")
        + dates::monthFirstShort(periodEnd) + QStringLiteral("' AS Opis,") + f.headB + dates::sqlLiteral(periodStart)
        + upTo + dates::sqlLiteral(periodEnd) + tail;
    return sql;
}

QString totalsPanelFailure()
{
    return failureText(QStringLiteral("u čitanju podataka o prethodnom periodu!"));
}

TotalsPanelRows totalsPanelRows(int bookKind, const db::ResultSet& rs)
{
    TotalsPanelRows out;
    out.headers = totalsPanelHeaders(bookKind);
    const int n = int(out.headers.size());
    if (n == 0)
        return out;
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
    if (books::isIncomeExpense(bookKind)) {
        total.label = QStringLiteral("Ukupno:");
    } else {
        total.label = QStringLiteral("UKUPNO:");
        total.labelBold = true;
        total.bold[0] = true;
        if (bookKind == Knjiga::TrgKomisiona)
            total.bold[1] = true;
    }
    out.rows.append(total);
    return out;
}

} // namespace knjige::browser
