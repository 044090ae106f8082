// The book schema on the embedded database and the embedded backend's own contract:
// tables and types from the T-SQL script, REAL money, non-unique numbers, the asset
// list's numbering trigger, text widths, opening files.
#include "books/BookKind.h"
#include "books/Schema.h"
#include "session/DatabaseBackend.h"
#include "support/TestDatabase.h"

#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

using namespace knjige;
using knjige::test::money;
using knjige::test::TestDatabase;

TEST(Schema, CreatesEveryBookTableAndTheHostTables)
{
    TestDatabase t;
    QStringList tables;
    for (const BookKind& book : allBooks())
        tables << book.table;
    tables << QStringLiteral("dbo.Komitent") << QStringLiteral("dbo.CONFIG");
    for (const QString& table : tables) {
        ResultSet rs;
        EXPECT_TRUE(t.db().open(QStringLiteral("SELECT * FROM ") + table + QStringLiteral(" WHERE 1=0"), rs))
            << table.toStdString() << ": " << t.db().errorDescription().toStdString();
        EXPECT_GT(rs.fieldCount(), 1);
        EXPECT_EQ(rs.field(rs.indexOf("BrojPoduzeca") >= 0 ? rs.indexOf("BrojPoduzeca") : 0).type, FieldType::Integer);
    }
    const QStringList statements = schemaStatements();
    EXPECT_EQ(statements.filter(QStringLiteral("CREATE TABLE")).size(), 11);
    EXPECT_EQ(statements.filter(QStringLiteral("CREATE TRIGGER")).size(), 1);
}

TEST(Schema, MoneyIsStoredAsRealSoQuotientsKeepTheirDecimals)
{
    TestDatabase t;
    t.exec("INSERT INTO dbo.KnjPrihRashDB (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,ISPRAVA,OPIS,VRSTA,Iznos) "
           "VALUES(1,1,'1.1.2016',2016,'','',5,100)");
    const ResultSet rs = t.query("SELECT K.Iznos/3 AS X, K.Iznos AS Y FROM dbo.KnjPrihRashDB K");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.field(0).type, FieldType::Currency);
    EXPECT_EQ(rs.money(0, 0).units(), 333333);
    EXPECT_EQ(rs.money(0, 1), Money::fromWhole(100));
}

TEST(Schema, ComputedValuesStoredIntoMoneyColumnsKeepFourDecimals)
{
    // As the server's money type: a row written by a statement shows, and is matched
    // again by, the same four decimals.
    TestDatabase t;
    t.exec("INSERT INTO dbo.KnjPrometaFBiH (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,OPIS,ISPRAVA,IZNOSGOT,IZNOSCEK) "
           "VALUES(1,1,'1.1.2016',2016,'','',1.123456,0 )");
    t.exec("UPDATE dbo.KnjPrometaFBiH SET IznosCek=10.0/3 WHERE RBroj=1");
    const ResultSet rs = t.query("SELECT IznosGot, IznosCek FROM dbo.KnjPrometaFBiH "
                                 "WHERE IznosGot=1.1235 AND IznosCek=3.3333");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.money(0, 0).toString(), QStringLiteral("1.1235"));
    EXPECT_EQ(rs.money(0, 1).toString(), QStringLiteral("3.3333"));

    RowChange change;
    change.kind = RowChange::Kind::Delete;
    change.table = QStringLiteral("dbo.KnjPrometaFBiH");
    change.original = {{"RBroj", 1}, {"IznosCek", QVariant::fromValue(Money::parse(QStringLiteral("3.3333")).value())}};
    EXPECT_TRUE(t.db().writeRow(change)) << t.db().errorDescription().toStdString();
    EXPECT_EQ(t.count(QStringLiteral("dbo.KnjPrometaFBiH")), 0);
}

TEST(Schema, DuplicateNumbersAreStorable)
{
    TestDatabase t;
    for (int i = 0; i < 2; ++i)
        t.insert("dbo.KnjPrometaFBiH", { { "BrojPoduzeca", 1 }, { "RBroj", 7 }, { "GodinaKnj", 2016 } });
    EXPECT_EQ(t.count("dbo.KnjPrometaFBiH"), 2);
}

TEST(Schema, AssetRowsWithoutANumberTakeTheNextOfTheirCompanyAndYear)
{
    TestDatabase t;
    t.insert("dbo.KnjPopListaDugImovFBiH", { { "BrojPoduzeca", 1 }, { "GodinaKnj", 2017 }, { "RBroj", 4 } });
    t.insert("dbo.KnjPopListaDugImovFBiH", { { "BrojPoduzeca", 2 }, { "GodinaKnj", 2017 }, { "RBroj", 40 } });
    t.exec("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv) VALUES (1,2017,'a')");
    t.exec("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv) VALUES (1,2017,'b')");
    t.exec("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv) VALUES (1,2018,'c')");
    t.exec("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv,RBroj) VALUES (1,2017,'d',2)");
    const ResultSet rs = t.query("SELECT Naziv, RBroj FROM dbo.KnjPopListaDugImovFBiH WHERE Naziv IS NOT NULL "
                                 "ORDER BY Naziv");
    ASSERT_EQ(rs.rowCount(), 4);
    EXPECT_EQ(rs.integer(0, 1), 5);
    EXPECT_EQ(rs.integer(1, 1), 6);
    EXPECT_EQ(rs.integer(2, 1), 1);
    EXPECT_EQ(rs.integer(3, 1), 2);
}

TEST(Schema, TextWidthsComeFromTheScript)
{
    EXPECT_EQ(textColumnWidth(QStringLiteral("dbo.KnjPrihRashFBiH"), QStringLiteral("Isprava")), 20);
    EXPECT_EQ(textColumnWidth(QStringLiteral("knjprihrashfbih"), QStringLiteral("ISPRAVA")), 20);
    EXPECT_GE(textColumnWidth(QStringLiteral("dbo.KnjPrihRashDB"), QStringLiteral("Opis")), 30);
    EXPECT_GT(textColumnWidth(QStringLiteral("dbo.KnjPopListaDugImovFBiH"), QStringLiteral("Naziv")), 0);
    EXPECT_EQ(textColumnWidth(QStringLiteral("dbo.KnjPrihRashDB"), QStringLiteral("Iznos")), 0);
    EXPECT_EQ(textColumnWidth(QStringLiteral("dbo.Nema"), QStringLiteral("Opis")), 0);
    EXPECT_EQ(textColumnWidth(QStringLiteral("dbo.KnjPrihRashDB"), QStringLiteral("Nema")), 0);
}

TEST(SqliteBackend, OpensOnlyWhatExistsUnlessAskedToCreate)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("x.db"));
    QString error;
    EXPECT_EQ(openSqliteBackend(path, false, &error), nullptr);
    EXPECT_TRUE(error.contains(path));
    EXPECT_NE(openSqliteBackend(path, true, &error), nullptr);
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_FALSE(createEmbeddedDatabase(path, &error));   // never over an existing file

    const QString junk = dir.filePath(QStringLiteral("junk.db"));
    QFile f(junk);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray(4096, 'x'));
    f.close();
    auto backend = openSqliteBackend(junk, false, &error);
    EXPECT_EQ(backend, nullptr);
    EXPECT_FALSE(error.isEmpty());
}

TEST(SqliteBackend, ReadOnlyFileGivesAClearErrorOnWrite)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("ro.db"));
    QString error;
    ASSERT_TRUE(createEmbeddedDatabase(path, &error)) << error.toStdString();
    QFile::setPermissions(path, QFileDevice::ReadOwner);
    // Permissions do not stop root (CI runs as root); an immutable file does.
    const bool root = ::geteuid() == 0;
    if (root && QProcess::execute(QStringLiteral("chattr"), {QStringLiteral("+i"), path}) != 0)
        GTEST_SKIP() << "root writes to read-only files and chattr is not available";
    const auto release = qScopeGuard([&] {
        if (root)
            QProcess::execute(QStringLiteral("chattr"), {QStringLiteral("-i"), path});
    });
    Database db;
    ASSERT_TRUE(db.connect(path)) << db.errorDescription().toStdString();
    ResultSet rs;
    EXPECT_TRUE(db.open(QStringLiteral("SELECT * FROM dbo.CONFIG"), rs));
    EXPECT_FALSE(db.execute(QStringLiteral("DELETE FROM dbo.CONFIG")));
    EXPECT_TRUE(db.errorDescription().startsWith(QStringLiteral("Baza podataka je otvorena samo za čitanje")))
        << db.errorDescription().toStdString();
    db.disconnect();
}

TEST(SqliteBackend, BindsMoneyAndDatesInTheirStoredForms)
{
    TestDatabase t;
    t.insert("dbo.TrgKnjUsluga", { { "BrojPoduzeca", 1 }, { "BrojProd", 1 }, { "RBroj", 1 },
                                   { "Datum", QDate(2016, 3, 15) }, { "GodinaKnj", 2016 }, { "Iznos", money(0.1) } });
    RowChange change;
    change.kind = RowChange::Kind::Update;
    change.table = QStringLiteral("dbo.TrgKnjUsluga");
    change.values = { { "Opis", QStringLiteral("found") } };
    change.original = { { "Datum", QDate(2016, 3, 15) }, { "Iznos", money(0.1) } };
    ASSERT_TRUE(t.db().writeRow(change)) << t.db().errorDescription().toStdString();
    const ResultSet rs = t.query("SELECT K.Opis FROM dbo.TrgKnjUsluga K WHERE K.Datum='03.15.2016'");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.text(0, 0), QStringLiteral("found"));
}
