#include "session/widgets/DateTyping.h"

#include "session/Interaction.h"

#include <QCoreApplication>
#include <QDateTimeEdit>
#include <QEvent>
#include <QKeyEvent>
#include <QLineEdit>

namespace knjige
{

namespace
{

class SeparatorAfterFullPart final : public QObject
{
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::MouseButtonPress) {
            m_digitPart = -1;
        } else if (event->type() == QEvent::KeyPress) {
            const auto* edit = static_cast<QDateTimeEdit*>(watched);
            const QString text = static_cast<QKeyEvent*>(event)->text();
            // The digit before this key filled its part when the picker has moved on.
            const bool movedOn = m_digitPart >= 0 && edit->currentSectionIndex() > m_digitPart;
            const bool digit = text.size() == 1 && text[0].isDigit();
            m_digitPart = digit ? edit->currentSectionIndex() : -1;
            return movedOn && text.size() == 1 && QStringLiteral("./-,").contains(text[0]);
        }
        return false;
    }

private:
    int m_digitPart = -1;
};

// The day as the text gives it (the part before the first separator); -1 when it
// gives none.
int dayIn(const QString& text)
{
    bool ok = false;
    const int day = text.section(u'.', 0, 0).trimmed().toInt(&ok);
    return ok ? day : -1;
}

} // namespace

void typeDatesAsWritten(QDateTimeEdit* edit)
{
    edit->installEventFilter(new SeparatorAfterFullPart(edit));
}

DateField::DateField(QWidget* parent)
    : QDateEdit(parent)
{
    setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    connect(lineEdit(), &QLineEdit::textChanged, this, &DateField::markTyped);
    // A date set from elsewhere (the calendar, the entry read, a step with the arrow
    // keys) replaces the one typed.
    connect(this, &QDateEdit::dateChanged, this, [this] {
        if (m_typedDay != 0 && text() != m_validated) {
            m_typedDay = 0;
            markTyped();
        }
    });
}

// `typed` is the text as the person left it, `input` what Qt's picker made of it.
void DateField::restoreTypedDay(const QString& typed, QString& input) const
{
    const int typedDay = dayIn(typed);
    const int day = dayIn(input);
    if (typedDay != m_shownDay)
        m_typedDay = 0; // a day typed anew
    if (typedDay > day && day > 0)
        m_typedDay = typedDay;
    if (m_typedDay > 0 && day > 0 && m_typedDay != day) {
        const QString whole = QString::number(m_typedDay).rightJustified(2, u'0') + input.mid(input.indexOf(u'.'));
        if (QDate::fromString(whole, displayFormat()).isValid()) {
            input = whole;
            m_typedDay = 0;
        }
    }
    m_shownDay = dayIn(input);
    m_validated = input;
}

QValidator::State DateField::validate(QString& input, int& pos) const
{
    const QString typed = input;
    QValidator::State state = QDateEdit::validate(input, pos);
    if (state == QValidator::Invalid)
        return state;
    const QString cut = input;
    restoreTypedDay(typed, input);
    if (input != cut) {
        QString again = input;
        if (QDateEdit::validate(again, pos) == QValidator::Acceptable && again == input)
            state = QValidator::Acceptable;
    }
    return state;
}

void DateField::fixup(QString& input) const
{
    const QString typed = input;
    QDateEdit::fixup(input);
    restoreTypedDay(typed, input);
}

QString DateField::typedDateProblem() const
{
    if (m_typedDay == 0)
        return {};
    const QString typed = QString::number(m_typedDay).rightJustified(2, u'0') + text().mid(text().indexOf(u'.'));
    return QStringLiteral("Datum %1 ne postoji. Upišite ispravan datum.").arg(typed);
}

void DateField::markTyped()
{
    QPalette colours = palette();
    colours.setColor(QPalette::Text, m_typedDay == 0 ? QPalette().color(QPalette::Text) : QColor(0xc0, 0, 0));
    setPalette(colours);
}

bool typedDatesHold(QWidget* root)
{
    for (DateField* field : root->findChildren<DateField*>()) {
        const QString problem = field->typedDateProblem();
        if (problem.isEmpty() || !field->isVisibleTo(root))
            continue;
        warn(problem);
        field->setFocus();
        return false;
    }
    return true;
}

} // namespace knjige
