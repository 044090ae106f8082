// Golden tests of the generator's source statements on fixture source tables made
// with T-SQL DDL: string building with + and casts, the 20 and 30 character cuts,
// joins, the rights subquery, and the types of what the generator copies.
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

using namespace knjige;
using knjige::test::TestDatabase;

namespace {

class DialectGeneration : public ::testing::Test {
protected:
    void SetUp() override
    {
        t.exec("CREATE TABLE Ifakture (BrojPoduzeca smallint, GodinaKnj smallint, Vrsta nvarchar(10), OrgJed int, "
               "BrojIfakt int, DatumIfakt datetime, IznosIfakt money)");
        t.exec("CREATE TABLE IFAKTUplate (BrojPoduzeca smallint, BrojIFAKT int, GodinaKnj smallint, OrgJed int, "
               "Vrsta nvarchar(10), Datum datetime, BrojDokumenta nvarchar(20), Iznos money)");
        t.exec("CREATE TABLE KUF (BrojPoduzeca smallint, GodinaKnj smallint, Vrsta nvarchar(10), OrgJed int, "
               "BrojKUFa int, SifKomit int, DatFakture datetime, IznosFakture money)");
        t.exec("CREATE TABLE KUFUplate (BrojPoduzeca smallint, BrojKUFa int, GodinaKnj smallint, OrgJed int, "
               "Vrsta nvarchar(10), Datum datetime, BrojDokumenta nvarchar(20), Iznos money)");
        t.exec(QStringLiteral("CREATE TABLE dbo.MOtpremInt (BrojPoduzeca smallint, GodinaKnj smallint, BrojSklad int, "
                              "BrojOtprem int, ŠifraKom int, DatumOtprem datetime, IznosOtprem money, UkPorez money)"));
        t.exec(QStringLiteral("CREATE TABLE dbo.RIntOtprem (BrojPoduzeca smallint, GodinaKnj smallint, BrojSklad int, "
                              "BrojPovr int, ŠifraKom int, DatumPovr datetime, IznosPovr money)"));
        t.exec("CREATE TABLE PRAVA (OPERATER nvarchar(10), PROGRAM nvarchar(20), PRAVO nvarchar(10))");
    }

    static QString row(const ResultSet& rs, int r)
    {
        QStringList cells;
        for (int c = 0; c < rs.fieldCount(); ++c)
            cells << (rs.isNull(r, c) ? QStringLiteral("<null>") : rs.text(r, c));
        return cells.join(u'|');
    }
    static QString types(const ResultSet& rs)
    {
        QStringList out;
        for (const Field& f : rs.fields())
            out << fieldTypeName(f.type);
        return out.join(u',');
    }

    TestDatabase t;
};

} // namespace

TEST_F(DialectGeneration, OutgoingInvoicesOfDailyTakings)
{
    t.exec("INSERT INTO Ifakture VALUES (1,2016,'DGP',3,12345,'03.15.2016',250.5)");
    t.exec("INSERT INTO Ifakture VALUES (1,2016,'DGP',3,12346,'03.16.2016',100)");
    t.exec("INSERT INTO Ifakture VALUES (1,2016,'VP',3,1,'03.15.2016',1)");
    t.exec("INSERT INTO Ifakture VALUES (1,2016,'DGP',3,12347,'04.16.2016',100)");   // after the range
    const ResultSet rs = t.query(
        "SELECT K.BrojPoduzeca,K.GodinaKnj,K.DatumIfakt,left('Pazar '+rtrim(cast(K.OrgJed as nvarchar(15))),20) as "
        "Isprava,left(K.Vrsta+'-'+cast(K.OrgJed as nvarchar(10))+'-'+cast(K.BrojIfakt as nvarchar(15))+'/'+"
        "cast(K.GodinaKnj as nvarchar(5)),30) as Opis,K.IznosIfakt as Iznos FROM Ifakture K  WHERE K.BrojPoduzeca=1 "
        "AND K.Vrsta='DGP' AND K.OrgJed=3 AND K.DATUMIFAKT >= '03.01.2016' AND K.DATUMIFAKT<='03.31.2016' AND "
        "K.GodinaKnj=2016 ORDER BY K.DatumIfakt");
    EXPECT_EQ(types(rs), QStringLiteral("integer,integer,date,text,text,currency"));
    ASSERT_EQ(rs.rowCount(), 2);
    EXPECT_EQ(row(rs, 0), QStringLiteral("1|2016|2016-03-15|Pazar 3|DGP-3-12345/2016|250.5"));
    EXPECT_EQ(row(rs, 1), QStringLiteral("1|2016|2016-03-16|Pazar 3|DGP-3-12346/2016|100"));
}

TEST_F(DialectGeneration, PaymentsOfOutgoingInvoicesCutTheirTexts)
{
    t.exec("INSERT INTO Ifakture VALUES (1,2016,'VELEPRODAJ',1234567,2000000001,'03.15.2016',10)");
    t.exec("INSERT INTO IFAKTUplate VALUES (1,2000000001,2016,1234567,'VELEPRODAJ','03.20.2016','IZVOD-2016-000123',7.5)");
    t.exec("INSERT INTO IFAKTUplate VALUES (1,2000000001,2016,1234567,'DGP','03.20.2016','X',1)");   // no invoice
    const ResultSet rs = t.query(
        "SELECT I.BrojPoduzeca,I.GodinaKnj,U.Datum,left('Uplata '+rtrim(cast(I.OrgJed as nvarchar(15)))+' d:'+"
        "U.BrojDokumenta,20) as Isprava,left(I.Vrsta+'-'+cast(I.OrgJed as nvarchar(10))+'-'+cast(I.BrojIfakt as "
        "nvarchar(15))+'/'+cast(I.GodinaKnj as nvarchar(5)),30) as Opis,U.Iznos  FROM Ifakture I INNER JOIN "
        "IFAKTUplate U ON I.BrojPoduzeca=U.BrojPoduzeca AND I.BrojIFAKT=U.BrojIFAKT AND I.GodinaKnj=U.GodinaKnj AND "
        "I.OrgJed=U.OrgJed AND I.Vrsta=U.Vrsta  WHERE I.BrojPoduzeca=1 AND I.OrgJed=1234567 AND U.DATUM >= "
        "'03.01.2016' AND U.DATUM<='03.31.2016' ORDER BY U.Datum");
    EXPECT_EQ(types(rs), QStringLiteral("integer,integer,date,text,text,currency"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.text(0, 3), QStringLiteral("Uplata 1234567 d:IZV"));
    EXPECT_EQ(rs.text(0, 4), QStringLiteral("VELEPRODAJ-1234567-2000000001/"));
    EXPECT_EQ(rs.money(0, 5), Money::fromUnits(75000));
}

TEST_F(DialectGeneration, IncomingInvoicesAndTheirPayments)
{
    t.exec("INSERT INTO KUF VALUES (1,2016,'KUF',2,77,500,'05.02.2016',99.99)");
    t.exec("INSERT INTO KUF VALUES (1,2016,'KUF',2,78,600,'05.03.2016',10)");
    t.exec("INSERT INTO KUFUplate VALUES (1,77,2016,2,'KUF','05.10.2016','UPL-1',50)");
    const QString kuf = QStringLiteral(
        "SELECT K.BrojPoduzeca,K.GodinaKnj,K.DatFakture,left('KUF '+rtrim(cast(K.OrgJed as nvarchar(15))),20) as "
        "Isprava,left(K.Vrsta+'-'+cast(K.OrgJed as nvarchar(10))+'-'+cast(K.BrojKUFa as nvarchar(15))+'/'+"
        "cast(K.GodinaKnj as nvarchar(5)),30) as Opis,K.IznosFakture as Iznos FROM KUF K  WHERE K.BrojPoduzeca=1 AND "
        "K.SifKomit%1 AND K.OrgJed=2 AND K.DATFAKTURE >= '05.01.2016' AND K.DATFAKTURE<='05.31.2016' AND "
        "K.GodinaKnj=2016 ORDER BY K.DATFAKTURE");
    const ResultSet only = t.query(kuf.arg(QStringLiteral("=500")));
    ASSERT_EQ(only.rowCount(), 1);
    EXPECT_EQ(row(only, 0), QStringLiteral("1|2016|2016-05-02|KUF 2|KUF-2-77/2016|99.99"));
    const ResultSet others = t.query(kuf.arg(QStringLiteral("<>500")));
    ASSERT_EQ(others.rowCount(), 1);
    EXPECT_EQ(others.text(0, 4), QStringLiteral("KUF-2-78/2016"));
    const ResultSet paid = t.query(
        "SELECT K.BrojPoduzeca,K.GodinaKnj,U.Datum,U.BrojDokumenta,left('KUF '+rtrim(cast(K.OrgJed as nvarchar(15))),"
        "20) as Isprava,left(K.Vrsta+'-'+cast(K.OrgJed as nvarchar(10))+'-'+cast(K.BrojKUFa as nvarchar(15))+'/'+"
        "cast(K.GodinaKnj as nvarchar(5)),30) as Opis,U.Iznos FROM KUF K INNER JOIN KUFUplate U ON "
        "K.BrojPoduzeca=U.BrojPoduzeca AND K.BrojKUFa=U.BrojKUFa AND K.GodinaKnj=U.GodinaKnj AND K.OrgJed=U.OrgJed AND "
        "K.Vrsta=U.Vrsta  WHERE K.BrojPoduzeca=1 AND K.SifKomit<>600 AND K.OrgJed=2 AND U.DATUM >= '05.01.2016' AND "
        "U.DATUM<='05.31.2016' ORDER BY U.Datum");
    EXPECT_EQ(types(paid), QStringLiteral("integer,integer,date,text,text,text,currency"));
    ASSERT_EQ(paid.rowCount(), 1);
    EXPECT_EQ(row(paid, 0), QStringLiteral("1|2016|2016-05-10|UPL-1|KUF 2|KUF-2-77/2016|50"));
}

TEST_F(DialectGeneration, InternalDispatchNotesWithTheRightsCondition)
{
    t.exec(QStringLiteral("INSERT INTO dbo.MOtpremInt VALUES (1,2016,4,15,900,'06.01.2016',100,17)"));
    t.exec(QStringLiteral("INSERT INTO dbo.MOtpremInt VALUES (1,2016,5,16,900,'06.02.2016',50,8.5)"));   // no right
    t.exec(QStringLiteral("INSERT INTO PRAVA VALUES ('ana','SKLADIŠTE','4')"));
    t.exec(QStringLiteral("INSERT INTO PRAVA VALUES ('ana','MALOPROBJEKT','5')"));
    const ResultSet rs = t.query(QStringLiteral(
        "SELECT K.BrojPoduzeca,K.GodinaKnj,K.DatumOtprem as Datum,left('M.Int.otp. '+rtrim(cast(K.ŠifraKom as "
        "nvarchar(15))),20) as Isprava,left(cast(K.BrojSklad as nvarchar(10))+'-'+cast(K.BrojOtprem as nvarchar(15))+"
        "'/'+cast(K.GodinaKnj as nvarchar(5)),30) as Opis,K.IznosOtprem+K.UkPorez as Iznos,K.UkPorez FROM "
        "dbo.MOtpremInt K  WHERE K.BrojPoduzeca=1 AND K.BROJSKLAD IN (SELECT CAST(PRAVO AS INTEGER) AS BROJSKLAD FROM "
        "PRAVA WHERE OPERATER='ana' AND PROGRAM='SKLADIŠTE')  AND K.ŠifraKom=900 AND K.DatumOtprem >= '06.01.2016' "
        "AND K.DatumOtprem<='06.30.2016' AND K.GodinaKnj=2016 ORDER BY K.DatumOtprem,K.BrojSklad"));
    EXPECT_EQ(types(rs), QStringLiteral("integer,integer,date,text,text,currency,currency"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(row(rs, 0), QStringLiteral("1|2016|2016-06-01|M.Int.otp. 900|4-15/2016|117|17"));

    t.exec(QStringLiteral("INSERT INTO dbo.RIntOtprem VALUES (1,2016,5,3,900,'06.05.2016',12.3456)"));
    const ResultSet shop = t.query(QStringLiteral(
        "SELECT K.BrojPoduzeca,K.GodinaKnj,K.DatumPovr as Datum,left('P.Int.otp. '+rtrim(cast(K.ŠifraKom as "
        "nvarchar(15))),20) as Isprava,left(cast(K.BrojSklad as nvarchar(10))+'-'+cast(K.BrojPovr as nvarchar(15))+'/'"
        "+cast(K.GodinaKnj as nvarchar(5)),30) as Opis,K.IznosPovr as Iznos FROM dbo.RIntOtprem K  WHERE "
        "K.BrojPoduzeca=1 AND K.BROJSKLAD IN (SELECT CAST(PRAVO AS INTEGER) AS BROJSKLAD FROM PRAVA WHERE "
        "OPERATER='ana' AND PROGRAM='MALOPROBJEKT')  AND K.ŠifraKom=900 AND K.DatumPovr >= '06.01.2016' AND "
        "K.DatumPovr<='06.30.2016' AND K.GodinaKnj=2016 ORDER BY K.DatumPovr,K.BrojSklad"));
    ASSERT_EQ(shop.rowCount(), 1);
    EXPECT_EQ(row(shop, 0), QStringLiteral("1|2016|2016-06-05|P.Int.otp. 900|5-3/2016|12.3456"));
}

TEST_F(DialectGeneration, TargetBookStatements)
{
    const ResultSet last = t.query("SELECT MAX(D.RBroj) as Broj FROM dbo.KnjPrihRashDB D WHERE D.BrojPoduzeca=1 AND "
                                   "D.GodinaKnj=2016");
    ASSERT_EQ(last.rowCount(), 1);
    EXPECT_TRUE(last.isNull(0, 0));
    const ResultSet empty = t.query("SELECT * FROM DBO.KnjPrihRashDB WHERE RBROJ=0");
    EXPECT_TRUE(empty.isEmpty());
    EXPECT_EQ(types(empty), QStringLiteral("integer,integer,date,integer,text,text,integer,currency"));
}
