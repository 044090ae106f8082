#include "session/AmountText.h"

#include <QStringList>

namespace knjige
{
namespace
{

QChar firstChar(const QString& s, QChar fallback)
{
    return s.isEmpty() ? fallback : s.front();
}

bool isMinus(QChar c)
{
    return c == u'-' || c == QChar(0x2212);
}

// "1.234,56" in the workstation's own marks, for the messages.
QString example(const NumberConventions& c)
{
    return QStringLiteral("1") + c.group + QStringLiteral("234") + c.decimal + QStringLiteral("56");
}

AmountReading refused(const QString& problem)
{
    return { AmountReading::State::Refused, Money(), problem };
}
AmountReading incomplete(const QString& problem)
{
    return { AmountReading::State::Incomplete, Money(), problem };
}

QString groupingProblem(const NumberConventions& c)
{
    return QStringLiteral("Hiljade se odvajaju znakom \"%1\" po tri cifre (npr. %2).").arg(c.group, example(c));
}

// Checks the groups of the whole part; `closed` when a decimal mark follows, so the
// last group can no longer grow. Returns the digits, or a reading that is not exact.
std::optional<AmountReading> checkGroups(const QStringList& groups, bool closed, const NumberConventions& c)
{
    if (groups.size() == 1)
        return std::nullopt;
    if (groups.front().isEmpty() || groups.front().size() > 3)
        return refused(groupingProblem(c));
    for (qsizetype i = 1; i + 1 < groups.size(); ++i)
        if (groups[i].size() != 3)
            return refused(groupingProblem(c));
    const qsizetype last = groups.back().size();
    if (last > 3 || (closed && last != 3))
        return refused(groupingProblem(c));
    if (last < 3)
        return incomplete(groupingProblem(c));
    return std::nullopt;
}

} // namespace

NumberConventions NumberConventions::of(const QLocale& locale)
{
    return { firstChar(locale.groupSeparator(), u','), firstChar(locale.decimalPoint(), u'.') };
}

AmountReading readAmount(const QString& text, const NumberConventions& c, const AmountLimits& limits)
{
    QString t = text.trimmed();
    bool negative = false;
    if (!t.isEmpty() && (isMinus(t.front()) || t.front() == u'+')) {
        negative = isMinus(t.front());
        t = t.mid(1);
    }
    if (t.isEmpty())
        return text.trimmed().isEmpty() ? AmountReading {}
                                        : incomplete(QStringLiteral("Iza predznaka nedostaje broj."));
    for (QChar ch : std::as_const(t)) {
        if (ch.isDigit() && ch.unicode() < 128)
            continue;
        if (ch == c.group || ch == c.decimal)
            continue;
        if (isMinus(ch) || ch == u'+')
            return refused(QStringLiteral("Predznak se piše samo ispred broja."));
        return refused(
            QStringLiteral("Znak \"%1\" nije dio broja. Broj se ovdje piše ovako: %2").arg(ch).arg(example(c)));
    }
    const qsizetype mark = t.indexOf(c.decimal);
    if (mark >= 0 && limits.decimals == 0)
        return refused(QStringLiteral("Ovdje se upisuje cijeli broj, bez decimala."));
    if (mark >= 0 && t.indexOf(c.decimal, mark + 1) >= 0)
        return refused(QStringLiteral("Decimalni znak \"%1\" piše se samo jednom.").arg(c.decimal));
    const QString wholeText = mark < 0 ? t : t.left(mark);
    const QString fraction = mark < 0 ? QString() : t.mid(mark + 1);
    if (fraction.contains(c.group))
        return refused(QStringLiteral("Iza decimalnog znaka \"%1\" ne dolazi znak \"%2\".").arg(c.decimal, c.group));
    if (fraction.size() > limits.decimals)
        return refused(QStringLiteral("Iznos se upisuje s najviše %1 decimale.").arg(limits.decimals));
    const QStringList groups = wholeText.split(c.group);
    if (auto problem = checkGroups(groups, mark >= 0, c))
        return *problem;
    QString digits = groups.join(QString());
    while (digits.size() > 1 && digits.front() == u'0')
        digits.remove(0, 1);
    if (digits.size() > limits.wholeDigits)
        return refused(QStringLiteral("Broj može imati najviše %1 cijelih mjesta.").arg(limits.wholeDigits));
    if (digits.isEmpty() && fraction.isEmpty())
        return incomplete(QStringLiteral("Nedostaje broj."));
    // At most 14 whole digits (the limits of any box), so the units fit easily.
    qint64 units = digits.isEmpty() ? 0 : digits.toLongLong() * Money::Scale;
    units += fraction.leftJustified(4, u'0').left(4).toLongLong();
    return { AmountReading::State::Exact, Money::fromUnits(negative ? -units : units), QString() };
}

QString amountDisplay(Money value, const QLocale& locale)
{
    const NumberConventions c = NumberConventions::of(locale);
    return value.toDisplayString(c.group, c.decimal);
}

QString wholeDisplay(qint64 value, const QLocale& locale)
{
    // Grouping is part of "#,##0" whatever the locale's own number options say.
    const QString digits = QString::number(value).remove(u'-');
    const QString separator = locale.groupSeparator();
    QString out;
    out.reserve(digits.size() + digits.size() / 3 + 1);
    if (value < 0)
        out += locale.negativeSign();
    for (qsizetype i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0)
            out += separator;
        out += digits[i];
    }
    return out;
}

QString amountEditText(Money value, const NumberConventions& c)
{
    QString plain = value.toPlainString();
    plain.replace(u'.', c.decimal);
    return plain;
}

AmountLimits limitsOf(Money value)
{
    const QString plain = value.toPlainString().remove(u'-');
    const qsizetype point = plain.indexOf(u'.');
    return { int(point < 0 ? plain.size() : point), int(point < 0 ? 0 : plain.size() - point - 1) };
}

} // namespace knjige
