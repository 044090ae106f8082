// The book schema on the embedded database and the embedded backend's own contract:
// tables and types from the T-SQL script, money with four decimals, the asset list's
// numbering trigger, text widths, opening files.
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
using knjige::test::TestDatabase;

TEST(Schema, CreatesEveryTableAndTheAssetNumberingTrigger)
{
    TestDatabase t;
    QStringList tables = { QStringLiteral("dbo.Komitent"), QStringLiteral("dbo.CONFIG") };
    for (const BookKind& book : allBooks())
        tables << book.table;
    for (const QString& table : tables) {
        const ResultSet rs = t.query(QStringLiteral("SELECT * FROM ") + table + QStringLiteral(" WHERE 1=0"));
        EXPECT_GT(rs.fieldCount(), 1) << table.toStdString();
        EXPECT_EQ(rs.field(std::max(0, rs.indexOf("BrojPoduzeca"))).type, FieldType::Integer) << table.toStdString();
    }
    EXPECT_EQ(schemaStatements().filter(QStringLiteral("CREATE TABLE")).size(), 11);
    EXPECT_EQ(schemaStatements().filter(QStringLiteral("CREATE TRIGGER")).size(), 1);

    // An asset row without a number takes the next of its company and year.
    const QString assets = QStringLiteral("dbo.KnjPopListaDugImovFBiH");
    t.insert(assets, { { "BrojPoduzeca", 1 }, { "GodinaKnj", 2017 }, { "RBroj", 4 } });
    t.insert(assets, { { "BrojPoduzeca", 2 }, { "GodinaKnj", 2017 }, { "RBroj", 40 } });
    t.exec("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv) VALUES (1,2017,'a')");
    t.exec("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv) VALUES (1,2017,'b')");
    t.exec("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv) VALUES (1,2018,'c')");
    t.exec("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv,RBroj) VALUES (1,2017,'d',2)");
    const ResultSet rs = t.query("SELECT RBroj FROM dbo.KnjPopListaDugImovFBiH WHERE Naziv IS NOT NULL ORDER BY Naziv");
    ASSERT_EQ(rs.rowCount(), 4);
    EXPECT_EQ(QVector<qint64>({ rs.integer(0, 0), rs.integer(1, 0), rs.integer(2, 0), rs.integer(3, 0) }),
        QVector<qint64>({ 5, 6, 1, 2 }));
}

// As the server's money type: quotients keep four decimals, and a row written by a
// statement shows, and is matched again by, the same four decimals.
TEST(Schema, MoneyKeepsFourDecimalsInQuotientsAndStoredResults)
{
    TestDatabase t;
    t.exec("INSERT INTO dbo.KnjPrometaFBiH (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,OPIS,ISPRAVA,IZNOSGOT,IZNOSCEK) "
           "VALUES(1,1,'1.1.2016',2016,'','',1.123456,0 )");
    t.exec("UPDATE dbo.KnjPrometaFBiH SET IznosCek=10.0/3 WHERE RBroj=1");
    const ResultSet rs = t.query("SELECT IznosGot, IznosCek, K.IznosCek/7 AS X FROM dbo.KnjPrometaFBiH K "
                                 "WHERE IznosGot=1.1235 AND IznosCek=3.3333");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.money(0, 0).toString(), QStringLiteral("1.1235"));
    EXPECT_EQ(rs.money(0, 1).toString(), QStringLiteral("3.3333"));
    EXPECT_EQ(rs.field(2).type, FieldType::Currency);
    EXPECT_EQ(rs.money(0, 2).toString(), QStringLiteral("0.4762"));

    RowChange change { RowChange::Kind::Delete, QStringLiteral("dbo.KnjPrometaFBiH"), {},
        { { "RBroj", 1 }, { "IznosCek", QVariant::fromValue(Money::parse(QStringLiteral("3.3333")).value()) } } };
    EXPECT_TRUE(t.db().writeRow(change)) << t.db().errorDescription().toStdString();
    EXPECT_EQ(t.count(QStringLiteral("dbo.KnjPrometaFBiH")), 0);
}

TEST(Schema, TextWidthsComeFromTheScript)
{
    const std::tuple<const char*, const char*, int> cases[] = { { "dbo.KnjPrihRashFBiH", "Isprava", 20 },
        { "knjprihrashfbih", "ISPRAVA", 20 }, { "dbo.KnjPrihRashDB", "Opis", 100 },
        { "dbo.KnjPopListaDugImovFBiH", "Naziv", 100 }, { "dbo.KnjPrihRashDB", "Iznos", 0 }, { "dbo.Nema", "Opis", 0 },
        { "dbo.KnjPrihRashDB", "Nema", 0 } };
    for (const auto& [table, column, width] : cases)
        EXPECT_EQ(textColumnWidth(QString::fromLatin1(table), QString::fromLatin1(column)), width) << table << column;
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
    EXPECT_FALSE(createEmbeddedDatabase(path, &error)); // never over an existing file

    const QString junk = dir.filePath(QStringLiteral("junk.db"));
    QFile f(junk);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray(4096, 'x'));
    f.close();
    error.clear();
    EXPECT_EQ(openSqliteBackend(junk, false, &error), nullptr);
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
    if (root && QProcess::execute(QStringLiteral("chattr"), { QStringLiteral("+i"), path }) != 0)
        GTEST_SKIP() << "root writes to read-only files and chattr is not available";
    const auto release = qScopeGuard([&] {
        if (root)
            QProcess::execute(QStringLiteral("chattr"), { QStringLiteral("-i"), path });
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
