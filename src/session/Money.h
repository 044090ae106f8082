#pragma once

#include <QMetaType>
#include <QString>
#include <QtGlobal>
#include <compare>
#include <limits>
#include <optional>

namespace knjige
{

// A currency amount: a signed count of ten-thousandths, as the database's money type
// keeps it. Every conversion from a wider or fractional value rounds half to even
// (banker's rounding), so the same input always gives the same four decimals.
//
// Every count of ten-thousandths a signed 64-bit number holds is an amount, the lowest
// (-922,337,203,685,477.5808) included, as in the server's money type. Arithmetic never
// wraps around: a sum, difference or product that leaves the range gives the
// out-of-range amount, a mark of its own beside the count, as the server refuses such
// a sum with an arithmetic overflow error. It stays out of range through further
// arithmetic and shows as OutOfRangeText, so a total too large to hold is never shown
// as a wrong amount.
class Money
{
public:
    static constexpr qint64 Scale = 10000;
    static constexpr const char* OutOfRangeText = "prekoračenje";

    constexpr Money() = default;
    static constexpr Money fromUnits(qint64 tenThousandths) { return Money(tenThousandths); }
    static constexpr Money fromWhole(qint64 whole) { return Money::fromUnits(whole) * Scale; }
    static constexpr Money outOfRange()
    {
        Money m;
        m.m_outOfRange = true;
        return m;
    }
    // Rounds half to even at the fourth decimal; out of range beyond the range or NaN.
    static Money fromDouble(double value);
    // Accepts "1234.5", "-0,25", "1.234,56" is not accepted: one decimal mark, point or
    // comma, no grouping. Empty or malformed text, or an amount past the range, gives
    // nothing.
    static std::optional<Money> parse(const QString& text);

    constexpr qint64 units() const { return m_units; }
    constexpr bool isOutOfRange() const { return m_outOfRange; }
    // NaN when out of range.
    double toDouble() const;
    constexpr bool isZero() const { return m_units == 0; }
    constexpr bool isNegative() const { return m_units < 0; }

    // Plain text with a point and exactly four decimals: "-1234.5000".
    QString toString() const;
    // Plain text with a point, trailing zeros of the decimals dropped: "1234.5", "7".
    QString toPlainString() const;
    // Display form "#,##0.00": grouping by thousands, two decimals rounded half away
    // from zero, as SQL's ROUND and the grid's format round (0.125 shows 0.13).
    QString toDisplayString(QChar groupSeparator = u',', QChar decimalMark = u'.') const;

    // Rounds half to even to the given number of decimals (0 to 4).
    Money rounded(int decimals) const;

    constexpr Money operator-() const { return isOutOfRange() || m_units == Min ? outOfRange() : Money(-m_units); }
    constexpr Money operator+(Money o) const
    {
        const qint64 a = m_units, b = o.m_units;
        if (isOutOfRange() || o.isOutOfRange() || (b > 0 && a > Max - b) || (b < 0 && a < Min - b))
            return outOfRange();
        return Money(a + b);
    }
    constexpr Money operator-(Money o) const
    {
        const qint64 a = m_units, b = o.m_units;
        if (isOutOfRange() || o.isOutOfRange() || (b < 0 && a > Max + b) || (b > 0 && a < Min + b))
            return outOfRange();
        return Money(a - b);
    }
    constexpr Money& operator+=(Money o) { return *this = *this + o; }
    constexpr Money& operator-=(Money o) { return *this = *this - o; }
    constexpr Money operator*(qint64 factor) const
    {
        if (isOutOfRange())
            return outOfRange();
        if (m_units == 0 || factor == 0)
            return Money();
        // On magnitudes: the negative side holds one count more than the positive.
        const bool negative = (m_units < 0) != (factor < 0);
        const quint64 a = magnitude(m_units), f = magnitude(factor);
        const quint64 limit = negative ? quint64(Max) + 1 : quint64(Max);
        if (a > limit / f)
            return outOfRange();
        const quint64 product = a * f;
        return Money(negative ? qint64(0 - product) : qint64(product));
    }
    // The exact share numerator/denominator of the amount, rounded half to even at the
    // fourth decimal; never overflows. Requires 0 <= numerator <= denominator < 2^31.
    Money fraction(qint64 numerator, qint64 denominator) const;
    // Divides as a floating value and rounds back to four decimals, as the currency
    // type does when a fraction is assigned to it.
    Money dividedBy(double divisor) const;

    constexpr bool operator==(const Money&) const = default;
    // The out-of-range amount orders below every amount.
    constexpr std::strong_ordering operator<=>(const Money& o) const
    {
        if (m_outOfRange != o.m_outOfRange)
            return m_outOfRange ? std::strong_ordering::less : std::strong_ordering::greater;
        return m_units <=> o.m_units;
    }

private:
    static constexpr qint64 Max = std::numeric_limits<qint64>::max();
    static constexpr qint64 Min = std::numeric_limits<qint64>::min();

    constexpr explicit Money(qint64 units)
        : m_units(units)
    {
    }
    static constexpr quint64 magnitude(qint64 v) { return v < 0 ? 0 - quint64(v) : quint64(v); }
    qint64 m_units = 0; // 0 when out of range
    bool m_outOfRange = false;
};

// Rounds half to even to the nearest integer; the rounding of every value that
// becomes currency. A value within roundingAllowance(value) of a half counts as the
// half: decimal input such as 1.45 lands a hair off it in binary.
qint64 roundHalfEven(double value);
double roundingAllowance(double value);

} // namespace knjige

Q_DECLARE_METATYPE(knjige::Money)
