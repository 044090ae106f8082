#pragma once

#include "session/AmountText.h"
#include "session/Money.h"
#include "session/Workstation.h"

#include <QLineEdit>
#include <limits>

namespace knjige::editors
{

// The number box of the editors (the `ub` controls). It follows the workstation's
// number conventions (its locale): without the focus it shows what the grid shows,
// "#,##0.00" (or "#,##0" for a whole-number box); with the focus it holds the plain
// value with the local decimal mark and takes typed or pasted numbers in the local
// form, grouped or not. The numeric keypad's decimal key types the local mark.
//
// Nothing is read by guessing: a keystroke or a paste that no further typing could
// make a number is refused with a sign (a beep, a red box and the reason as a tip),
// and text left incomplete ("1.2" in the Bosnian form) stays as typed, marked, and is
// refused on save (isReadable). An amount takes at most 12 whole digits and two
// decimals; a value the program sets keeps the digits it has. A whole-number box
// takes no decimal mark and nothing outside its range (32-bit by default).
class MoneyBox : public QLineEdit
{
    Q_OBJECT
public:
    explicit MoneyBox(QWidget* parent = nullptr, bool wholeNumbers = false);

    // The last value the text said exactly; an empty box is 0.
    Money value() const { return m_value; }
    void setValue(Money value);
    // The value as an integer (its whole part; a whole-number box holds no other).
    qint64 integerValue() const;

    bool isWholeNumber() const { return m_whole; }
    // The range of a whole-number box (both ends included).
    void setRange(qint64 minimum, qint64 maximum);
    qint64 minimum() const { return m_min; }
    qint64 maximum() const { return m_max; }
    // False for a whole-number box whose value was set (not typed) with a fraction
    // or out of range: such a value is refused on save, never narrowed.
    bool inRange() const;
    // Whether the text says exactly one number (what value() returns).
    bool isReadable() const;
    // Why the last keystroke or paste was refused, or why the text cannot be read;
    // empty while all is well.
    QString problem() const { return m_problem; }
    // Whether the operator has typed or pasted into the box since the program last
    // set its value (even the same number again).
    bool typedByPerson() const { return m_typed; }

    NumberConventions conventions() const { return NumberConventions::of(numberLocale()); }
    // The box's locale as the component writes numbers in it (Bosnian for C).
    QLocale numberLocale() const;
    // What the box takes now: the base limits widened to what the set value needs.
    AmountLimits limits() const;
    // Remembers why the validator refused a text, for the sign that follows.
    void noteRefusal(const QString& problem) const { m_refusal = problem; }

signals:
    // The value changed, by typing or by setValue.
    void valueChanged();
    // The person moved the focus away from the box (not a window switch or a popup).
    void left();

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void onTextChanged(const QString& text);
    void onRejected();
    void showValue();
    void mark(const QString& problem);
    void unmark();
    QString editText() const;

    Money m_value;
    bool m_typed = false;
    AmountLimits m_needed { 0, 0 };
    bool m_whole = false;
    qint64 m_min = std::numeric_limits<qint32>::min();
    qint64 m_max = std::numeric_limits<qint32>::max();
    bool m_updating = false;
    QString m_problem;
    mutable QString m_refusal;
};

// Makes a code field (a partner's or a shop's number) take digits only, read as they
// stand whatever the workstation's grouping; a refused keystroke beeps and says why.
void makeCodeField(QLineEdit* edit);

} // namespace knjige::editors
