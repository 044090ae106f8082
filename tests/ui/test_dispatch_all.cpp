#include "books/BookKind.h"
#include "browser/widgets/BookGrid.h"
#include "editors/widgets/RecordEditor.h"
#include "test_browser_fixture.h"

#include <QTest>

using namespace knjige;
using namespace knjige::test;

namespace
{

class EveryBook : public BrowserTest, public ::testing::WithParamInterface<int>
{
};

std::vector<int> everyBook()
{
    std::vector<int> out;
    for (const BookKind& b : allBooks())
        out.push_back(b.code);
    return out;
}

} // namespace

// Copy, change and delete of one entry through the browser's keys, in every book: each
// confirmed editor writes exactly one row and the list follows.
TEST_P(EveryBook, CopyChangeAndDeleteFromTheBrowser)
{
    const int kind = GetParam();
    const QString table = findBook(kind)->table;
    addCompany();
    add(kind, 1);
    auto w = open(kind);
    ASSERT_EQ(w->rsStavke().rowCount(), 1);
    QList<int> modes;
    QStringList problems;
    script->onDialog = [&](QDialog& d) -> int {
        auto* e = dynamic_cast<RecordEditor*>(&d);
        if (!e || e->TipRada() == 3)
            return QDialog::Rejected;
        modes << e->TipRada();
        d.show();
        if (e->TipRada() == 2)
            e->dpDatum->setDate(QDate(2016, 7, 1));
        const int before = script->messages.size();
        e->cmdSpremi->click();
        for (int i = before; i < script->messages.size(); ++i)
            if (script->messages[i].title != "Napomena")
                problems << script->messages[i].text;
        d.hide();
        return d.result();
    };
    w->postaviTrenutniRed(0);
    QTest::keyClick(&w->grid(), Qt::Key_F4);
    ASSERT_EQ(db->count(table), 2) << problems.join(u'|').toStdString();
    ASSERT_EQ(w->rsStavke().rowCount(), 2);
    EXPECT_EQ(w->trenutniRBroj(), 2);

    QTest::keyClick(&w->grid(), Qt::Key_Return);
    const ResultSet changed = db->query("SELECT RBroj FROM " + table + " WHERE Datum='07.01.2016'");
    ASSERT_EQ(changed.rowCount(), 1) << problems.join(u'|').toStdString();
    EXPECT_EQ(changed.integer(0, 0), 2);

    QTest::keyClick(&w->grid(), Qt::Key_Delete);
    EXPECT_EQ(db->count(table), 1) << problems.join(u'|').toStdString();
    EXPECT_EQ(w->rsStavke().rowCount(), 1);
    EXPECT_EQ(modes, (QList<int> { 1, 2, 4 }));
    EXPECT_TRUE(problems.isEmpty()) << problems.join(u'|').toStdString();
}

INSTANTIATE_TEST_SUITE_P(Dispatch, EveryBook, ::testing::ValuesIn(everyBook()),
    [](const ::testing::TestParamInfo<int>& info) { return std::to_string(info.param); });
