// The T-SQL adapter of the embedded database: the SQLite text and column types each
// rewrite gives, and the engine answering as SQL Server would where the adapter used to
// crash or answer wrongly: malformed and deeply nested statements, money and int
// overflow, date literals wherever they stand, the case-insensitive collation, two
// writers.
#include "ResultText.h"
#include "books/Schema.h"
#include "session/Session.h"
#include "session/tsql/TSqlAst.h"
#include "session/tsql/TSqlCollation.h"
#include "session/tsql/TSqlFunctions.h"
#include "session/tsql/TSqlTokenizer.h"
#include "session/tsql/TSqlTranslator.h"
#include "support/TestDatabase.h"

#include <QThread>
#include <chrono>
#include <cstring>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <sqlite3.h>
#include <thread>

using namespace knjige;
using namespace knjige::tsql;
using knjige::test::TestDatabase;

namespace
{

const Catalog& schemaCatalog()
{
    static const Catalog catalog = [] {
        Catalog c;
        for (const QString& statement : books::schemaStatements())
            if (auto table = parseCreateTable(statement))
                c.add(*table);
        return c;
    }();
    return catalog;
}

Translation::Statement tr(const QString& sql)
{
    return translateStatement(sql, schemaCatalog());
}

} // namespace

TEST(TSqlTokenizer, KeepsTextAndSeparatesLiteralsCommentsAndNames)
{
    const QString sql = QStringLiteral("SELECT N'a''b', [x y]/* c */--d\n.5,1e3 FROM \"T\" WHERE a<>?");
    const QVector<Token> tokens = tokenize(sql);
    QString joined;
    for (const Token& t : tokens)
        joined += t.text;
    EXPECT_EQ(joined, sql);
    using K = Token::Kind;
    QVector<K> kinds;
    for (const Token& t : tokens)
        if (!t.isTrivia())
            kinds << t.kind;
    const QVector<K> expected { K::Word, K::NString, K::Symbol, K::Quoted, K::Number, K::Symbol, K::Number, K::Word,
        K::Quoted, K::Word, K::Word, K::Symbol, K::Param };
    EXPECT_EQ(kinds, expected);
    EXPECT_EQ(tokens[2].stringValue(), QStringLiteral("a'b"));
    EXPECT_EQ(tokens[5].name(), QStringLiteral("x y"));
}

TEST(TSqlTranslate, EachRewriteGivesTheSqliteText)
{
    const std::pair<QString, QString> cases[] = {
        // TOP 100 PERCENT goes.
        { "SELECT TOP 100 PERCENT K.Vrsta FROM dbo.KnjPrihRashFBiH K ORDER BY K.Vrsta",
            "SELECT K.Vrsta FROM KnjPrihRashFBiH K ORDER BY K.Vrsta" },
        // Comments and N strings pass through; a text the parser cannot read keeps its
        // words, for the engine to report.
        { "SELECT N'Žiro' AS A -- dbo.X / 2\nFROM dbo.KnjPrihRashDB",
            "SELECT 'Žiro' AS A -- dbo.X / 2\nFROM KnjPrihRashDB" },
        { "SELECT FROM WHERE dbo.X", "SELECT FROM WHERE X" },
        { "CREATE TABLE dbo.X (A smallint NOT NULL, B money NULL DEFAULT (0), C datetime, D nvarchar(25) NULL, "
          "E int IDENTITY(1,1), CONSTRAINT PK_X PRIMARY KEY CLUSTERED (A))",
            "CREATE TABLE X (A INTEGER NOT NULL CONSTRAINT \"tsql:smallint:A\" CHECK (typeof(\"A\") IN "
            "('integer','null') AND \"A\" BETWEEN -32768 AND 32767), B MONEY_REAL NULL DEFAULT (0) CONSTRAINT "
            "\"tsql:money:B\" CHECK (typeof(\"B\") IN ('real','null') AND abs(\"B\") <= 922337203685477.5807), "
            "C DATETIME_TEXT CONSTRAINT \"tsql:datetime:C\" CHECK (\"C\" IS NULL OR (typeof(\"C\") = 'text' AND "
            "date(substr(\"C\",1,10),'+0 days') IS substr(\"C\",1,10) AND substr(\"C\",11,1) IN ('',' ','T'))), "
            "D NVARCHAR(25) NULL CONSTRAINT \"tsql:nvarchar:D\" CHECK (length(rtrim(\"D\",' ')) <= 25), "
            "E INTEGER (1,1) CONSTRAINT \"tsql:int:E\" CHECK (typeof(\"E\") IN ('integer','null') AND \"E\" "
            "BETWEEN -2147483648 AND 2147483647), CONSTRAINT PK_X PRIMARY KEY  (A))" },
    };
    for (const auto& [tsql, sqlite] : cases)
        EXPECT_EQ(tr(tsql).sql.toStdString(), sqlite.toStdString());
    EXPECT_TRUE(tr(QStringLiteral("SELECT FROM WHERE dbo.X")).columnTypes.isEmpty());
    EXPECT_EQ(tr(QStringLiteral("UPDATE dbo.KnjPrihRashDB SET RBROJ=RBROJ+1 WHERE RBroj>=3")).kind,
        Translation::Kind::Command);
}

TEST(TSqlTranslate, ResultTypesFollowSqlServerPrecedence)
{
    using T = SqlType;
    const std::pair<QString, QVector<SqlType>> cases[] = {
        { "SELECT CASE WHEN K.Vrsta=1 THEN K.Iznos ELSE 0 END AS A, CASE WHEN K.Vrsta=1 THEN 'x' END AS B, "
          "SUM(K.Iznos) AS C, MAX(K.RBroj) AS D, ISNULL(SUM(K.Iznos),0) AS E, K.Datum, 100/K.Vrsta AS F, "
          "100.0/K.Vrsta AS G, CASE WHEN K.Vrsta=1 THEN ROUND(K.Iznos-100.0/K.Vrsta,2) ELSE K.Iznos END AS H, "
          "-K.Iznos AS I, COUNT(*) AS J FROM dbo.KnjPrihRashDB K",
            { T::Money, T::Text, T::Money, T::Int, T::Money, T::Date, T::Int, T::Decimal, T::Decimal, T::Money,
                T::Int } },
        { "SELECT K.Isprava+'-'+K.Opis AS A, K.Iznos+K.IznosPDV AS B, K.Vrsta+1 AS C, '7'+K.Vrsta AS D, "
          "rtrim(cast(K.Vrsta as nvarchar(5)))+'x' AS E FROM dbo.KnjPrihRashFBiH K",
            { T::Text, T::Money, T::Int, T::Int, T::Text } },
        // A star expands to the table's columns.
        { "SELECT *,'' As I FROM KnjPrometaFBiH K",
            { T::Int, T::Int, T::Date, T::Int, T::Text, T::Text, T::Money, T::Money, T::Text } },
        // A UNION takes the higher type of each column.
        { "SELECT 'a' AS Opis, 0 AS X FROM KnjPrometaFBiH K UNION SELECT 'b' AS Opis, SUM(K.IznosGot) AS X FROM "
          "KnjPrometaFBiH K",
            { T::Text, T::Money } },
    };
    for (const auto& [sql, types] : cases)
        EXPECT_EQ(tr(sql).columnTypes, types) << sql.toStdString();
}

TEST(TSqlTranslate, StatementSplittingAndDecimalRounding)
{
    // Statements split outside literals and trigger bodies.
    const QStringList parts = splitStatements(QStringLiteral("SELECT ';' AS A; UPDATE X SET A=1;CREATE TRIGGER T AFTER "
                                                             "INSERT ON X BEGIN UPDATE X SET A=CASE WHEN 1=1 THEN 2 "
                                                             "END; END;"));
    ASSERT_EQ(parts.size(), 3);
    EXPECT_EQ(parts[0], QStringLiteral("SELECT ';' AS A"));
    EXPECT_TRUE(parts[2].endsWith(QStringLiteral("END; END")));

    // ROUND of a decimal value: half away from zero.
    const std::tuple<double, int, double> rounds[]
        = { { 2.675, 2, 2.68 }, { -2.675, 2, -2.68 }, { 1.005, 2, 1.01 }, { 2.5, 0, 3.0 }, { 2.4999, 0, 2.0 },
              { 1234.5, -1, 1230.0 }, { 1235, -1, 1240.0 }, { 0.0004, 2, 0.0 }, { 83.333333333333, 2, 83.33 } };
    for (const auto& [value, digits, rounded] : rounds)
        EXPECT_DOUBLE_EQ(roundDecimal(value, digits), rounded) << value << " " << digits;
}

namespace
{

const std::string kTooDeep = tsql::kNestedTooDeeply;

QString nested(int depth)
{
    return QStringLiteral("SELECT ") + QString(depth, u'(') + u'1' + QString(depth, u')');
}
QString terms(int count)
{
    return QStringLiteral("SELECT 1") + QStringLiteral("+1").repeated(count - 1);
}

// The error of a statement run through the helper; empty when it ran.
std::string errorOf(TestDatabase& t, const QString& sql)
{
    db::ResultSet rs;
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

TEST(DialectHardening, EveryMalformedOrTooDeepStatementIsAnErrorNotACrashOnAOneMebibyteStackToo)
{
    TestDatabase t;
    for (const char* sql : { "CREATE TABLE K. --", "CREATE TABLE X (a int(", "SELECT TOP", "SELECT TOP (5",
             "SELECT TOP x * FROM KOMITENT", "INSERT INTO", "UPDATE dbo.KOMITENT SET", "DELETE dbo.X FROM",
             "SELECT CAST(1 AS", "SELECT CASE WHEN", "SELECT 'open", "SELECT [open", "SELECT 1 /* open",
             "SELECT * FROM (SELECT", "CREATE TABLE", "SELECT N'", "SELECT .", "(" })
        EXPECT_FALSE(errorOf(t, QString::fromLatin1(sql)).empty()) << sql;
    const QString deep[] = { nested(10500), terms(14000), nested(1001),
        QStringLiteral("SELECT ") + QStringLiteral("- ").repeated(5000) + u'1',
        QStringLiteral("SELECT 1 WHERE ") + QStringLiteral("NOT ").repeated(3000) + QStringLiteral("1=1") };
    for (const QString& sql : deep)
        EXPECT_EQ(errorOf(t, sql), kTooDeep) << sql.left(40).toStdString();
        // Nesting within the limit runs as far as the engine's own parser goes. Under
        // AddressSanitizer every frame is several times larger, and the stack guard, rightly,
        // stops a shallower statement.
#ifdef __SANITIZE_ADDRESS__
    const int within = 25;
#else
    const int within = 900;
#endif
    EXPECT_EQ(errorOf(t, nested(50)), "");
    const db::ResultSet sum = t.query(terms(within));
    ASSERT_EQ(sum.rowCount(), 1);
    EXPECT_EQ(sum.integer(0, 0), within);

    // Deep statements are refused on a one-mebibyte stack.
    tsql::Catalog catalog;
    std::vector<std::string> errors;
    QThread* thread = QThread::create([&] {
        for (const QString& sql : { nested(10500), terms(14000), nested(within) })
            errors.push_back(tsql::translateStatement(sql, catalog).error.toStdString());
    });
    thread->setStackSize(1024 * 1024);
    thread->start();
    ASSERT_TRUE(thread->wait(60000));
    delete thread;
    EXPECT_EQ(errors, (std::vector<std::string> { kTooDeep, kTooDeep, "" }));
}

TEST(DialectHardening, EachCaseGivesTheServersValueOrItsError)
{
    TestDatabase t;
    const auto money = [](const char* source) {
        return std::string("Arithmetic overflow error converting ") + source + " to data type money.";
    };
    const std::string intOverflow = "Arithmetic overflow error converting expression to data type int.";
    const auto failed = [](const char* source, const char* value, const char* type = "int") {
        return std::string("Conversion failed when converting the ") + source + " value '" + value + "' to data type "
            + type + ".";
    };
    const std::string byZero = "Divide by zero error encountered.";
    const std::string charToMoney = "Cannot convert a char value to money. The char value has incorrect syntax.";
    const std::string truncated = "String or binary data would be truncated.";
    const std::string notADate = "Conversion failed when converting date and/or time from character string.";
    struct Case {
        const char* expr;
        std::string error;
        const char* value; // the result as ResultSet::text gives it when it runs
    };
    const Case cases[] = {
        { "CAST(922337203685477.5807 AS money)", {}, "922337203685477.5807" },
        { "CAST(-922337203685477.5808 AS money)", {}, "-922337203685477.5808" },
        { "CAST(922337203685477.5808 AS money)", money("numeric"), nullptr },
        { "CAST(-922337203685477.5809 AS money)", money("numeric"), nullptr },
        { "CAST(922337203685477.5807 AS money) + CAST(0.0001 AS money)", money("expression"), nullptr },
        { "CAST(-922337203685477.5808 AS money) - CAST(0.0001 AS money)", money("expression"), nullptr },
        { "CAST(1e16 AS money)", money("float"), nullptr },
        { "CAST(12.34565 AS money)", {}, "12.3457" },
        { "CAST(10 AS money)/3*3", {}, "9.9999" },
        { "(SELECT COUNT(*) FROM (SELECT TOP (1) N FROM (SELECT 1 AS N UNION ALL SELECT 2 AS N) X) Y)", {}, "1" },
        // Money is a double on the embedded database: exact to the ten-thousandth up to
        // 549,755,813,888.0002 (the last below 2^39 whose neighbours stay apart).
        { "CAST(549755813888.0002 AS money)", {}, "549755813888.0002" },
        { "CAST(-549755813887.9999 AS money)", {}, "-549755813887.9999" },
        { "CAST(549755813888.0003 AS money)", {}, "549755813888.0002" },
        { "CAST(499999999999.9999 AS money)", {}, "499999999999.9999" },
        { "ROUND(CAST(922337203685477.5807 AS money), 0)", money("expression"), nullptr },
        { "CAST(922337203685477 AS money) + CAST(1 AS money)", money("expression"), nullptr },
        { "CAST(900000000000000 AS money) * 2", money("expression"), nullptr },
        { "2147483647 + 1", intOverflow, nullptr },
        { "ROUND(2147483647, -1)", intOverflow, nullptr },
        { "-2147483647 - 1", {}, "-2147483648" },
        // Whole numbers stay whole: an average, ISNULL's first type, a cast cut off.
        { "(SELECT AVG(X.N) FROM (SELECT 1 AS N UNION ALL SELECT 2 AS N) X)", {}, "1" },
        { "(SELECT AVG(X.N) FROM (SELECT -1 AS N UNION ALL SELECT -2 AS N) X)", {}, "-1" },
        { "ISNULL(CAST(NULL AS int),2.7)", {}, "2" },
        { "CAST(-3.7 AS int)", {}, "-3" },
        { "CAST(CAST(-2.5 AS money) AS int)", {}, "-3" },
        { "CAST(70000 AS smallint)", "Arithmetic overflow error converting expression to data type smallint.",
            nullptr },
        // A text meets a number: converted to the number's type, or refused.
        { "'a'+1", failed("varchar", "a"), nullptr },
        { "1+'1.5'", failed("varchar", "1.5"), nullptr },
        { "CAST('3.5' AS int)", failed("varchar", "3.5"), nullptr },
        { "1+N' 2 '", {}, "3" },
        { "CAST(1 AS money)+'x'", charToMoney, nullptr },
        { "1.5+'x'", "Error converting data type varchar to numeric.", nullptr },
        { "CASE WHEN N'x' = 5 THEN 1 ELSE 0 END", failed("nvarchar", "x"), nullptr },
        { "CASE WHEN 5 IN ('4', ' 5') THEN 1 ELSE 0 END", {}, "1" },
        { "CASE WHEN 5 IN (SELECT '5') THEN 1 ELSE 0 END", {}, "1" },
        { "5 % 0", byZero, nullptr },
        { "5.5 % 0", byZero, nullptr },
        { "-7 % 3", {}, "-1" },
        { "5.5 % 2", {}, "1.5" },
        { "SUBSTRING(N'abcdef',-1,3)", {}, "a" },
        { "SUBSTRING(N'abcdef',2,3)", {}, "bcd" },
        { "SUBSTRING(N'abc',0,1)", {}, "" },
        { "SUBSTRING(N'abc',1,-1)", "Invalid length parameter passed to the substring function.", nullptr },
        { "left(N'čšž',2)+LEFT('ab',9)", {}, "čšab" },
        { "LEFT(N'abc',-1)", "Invalid length parameter passed to the left function.", nullptr },
        { "UPPER(N'čšžđć äöß')", {}, "ČŠŽĐĆ ÄÖß" },
        { "LOWER(N'ČŠŽĐĆ ÄÖ Ǆ')", {}, "čšžđć äö ǆ" },
        // A number where a date is wanted counts days from 1 January 1900.
        { "CAST(45000 AS datetime)", {}, "2023-03-17" },
        { "(SELECT COUNT(*) FROM dbo.KnjPrihRashDB WHERE Datum = 45000)", {}, "0" },
        // A text where a date part is asked for is read month first.
        { "MONTH('01/15/2016')*100+DAY(N'12.31.2015')+YEAR(0)", {}, "2031" },
        { "MONTH('02/30/2016')",
            "The conversion of a varchar data type to a datetime data type resulted in an "
            "out-of-range value.",
            nullptr },
    };
    for (const Case& c : cases) {
        const QString sql = QStringLiteral("SELECT ") + QString::fromUtf8(c.expr) + QStringLiteral(" AS R");
        db::ResultSet rs;
        const bool ok = t.db().open(sql, rs);
        EXPECT_EQ(ok ? std::string() : t.db().errorDescription().toStdString(), c.error) << c.expr;
        if (ok && c.value) {
            EXPECT_EQ(rs.text(0, 0).toStdString(), c.value) << c.expr;
        }
    }

    // Stored values: what the column's type holds goes in as the server converts it,
    // the rest is refused and changes nothing, as a statement and as a bound write.
    const char* const insert = "INSERT INTO dbo.KnjPrihRashDB (BrojPoduzeca,RBroj,GodinaKnj,Datum,Opis,Iznos) VALUES ";
    const std::pair<QString, std::string> writes[] = {
        { "(1,1,2016,NULL,'x',922337203685477.5807)", {} },
        { "(1,4.7,2016,45000,'y',-922337203685477.5808)", {} },
        { "(1,2,2016,NULL,'x',1e16)", money("float") },
        { "(1,2,2016,NULL,'x',922337203685477.5808)", money("numeric") },
        { "(1,'x',2016,NULL,'x',0)", failed("varchar", "x") },
        { "(1,2,2016,'x',NULL,0)", notADate },
        { "(1,2,2016,NULL,'" + QString(10000, u'a') + "',0)", truncated },
        { "(1,2,70000,NULL,'x',0)", "Arithmetic overflow error converting expression to data type smallint." },
        { "(1,2,2016,NULL,'x','abc')", charToMoney },
    };
    for (const auto& [values, error] : writes)
        EXPECT_EQ(errorOf(t, QString::fromLatin1(insert) + values), error) << values.left(60).toStdString();
    for (const char* sql :
        { "UPDATE dbo.KnjPrihRashDB SET Iznos=Iznos+Iznos", "UPDATE dbo.KnjPrihRashDB SET RBroj=RBroj+2147483647",
            "UPDATE dbo.KnjPrihRashDB SET Iznos=Iznos-CAST(1 AS money) WHERE Iznos<0" })
        EXPECT_EQ(errorOf(t, QString::fromLatin1(sql)).rfind("Arithmetic overflow error", 0), 0u) << sql;
    const std::tuple<QString, QVariant, std::string> bound[] = {
        { "RBroj", "x", failed("nvarchar", "x") },
        { "GodinaKnj", 70000, "Arithmetic overflow error converting expression to data type smallint." },
        { "Datum", "2016-02-30", notADate },
        { "Opis", QString(101, u'a'), truncated },
        { "Iznos", "abc", charToMoney },
        { "Iznos", 1e16, money("expression") },
    };
    for (const auto& [column, value, error] : bound) {
        db::RowChange::Values values = { { "BrojPoduzeca", 1 }, { "RBroj", column == "RBroj" ? value : 3 },
            { "GodinaKnj", column == "GodinaKnj" ? value : 2016 } };
        if (column != "RBroj" && column != "GodinaKnj")
            values.append({ column, value });
        EXPECT_FALSE(t.db().writeRow({ db::RowChange::Kind::Insert, "dbo.KnjPrihRashDB", values, {} }))
            << column.toStdString();
        EXPECT_EQ(t.db().errorDescription().toStdString(), error) << column.toStdString();
    }
    EXPECT_EQ(errorOf(t, QStringLiteral("SELECT COUNT(*) AS N FROM dbo.KnjPrihRashDB K WHERE K.Opis=1")),
        failed("nvarchar", "x"));
    // Bound as the server takes a parameter: 3.9 cut off, a day number and a month-first
    // text as dates; blanks past the width are dropped on the server, not refused.
    t.insert("dbo.KnjPrihRashDB",
        { { "BrojPoduzeca", 1 }, { "RBroj", 3.9 }, { "GodinaKnj", 2016 }, { "Datum", 45001 },
            { "Opis", QString(100, u'b') + "   " } });
    t.insert("dbo.KnjPrihRashDB",
        { { "BrojPoduzeca", 1 }, { "RBroj", 5 }, { "GodinaKnj", 2016 }, { "Datum", "03.15.2016" } });
    const db::ResultSet rs = t.query("SELECT RBroj, Datum, Iznos FROM dbo.KnjPrihRashDB ORDER BY RBroj");
    EXPECT_EQ(test::columnText(rs, "RBroj"), "1|3|4|5"); // 3.9 and 4.7 cut off
    EXPECT_EQ(test::columnText(rs, "Datum"), "<null>|2023-03-18|2023-03-17|2016-03-15");
    EXPECT_EQ(test::columnText(rs, "Iznos"), "922337203685477.5807|0|-922337203685477.5808|0");
    // Column names as the server gives them: an expression without an alias has none.
    const db::ResultSet named
        = t.query("SELECT K.RBroj, ISNULL(CAST(NULL AS int),2.7), K.RBroj+1, K.RBroj AS [Broj x], "
                  "K.RBroj*2, * FROM dbo.KnjPrihRashDB K");
    QStringList names;
    for (int c = 0; c < 6; ++c)
        names << named.field(c).name;
    EXPECT_EQ(names.join(u'|'), "RBroj|||Broj x||BrojPoduzeca");
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
        (QStringList { "2016-03-15", "2016-03-15", "2016-03-15", "2016-01-02", "2016-12-31", "2016-02-29", "2016-01-01",
            "2016-01-03" }));
    // The text column keeps the text that looks like a date.
    EXPECT_EQ(stored(t.path(), "SELECT Opis FROM KnjPrihRashDB WHERE RBroj=1"), QStringList { "03.15.2016" });

    // A condition, and the rows it finds.
    const std::pair<const char*, int> reads[] = {
        { "K.Datum=ISNULL(NULL,'3.15.2016')", 3 },
        { "K.Datum IN (SELECT '03.15.16')", 3 },
        { "CASE WHEN K.RBroj>0 THEN K.Datum END='03.15.2016'", 3 },
        { "K.Datum<'03.15.2016 10:00'", 7 },
        { "K.Datum='03.15.2016 10:00'", 0 },
        { "K.Datum BETWEEN '1.1.16' AND '1.3.2016'", 3 },
        { "K.Opis='03.15.2016'", 1 },
        { "MONTH(K.Datum)=3", 3 },
    };
    for (const auto& [where, rows] : reads)
        EXPECT_EQ(
            t.query(QStringLiteral("SELECT COUNT(*) FROM dbo.KnjPrihRashDB K WHERE ") + where).integer(0, 0), rows)
            << where;

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
    const char* const hold[] = { "N'č'=N'Č'", "'a'='a  '", "N'Šećer'=N'šEĆER'", "N'ž'>N'z'", "N'ča'>N'cz'", "N'Đ'<N'e'",
        "'a' IN ('A ','b')", "N'Šećer' LIKE N'%šeć%'", "'Dalmacija' LIKE '[A-M]%'", "'a_b' LIKE 'a[_]b'",
        "'bcd' LIKE '[^a]_D'", "'a%b' LIKE 'a!%b' ESCAPE '!'" };
    const char* const fail[] = { "N'č'=N'c'", "N'é'=N'e'", "N'Šećer' LIKE 'sec%'", "N'Žito' LIKE '[A-M]%'",
        "N'Čelik' LIKE N'[a-c]%'", "'axb' LIKE 'a[_]b'", "'a ' LIKE 'a'", "'ab' LIKE 'a!%b' ESCAPE '!'" };
    const auto truth = [&t](const char* predicate) {
        return t.query(QStringLiteral("SELECT CASE WHEN ") + QString::fromUtf8(predicate) + " THEN 1 ELSE 0 END AS R")
            .integer(0, 0);
    };
    for (const char* p : hold)
        EXPECT_EQ(truth(p), 1) << p;
    for (const char* p : fail)
        EXPECT_EQ(truth(p), 0) << p;
    // A filter on a column finds the entries whatever their letter case.
    for (const QString& opis : { QStringLiteral("Dnevni promet maloprodaje"),
             QStringLiteral("DNEVNI PROMET MALOPRODAJE "), QStringLiteral("Dnevni promet maloprodaje č") })
        t.insert(
            "dbo.KnjPrihRashDB", { { "BrojPoduzeca", 1 }, { "RBroj", 1 }, { "GodinaKnj", 2016 }, { "Opis", opis } });
    EXPECT_EQ(
        t.query("SELECT COUNT(*) FROM dbo.KnjPrihRashDB K WHERE K.Opis='dnevni promet maloprodaje'").integer(0, 0), 2);
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
        db::TransactionGuard tx(t.db()); // waits for the other writer instead of failing
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
    const char* const ordered[]
        = { "", "1", "a", "Ab", "C", "cz", "Ča", "čb", "Ća", "d", "Dz", "Đa", "e", "é", "s", "Šx", "z", "Ža" };
    const int n = int(std::size(ordered));
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            const int c = tsql::compareText(ordered[i], strlen(ordered[i]), ordered[j], strlen(ordered[j]));
            EXPECT_EQ(c < 0 ? -1 : c > 0 ? 1 : 0, i < j ? -1 : i > j ? 1 : 0) << ordered[i] << " vs " << ordered[j];
        }
}
