#include "editors/widgets/MoneyBox.h"

#include <QApplication>
#include <QFocusEvent>
#include <QIntValidator>
#include <QKeyEvent>
#include <QTimer>
#include <QToolTip>
#include <QValidator>
#include <algorithm>

namespace knjige::editors
{

namespace
{

// The most whole digits any box reads: the money type holds fifteen.
constexpr int kMostWholeDigits = 14;

// Lets through what is or may become a number of the box; anything else is refused,
// and the box shows why (QLineEdit::inputRejected).
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
        const AmountReading reading = readAmount(input, m_box->conventions(), m_box->limits());
        switch (reading.state) {
        case AmountReading::State::Incomplete:
            return Intermediate;
        case AmountReading::State::Refused:
            // A number with decimals typed into a whole-number box stays in view, marked,
            // so that "0,5" never turns into "05" a keystroke later.
            if (m_box->isWholeNumber() && readAmount(input, m_box->conventions(), wholeWithDecimals()).exact())
                return Intermediate;
            m_box->noteRefusal(reading.problem);
            return Invalid;
        case AmountReading::State::Exact:
            break;
        }
        if (!m_box->isWholeNumber())
            return Acceptable;
        const qint64 whole = reading.value.units() / Money::Scale;
        if (whole >= m_box->minimum() && whole <= m_box->maximum())
            return Acceptable;
        m_box->noteRefusal(QStringLiteral("Broj mora biti između %1 i %2.")
                               .arg(wholeDisplay(m_box->minimum(), m_box->numberLocale()),
                                   wholeDisplay(m_box->maximum(), m_box->numberLocale())));
        return Invalid;
    }

private:
    AmountLimits wholeWithDecimals() const { return { m_box->limits().wholeDigits, 4 }; }

    MoneyBox* m_box;
};

} // namespace

MoneyBox::MoneyBox(QWidget* parent, bool wholeNumbers)
    : QLineEdit(parent)
    , m_whole(wholeNumbers)
{
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setValidator(new NumberValidator(this));
    connect(this, &QLineEdit::textChanged, this, &MoneyBox::onTextChanged);
    connect(this, &QLineEdit::inputRejected, this, &MoneyBox::onRejected);
    showValue();
}

AmountLimits MoneyBox::limits() const
{
    const AmountLimits base = m_whole ? AmountLimits { kMostWholeDigits, 0 } : AmountLimits {};
    return { std::min(kMostWholeDigits, std::max(base.wholeDigits, m_needed.wholeDigits)),
        std::max(base.decimals, m_needed.decimals) };
}

void MoneyBox::setValue(Money value)
{
    const bool changed = value != m_value;
    m_value = value;
    m_typed = false;
    m_needed = limitsOf(value);
    unmark();
    showValue();
    if (changed)
        emit valueChanged();
}

qint64 MoneyBox::integerValue() const
{
    return m_value.units() / Money::Scale;
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
    return m_value.units() % Money::Scale == 0 && whole >= m_min && whole <= m_max;
}

bool MoneyBox::isReadable() const
{
    return readAmount(text(), conventions(), limits()).exact();
}

QLocale MoneyBox::numberLocale() const
{
    return componentLocale(locale());
}

QString MoneyBox::editText() const
{
    return amountEditText(m_value, conventions());
}

void MoneyBox::showValue()
{
    m_updating = true;
    if (hasFocus())
        setText(editText());
    else if (!m_whole)
        setText(amountDisplay(m_value, numberLocale()));
    else if (m_value.units() % Money::Scale == 0)
        setText(wholeDisplay(integerValue(), numberLocale()));
    else
        setText(editText()); // a fraction in a whole-number box is shown, not hidden
    m_updating = false;
}

void MoneyBox::onTextChanged(const QString& text)
{
    if (m_updating)
        return;
    m_typed = true;
    const AmountReading reading = readAmount(text, conventions(), limits());
    if (reading.state == AmountReading::State::Refused)
        mark(reading.problem);
    if (!reading.exact())
        return;
    unmark();
    if (reading.value != m_value) {
        m_value = reading.value;
        emit valueChanged();
    }
}

void MoneyBox::onRejected()
{
    if (m_updating || m_refusal.isEmpty())
        return;
    QApplication::beep();
    mark(m_refusal);
}

void MoneyBox::mark(const QString& problem)
{
    m_problem = problem;
    setToolTip(problem);
    QPalette warning = palette();
    warning.setColor(QPalette::Base, QColor(255, 214, 214));
    setPalette(warning);
    if (isVisible())
        QToolTip::showText(mapToGlobal(rect().bottomLeft()), problem, this);
}

void MoneyBox::unmark()
{
    if (m_problem.isEmpty())
        return;
    m_problem.clear();
    setToolTip(QString());
    setPalette(QPalette());
    if (QToolTip::isVisible())
        QToolTip::hideText();
}

void MoneyBox::focusInEvent(QFocusEvent* event)
{
    QLineEdit::focusInEvent(event);
    if (isReadable())
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
    const AmountReading reading = readAmount(text(), conventions(), limits());
    // Text that says no number stays as typed, for the operator to finish.
    if (reading.exact())
        showValue();
    else
        mark(reading.problem);
    const Qt::FocusReason reason = event->reason();
    if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
        emit left();
}

void MoneyBox::keyPressEvent(QKeyEvent* event)
{
    // The keypad's decimal key gives a point or a comma by keyboard layout; in the box
    // it is always the local decimal mark.
    const bool keypadMark = (event->modifiers() & Qt::KeypadModifier)
        && (event->key() == Qt::Key_Period || event->key() == Qt::Key_Comma);
    if (keypadMark && !isReadOnly()) {
        QKeyEvent local(QEvent::KeyPress, event->key(), event->modifiers(), QString(conventions().decimal));
        QLineEdit::keyPressEvent(&local);
        event->setAccepted(local.isAccepted());
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void MoneyBox::changeEvent(QEvent* event)
{
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::LocaleChange && !hasFocus() && m_problem.isEmpty())
        showValue();
}

void makeCodeField(QLineEdit* edit)
{
    auto* digits = new QIntValidator(0, std::numeric_limits<qint32>::max(), edit);
    QLocale plain = QLocale::c();
    plain.setNumberOptions(QLocale::RejectGroupSeparator);
    digits->setLocale(plain);
    edit->setValidator(digits);
    QObject::connect(edit, &QLineEdit::inputRejected, edit, [edit] {
        QApplication::beep();
        QToolTip::showText(edit->mapToGlobal(edit->rect().bottomLeft()),
            QStringLiteral("Šifra je cijeli broj od 0 do 2147483647, upisan samo ciframa."), edit);
    });
}

} // namespace knjige::editors
