// Golden tests of the browser's fixed statements (insert at position, renumbering,
// opening state, totals panel, recapitulation, bulk delete, configuration) run
// through the dialect adapter on fixture rows.
#include "session/Dates.h"
#include "session/Session.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

using namespace knjige;
using knjige::test::money;
using knjige::test::TestDatabase;

namespace {

void fbih(TestDatabase& t, int rbroj, QDate datum, int vrsta, double iznos, double pdv, int company = 1)
{
    t.insert("dbo.KnjPrihRashFBiH", { { "BrojPoduzeca", company }, { "RBroj", rbroj }, { "Datum", datum },
                                      { "GodinaKnj", datum.year() }, { "Isprava", QStringLiteral("I%1").arg(rbroj) },
                                      { "Opis", QStringLiteral("O%1").arg(rbroj) }, { "Vrsta", vrsta },
                                      { "Iznos", money(iznos) }, { "IznosPDV", money(pdv) } });
}

QVector<qint64> ints(const ResultSet& rs, const char* name)
{
    QVector<qint64> out;
    const int c = rs.indexOf(QString::fromLatin1(name));
    for (int r = 0; r < rs.rowCount(); ++r)
        out << rs.integer(r, c);
    return out;
}

} // namespace

TEST(DialectStatements, InsertAtPositionShiftsAndFillsTheGap)
{
    TestDatabase t;
    fbih(t, 1, QDate(2016, 1, 1), 11, 1, 0);
    fbih(t, 2, QDate(2016, 1, 2), 11, 2, 0);
    fbih(t, 3, QDate(2016, 1, 3), 11, 3, 0);
    fbih(t, 2, QDate(2016, 1, 2), 11, 9, 0, 2);   // other company: not shifted
    t.exec("UPDATE dbo.KnjPrihRashFBiH SET RBROJ=RBROJ+1 WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 AND RBroj>=2");
    t.exec("INSERT INTO dbo.KnjPrihRashFBiH (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,ISPRAVA,OPIS,VRSTA) "
           "VALUES(1,2,'1.1.2016',2016,'','',11)");
    const ResultSet rs = t.query("SELECT * FROM dbo.KnjPrihRashFBiH WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 "
                                 "order by RBroj");
    EXPECT_EQ(ints(rs, "RBroj"), (QVector<qint64> { 1, 2, 3, 4 }));
    EXPECT_EQ(rs.date(1, rs.indexOf("Datum")), QDate(2016, 1, 1));
    EXPECT_EQ(rs.money(1, rs.indexOf("Iznos")), Money());   // the column's default
    EXPECT_EQ(rs.field(rs.indexOf("Iznos")).type, FieldType::Currency);
    EXPECT_EQ(t.query("SELECT RBroj FROM dbo.KnjPrihRashFBiH WHERE BrojPoduzeca=2").integer(0, 0), 2);
}

TEST(DialectStatements, EveryBlankRowInsertRuns)
{
    TestDatabase t;
    t.insert("dbo.Komitent", { { "SifKomit", 7 }, { "ImeKomit1", QStringLiteral("P") } });
    const char* const inserts[] = {
        "INSERT INTO dbo.KnjPrihRashDB (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,ISPRAVA,OPIS,VRSTA) VALUES(1,1,'1.1.2016',2016,'','',11)",
        "INSERT INTO dbo.KnjEvidPotrIObvFBiH (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,SIFKOMIT,VRSTA,OPIS,ISPRAVA,IZNOS,RBROJKPR) "
        "VALUES(1,1,'1.1.2016',2016,0,0,'','',0,0)",
        "INSERT INTO dbo.KnjPrometaFBiH (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,OPIS,ISPRAVA,IZNOSGOT,IZNOSCEK) "
        "VALUES(1,1,'1.1.2016',2016,'','',0,0 )",
        "INSERT INTO dbo.KnjPrihodaRS (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,OPIS,VRSTA) VALUES(1,1,'1.1.2016',2016,'',11)",
        "INSERT INTO dbo.KnjRashodaRS (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,OPIS,VRSTA) VALUES(1,1,'1.1.2016',2016,'',11)",
        "INSERT INTO dbo.TrgKnjUsluga (BROJPODUZECA,BrojProd,RBROJ,DATUM,GODINAKNJ,OPIS,IZNOS) VALUES(1,7,1,'1.1.2016',2016,'',0)",
        "INSERT INTO dbo.TrgKnjKomisiona (BROJPODUZECA,BrojProd,RBROJ,DATUM,GODINAKNJ,OPIS,Zaduzenje,Razduzenje) "
        "VALUES(1,7,1,'1.1.2016',2016,'',0,0)",
    };
    for (const char* sql : inserts)
        t.exec(QString::fromUtf8(sql));
    for (const char* table : { "dbo.KnjPrihRashDB", "dbo.KnjEvidPotrIObvFBiH", "dbo.KnjPrometaFBiH",
                               "dbo.KnjPrihodaRS", "dbo.KnjRashodaRS", "dbo.TrgKnjUsluga", "dbo.TrgKnjKomisiona" }) {
        // Stored in the ISO form, so the opening WHERE clause finds the row.
        const ResultSet rs = t.query(QStringLiteral("SELECT K.Datum FROM ") + QString::fromLatin1(table)
                                     + QStringLiteral(" K WHERE  K.Datum>='01.01.2016' AND K.GodinaKnj=2016"));
        ASSERT_EQ(rs.rowCount(), 1) << table;
        EXPECT_EQ(rs.date(0, 0), QDate(2016, 1, 1)) << table;
    }
}

TEST(DialectStatements, RenumberingStatements)
{
    TestDatabase t;
    fbih(t, 5, QDate(2016, 2, 1), 16, 1, 0);
    fbih(t, 3, QDate(2016, 1, 1), 11, 1, 0);
    t.insert("dbo.KnjEvidPotrIObvFBiH", { { "BrojPoduzeca", 1 }, { "RBroj", 1 }, { "Datum", QDate(2016, 1, 1) },
                                          { "GodinaKnj", 2016 }, { "SifKomit", 1 }, { "Vrsta", 11 },
                                          { "Iznos", money(1) }, { "RBrojKPR", 3 } });
    const ResultSet links = t.query("SELECT * FROM dbo.KnjEvidPotrIObvFBiH WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 "
                                    "AND RBrojKPR<>0 order by RBroj");
    ASSERT_EQ(links.rowCount(), 1);
    EXPECT_EQ(links.field(links.indexOf("RBrojKPR")).type, FieldType::Integer);
    const ResultSet byDate = t.query("SELECT * FROM dbo.KnjPrihRashFBiH WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 "
                                     "order by Datum,Vrsta");
    EXPECT_EQ(ints(byDate, "RBroj"), (QVector<qint64> { 3, 5 }));
    int affected = 0;
    ASSERT_TRUE(t.db().execute("UPDATE dbo.KnjEvidPotrIObvFBiH SET RBrojKPR=RBrojKPR+100000 WHERE GODINAKNJ=2016 "
                               "AND BROJPODUZECA=1 AND RBrojKPR=3",
                               &affected));
    EXPECT_EQ(affected, 1);
    t.exec("UPDATE dbo.KnjEvidPotrIObvFBiH SET RBrojKPR=1 WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 AND RBrojKPR=100003");
    EXPECT_EQ(t.query("SELECT RBrojKPR FROM dbo.KnjEvidPotrIObvFBiH").integer(0, 0), 1);
    const ResultSet trade = t.query("SELECT * FROM dbo.TrgKnjUsluga WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 AND "
                                    "BrojProd=4 order by Datum");
    EXPECT_EQ(trade.fieldCount(), 7);
    EXPECT_TRUE(trade.isEmpty());
}

TEST(DialectStatements, OpeningStateDividesIntegersAsIntegers)
{
    TestDatabase t;
    const auto asset = [&](int rbroj, int year, double nab, double knjig, int vijek) {
        t.insert("dbo.KnjPopListaDugImovFBiH",
                 { { "BrojPoduzeca", 1 }, { "GodinaKnj", year }, { "RBroj", rbroj },
                   { "Naziv", QStringLiteral("S%1").arg(rbroj) }, { "Datum", QDate(year, 3, 1) },
                   { "Isprava", QStringLiteral("X") }, { "NabVrijednost", money(nab) },
                   { "KnjigVrijednost", money(knjig) }, { "VijekTr", vijek } });
    };
    asset(1, 2016, 1000, 1000, 3);    // 100/3 = 33 %: 670.00, not 666.67
    asset(2, 2016, 1000, 200, 5);     // 20 %: nothing left, not carried
    asset(3, 2016, 1000, 0, 5);       // written off already
    asset(4, 2016, 999.99, 900.01, 8);   // 12 %: 900.01 - 119.9988 = 780.0112 -> 780.01
    asset(1, 2017, 50, 50, 1);        // a row already in the new year keeps its number
    t.exec("INSERT INTO KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv,Datum,Isprava,NabVrijednost,"
           "KnjigVrijednost,VijekTr) SELECT BrojPoduzeca,2017,Naziv,'01.01.2017','Poč.stanje iz 2016',NabVrijednost,"
           "round(KnjigVrijednost-100/VijekTr*NabVrijednost/100,2),VijekTr FROM KnjPopListaDugImovFBiH WHERE "
           "GODINAKNJ=2016 AND BROJPODUZECA=1 AND KnjigVrijednost>0 AND "
           "round(KnjigVrijednost-100/VijekTr*NabVrijednost/100,2)>0");
    const ResultSet rs = t.query("SELECT K.RBroj,K.Naziv,K.Datum,K.Isprava,K.KnjigVrijednost FROM "
                                 "KnjPopListaDugImovFBiH K WHERE K.GodinaKnj=2017 ORDER BY K.RBroj");
    ASSERT_EQ(rs.rowCount(), 3);
    EXPECT_EQ(ints(rs, "RBroj"), (QVector<qint64> { 1, 2, 3 }));
    EXPECT_EQ(rs.text(1, 1), QStringLiteral("S1"));
    EXPECT_EQ(rs.date(1, 2), QDate(2017, 1, 1));
    EXPECT_EQ(rs.text(1, 3), QStringLiteral("Poč.stanje iz 2016"));
    EXPECT_EQ(rs.money(1, 4), Money::fromWhole(670));
    EXPECT_EQ(rs.text(2, 1), QStringLiteral("S4"));
    EXPECT_EQ(rs.money(2, 4).units(), 7800100);
}

TEST(DialectStatements, TotalsPanelIncomeExpenseFBiH)
{
    TestDatabase t;
    fbih(t, 1, QDate(2016, 1, 10), 11, 117, 17);
    fbih(t, 2, QDate(2016, 2, 29), 16, 50, 5);
    fbih(t, 3, QDate(2016, 3, 1), 12, 20, 2);
    fbih(t, 4, QDate(2016, 3, 31), 19, 10, 0);
    fbih(t, 5, QDate(2016, 4, 1), 11, 1000, 0);   // after the period
    const QString sums = QStringLiteral(
        "sum(case when P.Vrsta=11 then P.Iznos else 0 end) as P11,sum(case when P.Vrsta=12 then P.Iznos else 0 end) "
        "as P12,sum(case when P.Vrsta=13 then P.Iznos else 0 end) as P13,sum(case when P.Vrsta>=11 and P.Vrsta<=13 "
        "then P.IznosPDV else 0 end) as P14,sum(case when P.Vrsta>=11 and P.Vrsta<=13 then P.Iznos-P.IznosPDV else 0 "
        "end) as P15,sum(case when P.Vrsta=16 then P.Iznos else 0 end) as P16,sum(case when P.Vrsta=17 then P.Iznos "
        "else 0 end) as P17,sum(case when P.Vrsta=18 then P.Iznos else 0 end) as P18,sum(case when P.Vrsta=19 then "
        "P.Iznos else 0 end) as P19,sum(case when P.Vrsta>=16 and P.Vrsta<=19 then P.IznosPDV else 0 end) as P20,"
        "sum(case when P.Vrsta>=16 and P.Vrsta<=19 then P.Iznos-P.IznosPDV else 0 end) as P21 ");
    const QString sql = QStringLiteral("SELECT 'Promet do 29.02.16' AS Opis,") + sums
        + QStringLiteral("FROM dbo.KnjPrihRashFBiH P where P.Datum>='01.01.2016' AND P.Datum<='02.29.2016' and "
                         "P.brojpoduzeca=1 AND P.GodinaKnj=2016 UNION SELECT 'Pr.od 01.03.16 do 03.31.16' AS Opis,")
        + sums
        + QStringLiteral("FROM dbo.KnjPrihRashFBiH P where P.Datum>='03.01.2016' AND P.Datum<='03.31.2016' and "
                         "P.brojpoduzeca=1 AND P.GodinaKnj=2016");
    ResultSet rs = t.query(sql);
    ASSERT_EQ(rs.rowCount(), 2);
    ASSERT_EQ(rs.fieldCount(), 12);
    EXPECT_EQ(rs.field(0).type, FieldType::Text);
    for (int c = 1; c < 12; ++c)
        EXPECT_EQ(rs.field(c).type, FieldType::Currency) << c;
    const int before = rs.text(0, 0).startsWith(QStringLiteral("Promet")) ? 0 : 1;
    EXPECT_EQ(rs.text(before, 0), QStringLiteral("Promet do 29.02.16"));
    EXPECT_EQ(rs.money(before, rs.indexOf("P11")), Money::fromWhole(117));
    EXPECT_EQ(rs.money(before, rs.indexOf("P15")), Money::fromWhole(100));
    EXPECT_EQ(rs.money(before, rs.indexOf("P21")), Money::fromWhole(45));
    EXPECT_EQ(rs.money(1 - before, rs.indexOf("P12")), Money::fromWhole(20));
    EXPECT_EQ(rs.money(1 - before, rs.indexOf("P19")), Money::fromWhole(10));
    EXPECT_EQ(rs.money(1 - before, rs.indexOf("P11")), Money());
}

TEST(DialectStatements, TotalsPanelTradeBooksOnAnEmptyPeriod)
{
    TestDatabase t;
    const ResultSet services = t.query(
        "SELECT 'Promet od 01.01.16 do 12.31.16' AS Opis,SUM(K.Iznos) AS Iznos FROM dbo.TrgKnjUsluga K where "
        "K.Datum>='01.01.2016' AND K.Datum<='12.31.2016' and K.brojpoduzeca=1 AND K.GodinaKnj=2016 AND K.BrojProd=3");
    ASSERT_EQ(services.rowCount(), 1);
    EXPECT_EQ(services.field(1).type, FieldType::Currency);
    EXPECT_TRUE(services.isNull(0, 1));   // SUM of nothing is NULL; the panel shows 0
    const ResultSet commission = t.query(
        "SELECT 'Promet od 01.01.16 do 12.31.16' AS Opis,ISNULL(SUM(K.Zaduzenje),0) As Zaduzenje,"
        "ISNULL(SUM(K.Razduzenje),0) As Razduzenje FROM dbo.TrgKnjKomisiona K where K.Datum>='01.01.2016' AND "
        "K.Datum<='12.31.2016' and K.brojpoduzeca=1 AND K.GodinaKnj=2016 AND K.BrojProd=3");
    EXPECT_EQ(commission.field(1).type, FieldType::Currency);
    EXPECT_FALSE(commission.isNull(0, 1));
    EXPECT_EQ(commission.money(0, 2), Money());
    const ResultSet turnover = t.query(
        "SELECT 'Promet od 01.01.16 do 12.31.16' AS Opis,SUM(K.IznosGot) AS gotovina,SUM(K.IznosCek) As Cek FROM "
        "KnjPrometaFBiH K where K.Datum>='01.01.2016' AND K.Datum<='12.31.2016' and K.brojpoduzeca=1 AND "
        "K.GodinaKnj=2016");
    EXPECT_EQ(turnover.field(2).type, FieldType::Currency);
}

TEST(DialectStatements, RecapitulationGroupsByKind)
{
    TestDatabase t;
    fbih(t, 1, QDate(2016, 1, 10), 11, 117, 17);
    fbih(t, 2, QDate(2016, 1, 11), 11, 3, 0);
    fbih(t, 3, QDate(2016, 1, 12), 17, 500, 0);
    const ResultSet rs = t.query(
        "SELECT TOP 100 PERCENT K.Vrsta,CASE K.Vrsta WHEN 11 THEN 'Prihod u gotovini' WHEN 12 THEN 'Prihodi preko "
        "bank.računa' WHEN 13 THEN 'Prihod u stvarima i usl' WHEN 16 THEN 'Rashod za nabavku rob/mat' WHEN 17 THEN "
        "'Rashod za bruto plaće' WHEN 18 THEN 'Rashod za plaćene dop p.' WHEN 19 THEN 'Ostali rashodi' END As Naziv,"
        "SUM(CASE WHEN K.Vrsta>=11 AND K.Vrsta<=13 THEN K.Iznos ELSE 0 END) AS Prihod,SUM(CASE WHEN K.Vrsta>=11 AND "
        "K.Vrsta<=13 THEN K.IznosPDV ELSE 0 END) AS PDVPrihod,SUM(CASE WHEN K.Vrsta>=16 AND K.Vrsta<=19 THEN K.Iznos "
        "ELSE 0 END) AS Rashod,SUM(CASE WHEN K.Vrsta>=16 AND K.Vrsta<=19 THEN K.IznosPDV ELSE 0 END) AS PDVRashod "
        "FROM dbo.KnjPrihRashFBiH K  WHERE K.BrojPoduzeca=1 AND  K.Datum>='01.01.2016' AND K.GodinaKnj=2016 "
        "GROUP BY K.Vrsta ORDER BY K.Vrsta");
    ASSERT_EQ(rs.rowCount(), 2);
    EXPECT_EQ(rs.text(0, 1), QStringLiteral("Prihod u gotovini"));
    EXPECT_EQ(rs.money(0, 2), Money::fromWhole(120));
    EXPECT_EQ(rs.money(0, 3), Money::fromWhole(17));
    EXPECT_EQ(rs.text(1, 1), QStringLiteral("Rashod za bruto plaće"));
    EXPECT_EQ(rs.money(1, 4), Money::fromWhole(500));
    EXPECT_EQ(rs.field(5).type, FieldType::Currency);
}

TEST(DialectStatements, BulkDeleteTakesOnlyTheFilteredRows)
{
    TestDatabase t;
    for (int i = 1; i <= 3; ++i)
        t.insert("dbo.KnjPrihRashDB", { { "BrojPoduzeca", 1 }, { "RBroj", i }, { "Datum", QDate(2016, i, 1) },
                                        { "GodinaKnj", 2016 }, { "Vrsta", 5 }, { "Iznos", money(i) } });
    t.insert("dbo.KnjPrihRashDB", { { "BrojPoduzeca", 2 }, { "RBroj", 1 }, { "Datum", QDate(2016, 1, 1) },
                                    { "GodinaKnj", 2016 }, { "Vrsta", 5 }, { "Iznos", money(1) } });
    int affected = 0;
    ASSERT_TRUE(t.db().execute("DELETE dbo.KnjPrihRashDB FROM dbo.KnjPrihRashDB K WHERE K.BrojPoduzeca=1 AND  "
                               "K.Datum>='02.01.2016' AND K.Datum<='12.31.2016' AND K.GodinaKnj=2016",
                               &affected))
        << t.db().errorDescription().toStdString();
    EXPECT_EQ(affected, 2);
    EXPECT_EQ(t.count("dbo.KnjPrihRashDB"), 2);
}

TEST(DialectStatements, CompanyConfiguration)
{
    TestDatabase t;
    t.insert("dbo.CONFIG", { { "BrojPoduzeca", 1 }, { "NazivFirme", QStringLiteral("Obrt Šimić") },
                             { "Napomena", QString(5000, u'x') } });
    t.exec("SET TEXTSIZE 1000000");
    DefVarijabli::CitajKonfiguraciju(true);
    EXPECT_EQ(session().NazivFirme, QStringLiteral("Obrt Šimić"));
    const ResultSet& cfg = session().Konfiguracija;
    ASSERT_EQ(cfg.rowCount(), 1);
    EXPECT_EQ(cfg.text(0, cfg.indexOf("Napomena")).size(), 5000);
    const ResultSet name = t.query("SELECT NazivFirme FROM dbo.CONFIG WHERE BROJPODUZECA=1");
    EXPECT_EQ(name.fieldCount(), 1);
}
