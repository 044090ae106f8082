#include "test_editor_fixture.h"

#include "editors/widgets/MoneyBox.h"
#include "session/Session.h"

#include <QApplication>
#include <QTest>

namespace knjige::test
{

void EditorTest::SetUp()
{
    BrowserTest::SetUp();
    addPartner(1, "Prodavnica Centar");
    addPartner(2, "Prodavnica Zapad");
}

void EditorTest::run(editors::RecordEditor& editor, const std::function<void()>& inside)
{
    script->onDialog = [&](QDialog& d) {
        d.show();
        QApplication::setActiveWindow(&d);
        inside();
        const int result = d.result();
        d.hide();
        return result;
    };
    editor.Prikaži(1);
    script->onDialog = nullptr;
}

void type(QLineEdit* box, const QString& text, bool leave)
{
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, text);
    if (leave)
        QTest::keyClick(box, Qt::Key_Tab);
}

void set(editors::RecordEditor& editor, const QString& assignments)
{
    for (const QString& assignment : assignments.split(u';', Qt::SkipEmptyParts)) {
        const QString name = assignment.section(u'=', 0, 0);
        const QString value = assignment.section(u'=', 1);
        QWidget* control = editor.control(name);
        auto* text = qobject_cast<QLineEdit*>(control);
        if (text && value.startsWith(u'~')) {
            type(text, value.mid(1), true);
        } else if (auto* box = qobject_cast<editors::MoneyBox*>(control)) {
            const auto amount = Money::parse(value);
            ASSERT_TRUE(amount) << value.toStdString();
            box->setValue(*amount);
        } else if (auto* date = qobject_cast<QDateEdit*>(control)) {
            date->setDate(QDate::fromString(value, Qt::ISODate));
        } else if (auto* list = qobject_cast<QComboBox*>(control)) {
            if (value.startsWith(u'#'))
                list->setCurrentIndex(value.mid(1).toInt());
            else
                list->setCurrentText(value);
        } else if (text) {
            text->setText(value);
        } else {
            ADD_FAILURE() << "no control " << name.toStdString();
        }
    }
}

QString values(editors::RecordEditor& editor, const QString& names)
{
    QStringList out;
    for (const QString& name : names.split(u';')) {
        QWidget* control = editor.control(name);
        if (auto* box = qobject_cast<editors::MoneyBox*>(control))
            out << box->value().toPlainString();
        else if (auto* date = qobject_cast<QDateEdit*>(control))
            out << date->date().toString(Qt::ISODate);
        else if (auto* list = qobject_cast<QComboBox*>(control))
            out << list->currentText();
        else if (auto* text = qobject_cast<QLineEdit*>(control))
            out << text->text();
        else if (auto* label = qobject_cast<QLabel*>(control))
            out << label->text();
        else
            ADD_FAILURE() << "no control " << name.toStdString();
    }
    return out.join(u'|');
}

void EditorTest::save(editors::RecordEditor& editor, const QList<Try>& tries)
{
    for (const Try& t : tries) {
        SCOPED_TRACE(t.set.toStdString());
        set(editor, t.set);
        const auto before = script->messages.size();
        editor.cmdSpremi->click();
        ASSERT_EQ(script->messages.size(), before + (t.message.isEmpty() ? 0 : 1)) << texts().join(u'|').toStdString();
        if (!t.message.isEmpty()) {
            EXPECT_EQ(lastMessage().text, t.message);
            EXPECT_EQ(lastMessage().title, t.title);
            EXPECT_EQ(lastMessage().icon, t.icon);
        }
        if (!t.focus.isEmpty()) {
            EXPECT_EQ(focusOf(editor), t.focus);
        }
    }
}

QString EditorTest::focusOf(editors::RecordEditor& editor)
{
    QWidget* w = editor.focusWidget();
    return w ? w->objectName() : QString();
}

} // namespace knjige::test
