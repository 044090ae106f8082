// The filter's clause and description for every book, the period option's reading, and
// the running totals panel: its statements as the server gets them and its rows.
#include "browser/FilterClause.h"
#include "browser/TotalsPanel.h"
#include "support/TestDatabase.h"

#include <QMap>
#include <gtest/gtest.h>
#include <tuple>

using namespace knjige;
using namespace knjige::browser;
using knjige::test::money;

namespace
{

const QString kDatum = QStringLiteral(" WHERE K.BrojPoduzeca=1 AND  K.Datum>='03.01.2016' AND K.Datum<='03.31.2016' "
                                      "AND K.GodinaKnj=2016");
const QString kPeriod = QStringLiteral("Period od 01.03.16 do 31.03.16");

// March 2016 and the fields `spec` names ("txtOpis=a;ubIznos=12.5"), amounts in the C form.
FilterInput march(const QString& spec = {})
{
    FilterInput in;
    in.chkPoDatumima = true;
    in.dpDatum = QDate(2016, 3, 1);
    in.dpDatumDo = QDate(2016, 3, 31);
    const QMap<QString, QString*> texts = { { "txtIsprava", &in.txtIsprava }, { "txtOpis", &in.txtOpis },
        { "vrsta", &in.vrsta }, { "txtKomitent", &in.txtKomitent }, { "imeKomitenta", &in.imeKomitenta },
        { "txtNazivSredstva", &in.txtNazivSredstva }, { "txtNaziv", &in.txtNaziv },
        { "txtBrojDokumenta", &in.txtBrojDokumenta }, { "imeProdavnice", &in.imeProdavnice } };
    const QMap<QString, Money*> amounts = { { "ubIznos", &in.ubIznos }, { "ubIznosPDV", &in.ubIznosPDV },
        { "ubKPR", &in.ubKPR }, { "ubCek", &in.ubCek }, { "ubNabavna", &in.ubNabavna },
        { "ubVijekTrajanja", &in.ubVijekTrajanja }, { "ubRazduženje", &in.ubRazduženje } };
    for (const QString& field : spec.split(u';', Qt::SkipEmptyParts)) {
        const QString name = field.section(u'=', 0, 0), value = field.section(u'=', 1);
        if (name == "prodavnica")
            in.prodavnica = value.toInt();
        else if (texts.contains(name))
            *texts[name] = value;
        else if (amounts.contains(name))
            *amounts[name] = Money::parse(value).value();
        else
            ADD_FAILURE() << "no field " << name.toStdString();
    }
    return in;
}

} // namespace

TEST(FilterClause, EveryKindBuildsItsConditionsAndDescriptionInOrder)
{
    struct Case {
        int kind;
        QString fields;
        QString where; // after the period condition
        QString description; // after the period piece
    };
    const QList<Case> cases = {
        { 96, "txtIsprava= R-1 ;txtOpis=O'Brien;vrsta=11 - Prihod - Gotovina;ubIznos=12.5;ubIznosPDV=-3",
            " AND  K.Isprava LIKE 'R-1%' AND  K.Opis LIKE 'O''Brien%' AND  K.Vrsta LIKE '11%' AND  K.Iznos= 12.5 AND "
            " K.IznosPDV=-3",
            ",Isprava: R-1...',Opis: O'Brien...',Vrsta: 11...',Iznos: 12.50,PDV: -3.00" },
        { 109, "vrsta= 5 - Prihod - Gotovina;ubIznos=1234567", " AND  K.Vrsta LIKE '5%' AND  K.Iznos= 1234567",
            ",Vrsta: 5...',Iznos: 1,234,567.00" },
        { 97, "txtKomitent= 007x;imeKomitenta=Alfa;vrsta=21 - Primljeni racuni;ubKPR=7;ubIznos=5",
            " AND  K.SifKomit=7 AND  K.Vrsta LIKE '21%' AND  K.RBrojKPR= 7 AND  K.Iznos= 5",
            ",Šifra komitenta: 7,Vrsta: 21...',Br. Knjige p. i r.: 7,iznos: 5.00" },
        { 102, "txtIsprava=%5_;txtKomitent=abc;imeKomitenta=Alfa", " AND  K.Isprava LIKE '%5_%' AND  K.SifKomit=0",
            ",Isprava: %5_...',Šifra komitenta: 0 Alfa" },
        { 98, "txtOpis=Utržak;ubCek=0.0005", " AND  K.Opis LIKE 'Utržak%' AND  K.IznosCek= 0.0005",
            ",Opis: Utržak...',Cek: 0.00" },
        { 99, "vrsta=4 - Prihod - Proizvoda i materijala;ubIznosPDV=2", " AND  K.Vrsta LIKE '4%' AND  K.IznosPDV= 2",
            ",Vrsta: 4...',PDV: 2.00" },
        // The RS list takes the name pattern from the hidden box, the FBiH list from its own.
        { 101, "txtNazivSredstva=Auto;txtBrojDokumenta=12.50", " AND  K.Naziv LIKE '%' AND  K.Isprava=12.5",
            ",Naziv: ...',Isprava: 12.5" },
        { 105, "txtNazivSredstva=Auto;txtNaziv=X;ubVijekTrajanja=5;ubNabavna=900",
            " AND  K.Naziv LIKE 'Auto%' AND  K.NabVrijednost= 900 AND  K.VijekTr= 5",
            ",Naziv: Auto...',Nabavna: 900.00,Vijek trajanja: 5" },
        { 125, "prodavnica=3;imeProdavnice=Market;ubIznos=1", " AND  K.BrojProd=3 AND  K.Iznos= 1",
            ",Broj prod.: 3 Market,Iznos naknade: 1.00" },
        { 126, "txtOpis=a';ubRazduženje=4", " AND  K.Opis LIKE 'a''%' AND  K.Razduzenje= 4",
            ",Opis: a'...',Iznos razduzenja: 4.00" },
    };
    for (const Case& c : cases) {
        const FilterState s = buildFilter(c.kind, 1, 2016, march(c.fields), QLocale::c());
        EXPECT_EQ(s.where, kDatum + c.where) << c.kind;
        EXPECT_EQ(s.conditions, s.where.mid(QStringLiteral(" WHERE K.BrojPoduzeca=1 AND ").size())) << c.kind;
        EXPECT_EQ(s.description, kPeriod + c.description) << c.kind;
    }
    // The period option is the same filter as a dialog with only its dates.
    EXPECT_EQ(periodFilter(126, QDate(2016, 3, 1), QDate(2016, 3, 31), 1, 2016, 2).where,
        buildFilter(126, 1, 2016, march("prodavnica=2")).where);
    EXPECT_EQ(periodFilter(96, QDate(2016, 3, 1), QDate(2016, 3, 31), 1, 2016, 2).where, kDatum);
}

TEST(FilterClause, PeriodTextIsReadOrRefusedWithAReason)
{
    const auto ok = parsePeriod(" 1.3.2026 - 31.03.2026 ", 2026);
    ASSERT_TRUE(ok);
    EXPECT_EQ(ok->first, QDate(2026, 3, 1));
    EXPECT_EQ(ok->second, QDate(2026, 3, 31));
    const QList<std::pair<QString, QString>> bad = {
        { "01.03.2026", "dd.mm.gggg-dd.mm.gggg" },
        { "31.02.2026-31.03.2026", "Neispravan početni datum" },
        { "01.03.2026-32.03.2026", "završni datum" },
        { "31.03.2026-01.03.2026", "je iza završnog" },
        { "01.03.2025-31.03.2025", "nije u radnoj godini 2026" },
        { "'; DROP TABLE x", "dd.mm.gggg-dd.mm.gggg" },
    };
    for (const auto& [text, reason] : bad) {
        QString error;
        EXPECT_FALSE(parsePeriod(text, 2026, &error)) << text.toStdString();
        EXPECT_TRUE(error.contains(reason)) << error.toStdString();
    }
}

TEST(TotalsPanel, StatementsAreTheSystemsOwnTexts)
{
    const QString fbihSums = QStringLiteral(
        "sum(case when P.Vrsta=11 then P.Iznos else 0 end) as P11,sum(case when P.Vrsta=12 then P.Iznos else 0 end) "
        "as P12,sum(case when P.Vrsta=13 then P.Iznos else 0 end) as P13,sum(case when P.Vrsta>=11 and P.Vrsta<=13 "
        "then P.IznosPDV else 0 end) as P14,sum(case when P.Vrsta>=11 and P.Vrsta<=13 then P.Iznos-P.IznosPDV else 0 "
        "end) as P15,sum(case when P.Vrsta=16 then P.Iznos else 0 end) as P16,sum(case when P.Vrsta=17 then P.Iznos "
        "else 0 end) as P17,sum(case when P.Vrsta=18 then P.Iznos else 0 end) as P18,sum(case when P.Vrsta=19 then "
        "P.Iznos else 0 end) as P19,sum(case when P.Vrsta>=16 and P.Vrsta<=19 then P.IznosPDV else 0 end) as P20,"
        "sum(case when P.Vrsta>=16 and P.Vrsta<=19 then P.Iznos-P.IznosPDV else 0 end) as P21 ");
    const QDate mar1(2016, 3, 1), mar31(2016, 3, 31), jan1(2016, 1, 1);
    EXPECT_EQ(totalsPanelSql(96, 1, 2016, 0, mar1, mar31),
        "SELECT 'Promet do 29.02.16' AS Opis," + fbihSums
            + "FROM dbo.KnjPrihRashFBiH P where P.Datum>='01.01.2016' AND P.Datum<='02.29.2016' and "
              "P.brojpoduzeca=1 AND P.GodinaKnj=2016 UNION SELECT 'Pr.od 01.03.16 do 03.31.16' AS Opis,"
            + fbihSums
            + "FROM dbo.KnjPrihRashFBiH P where P.Datum>='03.01.2016' AND P.Datum<='03.31.2016' and "
              "P.brojpoduzeca=1 AND P.GodinaKnj=2016");
    EXPECT_EQ(totalsPanelSql(98, 1, 2016, 0, mar1, mar31),
        "SELECT 'Promet do 29.02.16' AS Opis, SUM(K.IznosGot) As Gotovina,SUM(K.IznosCek) AS Cek FROM "
        "KnjPrometaFBiH K where K.Datum>='01.01.2016' AND K.Datum<='02.29.2016' and K.brojpoduzeca=1 AND "
        "K.GodinaKnj=2016 UNION SELECT 'Promet od 01.03.16 do 03.31.16' AS Opis,SUM(K.IznosGot) AS gotovina,"
        "SUM(K.IznosCek) As Cek FROM KnjPrometaFBiH K where K.Datum>='03.01.2016' AND K.Datum<='03.31.2016' "
        "and K.brojpoduzeca=1 AND K.GodinaKnj=2016");
    EXPECT_EQ(totalsPanelSql(125, 1, 2016, 3, QDate(2016, 1, 2), mar31),
        "SELECT 'Promet do 01.01.16' AS Opis, SUM(K.Iznos) As Iznos FROM dbo.TrgKnjUsluga K where "
        "K.Datum>='01.01.2016' AND K.Datum<='01.01.2016' and K.brojpoduzeca=1 AND K.GodinaKnj=2016 AND "
        "K.BrojProd=3 UNION SELECT 'Promet od 02.01.16 do 03.31.16' AS Opis,SUM(K.Iznos) AS Iznos FROM "
        "dbo.TrgKnjUsluga K where K.Datum>='01.02.2016' AND K.Datum<='03.31.2016' and K.brojpoduzeca=1 AND "
        "K.GodinaKnj=2016 AND K.BrojProd=3");
    EXPECT_EQ(totalsPanelSql(126, 1, 2016, 3, jan1, mar31),
        "SELECT 'Promet od 01.01.16 do 03.31.16' AS Opis,ISNULL(SUM(K.Zaduzenje),0) As Zaduzenje,"
        "ISNULL(SUM(K.Razduzenje),0) As Razduzenje FROM dbo.TrgKnjKomisiona K where K.Datum>='01.01.2016' AND "
        "K.Datum<='03.31.2016' and K.brojpoduzeca=1 AND K.GodinaKnj=2016 AND K.BrojProd=3");
    for (int kind : { 97, 99, 100, 101, 102, 105, 106 }) {
        EXPECT_TRUE(totalsPanelSql(kind, 1, 2016, 0, mar1, mar31).isEmpty()) << kind;
        EXPECT_TRUE(totalsPanelRows(kind, db::ResultSet {}).rows.isEmpty()) << kind;
    }
}

// The statements on the embedded database against plain sums over the same rows.
TEST(TotalsPanel, RowsAndTotalsOnTheEmbeddedDatabase)
{
    test::TestDatabase t;
    const QDate mar1(2016, 3, 1), mar31(2016, 3, 31);
    const QList<std::tuple<int, QDate, int, double>> rows = { // RBroj, date, kind, amount of the DB book
        { 1, { 2016, 1, 5 }, 5, 100 }, { 2, { 2016, 2, 10 }, 9, 40 }, { 3, { 2016, 3, 3 }, 16, 15 },
        { 4, { 2016, 3, 9 }, 14, 7.25 }, { 5, { 2016, 3, 31 }, 6, 3 }, { 6, { 2016, 4, 1 }, 5, 999 },
        { 7, { 2016, 2, 1 }, 7, 1 }, { 8, { 2016, 3, 15 }, 10, 2 }, { 9, { 2016, 3, 15 }, 11, 4 },
        { 10, { 2016, 3, 15 }, 12, 8 }, { 11, { 2016, 3, 15 }, 13, 16 }, { 12, { 2016, 3, 15 }, 15, 32 }
    };
    for (const auto& [r, d, v, a] : rows)
        t.insert("dbo.KnjPrihRashDB",
            { { "BrojPoduzeca", 1 }, { "RBroj", r }, { "Datum", d }, { "GodinaKnj", 2016 }, { "Vrsta", v },
                { "Iznos", money(a) } });
    // Every sum is money, whatever the rows; the label is text.
    for (int kind : { 96, 98, 109, 125, 126 }) {
        const db::ResultSet rs = t.query(totalsPanelSql(kind, 1, 2016, 4, mar1, mar31));
        EXPECT_EQ(rs.field(0).type, db::FieldType::Text) << kind;
        for (int c = 1; c < rs.fieldCount(); ++c)
            EXPECT_EQ(rs.field(c).type, db::FieldType::Currency) << kind << " column " << c;
    }
    const TotalsPanelRows dbRows = totalsPanelRows(109, t.query(totalsPanelSql(109, 1, 2016, 0, mar1, mar31)));
    ASSERT_EQ(dbRows.rows.size(), 3);
    EXPECT_EQ(dbRows.rows[0].label + dbRows.rows[1].label, "Promet do 29.02.16Pr.od 01.03.16 do 03.31.16");
    const PanelRow& total = dbRows.rows[2];
    EXPECT_EQ(total.label, "Ukupno:");
    EXPECT_FALSE(total.labelBold || total.bold.contains(true));
    // Each kind its own amount; P8 = P5 + P6 + P7, P17 = P9 + ... + P15 - P16.
    const QVector<double> expected = { 100, 3, 1, 104, 40, 2, 4, 8, 16, 7.25, 32, 15, 94.25 };
    for (int c = 0; c < expected.size(); ++c)
        EXPECT_EQ(total.values[c], Money::fromDouble(expected[c])) << c;
    EXPECT_EQ(dbRows.rows[1].values[12], Money::fromDouble(54.25));

    // The services book with no entries: SUM is NULL, shown as 0; the label and the
    // first column bold, as in the turnover book, whose second column is not.
    const TotalsPanelRows usl = totalsPanelRows(125, t.query(totalsPanelSql(125, 1, 2016, 4, mar1, mar31)));
    ASSERT_EQ(usl.rows.size(), 3);
    EXPECT_EQ(usl.rows[2].values, QVector<Money> { Money() });
    EXPECT_TRUE(usl.rows[2].labelBold && usl.rows[2].bold[0]);
    EXPECT_EQ(totalsPanelHeaders(98), (QStringList { "11. Gotovina", "12. Čekovi" }));
    EXPECT_EQ(totalsPanelRows(98, db::ResultSet {}).rows[0].bold, (QVector<bool> { true, false }));
}
