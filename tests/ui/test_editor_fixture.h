#pragma once

#include "editors/widgets/EditorFactory.h"
#include "editors/widgets/RecordEditor.h"
#include "test_browser_fixture.h"

#include <functional>

namespace knjige::test
{

// One try of a person at an editor: the controls set, "name=value;..." (a MoneyBox takes
// an amount, a date box an ISO date, a list "#index" or an item's text, a text box its
// text, typed and left with Tab when the value starts with '~'), then cmdSpremi clicked;
// the message that follows (none when empty) with its title and icon, and the control
// that has the focus afterwards (not checked when empty).
struct Try {
    QString set {}, message {}, focus {}, title {};
    Icon icon = Icon::Exclamation;
};

// Types `text` over the whole of `box` as a person does; `leave` then tabs away.
void type(QLineEdit* box, const QString& text, bool leave = false);
// Sets controls of `editor` as Try::set describes.
void set(editors::RecordEditor& editor, const QString& assignments);
// What the named controls ("name;name...") show, joined by '|': an amount in its plain
// form, a date in ISO form, a list's current text.
QString values(editors::RecordEditor& editor, const QString& names);

// The browser's fixture with two partners (1 "Prodavnica Centar", 2 "Prodavnica Zapad")
// for the editors to find.
class EditorTest : public BrowserTest
{
protected:
    void SetUp() override;

    // Shows the editor through the seam; `inside` runs while it is "on screen". The
    // dialog is shown (offscreen) so that focus and keys behave as for a person.
    void run(editors::RecordEditor& editor, const std::function<void()>& inside);
    // The editor of `book` in `mode` on entry `redniBroj`, as the browser prepares it.
    template <typename T = editors::RecordEditor>
    static std::unique_ptr<T> editor(int book, int mode, qint32 redniBroj = 0)
    {
        auto e = std::unique_ptr<T>(dynamic_cast<T*>(editors::createEditor(book).release()));
        EXPECT_TRUE(e) << book;
        e->setTipRada(mode);
        e->sRedniBroj = redniBroj;
        return e;
    }
    // Makes each try in turn, checking what follows it.
    void save(editors::RecordEditor& editor, const QList<Try>& tries);
    // Statements in T-SQL as the system writes it; a failure fails the test.
    db::ResultSet rows(const QString& sql) { return db->query(sql); }
    void exec(const QString& sql) { db->exec(sql); }
    int count(const QString& table) { return db->count(table); }
    // The texts of the messages shown so far, and the last one.
    QStringList texts() { return script->texts(); }
    Message lastMessage() { return script->messages.isEmpty() ? Message {} : script->messages.last(); }
    // The objectName of the control that has (or will have, once shown) the focus.
    static QString focusOf(editors::RecordEditor& editor);
};

} // namespace knjige::test
