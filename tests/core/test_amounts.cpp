// Amounts as people type and read them: the workstation's form only, the boxes'
// limits, display rounding as SQL's ROUND does, and the exact VAT share.
#include "session/AmountText.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

using namespace knjige;
using State = AmountReading::State;

TEST(AmountText, ReadsOnlyTheWorkstationsOwnForm)
{
    const NumberConventions bs = NumberConventions::of(QLocale(QLocale::Bosnian));
    const NumberConventions en = NumberConventions::of(QLocale(QLocale::English));
    const struct {
        NumberConventions c;
        const char* text;
        State state;
        qint64 units;
    } cases[] = {
        { bs, "1.234,56", State::Exact, 12345600 },
        { bs, "12.500", State::Exact, 125000000 },
        { bs, "-0,5", State::Exact, -5000 },
        { bs, "1.234,", State::Exact, 12340000 },
        { bs, "", State::Exact, 0 },
        { bs, "1,234.56", State::Refused, 0 },
        { bs, "1.2", State::Incomplete, 0 },
        { bs, "12.34.567", State::Refused, 0 },
        { bs, "1,234", State::Refused, 0 },
        { bs, "1.000.000.000.000", State::Refused, 0 },
        { bs, "12 KM", State::Refused, 0 },
        { en, "1,234.56", State::Exact, 12345600 },
        { en, "12.500", State::Refused, 0 },
        { en, "-0,5", State::Incomplete, 0 },
        { en, "000000000000012", State::Exact, 120000 },
    };
    for (const auto& c : cases) {
        const AmountReading r = readAmount(QString::fromUtf8(c.text), c.c, AmountLimits {});
        EXPECT_EQ(r.state, c.state) << c.text;
        EXPECT_EQ(r.value.units(), c.units) << c.text;
        EXPECT_EQ(r.problem.isEmpty(), c.state == State::Exact) << c.text;
    }
    EXPECT_EQ(readAmount(QStringLiteral("1234567890123"), bs, {}).problem,
        QStringLiteral("Broj može imati najviše 12 cijelih mjesta."));
    EXPECT_EQ(readAmount(QStringLiteral("0,5"), bs, { 14, 0 }).problem,
        QStringLiteral("Ovdje se upisuje cijeli broj, bez decimala."));
}

TEST(AmountText, DisplayRoundsAsSqlRoundDoes)
{
    test::TestDatabase t;
    for (const char* text : { "0.125", "-0.125", "0.145", "2.675", "1234.005", "-0.005", "0.0049" }) {
        const ResultSet rs = t.query(QStringLiteral("SELECT ROUND(CAST(%1 AS money), 2) AS R").arg(text));
        EXPECT_EQ(amountDisplay(Money::parse(QString::fromLatin1(text)).value(), QLocale::c()),
            amountDisplay(rs.money(0, 0), QLocale::c()))
            << text;
    }
    EXPECT_EQ(amountDisplay(Money::parse(QStringLiteral("-1234567.125")).value(), QLocale(QLocale::Bosnian)),
        QStringLiteral("-1.234.567,13"));
}

TEST(Money, TheVatShareIsExactForEveryAmountTheTypeHolds)
{
    const qint64 most = std::numeric_limits<qint64>::max();
    const std::pair<Money, qint64> cases[] = {
        { Money::fromWhole(100), 145299 },
        { -Money::fromUnits(585000), -85000 },
        { Money::fromWhole(99999999999999), 145299145299143846 }, // 17 x this overflowed
        { -Money::fromUnits(most), -1340148073731035801 },
    };
    for (const auto& [gross, share] : cases)
        EXPECT_EQ(gross.fraction(17, 117).units(), share) << gross.toString().toStdString();
}
