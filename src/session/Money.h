#pragma once

#include <QMetaType>
#include <QString>
#include <QtGlobal>

#include <compare>
#include <optional>

namespace knjige {

// A currency amount: a signed count of ten-thousandths, as the database's money type
// keeps it. Every conversion from a wider or fractional value rounds half to even
// (banker's rounding), so the same input always gives the same four decimals.
class Money {
public:
    static constexpr qint64 Scale = 10000;

    constexpr Money() = default;
    static constexpr Money fromUnits(qint64 tenThousandths) { return Money(tenThousandths); }
    static constexpr Money fromWhole(qint64 whole) { return Money(whole * Scale); }
    // Rounds half to even at the fourth decimal.
    static Money fromDouble(double value);
    // Accepts "1234.5", "-0,25", "1.234,56" is not accepted: one decimal mark, point or
    // comma, no grouping. Empty or malformed text gives nothing.
    static std::optional<Money> parse(const QString& text);

    constexpr qint64 units() const { return m_units; }
    double toDouble() const { return double(m_units) / Scale; }
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

    constexpr Money operator-() const { return Money(-m_units); }
    constexpr Money operator+(Money o) const { return Money(m_units + o.m_units); }
    constexpr Money operator-(Money o) const { return Money(m_units - o.m_units); }
    constexpr Money& operator+=(Money o) { m_units += o.m_units; return *this; }
    constexpr Money& operator-=(Money o) { m_units -= o.m_units; return *this; }
    constexpr Money operator*(qint64 factor) const { return Money(m_units * factor); }
    // The exact share numerator/denominator of the amount, rounded half to even at the
    // fourth decimal; never overflows. Requires 0 <= numerator <= denominator < 2^31.
    Money fraction(qint64 numerator, qint64 denominator) const;
    // Divides as a floating value and rounds back to four decimals, as the currency
    // type does when a fraction is assigned to it.
    Money dividedBy(double divisor) const;

    constexpr auto operator<=>(const Money&) const = default;

private:
    constexpr explicit Money(qint64 units) : m_units(units) {}
    qint64 m_units = 0;
};

// Rounds half to even to the nearest integer; the rounding of every value that
// becomes currency. A value within roundingAllowance(value) of a half counts as the
// half: decimal input such as 1.45 lands a hair off it in binary.
qint64 roundHalfEven(double value);
double roundingAllowance(double value);

} // namespace knjige

Q_DECLARE_METATYPE(knjige::Money)
