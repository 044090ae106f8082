#pragma once

#include "session/Money.h"

#include <QLineEdit>
#include <limits>

namespace knjige
{

// The number box of the editors (the `ub` controls): holds a currency value, takes a
// comma or a point as the decimal mark while it has the focus, and shows "#,##0.00"
// (or "#,##0" for a whole-number box) when it has not. Text that is not a number
// cannot be typed; an empty box is 0.
//
// A whole-number box stands for an integer column: a value whose rounded integer lies
// outside the column's range (32-bit by default) cannot be typed or pasted, so the
// save never has to narrow it.
class MoneyBox : public QLineEdit
{
    Q_OBJECT
public:
    explicit MoneyBox(QWidget* parent = nullptr, bool wholeNumbers = false);

    Money value() const { return m_value; }
    void setValue(Money value);
    // The value as an integer, rounded half to even (ordinal numbers, years of life).
    qint64 integerValue() const;

    bool isWholeNumber() const { return m_whole; }
    // The range of a whole-number box (both ends included).
    void setRange(qint64 minimum, qint64 maximum);
    qint64 minimum() const { return m_min; }
    qint64 maximum() const { return m_max; }
    // False only for a whole-number box whose value was set (not typed) out of range.
    bool inRange() const;

signals:
    // The value changed, by typing or by setValue.
    void valueChanged();
    // The person moved the focus away from the box (not a window switch or a popup).
    void left();

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void onTextChanged(const QString& text);
    void showValue();
    QString editText() const;

    Money m_value;
    bool m_whole = false;
    qint64 m_min = std::numeric_limits<qint32>::min();
    qint64 m_max = std::numeric_limits<qint32>::max();
    bool m_updating = false;
};

} // namespace knjige
