// The T-SQL → SQLite rewrites on their own: the SQLite text that comes out and the
// column types the adapter infers, against the tables of the schema script.
#include "books/Schema.h"
#include "session/TSqlAst.h"
#include "session/TSqlFunctions.h"
#include "session/TSqlTokenizer.h"
#include "session/TSqlTranslator.h"

#include <gtest/gtest.h>

using namespace knjige;
using namespace knjige::tsql;

namespace {

const Catalog& schemaCatalog()
{
    static const Catalog catalog = [] {
        Catalog c;
        for (const QString& statement : schemaStatements())
            if (auto table = parseCreateTable(statement))
                c.add(*table);
        return c;
    }();
    return catalog;
}

Translation::Statement tr(const QString& sql) { return translateStatement(sql, schemaCatalog()); }

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
    const QString literal = QStringLiteral("'dbo.X + ISNULL(a,b) / 2, LEFT(c,3) TOP 100 PERCENT ''03.15.2016'''");
    const std::pair<QString, QString> cases[] = {
        // String literals are never rewritten.
        { "SELECT " + literal + " AS T, K.Opis+" + literal + " AS U FROM dbo.KnjPrihRashDB K",
            "SELECT " + literal + " AS T, K.Opis||" + literal + " AS U FROM KnjPrihRashDB K" },
        // + joins only character data.
        { "SELECT K.Isprava+'-'+K.Opis AS A, K.Iznos+K.IznosPDV AS B, K.Vrsta+1 AS C, '7'+K.Vrsta AS D, "
          "rtrim(cast(K.Vrsta as nvarchar(5)))+'x' AS E FROM dbo.KnjPrihRashFBiH K",
            "SELECT K.Isprava||'-'||K.Opis AS A, K.Iznos+K.IznosPDV AS B, K.Vrsta+1 AS C, '7'+K.Vrsta AS D, "
            "rtrim(CAST(K.Vrsta AS TEXT))||'x' AS E FROM KnjPrihRashFBiH K" },
        // Every division goes through the registered function; a money quotient keeps four decimals.
        { "SELECT 100.0/K.VijekTr/12*(13-MONTH(Datum)) AS X FROM KnjPopListaDugImovFBiH K",
            "SELECT tsql_div(tsql_div(100.0, K.VijekTr), 12)*(13-MONTH(Datum)) AS X FROM KnjPopListaDugImovFBiH K" },
        { "SELECT K.NabVrijednost/3 AS X FROM KnjPopListaDugImovFBiH K",
            "SELECT tsql_divm(K.NabVrijednost, 3) AS X FROM KnjPopListaDugImovFBiH K" },
        // Functions SQLite lacks.
        { "SELECT ISNULL(MAX(RBroj),0) AS BROJ, left(K.Opis,20) AS L, ROUND(K.Iznos,2) AS R FROM dbo.KnjPrihRashFBiH K "
          "LEFT JOIN dbo.Komitent R ON 1=1",
            "SELECT IFNULL(MAX(RBroj),0) AS BROJ, SUBSTR(K.Opis,1,20) AS L, tsql_roundm(K.Iznos,2) AS R "
            "FROM KnjPrihRashFBiH K LEFT JOIN Komitent R ON 1=1" },
        { "SELECT cast(100.0/K.VijekTr as money) as S FROM KnjPopListaDugImovFBiH K",
            "SELECT tsql_money(tsql_div(100.0, K.VijekTr), 'numeric') as S FROM KnjPopListaDugImovFBiH K" },
        // TOP becomes LIMIT; TOP 100 PERCENT goes.
        { "SELECT TOP 100 PERCENT K.Vrsta FROM dbo.KnjPrihRashFBiH K ORDER BY K.Vrsta",
            "SELECT K.Vrsta FROM KnjPrihRashFBiH K ORDER BY K.Vrsta" },
        { "SELECT TOP (5) K.Vrsta FROM dbo.KnjPrihRashFBiH K ORDER BY K.Vrsta",
            "SELECT K.Vrsta FROM KnjPrihRashFBiH K ORDER BY K.Vrsta LIMIT 5" },
        // DELETE with an alias takes the SQLite form.
        { "DELETE dbo.KnjPrihRashDB FROM dbo.KnjPrihRashDB K WHERE K.BrojPoduzeca=1 AND K.Datum>='01.01.2016'",
            "DELETE FROM KnjPrihRashDB AS K WHERE K.BrojPoduzeca=1 AND K.Datum>='2016-01-01'" },
        { "DELETE FROM dbo.KnjPrihRashDB WHERE RBroj=3", "DELETE FROM KnjPrihRashDB WHERE RBroj=3" },
        // Month-first dates become ISO only against date columns.
        { "SELECT K.RBroj FROM KnjPrometaFBiH K WHERE K.Datum>='03.15.2016' AND K.Datum<='12.31.2016' AND "
          "K.Isprava='03.15.2016' AND K.Datum BETWEEN '1.1.2016' AND '1.31.2016' AND K.Datum IN ('2.29.2016')",
            "SELECT K.RBroj FROM KnjPrometaFBiH K WHERE K.Datum>='2016-03-15' AND K.Datum<='2016-12-31' AND "
            "K.Isprava COLLATE tsql_ci_as='03.15.2016' AND K.Datum BETWEEN '2016-01-01' AND '2016-01-31' AND "
            "K.Datum IN ('2016-02-29')" },
        { "INSERT INTO dbo.KnjRashodaRS (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,OPIS,VRSTA) "
          "VALUES(1,4,'1.1.2016',2016,'1.1.2016',11)",
            "INSERT INTO KnjRashodaRS (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,OPIS,VRSTA) "
            "VALUES(1,4,'2016-01-01',2016,'1.1.2016',11)" },
        { "INSERT INTO KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv,Datum) "
          "SELECT BrojPoduzeca,2017,Naziv,'01.01.2017' FROM KnjPopListaDugImovFBiH",
            "INSERT INTO KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv,Datum) "
            "SELECT BrojPoduzeca,2017,Naziv,'2017-01-01' FROM KnjPopListaDugImovFBiH" },
        { "UPDATE dbo.TrgKnjUsluga SET Datum='12.31.2016', Opis='12.31.2016' WHERE RBroj=1",
            "UPDATE TrgKnjUsluga SET Datum='2016-12-31', Opis='12.31.2016' WHERE RBroj=1" },
        // Comments and N strings pass through; a text the parser cannot read keeps its
        // words, for the engine to report.
        { "SELECT N'Žiro' AS A -- dbo.X / 2\nFROM dbo.KnjPrihRashDB", "SELECT 'Žiro' AS A -- dbo.X / 2\nFROM KnjPrihRashDB" },
        { "SELECT FROM WHERE dbo.X", "SELECT FROM WHERE X" },
        // The trade books read an entry with the year and AND written together.
        { "SELECT * FROM dbo.TrgKnjUsluga WHERE BROJPODUZECA=1 AND GODINAKNJ=2016AND BrojProd=2 AND RBroj=1",
            "SELECT * FROM TrgKnjUsluga WHERE BROJPODUZECA=1 AND GODINAKNJ=2016 AND BrojProd=2 AND RBroj=1" },
        { "CREATE TABLE dbo.X (A smallint NOT NULL, B money NULL DEFAULT (0), C datetime, D nvarchar(25) NULL, "
          "E int IDENTITY(1,1), CONSTRAINT PK_X PRIMARY KEY CLUSTERED (A))",
            "CREATE TABLE X (A INTEGER NOT NULL, B MONEY_REAL NULL DEFAULT (0), C DATETIME_TEXT, D NVARCHAR(25) NULL, "
            "E INTEGER (1,1), CONSTRAINT PK_X PRIMARY KEY  (A))" },
    };
    for (const auto& [tsql, sqlite] : cases)
        EXPECT_EQ(tr(tsql).sql.toStdString(), sqlite.toStdString());
    EXPECT_TRUE(tr(QStringLiteral("SELECT FROM WHERE dbo.X")).columnTypes.isEmpty());
    EXPECT_EQ(tr(QStringLiteral("SET TEXTSIZE 1000000")).kind, Translation::Kind::NoOp);
    EXPECT_EQ(tr(QStringLiteral("set dateformat mdy")).kind, Translation::Kind::NoOp);
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

TEST(TSqlTranslate, CreateTableSplittingAndDecimalRounding)
{
    const auto table = parseCreateTable(QStringLiteral("CREATE TABLE dbo.X (A smallint NOT NULL, B money NULL DEFAULT "
                                                       "(0), C datetime, D nvarchar(25) NULL, E int IDENTITY(1,1), "
                                                       "CONSTRAINT PK_X PRIMARY KEY CLUSTERED (A))"));
    ASSERT_TRUE(table);
    EXPECT_EQ(table->name, QStringLiteral("X"));
    ASSERT_EQ(table->columns.size(), 5);
    EXPECT_EQ(table->columns[1].type, SqlType::Money);
    EXPECT_EQ(table->columns[3].width, 25);
    EXPECT_EQ(typeFromSqliteDeclared(QStringLiteral("MONEY_REAL")), SqlType::Money);
    EXPECT_EQ(typeFromSqliteDeclared(QStringLiteral("DATETIME_TEXT")), SqlType::Date);

    // Statements split outside literals and trigger bodies.
    const QStringList parts = splitStatements(QStringLiteral("SELECT ';' AS A; UPDATE X SET A=1;CREATE TRIGGER T AFTER "
                                                             "INSERT ON X BEGIN UPDATE X SET A=CASE WHEN 1=1 THEN 2 "
                                                             "END; END;"));
    ASSERT_EQ(parts.size(), 3);
    EXPECT_EQ(parts[0], QStringLiteral("SELECT ';' AS A"));
    EXPECT_TRUE(parts[2].endsWith(QStringLiteral("END; END")));

    // ROUND of a decimal value: half away from zero.
    const std::tuple<double, int, double> rounds[] = { { 2.675, 2, 2.68 }, { -2.675, 2, -2.68 }, { 1.005, 2, 1.01 },
        { 2.5, 0, 3.0 }, { 2.4999, 0, 2.0 }, { 1234.5, -1, 1230.0 }, { 1235, -1, 1240.0 }, { 0.0004, 2, 0.0 },
        { 83.333333333333, 2, 83.33 } };
    for (const auto& [value, digits, rounded] : rounds)
        EXPECT_DOUBLE_EQ(roundDecimal(value, digits), rounded) << value << " " << digits;
}
