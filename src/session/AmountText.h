#pragma once

#include "session/Money.h"

#include <QLocale>
#include <QString>

namespace knjige
{

// How the workstation writes numbers: Bosnian "1.234,56", English "1,234.56".
struct NumberConventions {
    QChar group = u',';
    QChar decimal = u'.';
    static NumberConventions of(const QLocale& locale);
};

// What a number box takes: at most `wholeDigits` digits before the decimal mark
// (leading zeros not counted) and `decimals` after it; 0 decimals means whole
// numbers only.
struct AmountLimits {
    int wholeDigits = 12;
    int decimals = 2;
};

// A text read as an amount. Exact: the text says exactly `value`. Incomplete: more
// typing can make it exact ("1.2" on the way to "1.234" in the Bosnian form, a sign
// alone), but as it stands it says no number. Refused: no further typing can make it
// exact, or it breaks the limits. `problem` tells the operator why, for both.
struct AmountReading {
    enum class State { Exact, Incomplete, Refused };
    State state = State::Exact;
    Money value;
    QString problem;
    bool exact() const { return state == State::Exact; }
};

// Reads text written the workstation's way: an optional sign, digits grouped by
// thousands with the group separator or not grouped at all, and the decimal mark.
// The other convention's marks are never guessed at: in the Bosnian form "1,234.56"
// is refused, and "12.500" is twelve thousand five hundred. An empty text is 0.
AmountReading readAmount(const QString& text, const NumberConventions& conventions, const AmountLimits& limits);

// The grid's display forms: "#,##0.00" for amounts (half away from zero) and "#,##0"
// for whole numbers, with the locale's separators.
QString amountDisplay(Money value, const QLocale& locale);
QString wholeDisplay(qint64 value, const QLocale& locale);
// The form a box shows while it is being edited: the value with the local decimal
// mark, no grouping, no trailing zeros ("-1234,5").
QString amountEditText(Money value, const NumberConventions& conventions);
// The limits a value needs: its digits before the point and its decimals.
AmountLimits limitsOf(Money value);

} // namespace knjige
