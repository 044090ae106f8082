#pragma once

#include "session/Money.h"

#include <QLineEdit>

namespace knjige
{

// The number box of the editors (the `ub` controls): holds a currency value, takes a
// comma or a point as the decimal mark while it has the focus, and shows "#,##0.00"
// (or "#,##0" for a whole-number box) when it has not. Text that is not a number
// cannot be typed; an empty box is 0.
class MoneyBox : public QLineEdit
{
    Q_OBJECT
public:
    explicit MoneyBox(QWidget* parent = nullptr, bool wholeNumbers = false);

    Money value() const { return m_value; }
    void setValue(Money value);
    // The value as an integer, rounded half to even (ordinal numbers, years of life).
    qint64 integerValue() const;

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
    bool m_updating = false;
};

} // namespace knjige
