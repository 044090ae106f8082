// Money and dates: parsing, half-to-even storage and half-away display rounding, the
// VAT share, amounts as people type them in the workstation's form, SQL date literals.
#include "session/AmountText.h"
#include "session/Dates.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

using namespace knjige;
using State = AmountReading::State;

TEST(Money, ParsesStoresRoundsAndShows)
{
    // How the parsed text comes back: s toString, r rounded(2), d display, p plain,
    // v the 17 % VAT contained (x * 17 / 117); "-" when the text is refused.
    const struct {
        const char* text;
        char op;
        const char* expected;
    } cases[] = {
        { " 1234,5 ", 's', "1234.5000" }, { "-.25", 's', "-0.2500" }, { "", 's', "-" }, { "1.234,56", 's', "-" },
        { "12a", 's', "-" }, { "-", 's', "-" },
        // Half to even at the fifth decimal.
        { "1.00005", 's', "1.0000" }, { "1.00015", 's', "1.0002" }, { "1.000151", 's', "1.0002" },
        { "1.000051", 's', "1.0001" }, { "0.125", 'r', "0.1200" }, { "0.135", 'r', "0.1400" },
        { "-0.135", 'r', "-0.1400" },
        { "1234567.891", 'd', "1,234,567.89" }, { "-999.995", 'd', "-1,000.00" }, { "7.5", 'p', "7.5" },
        { "-3", 'p', "-3" }, { "100", 'v', "14.5299" }, { "117", 'v', "17.0000" }, { "-58.50", 'v', "-8.5000" },
    };
    for (const auto& c : cases) {
        const std::optional<Money> m = Money::parse(QString::fromLatin1(c.text));
        QString shown = QStringLiteral("-");
        if (m)
            shown = c.op == 's' ? m->toString()
                : c.op == 'r'   ? m->rounded(2).toString()
                : c.op == 'd'   ? m->toDisplayString()
                : c.op == 'p'   ? m->toPlainString()
                                : (*m * 17).dividedBy(117.0).toString();
        EXPECT_EQ(shown, QString::fromLatin1(c.expected)) << c.text << " " << c.op;
    }
    for (const auto& [value, units] : { std::pair { 0.00005, 0 }, { 0.00015, 2 }, { -0.00015, -2 }, { 2.00004, 20000 } })
        EXPECT_EQ(Money::fromDouble(value).units(), units) << value;
    EXPECT_EQ(Money().toDisplayString(u'.', u','), QStringLiteral("0,00"));
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

TEST(Dates, SqlLiteralsAreMonthFirstScreenDatesDayFirstStoredTextIso)
{
    const QDate d(2016, 3, 15);
    EXPECT_EQ(dates::sqlLiteral(d), QStringLiteral("03.15.2016"));
    EXPECT_EQ(dates::display(d), QStringLiteral("15.03.16"));
    EXPECT_EQ(dates::monthFirstShort(QDate(2016, 3, 31)), QStringLiteral("03.31.16"));
    EXPECT_EQ(dates::isoText(QDate(2016, 1, 5)), QStringLiteral("2016-01-05"));
    // Each reader against texts it takes and texts it refuses (an invalid date).
    const struct {
        QDate (*read)(const QString&);
        const char* text;
        QDate expected;
    } reads[] = {
        { dates::parseDayFirst, "31.12.2015", { 2015, 12, 31 } }, { dates::parseDayFirst, "31.12.15", {} },
        { dates::parseMonthFirst, "1.1.2016", { 2016, 1, 1 } }, { dates::parseMonthFirst, "03.15.2016", d },
        { dates::parseMonthFirst, "15.03.2016", {} }, { dates::fromIsoText, "2016-03-15", d },
        { dates::fromIsoText, "2016-12-31 00:00:00", { 2016, 12, 31 } },
        { dates::fromIsoText, "2016-12-31T10:00:00.000", { 2016, 12, 31 } }, { dates::fromIsoText, "2016-02-30", {} },
        { dates::fromIsoText, "2016-1a-01", {} }, { dates::fromIsoText, "03.15.2016", {} },
    };
    for (const auto& r : reads)
        EXPECT_EQ(r.read(QString::fromLatin1(r.text)), r.expected) << r.text;
}

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
