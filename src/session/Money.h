#pragma once

#include <QMetaType>
#include <QString>
#include <QtGlobal>

#include <compare>
#include <limits>
#include <optional>

namespace knjige {

// A currency amount: a signed count of ten-thousandths, as the database's money type
// keeps it. Every conversion from a wider or fractional value rounds half to even
// (banker's rounding), so the same input always gives the same four decimals.
//
// Arithmetic never wraps around: a sum, difference or product that leaves the range
// (about 922 trillion either way) gives the out-of-range amount, as the server refuses
// such a sum with an arithmetic overflow error. It stays out of range through further
// arithmetic and shows as OutOfRangeText, so a total too large to hold is never shown
// as a wrong amount.
class Money {
public:
    static constexpr qint64 Scale = 10000;
    static constexpr const char* OutOfRangeText = "prekoračenje";

    constexpr Money() = default;
    static constexpr Money fromUnits(qint64 tenThousandths) { return Money(tenThousandths); }
    static constexpr Money fromWhole(qint64 whole) { return Money::fromUnits(whole) * Scale; }
    static constexpr Money outOfRange() { return Money(OutOfRangeUnits); }
    // Rounds half to even at the fourth decimal; out of range beyond the range or NaN.
    static Money fromDouble(double value);
    // Accepts "1234.5", "-0,25", "1.234,56" is not accepted: one decimal mark, point or
    // comma, no grouping. Empty or malformed text gives nothing.
    static std::optional<Money> parse(const QString& text);

    constexpr qint64 units() const { return m_units; }
    constexpr bool isOutOfRange() const { return m_units == OutOfRangeUnits; }
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

    constexpr Money operator-() const { return isOutOfRange() ? *this : Money(-m_units); }
    constexpr Money operator+(Money o) const { return sum(m_units, o.m_units); }
    constexpr Money operator-(Money o) const { return *this + -o; }
    constexpr Money& operator+=(Money o) { return *this = *this + o; }
    constexpr Money& operator-=(Money o) { return *this = *this - o; }
    constexpr Money operator*(qint64 factor) const
    {
        if (isOutOfRange() || factor == OutOfRangeUnits)
            return outOfRange();
        const qint64 f = factor < 0 ? -factor : factor;
        const qint64 a = m_units < 0 ? -m_units : m_units;
        if (f != 0 && a > Max / f)
            return outOfRange();
        return Money(m_units * factor);
    }
    // The exact share numerator/denominator of the amount, rounded half to even at the
    // fourth decimal; never overflows. Requires 0 <= numerator <= denominator < 2^31.
    Money fraction(qint64 numerator, qint64 denominator) const;
    // Divides as a floating value and rounds back to four decimals, as the currency
    // type does when a fraction is assigned to it.
    Money dividedBy(double divisor) const;

    constexpr auto operator<=>(const Money&) const = default;

private:
    // The range is symmetric; the one count left over marks the out-of-range amount.
    static constexpr qint64 Max = std::numeric_limits<qint64>::max();
    static constexpr qint64 OutOfRangeUnits = std::numeric_limits<qint64>::min();

    constexpr explicit Money(qint64 units) : m_units(units) {}
    static constexpr Money sum(qint64 a, qint64 b)
    {
        if (a == OutOfRangeUnits || b == OutOfRangeUnits || (b > 0 && a > Max - b) || (b < 0 && a < -Max - b))
            return outOfRange();
        return Money(a + b);
    }
    qint64 m_units = 0;
};

// Rounds half to even to the nearest integer; the rounding of every value that
// becomes currency. A value within roundingAllowance(value) of a half counts as the
// half: decimal input such as 1.45 lands a hair off it in binary.
qint64 roundHalfEven(double value);
double roundingAllowance(double value);

} // namespace knjige

Q_DECLARE_METATYPE(knjige::Money)
