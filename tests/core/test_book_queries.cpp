// The book schema on the embedded database and each book's opening query on it: tables
// and types from the T-SQL script, money with four decimals, the asset list's numbering
// trigger, text widths, opening files; then golden tests of the browser queries, each
// book's fixed SELECT with the opening WHERE clause and order run through the dialect
// adapter on fixture rows that reach the edge cases of the books, rows and field types
// as SQL Server would give them.
#include "ResultText.h"
#include "books/BookKind.h"
#include "books/Schema.h"
#include "browser/BrowserRules.h"
#include "session/db/DatabaseBackend.h"
#include "support/TestDatabase.h"

#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace knjige;
using namespace knjige::test;

TEST(Schema, CreatesEveryTableAndTheAssetNumberingTrigger)
{
    TestDatabase t;
    QStringList tables = { QStringLiteral("dbo.Komitent"), QStringLiteral("dbo.CONFIG") };
    for (const books::BookKind& book : books::allBooks())
        tables << book.table;
    for (const QString& table : tables) {
        const db::ResultSet rs = t.query(QStringLiteral("SELECT * FROM ") + table + QStringLiteral(" WHERE 1=0"));
        EXPECT_GT(rs.fieldCount(), 1) << table.toStdString();
        EXPECT_EQ(rs.field(std::max(0, rs.indexOf("BrojPoduzeca"))).type, db::FieldType::Integer)
            << table.toStdString();
    }
    EXPECT_EQ(books::schemaStatements().filter(QStringLiteral("CREATE TABLE")).size(), 13);
    EXPECT_EQ(books::schemaStatements().filter(QStringLiteral("CREATE TRIGGER")).size(), 1);

    // An asset row without a number takes the next of its company and year.
    const QString assets = QStringLiteral("dbo.KnjPopListaDugImovFBiH");
    t.insert(assets, { { "BrojPoduzeca", 1 }, { "GodinaKnj", 2017 }, { "RBroj", 4 } });
    t.insert(assets, { { "BrojPoduzeca", 2 }, { "GodinaKnj", 2017 }, { "RBroj", 40 } });
    t.exec("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv) VALUES (1,2017,'a')");
    t.exec("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv) VALUES (1,2017,'b')");
    t.exec("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv) VALUES (1,2018,'c')");
    t.exec("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv,RBroj) VALUES (1,2017,'d',2)");
    EXPECT_EQ(columnText(t.query("SELECT RBroj FROM dbo.KnjPopListaDugImovFBiH WHERE Naziv IS NOT NULL ORDER BY Naziv"),
                  "RBroj"),
        "5|6|1|2");
}

// As the server's money type: quotients keep four decimals, and a row written by a
// statement shows, and is matched again by, the same four decimals.
TEST(Schema, MoneyKeepsFourDecimalsInQuotientsAndStoredResults)
{
    TestDatabase t;
    t.exec("INSERT INTO dbo.KnjPrometaFBiH (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,OPIS,ISPRAVA,IZNOSGOT,IZNOSCEK) "
           "VALUES(1,1,'1.1.2016',2016,'','',1.123456,0 )");
    t.exec("UPDATE dbo.KnjPrometaFBiH SET IznosCek=10.0/3 WHERE RBroj=1");
    const db::ResultSet rs = t.query("SELECT IznosGot, IznosCek, K.IznosCek/7 AS X FROM dbo.KnjPrometaFBiH K "
                                     "WHERE IznosGot=1.1235 AND IznosCek=3.3333");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(test::fieldTypes(rs), "currency,currency,currency");
    EXPECT_EQ(test::rowText(rs, 0), "1.1235|3.3333|0.4762");

    db::RowChange change { db::RowChange::Kind::Delete, QStringLiteral("dbo.KnjPrometaFBiH"), {},
        { { "RBroj", 1 }, { "IznosCek", QVariant::fromValue(Money::parse(QStringLiteral("3.3333")).value()) } } };
    EXPECT_TRUE(t.db().writeRow(change)) << t.db().errorDescription().toStdString();
    EXPECT_EQ(t.count(QStringLiteral("dbo.KnjPrometaFBiH")), 0);
}

TEST(Schema, TextWidthsComeFromTheScript)
{
    const std::tuple<const char*, const char*, int> cases[]
        = { { "dbo.KnjPrihRashFBiH", "Isprava", 20 }, { "knjprihrashfbih", "ISPRAVA", 20 },
              { "dbo.KnjPrihRashDB", "Opis", 100 }, { "dbo.KnjPopListaDugImovFBiH", "Naziv", 100 },
              { "dbo.KnjPrihRashDB", "Iznos", 0 }, { "dbo.Nema", "Opis", 0 }, { "dbo.KnjPrihRashDB", "Nema", 0 } };
    for (const auto& [table, column, width] : cases)
        EXPECT_EQ(books::textColumnWidth(QString::fromLatin1(table), QString::fromLatin1(column)), width)
            << table << column;
}

TEST(SqliteBackend, OpensOnlyWhatExistsUnlessAskedToCreateAndTellsAReadOnlyFileOnAWrite)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("x.db"));
    QString error;
    EXPECT_EQ(db::openSqliteBackend(path, false, &error), nullptr);
    EXPECT_TRUE(error.contains(path));
    EXPECT_NE(db::openSqliteBackend(path, true, &error), nullptr);
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_FALSE(books::createEmbeddedDatabase(path, &error)); // never over an existing file

    const QString junk = dir.filePath(QStringLiteral("junk.db"));
    QFile f(junk);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray(4096, 'x'));
    f.close();
    error.clear();
    EXPECT_EQ(db::openSqliteBackend(junk, false, &error), nullptr);
    EXPECT_FALSE(error.isEmpty());

    // A read-only file gives a clear error on a write.
    const QString readOnly = dir.filePath(QStringLiteral("ro.db"));
    ASSERT_TRUE(books::createEmbeddedDatabase(readOnly, &error)) << error.toStdString();
    QFile::setPermissions(readOnly, QFileDevice::ReadOwner);
    // Permissions do not stop root (CI runs as root); an immutable file does.
    const bool root = ::geteuid() == 0;
    if (root && QProcess::execute(QStringLiteral("chattr"), { QStringLiteral("+i"), readOnly }) != 0)
        GTEST_SKIP() << "root writes to read-only files and chattr is not available";
    const auto release = qScopeGuard([&] {
        if (root)
            QProcess::execute(QStringLiteral("chattr"), { QStringLiteral("-i"), readOnly });
    });
    db::Database db;
    ASSERT_TRUE(db.connect(readOnly)) << db.errorDescription().toStdString();
    db::ResultSet rs;
    EXPECT_TRUE(db.open(QStringLiteral("SELECT * FROM dbo.CONFIG"), rs));
    EXPECT_FALSE(db.execute(QStringLiteral("DELETE FROM dbo.CONFIG")));
    EXPECT_TRUE(db.errorDescription().startsWith(QStringLiteral("Baza podataka je otvorena samo za čitanje")))
        << db.errorDescription().toStdString();
    db.disconnect();
}

namespace
{

// The grid's query for company 1, working year 2016, as the browser opens it.
QString openingQuery(int book)
{
    return books::findBook(book)->selectSql + browser::openingWhere(QDate(2016, 1, 1), 2016, 1) + browser::orderBy();
}

void incomeExpense(TestDatabase& t, const char* table, int company, int rbroj, QDate datum, int year, int vrsta,
    double iznos, double pdv = -1)
{
    db::RowChange::Values v { { "BrojPoduzeca", company }, { "RBroj", rbroj }, { "Datum", datum },
        { "GodinaKnj", year }, { "Opis", QStringLiteral("Opis %1").arg(rbroj) }, { "Vrsta", vrsta },
        { "Iznos", money(iznos) } };
    if (QString::fromLatin1(table).contains(u"PrihRash"))
        v.push_back({ "Isprava", QStringLiteral("D-%1").arg(rbroj) });
    if (pdv >= 0)
        v.push_back({ "IznosPDV", money(pdv) });
    t.insert(QString::fromLatin1(table), v);
}

void asset(TestDatabase& t, int rbroj, QDate datum, double nab, double knjig, int vijek)
{
    t.insert("dbo.KnjPopListaDugImovFBiH",
        { { "BrojPoduzeca", 1 }, { "GodinaKnj", 2016 }, { "RBroj", rbroj },
            { "Naziv", QStringLiteral("S%1").arg(rbroj) }, { "Datum", datum },
            { "Isprava", QStringLiteral("%1").arg(rbroj) }, { "NabVrijednost", money(nab) },
            { "KnjigVrijednost", money(knjig) }, { "VijekTr", vijek } });
}

void fixtureRows(TestDatabase& t)
{
    const char* fbih = "dbo.KnjPrihRashFBiH";
    incomeExpense(t, fbih, 1, 1, QDate(2016, 1, 5), 2016, 11, 117, 17);
    incomeExpense(t, fbih, 1, 2, QDate(2016, 2, 10), 2016, 16, 58.5, 8.5);
    incomeExpense(t, fbih, 1, 3, QDate(2016, 3, 1), 2016, 14, 10, 0); // unused kind: in no column
    incomeExpense(t, fbih, 1, 4, QDate(2015, 12, 31), 2016, 11, 1, 0); // before the year: not listed
    incomeExpense(t, fbih, 1, 5, QDate(2017, 1, 10), 2016, 13, 20, 3); // later date, book year 2016
    incomeExpense(t, fbih, 2, 6, QDate(2016, 5, 5), 2016, 11, 1, 0); // other company
    incomeExpense(t, fbih, 1, 7, QDate(2016, 5, 5), 2015, 11, 1, 0); // other year
    const char* db = "dbo.KnjPrihRashDB";
    incomeExpense(t, db, 1, 1, QDate(2016, 1, 5), 2016, 5, 100);
    incomeExpense(t, db, 1, 2, QDate(2016, 1, 6), 2016, 10, 40);
    incomeExpense(t, db, 1, 3, QDate(2016, 1, 7), 2016, 16, 7.25);
    incomeExpense(t, db, 1, 4, QDate(2016, 1, 8), 2016, 8, 3);
    incomeExpense(t, "dbo.KnjPrihodaRS", 1, 1, QDate(2016, 1, 2), 2016, 7, 12.34, 0);
    incomeExpense(t, "dbo.KnjPrihodaRS", 1, 2, QDate(2016, 1, 3), 2016, 3, 1, 0);
    incomeExpense(t, "dbo.KnjRashodaRS", 1, 1, QDate(2016, 1, 2), 2016, 7, 5, 0);
    incomeExpense(t, "dbo.KnjRashodaRS", 1, 2, QDate(2016, 1, 3), 2016, 13, 6, 1);

    t.insert("dbo.Komitent", { { "SifKomit", 10 }, { "ImeKomit1", QStringLiteral("Kupac d.o.o.") } });
    t.insert("dbo.Komitent", { { "SifKomit", 5 }, { "ImeKomit1", QStringLiteral("Prodavnica 5") } });
    // Partner 99 is missing from dbo.Komitent: its row is not listed.
    for (const auto& [rbroj, partner, vrsta, iznos] :
        { std::array { 1, 10, 11, 100 }, { 2, 99, 11, 50 }, { 3, 10, 12, 30 }, { 4, 10, 21, 20 }, { 5, 10, 22, 10 } })
        t.insert("dbo.KnjEvidPotrIObvFBiH",
            { { "BrojPoduzeca", 1 }, { "RBroj", rbroj }, { "Datum", QDate(2016, 4, rbroj) }, { "GodinaKnj", 2016 },
                { "SifKomit", partner }, { "Vrsta", vrsta }, { "Opis", QStringLiteral("o") },
                { "Isprava", QStringLiteral("i") }, { "Iznos", money(iznos) }, { "RBrojKPR", rbroj * 10 } });
    for (int i = 1; i <= 2; ++i)
        t.insert("dbo.KnjPrometaFBiH",
            { { "BrojPoduzeca", 1 }, { "RBroj", i }, { "Datum", QDate(2016, 6, i) }, { "GodinaKnj", 2016 },
                { "Opis", QStringLiteral("Promet") }, { "Isprava", QStringLiteral("P%1").arg(i) },
                { "IznosGot", money(i * 10.5) }, { "IznosCek", money(0) } });
    // Sales point 6 is missing from dbo.Komitent: its rows are not listed.
    for (int prod : { 5, 6 }) {
        const db::RowChange::Values key { { "BrojPoduzeca", 1 }, { "BrojProd", prod }, { "RBroj", 1 },
            { "Datum", QDate(2016, 2, 2) }, { "GodinaKnj", 2016 } };
        t.insert("dbo.TrgKnjUsluga",
            key + db::RowChange::Values { { "Opis", QStringLiteral("u") }, { "Iznos", money(3.5) } });
        t.insert("dbo.TrgKnjKomisiona",
            key
                + db::RowChange::Values {
                    { "Opis", QStringLiteral("k") }, { "Zaduzenje", money(8) }, { "Razduzenje", money(2) } });
    }
    asset(t, 1, QDate(2016, 1, 15), 1200, 1200, 5); // January: twelve months
    asset(t, 2, QDate(2016, 12, 1), 1200, 1200, 5); // December: one month
    asset(t, 3, QDate(2016, 1, 20), 1000, 250, 4); // remaining value = the year's amount: written off
    asset(t, 4, QDate(2016, 3, 1), 1000, 1000, 3); // 100.0/3 stays a decimal
    asset(t, 5, QDate(2016, 7, 1), 2.01, 2.01, 1); // 1.005: the decimal half rounds up
}

} // namespace

TEST(DialectBooks, EveryBookListsItsRowsWithItsFieldsTypesAndValues)
{
    TestDatabase t;
    fixtureRows(t);
    const std::string receivables = "RBroj,ImeKomit1,Datum,Isprava,Opis,Vrsta,NazivVrste,IznosIR,UplateIR,IznosUR,"
                                    "UplateUR,Iznos,RBrojKPR,SifKomit,I";
    const std::string receivableTypes = "integer,text,date,text,text,integer,text,currency,currency,currency,currency,"
                                        "currency,integer,integer,text";
    const std::string assets = "RBroj,Naziv,Datum,Isprava,NabVrijednost,KnjigVrijednost,VijekTr,StopaAm,IznosAmort,"
                               "NovaKnjigVrij,I";
    // SQL Server types the asset list's two CASE columns by their highest branch:
    // decimal over money.
    const std::string assetTypes = "integer,text,date,text,currency,currency,integer,currency,decimal,decimal,text";
    const QList<std::pair<QString, std::string>> receivableColumns = { { "RBroj", "1|3|4|5" },
        { "NazivVrste", "Izdati racuni|Uplate za izdate racune|Primljeni racuni|Uplate za primljene racune" },
        { "IznosIR", "100|0|0|0" }, { "UplateIR", "0|30|0|0" }, { "IznosUR", "0|0|20|0" }, { "UplateUR", "0|0|0|10" },
        { "ImeKomit1", "Kupac d.o.o.|Kupac d.o.o.|Kupac d.o.o.|Kupac d.o.o." } };
    const QList<std::pair<QString, std::string>> assetColumns = { { "StopaAm", "20|20|25|33.3333|100" },
        { "IznosAmort", "240|20|250|277.78|1.01" }, { "NovaKnjigVrij", "960|1180|0|722.22|1.01" } };
    const struct {
        int book;
        std::string names, types; // empty: not checked
        QList<std::pair<QString, std::string>> columns; // field, values top to bottom
    } cases[] = {
        { Knjiga::PrihRashFBiH,
            "RBroj,GodinaKnj,Datum,Isprava,Opis,Vrsta,NazivVrste,Prihodi,PDVPrihodi,Rashodi,PDVRashodi,I",
            "integer,integer,date,text,text,integer,text,currency,currency,currency,currency,text",
            { { "RBroj", "1|2|3|5" }, { "Datum", "2016-01-05|2016-02-10|2016-03-01|2017-01-10" },
                { "NazivVrste", "Prihod - Gotovina|Rashod - Nabavka robe/materijala|<null>|Prihod -Stvari i usluge" },
                { "Prihodi", "117|0|0|20" }, { "PDVPrihodi", "17|0|0|3" }, { "Rashodi", "0|58.5|0|0" },
                { "PDVRashodi", "0|8.5|0|0" }, { "I", "|||" } } },
        // Kind 16 counts as profit.
        { Knjiga::PrihRashDB,
            "RBroj,GodinaKnj,Datum,Isprava,Opis,Vrsta,NazivVrste,Prihodi,Rashodi,RashPPDOH,Dobit,Iznos,I",
            "integer,integer,date,text,text,integer,text,currency,currency,currency,currency,currency,text",
            { { "NazivVrste", "Prihod - Gotovina|Rashod - Žiro račun|Rashod - PPDOH|<null>" },
                { "Prihodi", "100|0|0|0" }, { "Rashodi", "0|40|0|0" }, { "RashPPDOH", "0|0|7.25|0" },
                { "Dobit", "100|-40|7.25|-3" } } },
        { Knjiga::EvidPotObvFBiH, receivables, receivableTypes, receivableColumns },
        { Knjiga::EvidPotObvRS, receivables, receivableTypes, receivableColumns },
        { Knjiga::PrometaFBiH, "RBroj,GodinaKnj,Datum,Isprava,Opis,IznosGot,IznosCek,I",
            "integer,integer,date,text,text,currency,currency,text", { { "IznosGot", "10.5|21" } } },
        // The RS turnover book reads every column of the shared table.
        { Knjiga::PrometaRS, "BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Isprava,IznosGot,IznosCek,I",
            "integer,integer,date,integer,text,text,currency,currency,text", { { "IznosCek", "0|0" } } },
        { Knjiga::PrihodaRS, "RBroj,Vrsta,Opis,Datum,Iznos,IznosPDV,VrstaVrijednost",
            "integer,text,text,date,currency,currency,integer",
            { { "Vrsta", "Prihod - Naplaćeni prihod od financiranja|<null>" }, { "VrstaVrijednost", "7|3" } } },
        { Knjiga::RashodaRS, {}, {},
            { { "Vrsta", "Rashod - Sponzorstva i donacije d0 2%|Rashod - Rashodi koji se ne priznaju" },
                { "IznosPDV", "0|1" } } },
        { Knjiga::PopListaFBiH, assets, assetTypes, assetColumns },
        { Knjiga::PopListaRS, assets, assetTypes, assetColumns },
        { Knjiga::TrgUsluga, "RBroj,GodinaKnj,Datum,Opis,Iznos,BrojProd,ImeProd,I",
            "integer,integer,date,text,currency,integer,text,text",
            { { "BrojProd", "5" }, { "ImeProd", "Prodavnica 5" } } },
        { Knjiga::TrgKomisiona, {}, "integer,integer,date,text,currency,currency,integer,text,text",
            { { "Zaduzenje", "8" } } },
    };
    for (const auto& c : cases) {
        const db::ResultSet rs = t.query(openingQuery(c.book));
        EXPECT_TRUE(c.names.empty() || fieldNames(rs) == c.names) << c.book << " " << fieldNames(rs);
        EXPECT_TRUE(c.types.empty() || fieldTypes(rs) == c.types) << c.book << " " << fieldTypes(rs);
        for (const auto& [field, values] : c.columns)
            EXPECT_EQ(columnText(rs, field), values) << c.book << " " << field.toStdString();
    }

    // An asset without a useful life fails the whole query, in the server's words.
    asset(t, 6, QDate(2016, 2, 15), 100, 100, 0);
    db::ResultSet rs;
    EXPECT_FALSE(t.db().open(openingQuery(Knjiga::PopListaFBiH), rs));
    EXPECT_EQ(t.db().errorDescription(), QStringLiteral("Divide by zero error encountered."));
    EXPECT_TRUE(rs.isEmpty());
}
