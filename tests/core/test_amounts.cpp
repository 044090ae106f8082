// Amounts as people type and read them: the workstation's conventions, the limits of
// the boxes, display rounding that agrees with SQL's ROUND, and the exact VAT share.
#include "session/AmountText.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

using namespace knjige;
using State = AmountReading::State;

namespace {

const QLocale kBosnian(QLocale::Bosnian, QLocale::BosniaAndHerzegovina);
const QLocale kEnglish(QLocale::English, QLocale::UnitedStates);

} // namespace

TEST(AmountText, ReadsOnlyTheWorkstationsOwnForm)
{
    struct Case {
        const QLocale& locale;
        const char* text;
        State state;
        qint64 units; // when exact
    };
    const Case cases[] = {
        {kBosnian, "1.234,56", State::Exact, 12345600},
        {kBosnian, "12.500", State::Exact, 125000000},
        {kBosnian, "-0,5", State::Exact, -5000},
        {kBosnian, " 1234,5 ", State::Exact, 12345000},
        {kBosnian, "1.234,", State::Exact, 12340000},
        {kBosnian, "", State::Exact, 0},
        {kBosnian, "999.999.999.999,99", State::Exact, 9999999999999900},
        {kBosnian, "1,234.56", State::Refused, 0},    // the English form
        {kBosnian, "1.2", State::Incomplete, 0},      // on the way to 1.234
        {kBosnian, "1.2345", State::Refused, 0},
        {kBosnian, "12.34.567", State::Refused, 0},
        {kBosnian, "1,234", State::Refused, 0},       // three decimals
        {kBosnian, "1.000.000.000.000", State::Refused, 0}, // 13 whole digits
        {kBosnian, "-", State::Incomplete, 0},
        {kBosnian, "1-2", State::Refused, 0},
        {kBosnian, "12 KM", State::Refused, 0},
        {kEnglish, "1,234.56", State::Exact, 12345600},
        {kEnglish, "12,500", State::Exact, 125000000},
        {kEnglish, "12.500", State::Refused, 0},      // three decimals, not a thousand
        {kEnglish, "1.234,56", State::Refused, 0},
        {kEnglish, "-0,5", State::Incomplete, 0},     // a group of thousands begun
        {kEnglish, "-0.5", State::Exact, -5000},
        {kEnglish, "1234567890123", State::Refused, 0},
        {kEnglish, "000000000000012", State::Exact, 120000}, // leading zeros are no digits
    };
    for (const Case& c : cases) {
        const AmountReading r = readAmount(QString::fromUtf8(c.text), NumberConventions::of(c.locale), AmountLimits{});
        EXPECT_EQ(r.state, c.state) << c.text << " in " << c.locale.name().toStdString();
        if (c.state == State::Exact)
            EXPECT_EQ(r.value.units(), c.units) << c.text;
        else
            EXPECT_FALSE(r.problem.isEmpty()) << c.text;
    }
    const NumberConventions bs = NumberConventions::of(kBosnian);
    EXPECT_EQ(readAmount(QStringLiteral("1234567890123"), bs, {}).problem,
              QStringLiteral("Broj može imati najviše 12 cijelih mjesta."));
    EXPECT_EQ(readAmount(QStringLiteral("0,5"), bs, {14, 0}).problem,
              QStringLiteral("Ovdje se upisuje cijeli broj, bez decimala."));
    EXPECT_EQ(readAmount(QStringLiteral("1,2.5"), bs, {}).problem,
              QStringLiteral("Iza decimalnog znaka \",\" ne dolazi znak \".\"."));
}

TEST(AmountText, DisplayRoundsAsSqlRoundDoesAndShowsTheLocalMarks)
{
    test::TestDatabase t;
    const char* values[] = {"0.125", "-0.125", "0.135", "0.145", "2.675", "-2.675", "1234.005", "0.0049", "-0.005"};
    for (const char* text : values) {
        const Money m = Money::parse(QString::fromLatin1(text)).value();
        const ResultSet rs = t.query(QStringLiteral("SELECT ROUND(CAST(%1 AS money), 2) AS R").arg(text));
        ASSERT_EQ(rs.rowCount(), 1) << text;
        EXPECT_EQ(amountDisplay(m, QLocale::c()), amountDisplay(rs.money(0, 0), QLocale::c())) << text;
    }
    EXPECT_EQ(amountDisplay(Money::parse(QStringLiteral("0.125")).value(), QLocale::c()), QStringLiteral("0.13"));
    EXPECT_EQ(amountDisplay(Money::parse(QStringLiteral("-1234567.125")).value(), kBosnian),
              QStringLiteral("-1.234.567,13"));
    EXPECT_EQ(amountDisplay(Money::parse(QStringLiteral("-0.004")).value(), kEnglish), QStringLiteral("0.00"));
    EXPECT_EQ(wholeDisplay(-1234567, kBosnian), QStringLiteral("-1.234.567"));
    EXPECT_EQ(amountEditText(Money::parse(QStringLiteral("-1234.5")).value(), NumberConventions::of(kBosnian)),
              QStringLiteral("-1234,5"));
}

TEST(Money, TheVatShareIsExactForEveryAmountTheTypeHolds)
{
    struct Case {
        Money gross;
        qint64 share;
    };
    const Case cases[] = {
        {Money::fromWhole(100), 145299},
        {Money::fromWhole(117), 170000},
        {-Money::parse(QStringLiteral("58.50")).value(), -85000},
        {Money::fromWhole(99999999999999), 145299145299143846},  // the 17 x product overflowed here
        {Money::fromUnits(std::numeric_limits<qint64>::max()), 1340148073731035801},
        {-Money::fromUnits(std::numeric_limits<qint64>::max()), -1340148073731035801},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.gross.fraction(17, 117).units(), c.share) << c.gross.toString().toStdString();
}
