#include "session/widgets/SelectWholeText.h"

#include <QAbstractSpinBox>
#include <QDateTimeEdit>
#include <QEvent>
#include <QLineEdit>
#include <QTimer>

namespace knjige
{

void SelektirajTekst(QLineEdit* field)
{
    if (field)
        field->setSelection(0, int(field->text().size()));
}

namespace
{

class SelectOnFocus final : public QObject
{
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::FocusIn) {
            // After the focus event the widget places its own cursor; select once it has.
            if (auto* edit = qobject_cast<QLineEdit*>(watched))
                QTimer::singleShot(0, edit, [edit] { SelektirajTekst(edit); });
            // A date picker refuses a digit typed over its whole text: its first part
            // is what typing replaces, and the separators lead on to the next parts.
            else if (auto* date = qobject_cast<QDateTimeEdit*>(watched))
                QTimer::singleShot(0, date, [date] { date->setSelectedSection(date->sectionAt(0)); });
            else if (auto* spin = qobject_cast<QAbstractSpinBox*>(watched))
                QTimer::singleShot(0, spin, [spin] { spin->selectAll(); });
        }
        return false;
    }
};

} // namespace

void selectWholeTextOnFocus(QWidget* root)
{
    auto* filter = new SelectOnFocus(root);
    for (QLineEdit* edit : root->findChildren<QLineEdit*>()) {
        // A spin box's inner line edit is served through the spin box itself.
        if (!qobject_cast<QAbstractSpinBox*>(edit->parentWidget()))
            edit->installEventFilter(filter);
    }
    for (QAbstractSpinBox* spin : root->findChildren<QAbstractSpinBox*>())
        spin->installEventFilter(filter);
}

} // namespace knjige
