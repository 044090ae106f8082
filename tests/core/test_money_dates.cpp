#include "session/Dates.h"
#include "session/Money.h"

#include <gtest/gtest.h>

using knjige::Money;
namespace dates = knjige::dates;

TEST(Money, VatShareOfAGrossAmountRoundsToFourDecimals)
{
    // 17 % VAT contained in a gross amount: amount * 17 / 117.
    EXPECT_EQ((Money::fromWhole(100) * 17).dividedBy(117.0).toString(), QStringLiteral("14.5299"));
    EXPECT_EQ((Money::parse(QStringLiteral("117")).value() * 17).dividedBy(117.0).toString(),
              QStringLiteral("17.0000"));
    EXPECT_EQ((Money::parse(QStringLiteral("-58.50")).value() * 17).dividedBy(117.0).toString(),
              QStringLiteral("-8.5000"));
}

TEST(Money, RoundsHalfToEven)
{
    EXPECT_EQ(Money::fromDouble(0.00005).units(), 0);   // half, even below
    EXPECT_EQ(Money::fromDouble(0.00015).units(), 2);   // half, even above
    EXPECT_EQ(Money::fromDouble(-0.00015).units(), -2);
    EXPECT_EQ(Money::fromDouble(2.00004).units(), 20000);
    EXPECT_EQ(Money::parse(QStringLiteral("1.00005")).value().units(), 10000);
    EXPECT_EQ(Money::parse(QStringLiteral("1.00015")).value().units(), 10002);
    EXPECT_EQ(Money::parse(QStringLiteral("1.000151")).value().units(), 10002);
    EXPECT_EQ(Money::parse(QStringLiteral("1.000051")).value().units(), 10001);
    EXPECT_EQ(Money::parse(QStringLiteral("0.125")).value().rounded(2).toString(), QStringLiteral("0.1200"));
    EXPECT_EQ(Money::parse(QStringLiteral("0.135")).value().rounded(2).toString(), QStringLiteral("0.1400"));
    EXPECT_EQ(Money::parse(QStringLiteral("-0.135")).value().rounded(2).toString(), QStringLiteral("-0.1400"));
}

TEST(Money, ParsesPlainNumbersAndRefusesTheRest)
{
    EXPECT_EQ(Money::parse(QStringLiteral(" 1234,5 ")).value().toString(), QStringLiteral("1234.5000"));
    EXPECT_EQ(Money::parse(QStringLiteral("-.25")).value().toString(), QStringLiteral("-0.2500"));
    EXPECT_FALSE(Money::parse(QStringLiteral("")).has_value());
    EXPECT_FALSE(Money::parse(QStringLiteral("1.234,56")).has_value());
    EXPECT_FALSE(Money::parse(QStringLiteral("12a")).has_value());
    EXPECT_FALSE(Money::parse(QStringLiteral("-")).has_value());
}

TEST(Money, DisplaysWithGroupingAndTwoDecimals)
{
    EXPECT_EQ(Money::parse(QStringLiteral("1234567.891")).value().toDisplayString(), QStringLiteral("1,234,567.89"));
    EXPECT_EQ(Money::parse(QStringLiteral("-999.995")).value().toDisplayString(), QStringLiteral("-1,000.00"));
    EXPECT_EQ(Money().toDisplayString(u'.', u','), QStringLiteral("0,00"));
    EXPECT_EQ(Money::parse(QStringLiteral("7.5")).value().toPlainString(), QStringLiteral("7.5"));
    EXPECT_EQ(Money::fromWhole(-3).toPlainString(), QStringLiteral("-3"));
}

TEST(Dates, SqlLiteralsAreMonthFirstAndScreenDatesDayFirst)
{
    const QDate d(2016, 3, 15);
    EXPECT_EQ(dates::sqlLiteral(d), QStringLiteral("03.15.2016"));
    EXPECT_EQ(dates::display(d), QStringLiteral("15.03.16"));
    EXPECT_EQ(dates::monthFirstShort(QDate(2016, 3, 31)), QStringLiteral("03.31.16"));
    EXPECT_EQ(dates::parseDayFirst(QStringLiteral("31.12.2015")), QDate(2015, 12, 31));
    EXPECT_EQ(dates::parseMonthFirst(QStringLiteral("1.1.2016")), QDate(2016, 1, 1));
    EXPECT_EQ(dates::parseMonthFirst(QStringLiteral("03.15.2016")), d);
    EXPECT_FALSE(dates::parseMonthFirst(QStringLiteral("15.03.2016")).isValid());
    EXPECT_FALSE(dates::parseDayFirst(QStringLiteral("31.12.15")).isValid());
}

TEST(Dates, StoredTextReadsWithOrWithoutATimePart)
{
    EXPECT_EQ(dates::fromIsoText(QStringLiteral("2016-03-15")), QDate(2016, 3, 15));
    EXPECT_EQ(dates::fromIsoText(QStringLiteral("2016-12-31 00:00:00")), QDate(2016, 12, 31));
    EXPECT_EQ(dates::fromIsoText(QStringLiteral("2016-12-31T10:00:00.000")), QDate(2016, 12, 31));
    EXPECT_FALSE(dates::fromIsoText(QStringLiteral("2016-02-30")).isValid());
    EXPECT_FALSE(dates::fromIsoText(QStringLiteral("2016-1a-01")).isValid());
    EXPECT_FALSE(dates::fromIsoText(QStringLiteral("03.15.2016")).isValid());
    EXPECT_EQ(dates::isoText(QDate(2016, 1, 5)), QStringLiteral("2016-01-05"));
}
