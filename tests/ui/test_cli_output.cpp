// The command-line tool's output forms (knjige query), checked without a process.

#include "host/Cli.h"
#include "host/Csv.h"
#include "session/ResultSet.h"

#include <QTextStream>
#include <gtest/gtest.h>

using namespace knjige;

TEST(CliOutput, FractionsArePlainDecimalsWithAPoint)
{
    EXPECT_EQ(cli::plainNumber(0), "0");
    EXPECT_EQ(cli::plainNumber(-0.0), "0");
    EXPECT_EQ(cli::plainNumber(0.17), "0.17");
    EXPECT_EQ(cli::plainNumber(100.0 / 3), "33.3333333333333");
    EXPECT_EQ(cli::plainNumber(-2.5), "-2.5");
    EXPECT_EQ(cli::plainNumber(1e-7), "0.0000001");
    EXPECT_EQ(cli::plainNumber(2.5e20), "250000000000000000000");
    EXPECT_EQ(cli::plainNumber(1234567.125), "1234567.125");
}

TEST(CliOutput, EveryTypeHasOneTextForm)
{
    ResultSet rs({ { "RBroj", FieldType::Integer }, { "Iznos", FieldType::Currency }, { "Stopa", FieldType::Float },
        { "Datum", FieldType::Date }, { "Opis", FieldType::Text }, { "Placeno", FieldType::Boolean } });
    rs.appendRow();
    rs.setInteger(0, -12);
    rs.setMoney(1, Money::parse("1234567.5").value());
    rs.setReal(2, 0.1);
    rs.setDate(3, QDate(2016, 3, 5));
    rs.setText(4, "Račun 7, \"Centar\"\ndrugi red");
    rs.set(5, true);
    rs.appendRow(); // all NULL

    QString text;
    QTextStream out(&text);
    cli::writeCsv(rs, true, out);
    EXPECT_EQ(text,
        "RBroj,Iznos,Stopa,Datum,Opis,Placeno\n"
        "integer,currency,float,date,text,boolean\n"
        "-12,1234567.5,0.1,2016-03-05,\"Račun 7, \"\"Centar\"\"\ndrugi red\",1\n"
        ",,,,,\n");

    text.clear();
    cli::writeCsv(ResultSet({ { "a,b", FieldType::Text } }), false, out);
    EXPECT_EQ(text, "\"a,b\"\n");
}

TEST(CliOutput, OnlyStatementsThatGiveRowsArePrinted)
{
    EXPECT_TRUE(cli::returnsRows("SELECT 1"));
    EXPECT_TRUE(cli::returnsRows("  select * from dbo.CONFIG"));
    EXPECT_TRUE(cli::returnsRows("-- zadnji broj\n/* knjiga 96 */ (SELECT MAX(RBroj) FROM T)"));
    EXPECT_TRUE(cli::returnsRows("WITH x AS (SELECT 1 AS a) SELECT a FROM x"));
    EXPECT_TRUE(cli::returnsRows("EXEC sp_help"));
    EXPECT_FALSE(cli::returnsRows("CREATE TABLE dbo.KUF (BrojKUFa int)"));
    EXPECT_FALSE(cli::returnsRows("INSERT INTO T SELECT * FROM U"));
    EXPECT_FALSE(cli::returnsRows("UPDATE T SET a = 1"));
    EXPECT_FALSE(cli::returnsRows("SELECTIONS"));
    EXPECT_FALSE(cli::returnsRows("-- samo komentar"));
}

TEST(CliOutput, ABatchSplitsAtSemicolonsOutsideLiteralsAndComments)
{
    const QStringList parts
        = cli::batchStatements("SELECT 'a;b' AS x; /* ; */ VALUES (1);; INSERT INTO T (a) VALUES (');'); -- kraj; \n");
    ASSERT_EQ(parts.size(), 3) << parts.join(u'|').toStdString();
    EXPECT_EQ(parts[0], "SELECT 'a;b' AS x");
    EXPECT_EQ(parts[1].trimmed(), "/* ; */ VALUES (1)");
    EXPECT_EQ(parts[2].trimmed(), "INSERT INTO T (a) VALUES (');')");
    EXPECT_TRUE(cli::batchStatements(" -- samo komentar; \n /* i ovo */ ;").isEmpty());
}
