#include "editors/widgets/MoneyBox.h"

#include <QFocusEvent>
#include <QRegularExpression>
#include <QTimer>
#include <QValidator>

namespace knjige
{

namespace
{

// Plain digits with an optional sign and decimal mark; for a whole-number box also a
// rounded value within the box's range.
class NumberValidator final : public QValidator
{
public:
    explicit NumberValidator(MoneyBox* box)
        : QValidator(box)
        , m_box(box)
    {
    }

    State validate(QString& input, int&) const override
    {
        static const QRegularExpression pattern(QStringLiteral(R"(^[-+]?\d{0,14}([.,]\d{0,4})?$)"));
        if (!pattern.match(input).hasMatch())
            return Invalid;
        if (!m_box->isWholeNumber())
            return Acceptable;
        const std::optional<Money> parsed = Money::parse(input);
        if (!parsed)
            return Intermediate;
        const qint64 whole = roundHalfEven(parsed->toDouble());
        return whole >= m_box->minimum() && whole <= m_box->maximum() ? Acceptable : Invalid;
    }

private:
    MoneyBox* m_box;
};

} // namespace

MoneyBox::MoneyBox(QWidget* parent, bool wholeNumbers)
    : QLineEdit(parent)
    , m_whole(wholeNumbers)
{
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // While focused the box holds plain digits; the grouped display form is set only
    // by showValue, which validators do not see.
    setValidator(new NumberValidator(this));
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

void MoneyBox::setRange(qint64 minimum, qint64 maximum)
{
    m_min = minimum;
    m_max = maximum;
}

bool MoneyBox::inRange() const
{
    if (!m_whole)
        return true;
    const qint64 whole = integerValue();
    return whole >= m_min && whole <= m_max;
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
