#include "session/widgets/DateTyping.h"

#include <QDateTimeEdit>
#include <QEvent>
#include <QKeyEvent>

namespace knjige {

namespace {

class SeparatorAfterFullPart final : public QObject {
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

} // namespace

void typeDatesAsWritten(QDateTimeEdit* edit)
{
    edit->installEventFilter(new SeparatorAfterFullPart(edit));
}

} // namespace knjige
