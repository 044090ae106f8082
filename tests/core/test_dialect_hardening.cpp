// The embedded database answering as SQL Server would where the adapter used to crash
// or answer wrongly: malformed and deeply nested statements, money and int overflow,
// date literals wherever they stand, the case-insensitive collation, two writers.
#include "books/Schema.h"
#include "session/Session.h"
#include "session/TSqlAst.h"
#include "session/TSqlCollation.h"
#include "session/TSqlTranslator.h"
#include "support/TestDatabase.h"

#include <QThread>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <cstring>
#include <iterator>
#include <limits>
#include <thread>

using namespace knjige;
using knjige::test::TestDatabase;


namespace {

const std::string kTooDeep = tsql::kNestedTooDeeply;

QString nested(int depth) { return QStringLiteral("SELECT ") + QString(depth, u'(') + u'1' + QString(depth, u')'); }
QString terms(int count) { return QStringLiteral("SELECT 1") + QStringLiteral("+1").repeated(count - 1); }

// The error of a statement run through the helper; empty when it ran.
std::string errorOf(TestDatabase& t, const QString& sql)
{
    ResultSet rs;
    return t.db().open(sql, rs) ? std::string() : t.db().errorDescription().toStdString();
}

// The values of a column exactly as the file holds them, read past the adapter.
QStringList stored(const QString& path, const char* sql)
{
    sqlite3* db = nullptr;
    QStringList out;
    sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_stmt* st = nullptr;
    if (sqlite3_prepare_v2(db, sql, -1, &st, nullptr) == SQLITE_OK)
        while (sqlite3_step(st) == SQLITE_ROW)
            out << QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(st, 0)));
    sqlite3_finalize(st);
    sqlite3_close(db);
    return out;
}

} // namespace

TEST(DialectHardening, EveryMalformedOrTooDeepStatementIsAnErrorNotACrash)
{
    TestDatabase t;
    for (const char* sql : { "CREATE TABLE K. --", "CREATE TABLE X (a int(", "SELECT TOP", "SELECT TOP (5",
             "SELECT TOP x * FROM KOMITENT", "INSERT INTO", "UPDATE dbo.KOMITENT SET", "DELETE dbo.X FROM",
             "SELECT CAST(1 AS", "SELECT CASE WHEN", "SELECT 'open", "SELECT [open", "SELECT 1 /* open",
             "SELECT * FROM (SELECT", "CREATE TABLE", "SELECT N'", "SELECT .", "(" })
        EXPECT_FALSE(errorOf(t, QString::fromLatin1(sql)).empty()) << sql;
    const QString deep[] = { nested(10500), terms(14000), nested(1001), QStringLiteral("SELECT ") + QStringLiteral("- ").repeated(5000) + u'1',
                             QStringLiteral("SELECT 1 WHERE ") + QStringLiteral("NOT ").repeated(3000) + QStringLiteral("1=1") };
    for (const QString& sql : deep)
        EXPECT_EQ(errorOf(t, sql), kTooDeep) << sql.left(40).toStdString();
    // Nesting within the limit runs as far as the engine's own parser goes.
    EXPECT_EQ(errorOf(t, nested(50)), "");
    EXPECT_EQ(t.query(terms(900)).integer(0, 0), 900);
}

TEST(DialectHardening, DeepStatementsAreRefusedOnAOneMebibyteStack)
{
    tsql::Catalog catalog;
    std::vector<std::string> errors;
    QThread* thread = QThread::create([&] {
        for (const QString& sql : { nested(10500), terms(14000), nested(900) })
            errors.push_back(tsql::translateStatement(sql, catalog).error.toStdString());
    });
    thread->setStackSize(1024 * 1024);
    thread->start();
    ASSERT_TRUE(thread->wait(60000));
    delete thread;
    EXPECT_EQ(errors, (std::vector<std::string> { kTooDeep, kTooDeep, "" }));
}

TEST(DialectHardening, MoneyAndIntOverflowGiveTheServersErrorNeverAWrongSign)
{
    TestDatabase t;
    const auto money = [](const char* source) {
        return std::string("Arithmetic overflow error converting ") + source + " to data type money.";
    };
    const std::string intOverflow = "Arithmetic overflow error converting expression to data type int.";
    struct Case {
        const char* sql;
        std::string error;
        qint64 units;   // the money result in ten-thousandths when it runs
    };
    const qint64 max = std::numeric_limits<qint64>::max();
    const Case cases[] = {
        { "SELECT CAST(922337203685477.5807 AS money) AS M", {}, max },
        { "SELECT CAST(-922337203685477.5808 AS money) AS M", {}, std::numeric_limits<qint64>::min() },
        { "SELECT CAST(922337203685477.5808 AS money) AS M", money("numeric"), 0 },
        { "SELECT CAST(-922337203685477.5809 AS money) AS M", money("numeric"), 0 },
        { "SELECT CAST(1e16 AS money) AS M", money("float"), 0 },
        { "SELECT CAST(12.34565 AS money) AS M", {}, 123457 },
        { "SELECT ROUND(CAST(922337203685477.5807 AS money), 0) AS M", money("expression"), 0 },
        { "SELECT CAST(922337203685477 AS money) + CAST(1 AS money) AS M", money("expression"), 0 },
        { "SELECT CAST(900000000000000 AS money) * 2 AS M", money("expression"), 0 },
        { "SELECT 2147483647 + 1 AS M", intOverflow, 0 },
        { "SELECT ROUND(2147483647, -1) AS M", intOverflow, 0 },
        { "SELECT -2147483647 - 1 AS M", {}, -2147483648LL * 10000 },
    };
    for (const Case& c : cases) {
        ResultSet rs;
        const bool ok = t.db().open(QString::fromLatin1(c.sql), rs);
        EXPECT_EQ(ok ? std::string() : t.db().errorDescription().toStdString(), c.error) << c.sql;
        if (ok && c.error.empty()) {
            EXPECT_EQ(rs.money(0, 0).units(), c.units) << c.sql;
        }
    }
    // Stored amounts: the edge goes in, what overflows changes nothing.
    t.exec("INSERT INTO dbo.KnjPrihRashDB (BrojPoduzeca,RBroj,GodinaKnj,Iznos) VALUES (1,1,2016,922337203685477.5807)");
    const char* const refused[] = {
        "INSERT INTO dbo.KnjPrihRashDB (BrojPoduzeca,RBroj,GodinaKnj,Iznos) VALUES (1,2,2016,1e16)",
        "INSERT INTO dbo.KnjPrihRashDB (BrojPoduzeca,RBroj,GodinaKnj,Iznos) VALUES (1,2,2016,922337203685477.5808)",
        "UPDATE dbo.KnjPrihRashDB SET Iznos=Iznos+Iznos",
        "UPDATE dbo.KnjPrihRashDB SET RBroj=RBroj+2147483647",
    };
    for (const char* sql : refused)
        EXPECT_EQ(errorOf(t, QString::fromLatin1(sql)).rfind("Arithmetic overflow error", 0), 0u) << sql;
    const ResultSet rs = t.query("SELECT RBroj, Iznos FROM dbo.KnjPrihRashDB");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), 1);
    EXPECT_EQ(rs.money(0, 1).units(), max);
}

TEST(DialectHardening, MonthFirstLiteralsReachTheFileAsDatesWhereverTheyStand)
{
    TestDatabase t;
    const char* const insert = "INSERT INTO dbo.KnjPrihRashDB (BrojPoduzeca,RBroj,GodinaKnj,Opis,Datum) ";
    const char* const writes[] = {
        "VALUES (1,1,2016,'03.15.2016','03.15.2016')",
        "VALUES (1,2,2016,'x','3.15.16')",
        "VALUES (1,3,2016,'x','03.15.2016 10:30:00')",
        "VALUES (1,4,2016,'x',CASE WHEN 1=1 THEN '1.2.2016' ELSE NULL END)",
        "VALUES (1,5,2016,'x',ISNULL(NULL,'12.31.2016'))",
        "SELECT 1,6,2016,'x',D.Dan FROM (SELECT '02/29/2016' AS Dan) D",
        "SELECT 1,7,2016,'x','1.1.2016' UNION ALL SELECT 1,8,2016,'x',N'1-2-2016'",
    };
    for (const char* w : writes)
        t.exec(QString::fromLatin1(insert) + QString::fromLatin1(w));
    t.exec("UPDATE dbo.KnjPrihRashDB SET Datum=CASE WHEN RBroj=8 THEN '01.03.2016' ELSE Datum END");
    EXPECT_EQ(stored(t.path(), "SELECT Datum FROM KnjPrihRashDB ORDER BY RBroj"),
              (QStringList { "2016-03-15", "2016-03-15", "2016-03-15", "2016-01-02", "2016-12-31", "2016-02-29",
                             "2016-01-01", "2016-01-03" }));
    // The text column keeps the text that looks like a date.
    EXPECT_EQ(stored(t.path(), "SELECT Opis FROM KnjPrihRashDB WHERE RBroj=1"), QStringList { "03.15.2016" });

    struct Count {
        const char* where;
        int rows;
    };
    const Count reads[] = {
        { "K.Datum=ISNULL(NULL,'3.15.2016')", 3 },
        { "K.Datum IN (SELECT '03.15.16')", 3 },
        { "CASE WHEN K.RBroj>0 THEN K.Datum END='03.15.2016'", 3 },
        { "K.Datum<'03.15.2016 10:00'", 7 },
        { "K.Datum='03.15.2016 10:00'", 0 },
        { "K.Datum BETWEEN '1.1.16' AND '1.3.2016'", 3 },
        { "K.Opis='03.15.2016'", 1 },
        { "MONTH(K.Datum)=3", 3 },
    };
    for (const Count& r : reads)
        EXPECT_EQ(t.query(QStringLiteral("SELECT COUNT(*) FROM dbo.KnjPrihRashDB K WHERE ") + QString::fromLatin1(r.where))
                      .integer(0, 0),
                  r.rows)
            << r.where;

    // An impossible date fails the statement, in the server's words, and stores nothing.
    const auto outOfRange = [](const char* type) {
        return std::string("The conversion of a ") + type
            + " data type to a datetime data type resulted in an out-of-range value.";
    };
    EXPECT_EQ(errorOf(t, QString::fromLatin1(insert) + QStringLiteral("VALUES (1,9,2016,'x','15.03.2026')")),
              outOfRange("varchar"));
    EXPECT_EQ(errorOf(t, QStringLiteral("SELECT * FROM dbo.KnjPrihRashDB WHERE Datum>=N'02.30.2016'")),
              outOfRange("nvarchar"));
    EXPECT_EQ(errorOf(t, QStringLiteral("UPDATE dbo.KnjPrihRashDB SET Datum='danas'")),
              "Conversion failed when converting date and/or time from character string.");
    EXPECT_EQ(t.count("dbo.KnjPrihRashDB"), 8);
}

TEST(DialectHardening, TextComparesWithoutCaseButWithAccentsAndTrailingBlanks)
{
    TestDatabase t;
    struct Case {
        const char* predicate;
        bool holds;
    };
    const Case cases[] = {
        { "N'č'=N'Č'", true },          { "N'č'=N'c'", false },          { "'a'='a  '", true },
        { "N'Šećer'=N'šEĆER'", true },   { "N'é'=N'e'", false },          { "N'ž'>N'z'", true },
        { "N'ča'>N'cz'", true },          { "N'Đ'<N'e'", true },           { "'a' IN ('A ','b')", true },
        { "N'Šećer' LIKE N'%šeć%'", true }, { "N'Šećer' LIKE 'sec%'", false }, { "'Dalmacija' LIKE '[A-M]%'", true },
        { "N'Žito' LIKE '[A-M]%'", false }, { "N'Čelik' LIKE N'[a-c]%'", false }, { "'a_b' LIKE 'a[_]b'", true },
        { "'axb' LIKE 'a[_]b'", false },   { "'bcd' LIKE '[^a]_D'", true },  { "'a ' LIKE 'a'", false },
        { "'a%b' LIKE 'a!%b' ESCAPE '!'", true }, { "'ab' LIKE 'a!%b' ESCAPE '!'", false },
    };
    for (const Case& c : cases)
        EXPECT_EQ(t.query(QStringLiteral("SELECT CASE WHEN ") + QString::fromUtf8(c.predicate)
                          + QStringLiteral(" THEN 1 ELSE 0 END AS R"))
                      .integer(0, 0),
                  c.holds ? 1 : 0)
            << c.predicate;
    // A filter on a column finds the entries whatever their letter case.
    for (const QString& opis : { QStringLiteral("Dnevni promet maloprodaje"), QStringLiteral("DNEVNI PROMET MALOPRODAJE "),
                                 QStringLiteral("Dnevni promet maloprodaje č") })
        t.insert("dbo.KnjPrihRashDB", { { "BrojPoduzeca", 1 }, { "RBroj", 1 }, { "GodinaKnj", 2016 }, { "Opis", opis } });
    EXPECT_EQ(t.query("SELECT COUNT(*) FROM dbo.KnjPrihRashDB K WHERE K.Opis='dnevni promet maloprodaje'").integer(0, 0), 2);
    EXPECT_EQ(t.query("SELECT K.Opis FROM dbo.KnjPrihRashDB K GROUP BY K.Opis").rowCount(), 2);
}

TEST(DialectHardening, WritersWaitForEachOtherAndReadersForNoOne)
{
    TestDatabase t;
    t.exec("INSERT INTO dbo.KnjPrihRashDB (BrojPoduzeca,RBroj,GodinaKnj) VALUES (1,1,2016)");
    EXPECT_EQ(stored(t.path(), "PRAGMA journal_mode"), QStringList { "wal" });
    // Another process's writer holds the file for a moment.
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(t.path().toUtf8().constData(), &other), SQLITE_OK);
    sqlite3_exec(other, "BEGIN IMMEDIATE; INSERT INTO KnjPrihRashDB (BrojPoduzeca,RBroj,GodinaKnj) VALUES (1,2,2016)",
                 nullptr, nullptr, nullptr);
    std::thread writer([other] {
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
        sqlite3_exec(other, "COMMIT", nullptr, nullptr, nullptr);
    });
    EXPECT_EQ(t.count("dbo.KnjPrihRashDB"), 1); // the reader does not wait: it sees the last commit
    {
        TransactionGuard tx(t.db());   // waits for the other writer instead of failing
        EXPECT_TRUE(tx.isActive()) << t.db().errorDescription().toStdString();
        t.exec("INSERT INTO dbo.KnjPrihRashDB (BrojPoduzeca,RBroj,GodinaKnj) VALUES (1,3,2016)");
        EXPECT_TRUE(tx.commit());
    }
    writer.join();
    sqlite3_close(other);
    EXPECT_EQ(t.count("dbo.KnjPrihRashDB"), 3);
}

TEST(DialectHardening, CollationOrdersTheAlphabetAsAWholeOrder)
{
    // Sorted as the collation must order them; every pair is checked both ways.
    const char* const ordered[] = { "", "1", "a", "Ab", "C", "cz", "Ča", "čb", "Ća", "d", "Dz", "Đa", "e", "é",
                                    "s", "Šx", "z", "Ža" };
    const int n = int(std::size(ordered));
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            const int c = tsql::compareText(ordered[i], strlen(ordered[i]), ordered[j], strlen(ordered[j]));
            EXPECT_EQ(c < 0 ? -1 : c > 0 ? 1 : 0, i < j ? -1 : i > j ? 1 : 0) << ordered[i] << " vs " << ordered[j];
        }
}
