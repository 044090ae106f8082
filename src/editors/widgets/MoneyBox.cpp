#include "editors/widgets/MoneyBox.h"

#include <QFocusEvent>
#include <QRegularExpressionValidator>
#include <QTimer>

namespace knjige
{

MoneyBox::MoneyBox(QWidget* parent, bool wholeNumbers)
    : QLineEdit(parent)
    , m_whole(wholeNumbers)
{
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // While focused the box holds plain digits; the grouped display form is set only
    // by showValue, which validators do not see.
    setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral(R"(^[-+]?\d{0,14}([.,]\d{0,4})?$)")), this));
    connect(this, &QLineEdit::textChanged, this, &MoneyBox::onTextChanged);
    showValue();
}

void MoneyBox::setValue(Money value)
{
    const bool changed = value != m_value;
    m_value = value;
    showValue();
    if (changed)
        emit valueChanged();
}

qint64 MoneyBox::integerValue() const
{
    return roundHalfEven(m_value.toDouble());
}

QString MoneyBox::editText() const
{
    if (m_value.isZero())
        return QStringLiteral("0");
    return m_whole ? QString::number(integerValue()) : m_value.toPlainString();
}

void MoneyBox::showValue()
{
    m_updating = true;
    if (hasFocus())
        setText(editText());
    else if (m_whole)
        setText(Money::fromWhole(integerValue()).toDisplayString().chopped(3));
    else
        setText(m_value.toDisplayString());
    m_updating = false;
}

void MoneyBox::onTextChanged(const QString& text)
{
    if (m_updating)
        return;
    const Money parsed = Money::parse(text).value_or(Money());
    if (parsed != m_value) {
        m_value = parsed;
        emit valueChanged();
    }
}

void MoneyBox::focusInEvent(QFocusEvent* event)
{
    QLineEdit::focusInEvent(event);
    showValue();
    // The whole text is selected on entry so that typing replaces it; deferred, since
    // a mouse click would otherwise move the cursor after the selection is made.
    QTimer::singleShot(0, this, [this] {
        if (hasFocus())
            selectAll();
    });
}

void MoneyBox::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    showValue();
    const Qt::FocusReason reason = event->reason();
    if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
        emit left();
}

} // namespace knjige
