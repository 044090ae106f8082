#include "session/Money.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace knjige
{

double roundingAllowance(double value)
{
    return std::max(1e-9, std::abs(value) * 4 * std::numeric_limits<double>::epsilon());
}

qint64 roundHalfEven(double value)
{
    const double floor = std::floor(value);
    const double diff = value - floor;
    if (std::abs(diff - 0.5) <= roundingAllowance(value)) {
        const qint64 f = qint64(floor);
        return (f % 2 == 0) ? f : f + 1;
    }
    return qint64(std::llround(value));
}

Money Money::fromDouble(double value)
{
    // -2^63 is the lowest amount and 2^63 the first double past the range; NaN fails
    // the test too.
    const double scaled = value * Scale;
    if (!(scaled >= -9223372036854775808.0 && scaled < 9223372036854775808.0))
        return outOfRange();
    return Money::fromUnits(roundHalfEven(scaled));
}

double Money::toDouble() const
{
    return isOutOfRange() ? std::numeric_limits<double>::quiet_NaN() : double(m_units) / Scale;
}

std::optional<Money> Money::parse(const QString& text)
{
    QString t = text.trimmed();
    if (t.isEmpty())
        return std::nullopt;
    bool negative = false;
    if (t.startsWith(u'-') || t.startsWith(u'+')) {
        negative = t.startsWith(u'-');
        t = t.mid(1).trimmed();
    }
    t.replace(u',', u'.');
    const qsizetype point = t.indexOf(u'.');
    if (point != t.lastIndexOf(u'.'))
        return std::nullopt;
    const QString whole = point < 0 ? t : t.left(point);
    QString frac = point < 0 ? QString() : t.mid(point + 1);
    if (whole.isEmpty() && frac.isEmpty())
        return std::nullopt;
    for (QChar c : whole + frac)
        if (!c.isDigit())
            return std::nullopt;
    // The magnitude in ten-thousandths, checked against the range of its sign: 15
    // whole digits reach 922,337,203,685,477.
    const QString digits
        = whole.mid(std::max<qsizetype>(0, whole.indexOf(QRegularExpression(QStringLiteral("[1-9]")))));
    if (digits.size() > 15)
        return std::nullopt;
    quint64 units = (whole.isEmpty() ? 0 : whole.toULongLong()) * Scale;
    // Digits past the fourth decimal round half to even, like any other conversion.
    const QString kept = frac.left(4).leftJustified(4, u'0');
    units += kept.toULongLong();
    if (frac.size() > 4) {
        const QString rest = frac.mid(4);
        const bool aboveHalf
            = rest[0] > u'5' || (rest[0] == u'5' && rest.mid(1).contains(QRegularExpression(QStringLiteral("[1-9]"))));
        const bool exactlyHalf = rest[0] == u'5' && !rest.mid(1).contains(QRegularExpression(QStringLiteral("[1-9]")));
        if (aboveHalf || (exactlyHalf && units % 2 != 0))
            ++units;
    }
    if (units > (negative ? quint64(Max) + 1 : quint64(Max)))
        return std::nullopt;
    return Money(negative ? qint64(0 - units) : qint64(units));
}

QString Money::toString() const
{
    if (isOutOfRange())
        return QString::fromUtf8(OutOfRangeText);
    const quint64 a = magnitude(m_units);
    return QStringLiteral("%1%2.%3")
        .arg(m_units < 0 ? QStringLiteral("-") : QString())
        .arg(a / Scale)
        .arg(a % Scale, 4, 10, QLatin1Char('0'));
}

QString Money::toPlainString() const
{
    QString s = toString();
    while (s.endsWith(u'0'))
        s.chop(1);
    if (s.endsWith(u'.'))
        s.chop(1);
    return s;
}

Money Money::rounded(int decimals) const
{
    decimals = std::clamp(decimals, 0, 4);
    if (isOutOfRange())
        return *this;
    qint64 step = 1;
    for (int i = decimals; i < 4; ++i)
        step *= 10;
    if (step == 1)
        return *this;
    const qint64 q = m_units / step;
    const qint64 r = m_units % step;
    const qint64 twice = 2 * (r < 0 ? -r : r);
    qint64 result = q;
    if (twice > step || (twice == step && q % 2 != 0))
        result += (m_units < 0 ? -1 : 1);
    return Money::fromUnits(result) * step;
}

QString Money::toDisplayString(QChar groupSeparator, QChar decimalMark) const
{
    if (isOutOfRange())
        return QString::fromUtf8(OutOfRangeText);
    // Half away from zero on the magnitude.
    const quint64 m = magnitude(m_units);
    const quint64 a = (m / 100 + (m % 100 >= 50 ? 1 : 0));
    const bool negative = m_units < 0 && a != 0;
    // Written from the right into one buffer: a printed book shows hundreds of
    // thousands of amounts. Twenty digits, six marks between their groups, the
    // decimal mark, two decimals and a sign fit in 30.
    char16_t text[32];
    qsizetype at = std::size(text);
    text[--at] = char16_t(u'0' + a % 10);
    text[--at] = char16_t(u'0' + a / 10 % 10);
    text[--at] = decimalMark.unicode();
    quint64 whole = a / 100;
    for (int digits = 0; digits == 0 || whole > 0; ++digits, whole /= 10) {
        if (digits > 0 && digits % 3 == 0)
            text[--at] = groupSeparator.unicode();
        text[--at] = char16_t(u'0' + whole % 10);
    }
    if (negative)
        text[--at] = u'-';
    return QString(reinterpret_cast<const QChar*>(text + at), std::size(text) - at);
}

Money Money::fraction(qint64 numerator, qint64 denominator) const
{
    // units * n / d as (q * d + r) * n / d = q * n + r * n / d: q * n is below |units|
    // and r * n below d * d, so nothing overflows.
    if (isOutOfRange())
        return *this;
    const quint64 m = magnitude(m_units);
    const quint64 n = quint64(numerator);
    const quint64 d = quint64(denominator);
    const quint64 q = m / d;
    const quint64 rest = (m % d) * n;
    quint64 result = q * n + rest / d;
    const quint64 twice = 2 * (rest % d);
    if (twice > d || (twice == d && result % 2 != 0))
        ++result;
    return Money(m_units < 0 ? qint64(0 - result) : qint64(result));
}

Money Money::dividedBy(double divisor) const
{
    return fromDouble(toDouble() / divisor);
}

} // namespace knjige
