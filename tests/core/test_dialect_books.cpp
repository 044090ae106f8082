// Golden tests of the browser queries: each book's fixed SELECT with the opening WHERE
// clause and order, run through the dialect adapter on fixture rows that reach the
// edge cases of the books. Rows and field types are what SQL Server would give.
#include "books/BookKind.h"
#include "session/Dates.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

using namespace knjige;
using knjige::test::money;
using knjige::test::TestDatabase;

namespace {

// The grid's query for company 1, working year 2016, as the browser opens it.
QString openingQuery(int book)
{
    return findBook(book)->selectSql + QStringLiteral(" WHERE  K.Datum>='") + dates::sqlLiteral(QDate(2016, 1, 1))
        + QStringLiteral("' AND K.GodinaKnj=2016 AND K.BrojPoduzeca=1") + QStringLiteral(" ORDER BY K.RBroj");
}

QStringList names(const ResultSet& rs)
{
    QStringList out;
    for (const Field& f : rs.fields())
        out << f.name;
    return out;
}

QStringList types(const ResultSet& rs)
{
    QStringList out;
    for (const Field& f : rs.fields())
        out << fieldTypeName(f.type);
    return out;
}

QVector<qint64> column(const ResultSet& rs, const QString& name)
{
    QVector<qint64> out;
    const int c = rs.indexOf(name);
    for (int r = 0; r < rs.rowCount(); ++r)
        out << (rs.isNull(r, c) ? -1 : rs.integer(r, c));
    return out;
}

QStringList texts(const ResultSet& rs, const QString& name)
{
    QStringList out;
    const int c = rs.indexOf(name);
    for (int r = 0; r < rs.rowCount(); ++r)
        out << (rs.isNull(r, c) ? QStringLiteral("<null>") : rs.text(r, c));
    return out;
}

// Amounts in hundredths, -1 for NULL.
QVector<qint64> cents(const ResultSet& rs, const QString& name)
{
    QVector<qint64> out;
    const int c = rs.indexOf(name);
    for (int r = 0; r < rs.rowCount(); ++r)
        out << (rs.isNull(r, c) ? -1 : rs.money(r, c).units() / 100);
    return out;
}

void incomeExpense(TestDatabase& t, const char* table, int company, int rbroj, QDate datum, int year, int vrsta,
                   double iznos, double pdv = -1)
{
    RowChange::Values v { { "BrojPoduzeca", company }, { "RBroj", rbroj }, { "Datum", datum },
                          { "GodinaKnj", year }, { "Opis", QStringLiteral("Opis %1").arg(rbroj) },
                          { "Vrsta", vrsta },  { "Iznos", money(iznos) } };
    if (QString::fromLatin1(table).contains(u"PrihRash"))
        v.push_back({ "Isprava", QStringLiteral("D-%1").arg(rbroj) });
    if (pdv >= 0)
        v.push_back({ "IznosPDV", money(pdv) });
    t.insert(QString::fromLatin1(table), v);
}

} // namespace

TEST(DialectBooks, IncomeExpenseFBiH)
{
    TestDatabase t;
    const char* table = "dbo.KnjPrihRashFBiH";
    incomeExpense(t, table, 1, 1, QDate(2016, 1, 5), 2016, 11, 117, 17);
    incomeExpense(t, table, 1, 2, QDate(2016, 2, 10), 2016, 16, 58.5, 8.5);
    incomeExpense(t, table, 1, 3, QDate(2016, 3, 1), 2016, 14, 10, 0);     // unused kind: in no column
    incomeExpense(t, table, 1, 4, QDate(2015, 12, 31), 2016, 11, 1, 0);    // before the year: not listed
    incomeExpense(t, table, 1, 5, QDate(2017, 1, 10), 2016, 13, 20, 3);    // later date, book year 2016
    incomeExpense(t, table, 2, 6, QDate(2016, 5, 5), 2016, 11, 1, 0);      // other company
    incomeExpense(t, table, 1, 7, QDate(2016, 5, 5), 2015, 11, 1, 0);      // other year

    const ResultSet rs = t.query(openingQuery(Knjiga::PrihRashFBiH));
    EXPECT_EQ(names(rs).join(u','), QStringLiteral("RBroj,GodinaKnj,Datum,Isprava,Opis,Vrsta,NazivVrste,Prihodi,"
                                                   "PDVPrihodi,Rashodi,PDVRashodi,I"));
    EXPECT_EQ(types(rs).join(u','), QStringLiteral("integer,integer,date,text,text,integer,text,currency,currency,"
                                                   "currency,currency,text"));
    EXPECT_EQ(column(rs, "RBroj"), (QVector<qint64> { 1, 2, 3, 5 }));
    EXPECT_EQ(texts(rs, "NazivVrste"), (QStringList { "Prihod - Gotovina", "Rashod - Nabavka robe/materijala",
                                                      "<null>", "Prihod -Stvari i usluge" }));
    EXPECT_EQ(cents(rs, "Prihodi"), (QVector<qint64> { 11700, 0, 0, 2000 }));
    EXPECT_EQ(cents(rs, "PDVPrihodi"), (QVector<qint64> { 1700, 0, 0, 300 }));
    EXPECT_EQ(cents(rs, "Rashodi"), (QVector<qint64> { 0, 5850, 0, 0 }));
    EXPECT_EQ(cents(rs, "PDVRashodi"), (QVector<qint64> { 0, 850, 0, 0 }));
    EXPECT_EQ(rs.date(3, rs.indexOf("Datum")), QDate(2017, 1, 10));
    EXPECT_EQ(texts(rs, "I"), (QStringList { "", "", "", "" }));
}

TEST(DialectBooks, IncomeExpenseDBCountsKind16AsProfit)
{
    TestDatabase t;
    const char* table = "dbo.KnjPrihRashDB";
    incomeExpense(t, table, 1, 1, QDate(2016, 1, 5), 2016, 5, 100);
    incomeExpense(t, table, 1, 2, QDate(2016, 1, 6), 2016, 10, 40);
    incomeExpense(t, table, 1, 3, QDate(2016, 1, 7), 2016, 16, 7.25);
    incomeExpense(t, table, 1, 4, QDate(2016, 1, 8), 2016, 8, 3);
    const ResultSet rs = t.query(openingQuery(Knjiga::PrihRashDB));
    EXPECT_EQ(names(rs).join(u','), QStringLiteral("RBroj,GodinaKnj,Datum,Isprava,Opis,Vrsta,NazivVrste,Prihodi,"
                                                   "Rashodi,RashPPDOH,Dobit,Iznos,I"));
    EXPECT_EQ(types(rs).join(u','), QStringLiteral("integer,integer,date,text,text,integer,text,currency,currency,"
                                                   "currency,currency,currency,text"));
    EXPECT_EQ(texts(rs, "NazivVrste"),
              (QStringList { "Prihod - Gotovina", "Rashod - Žiro račun", "Rashod - PPDOH", "<null>" }));
    EXPECT_EQ(cents(rs, "Prihodi"), (QVector<qint64> { 10000, 0, 0, 0 }));
    EXPECT_EQ(cents(rs, "Rashodi"), (QVector<qint64> { 0, 4000, 0, 0 }));
    EXPECT_EQ(cents(rs, "RashPPDOH"), (QVector<qint64> { 0, 0, 725, 0 }));
    EXPECT_EQ(cents(rs, "Dobit"), (QVector<qint64> { 10000, -4000, 725, -300 }));
}

TEST(DialectBooks, ReceivablesListOnlyRowsWithAKnownPartner)
{
    TestDatabase t;
    t.insert("dbo.Komitent", { { "SifKomit", 10 }, { "ImeKomit1", QStringLiteral("Kupac d.o.o.") } });
    const auto row = [&](int rbroj, int partner, int vrsta, double iznos) {
        t.insert("dbo.KnjEvidPotrIObvFBiH",
                 { { "BrojPoduzeca", 1 }, { "RBroj", rbroj }, { "Datum", QDate(2016, 4, rbroj) }, { "GodinaKnj", 2016 },
                   { "SifKomit", partner }, { "Vrsta", vrsta }, { "Opis", QStringLiteral("o") },
                   { "Isprava", QStringLiteral("i") }, { "Iznos", money(iznos) }, { "RBrojKPR", rbroj * 10 } });
    };
    row(1, 10, 11, 100);
    row(2, 99, 11, 50);   // partner missing from dbo.Komitent: not listed
    row(3, 10, 12, 30);
    row(4, 10, 21, 20);
    row(5, 10, 22, 10);
    for (int book : { int(Knjiga::EvidPotObvFBiH), int(Knjiga::EvidPotObvRS) }) {
        const ResultSet rs = t.query(openingQuery(book));
        EXPECT_EQ(names(rs).join(u','), QStringLiteral("RBroj,ImeKomit1,Datum,Isprava,Opis,Vrsta,NazivVrste,IznosIR,"
                                                       "UplateIR,IznosUR,UplateUR,Iznos,RBrojKPR,SifKomit,I"));
        EXPECT_EQ(types(rs).join(u','), QStringLiteral("integer,text,date,text,text,integer,text,currency,currency,"
                                                       "currency,currency,currency,integer,integer,text"));
        EXPECT_EQ(column(rs, "RBroj"), (QVector<qint64> { 1, 3, 4, 5 }));
        EXPECT_EQ(texts(rs, "NazivVrste"), (QStringList { "Izdati racuni", "Uplate za izdate racune",
                                                          "Primljeni racuni", "Uplate za primljene racune" }));
        EXPECT_EQ(cents(rs, "IznosIR"), (QVector<qint64> { 10000, 0, 0, 0 }));
        EXPECT_EQ(cents(rs, "UplateIR"), (QVector<qint64> { 0, 3000, 0, 0 }));
        EXPECT_EQ(cents(rs, "IznosUR"), (QVector<qint64> { 0, 0, 2000, 0 }));
        EXPECT_EQ(cents(rs, "UplateUR"), (QVector<qint64> { 0, 0, 0, 1000 }));
        EXPECT_EQ(texts(rs, "ImeKomit1").first(), QStringLiteral("Kupac d.o.o."));
    }
}

TEST(DialectBooks, TurnoverBooksOfBothEntities)
{
    TestDatabase t;
    for (int i = 1; i <= 2; ++i)
        t.insert("dbo.KnjPrometaFBiH", { { "BrojPoduzeca", 1 }, { "RBroj", i }, { "Datum", QDate(2016, 6, i) },
                                         { "GodinaKnj", 2016 }, { "Opis", QStringLiteral("Promet") },
                                         { "Isprava", QStringLiteral("P%1").arg(i) }, { "IznosGot", money(i * 10.5) },
                                         { "IznosCek", money(0) } });
    const ResultSet fbih = t.query(openingQuery(Knjiga::PrometaFBiH));
    EXPECT_EQ(names(fbih).join(u','), QStringLiteral("RBroj,GodinaKnj,Datum,Isprava,Opis,IznosGot,IznosCek,I"));
    EXPECT_EQ(types(fbih).join(u','), QStringLiteral("integer,integer,date,text,text,currency,currency,text"));
    EXPECT_EQ(cents(fbih, "IznosGot"), (QVector<qint64> { 1050, 2100 }));
    // 106 reads every column of the shared table.
    const ResultSet rs = t.query(openingQuery(Knjiga::PrometaRS));
    EXPECT_EQ(names(rs).join(u','),
              QStringLiteral("BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Isprava,IznosGot,IznosCek,I"));
    EXPECT_EQ(types(rs).join(u','),
              QStringLiteral("integer,integer,date,integer,text,text,currency,currency,text"));
    EXPECT_EQ(cents(rs, "IznosCek"), (QVector<qint64> { 0, 0 }));
}

TEST(DialectBooks, IncomeAndExpenseBooksRS)
{
    TestDatabase t;
    incomeExpense(t, "dbo.KnjPrihodaRS", 1, 1, QDate(2016, 1, 2), 2016, 7, 12.34, 0);
    incomeExpense(t, "dbo.KnjPrihodaRS", 1, 2, QDate(2016, 1, 3), 2016, 3, 1, 0);
    incomeExpense(t, "dbo.KnjRashodaRS", 1, 1, QDate(2016, 1, 2), 2016, 7, 5, 0);
    incomeExpense(t, "dbo.KnjRashodaRS", 1, 2, QDate(2016, 1, 3), 2016, 13, 6, 1);
    const ResultSet income = t.query(openingQuery(Knjiga::PrihodaRS));
    EXPECT_EQ(names(income).join(u','), QStringLiteral("RBroj,Vrsta,Opis,Datum,Iznos,IznosPDV,VrstaVrijednost"));
    EXPECT_EQ(types(income).join(u','), QStringLiteral("integer,text,text,date,currency,currency,integer"));
    EXPECT_EQ(texts(income, "Vrsta"), (QStringList { "Prihod - Naplaćeni prihod od financiranja", "<null>" }));
    EXPECT_EQ(column(income, "VrstaVrijednost"), (QVector<qint64> { 7, 3 }));
    const ResultSet expense = t.query(openingQuery(Knjiga::RashodaRS));
    EXPECT_EQ(texts(expense, "Vrsta"),
              (QStringList { "Rashod - Sponzorstva i donacije d0 2%", "Rashod - Rashodi koji se ne priznaju" }));
    EXPECT_EQ(cents(expense, "IznosPDV"), (QVector<qint64> { 0, 100 }));
}

namespace {

void asset(TestDatabase& t, int rbroj, QDate datum, double nab, double knjig, int vijek)
{
    t.insert("dbo.KnjPopListaDugImovFBiH",
             { { "BrojPoduzeca", 1 }, { "GodinaKnj", 2016 }, { "RBroj", rbroj }, { "Naziv", QStringLiteral("S%1").arg(rbroj) },
               { "Datum", datum }, { "Isprava", QStringLiteral("%1").arg(rbroj) }, { "NabVrijednost", money(nab) },
               { "KnjigVrijednost", money(knjig) }, { "VijekTr", vijek } });
}

} // namespace

TEST(DialectBooks, AssetListDepreciation)
{
    TestDatabase t;
    asset(t, 1, QDate(2016, 1, 15), 1200, 1200, 5);   // January: twelve months
    asset(t, 2, QDate(2016, 12, 1), 1200, 1200, 5);   // December: one month
    asset(t, 3, QDate(2016, 1, 20), 1000, 250, 4);    // remaining value = the year's amount: written off
    asset(t, 4, QDate(2016, 3, 1), 1000, 1000, 3);    // 100.0/3 stays a decimal
    asset(t, 5, QDate(2016, 7, 1), 2.01, 2.01, 1);    // 1.005: the decimal half rounds up
    for (int book : { int(Knjiga::PopListaFBiH), int(Knjiga::PopListaRS) }) {
        const ResultSet rs = t.query(openingQuery(book));
        EXPECT_EQ(names(rs).join(u','), QStringLiteral("RBroj,Naziv,Datum,Isprava,NabVrijednost,KnjigVrijednost,"
                                                       "VijekTr,StopaAm,IznosAmort,NovaKnjigVrij,I"));
        // SQL Server types the two CASE columns by their highest branch: decimal over money.
        EXPECT_EQ(types(rs).join(u','), QStringLiteral("integer,text,date,text,currency,currency,integer,currency,"
                                                       "decimal,decimal,text"));
        EXPECT_EQ(rs.money(3, rs.indexOf("StopaAm")).units(), 333333);   // 33.3333
        EXPECT_EQ(cents(rs, "StopaAm"), (QVector<qint64> { 2000, 2000, 2500, 3333, 10000 }));
        EXPECT_EQ(cents(rs, "IznosAmort"), (QVector<qint64> { 24000, 2000, 25000, 27778, 101 }));
        EXPECT_EQ(cents(rs, "NovaKnjigVrij"), (QVector<qint64> { 96000, 118000, 0, 72222, 101 }));
    }
}

TEST(DialectBooks, AssetWithoutUsefulLifeFailsTheWholeQuery)
{
    TestDatabase t;
    asset(t, 1, QDate(2016, 1, 15), 1200, 1200, 5);
    asset(t, 2, QDate(2016, 2, 15), 100, 100, 0);
    ResultSet rs;
    EXPECT_FALSE(t.db().open(openingQuery(Knjiga::PopListaFBiH), rs));
    EXPECT_EQ(t.db().errorDescription(), QStringLiteral("Divide by zero error encountered."));
    EXPECT_TRUE(rs.isEmpty());
}

TEST(DialectBooks, TradeBooksListOnlyKnownSalesPoints)
{
    TestDatabase t;
    t.insert("dbo.Komitent", { { "SifKomit", 5 }, { "ImeKomit1", QStringLiteral("Prodavnica 5") } });
    for (int prod : { 5, 6 }) {
        t.insert("dbo.TrgKnjUsluga", { { "BrojPoduzeca", 1 }, { "BrojProd", prod }, { "RBroj", 1 },
                                       { "Datum", QDate(2016, 2, 2) }, { "GodinaKnj", 2016 },
                                       { "Opis", QStringLiteral("u") }, { "Iznos", money(3.5) } });
        t.insert("dbo.TrgKnjKomisiona", { { "BrojPoduzeca", 1 }, { "BrojProd", prod }, { "RBroj", 1 },
                                          { "Datum", QDate(2016, 2, 2) }, { "GodinaKnj", 2016 },
                                          { "Opis", QStringLiteral("k") }, { "Zaduzenje", money(8) },
                                          { "Razduzenje", money(2) } });
    }
    const ResultSet usluge = t.query(openingQuery(Knjiga::TrgUsluga));
    EXPECT_EQ(names(usluge).join(u','), QStringLiteral("RBroj,GodinaKnj,Datum,Opis,Iznos,BrojProd,ImeProd,I"));
    EXPECT_EQ(types(usluge).join(u','), QStringLiteral("integer,integer,date,text,currency,integer,text,text"));
    EXPECT_EQ(column(usluge, "BrojProd"), (QVector<qint64> { 5 }));
    EXPECT_EQ(texts(usluge, "ImeProd"), (QStringList { "Prodavnica 5" }));
    const ResultSet komisiona = t.query(openingQuery(Knjiga::TrgKomisiona));
    EXPECT_EQ(types(komisiona).join(u','),
              QStringLiteral("integer,integer,date,text,currency,currency,integer,text,text"));
    EXPECT_EQ(cents(komisiona, "Zaduzenje"), (QVector<qint64> { 800 }));
}
