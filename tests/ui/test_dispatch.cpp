// The browser hands its entries to the book's editor: new, change, copy, delete and
// bulk delete through the keys and menus, in every book, and the rows that follow.
#include "books/BookKind.h"
#include "browser/widgets/BookGrid.h"
#include "editors/widgets/MoneyBox.h"
#include "editors/widgets/RecordEditor.h"
#include "session/Clock.h"
#include "session/Session.h"
#include "test_browser_fixture.h"
#include "test_editor_fixture.h"

#include <QAction>
#include <QTest>

using namespace knjige;
using namespace knjige::test;

namespace
{

class Dispatch : public BrowserTest
{
protected:
    // Every editor (not the filter) runs `act`; the filter is cancelled.
    void onEditor(std::function<void(editors::RecordEditor&)> act)
    {
        script->onDialog = [this, act](QDialog& d) -> int {
            auto* e = dynamic_cast<editors::RecordEditor*>(&d);
            if (!e || e->TipRada() == 3)
                return QDialog::Rejected;
            shown << QStringLiteral("%1|%2|%3|%4")
                         .arg(e->TipRada())
                         .arg(e->sRedniBroj)
                         .arg(e->ubRBroj->integerValue())
                         .arg(e->dpDatum->date().toString(Qt::ISODate));
            titles << e->windowTitle();
            d.show();
            act(*e);
            d.hide();
            return d.result();
        };
    }
    static void key(browser::frmSifarnikKnj& w, Qt::Key k) { QTest::keyClick(&w.grid(), k); }
    // Makes the first entry whose `column` holds `value` current; false when there is none.
    static bool goTo(browser::frmSifarnikKnj& w, const QString& column, const QVariant& value, int shop = 0)
    {
        const db::ResultSet& rs = w.rsStavke();
        for (int r = 0; r < rs.rowCount(); ++r)
            if (rs.value(r, column).toString() == value.toString()
                && (!shop || rs.integer(r, rs.indexOf("BrojProd")) == shop)) {
                w.postaviTrenutniRed(r);
                return true;
            }
        return false;
    }
    // Presses `k` with every editor setting `assignments` (see set) and saving; when
    // `controls` are named, the editor must show `expected` in them first.
    void press(browser::frmSifarnikKnj& w, Qt::Key k, const QString& assignments = {}, const QString& controls = {},
        const QString& expected = {})
    {
        onEditor([=](editors::RecordEditor& e) {
            if (!controls.isEmpty()) {
                EXPECT_EQ(values(e, controls), expected);
            }
            set(e, assignments);
            e.cmdSpremi->click();
        });
        key(w, k);
    }

    // What the browser handed to each editor it showed: the mode, the number the entry is
    // read by, the number and date proposed; and the editor's caption.
    QStringList shown, titles;
};

class EveryBook : public Dispatch, public ::testing::WithParamInterface<int>
{
};

std::vector<int> everyBook()
{
    std::vector<int> out;
    for (const books::BookKind& b : books::allBooks())
        out.push_back(b.code);
    return out;
}

} // namespace

TEST_F(Dispatch, NewEntryProposesTheNextNumberAndADateAndACancelReloadsNothing)
{
    auto w = open(96);
    ASSERT_TRUE(w->jePrikazan());
    press(*w, Qt::Key_F9, "txtIsprava=KIF-1;cmbVrsta=#0;ubIznos=100");
    // The working year 2016 lies in the past: its last day.
    EXPECT_EQ(shown, QStringList { "1|0|1|2016-12-31" });
    EXPECT_EQ(rBrojevi(*w), QList<qint64> { 1 });
    EXPECT_EQ(w->trenutniRBroj(), 1);

    key(*w, Qt::Key_Insert);
    EXPECT_EQ(shown.value(1), "1|0|2|2016-12-31");
    EXPECT_EQ(w->trenutniRBroj(), 2);
    EXPECT_EQ(table("SELECT Isprava,Vrsta,Iznos,IznosPDV FROM dbo.KnjPrihRashFBiH"),
        "KIF-1|11|100|14.5299\nKIF-1|11|100|14.5299");

    // Another workstation adds an entry: the number counts it, the list learns of it
    // only on a reload, which a cancelled editor does not make.
    addPrihRash(1, 2016, 3, QDate(2016, 2, 2), 11, 20);
    onEditor([](editors::RecordEditor& e) { QTest::keyClick(e.cmdSpremi, Qt::Key_Escape); });
    key(*w, Qt::Key_F9);
    EXPECT_EQ(shown.value(2), "1|0|4|2016-12-31");
    key(*w, Qt::Key_Return);
    EXPECT_EQ(shown.value(3), "2|2|2|2016-12-31");
    EXPECT_EQ(rBrojevi(*w).size(), 2);
    EXPECT_EQ(db->count("dbo.KnjPrihRashFBiH"), 3);

    // In the current year the date is today as the component's clock has it.
    clock::setToday(QDate(2019, 7, 14));
    w.reset();
    db.reset();
    db = std::make_unique<TestDatabase>(1, qint16(2019));
    auto now = open(98);
    key(*now, Qt::Key_F9);
    clock::setToday({});
    EXPECT_EQ(shown.value(4), "1|0|1|2019-07-14");
    EXPECT_EQ(shown.size(), 5);
}

TEST_F(Dispatch, EnterChangesAndDeleteRemovesTheCurrentEntryButNothingOpensOnATotalsRow)
{
    for (int r = 1; r <= 3; ++r)
        addPrihRash(1, 2016, r, QDate(2016, 3, r), 16, 10.0 * r);
    auto w = open(96);
    w->postaviTrenutniRed(1);
    press(*w, Qt::Key_Return, "ubRBroj=7", "txtIsprava", "D-2");
    EXPECT_EQ(shown, QStringList { "2|2|2|2016-03-02" });
    EXPECT_EQ(rBrojevi(*w), (QList<qint64> { 1, 3, 7 }));
    EXPECT_EQ(w->trenutniRBroj(), 7);

    w->postaviTrenutniRed(0);
    onEditor([](editors::RecordEditor& e) {
        EXPECT_FALSE(e.control("txtOpis")->isEnabled());
        e.cmdSpremi->click();
    });
    key(*w, Qt::Key_Delete);
    EXPECT_EQ(shown.value(1), "4|1|1|2016-03-01");
    EXPECT_EQ(
        titles, QStringList({ "Izmjena stavke knjige prihoda i rashoda", "Brisanje stavke knjige prihoda i rashoda" }));
    EXPECT_EQ(rBrojevi(*w), (QList<qint64> { 3, 7 }));

    for (int modelRow = 0; modelRow < w->grid().model()->rowCount(); ++modelRow) {
        if (!w->jeRedUkupno(modelRow))
            continue;
        w->grid().setCurrentIndex(w->grid().model()->index(modelRow, 1));
        w->IzmjenaZapisa(2);
        w->IzmjenaZapisa(4);
    }
    EXPECT_EQ(shown.size(), 2);
    EXPECT_EQ(db->count("dbo.KnjPrihRashFBiH"), 2);
}

TEST_F(Dispatch, TradeBookEntriesAreAddedChangedCopiedAndDeletedPerShop)
{
    addPartner(1, "Centar");
    addPartner(2, "Zapad");
    add(125, 1, { { "BrojProd", 1 }, { "Iznos", money(10) } });
    add(125, 2, { { "BrojProd", 1 }, { "Iznos", money(20) } });
    auto w = open(125);
    change(*w, [](browser::BookQuery& q) { q.filter.salesPoint = 2; });
    press(*w, Qt::Key_F9, "txtOpis=Prva u Zapadu;ubIznos=5");
    EXPECT_EQ(shown, QStringList { "1|0|1|2016-12-31" });
    EXPECT_EQ(w->rsStavke().rowCount(), 3);

    // Change the second entry of shop 1.
    ASSERT_TRUE(goTo(*w, "RBroj", 2, 1));
    ASSERT_EQ(w->trenutniRBroj(), 2);
    press(*w, Qt::Key_Return, "ubIznos=22", "txtSkladište;txtOpis", "1|S125-2");
    EXPECT_EQ(shown.value(1), "2|2|2|2016-01-03");

    // Copy it: the next number of its own shop.
    ASSERT_TRUE(goTo(*w, "RBroj", 2, 1));
    press(*w, Qt::Key_F4);
    EXPECT_EQ(shown.value(2), "1|0|3|2016-01-03");

    EXPECT_EQ(table("SELECT BrojProd,RBroj,Iznos FROM dbo.TrgKnjUsluga ORDER BY BrojProd,RBroj"),
        "1|1|10\n1|2|22\n1|3|22\n2|1|5");

    ASSERT_TRUE(goTo(*w, "RBroj", 1, 2));
    press(*w, Qt::Key_Delete, {}, "txtOpis", "Prva u Zapadu");
    EXPECT_EQ(shown.value(3), "4|1|1|2016-12-31");
    EXPECT_EQ(table("SELECT BrojProd,RBroj FROM dbo.TrgKnjUsluga ORDER BY BrojProd,RBroj"), "1|1\n1|2\n1|3");
}

TEST_F(Dispatch, BulkDeleteAsksAndRemovesExactlyTheListedEntries)
{
    for (int r = 1; r <= 3; ++r)
        add(109, r);
    add(109, 1, { { "BrojPoduzeca", 2 } });
    auto w = open(109, "2");
    QAction* bulk = w->menuItem("mnuBrisPrikPod");
    ASSERT_TRUE(bulk->isVisible());
    script->answers.enqueue(Answer::No);
    bulk->trigger();
    ASSERT_EQ(script->messages.size(), 1);
    const Message asked = script->messages[0];
    EXPECT_EQ(asked.text,
        "Želite li zaista obrisati sve prikazane podatke ?\nIzbrisati će se 3 zapisa! "
        "Pažljivo, jer više neće biti moguće vratiti podatke!");
    EXPECT_EQ(asked.icon, Icon::Question);
    EXPECT_EQ(asked.buttons, Buttons::YesNo);
    EXPECT_EQ(asked.defaultAnswer, Answer::No);
    EXPECT_EQ(db->count("dbo.KnjPrihRashDB"), 4);

    script->answers.enqueue(Answer::Yes);
    bulk->trigger();
    EXPECT_TRUE(w->rsStavke().isEmpty());
    EXPECT_EQ(table("SELECT BrojPoduzeca FROM dbo.KnjPrihRashDB"), "2");
}

TEST_F(Dispatch, TwoEntriesSharingANumberAreChangedAndDeletedOneByOne)
{
    addPrihRash(1, 2016, 5, QDate(2016, 3, 1), 11, 10, 0, "Prva petica");
    addPrihRash(1, 2016, 5, QDate(2016, 3, 2), 16, 20, 0, "Druga petica");
    auto w = open(96);
    // Opens `key` on the entry described `opis`; the editor must show that very entry.
    const auto on = [&](const char* opis, Qt::Key k, const QString& change = {}) {
        ASSERT_TRUE(goTo(*w, "Opis", QString::fromUtf8(opis)));
        press(*w, k, change, "txtOpis", QString::fromUtf8(opis));
    };
    const QString byOpis = "SELECT Opis,Iznos FROM dbo.KnjPrihRashFBiH ORDER BY Opis";
    on("Druga petica", Qt::Key_Return, "ubIznos=25");
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(table(byOpis), "Druga petica|25\nPrva petica|10");
    on("Druga petica", Qt::Key_Delete);
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(table(byOpis), "Prva petica|10");

    // The first of the two is reached as well.
    addPrihRash(1, 2016, 5, QDate(2016, 3, 3), 12, 30, 0, "Treća petica");
    w->OsvjeziZapise();
    on("Prva petica", Qt::Key_Delete);
    EXPECT_EQ(table(byOpis), "Treća petica|30");
}

TEST_F(Dispatch, RsVariantsRelabelTheChequeAndLockTheLinkThatACopyNeverCarries)
{
    add(106, 1);
    auto turnover = open(106);
    turnover->postaviTrenutniRed(0);
    QString label;
    onEditor([&](editors::RecordEditor& e) {
        label = values(e, "lblČekovi");
        e.cmdPrekid->click();
    });
    key(*turnover, Qt::Key_Return);
    EXPECT_EQ(label, "Račun:");

    // The FBiH and RS records share their table.
    addPartner(5, "Kupac d.o.o.");
    add(97, 1, { { "SifKomit", 5 }, { "RBrojKPR", 4 } });
    // Whether the link can be edited, the link and the partner, in each editor shown.
    QStringList seen;
    const auto record = [&](bool save) {
        onEditor([&seen, save](editors::RecordEditor& e) {
            seen << QString::number(e.control("ubKPR")->isEnabled()) + "|" + values(e, "ubKPR;lblKomit");
            (save ? e.cmdSpremi : e.cmdPrekid)->click();
        });
    };
    auto rs = open(102);
    record(false);
    key(*rs, Qt::Key_F9);
    rs->postaviTrenutniRed(0);
    key(*rs, Qt::Key_F4);
    key(*rs, Qt::Key_Return);
    // A new entry, the copy without the link, the entry itself.
    EXPECT_EQ(seen, QStringList({ "0|0|", "0|0| Kupac d.o.o.", "0|4| Kupac d.o.o." }));

    // In the FBiH book the copy is saved after the warning about the missing link.
    seen.clear();
    auto fbih = open(97);
    fbih->postaviTrenutniRed(0);
    record(true);
    key(*fbih, Qt::Key_F4);
    EXPECT_EQ(seen, QStringList { "1|0| Kupac d.o.o." });
    EXPECT_EQ(script->messages.last().text,
        "Bilo bi poželjno da se upiše redni broj u knjizi prihoda i rashoda! Podatak će se spremiti, ali pažljivo!");
    EXPECT_EQ(table("SELECT RBroj,RBrojKPR FROM dbo.KnjEvidPotrIObvFBiH ORDER BY RBroj,RBrojKPR"), "1|4\n2|0");
}

TEST_F(Dispatch, ANewAssetIsFoundUnderTheNumberTheTableGaveIt)
{
    for (int r = 1; r <= 3; ++r)
        add(105, r);
    for (int book : { 105, 101 }) {
        auto w = open(book);
        // The operator's number is not what the table assigns.
        press(*w, Qt::Key_F9,
            "ubRBroj=2;txtBrojDokumenta=44;txtNazivSredstva=Novo sredstvo;ubVijekTrajanja=4;ubNabavna=800;"
            "ubKnjigovodstvena=800");
        EXPECT_EQ(w->trenutniRBroj(), book == 105 ? 4 : 5) << book;
        ASSERT_GE(w->trenutniRed(), 0);
        EXPECT_EQ(w->rsStavke().value(w->trenutniRed(), "Naziv").toString(), "Novo sredstvo");
    }
}

// Copy, change and delete of one entry through the browser's keys, in every book: each
// confirmed editor writes exactly one row and the list follows; the copy (F4) proposes
// the next number and the entry's date.
TEST_P(EveryBook, CopyChangeAndDeleteFromTheBrowser)
{
    const int kind = GetParam();
    const QString entries = books::findBook(kind)->table;
    addCompany();
    add(kind, 1);
    auto w = open(kind);
    // A trade book shows nothing until its sales point is chosen.
    if (books::isTradeBook(kind))
        w->applyFilter(browser::periodFilter(kind, { 2016, 1, 1 }, { 2016, 12, 31 }, 1, 2016, 501));
    ASSERT_EQ(w->rsStavke().rowCount(), 1);
    QStringList problems; // every message but a warning
    onEditor([&](editors::RecordEditor& e) {
        if (e.TipRada() == 2)
            set(e, "dpDatum=2016-07-01");
        const auto before = script->messages.size();
        e.cmdSpremi->click();
        for (auto i = before; i < script->messages.size(); ++i)
            if (script->messages[i].title != "Napomena")
                problems << script->messages[i].text;
    });
    w->postaviTrenutniRed(0);
    key(*w, Qt::Key_F4);
    ASSERT_EQ(db->count(entries), 2) << problems.join(u'|').toStdString();
    ASSERT_EQ(w->rsStavke().rowCount(), 2);
    EXPECT_EQ(w->trenutniRBroj(), 2);
    // The copy carries every field but its number and a receivable's link (see RsVariants).
    const db::ResultSet both = db->query("SELECT * FROM " + entries + " ORDER BY RBroj");
    for (int c = 0; c < both.fieldCount(); ++c)
        if (both.field(c).name != "RBroj" && both.field(c).name != "RBrojKPR") {
            EXPECT_EQ(both.text(0, c), both.text(1, c)) << both.field(c).name.toStdString();
        }

    key(*w, Qt::Key_Return);
    EXPECT_EQ(table("SELECT RBroj FROM " + entries + " WHERE Datum='07.01.2016'"), "2");
    key(*w, Qt::Key_Delete);
    EXPECT_EQ(db->count(entries), 1);
    EXPECT_EQ(w->rsStavke().rowCount(), 1);
    // The copy, the change of the copy and its deletion.
    EXPECT_EQ(shown, QStringList({ "1|0|2|2016-01-02", "2|2|2|2016-01-02", "4|2|2|2016-07-01" }));
    EXPECT_TRUE(problems.isEmpty()) << problems.join(u'|').toStdString();
}

INSTANTIATE_TEST_SUITE_P(Dispatch, EveryBook, ::testing::ValuesIn(everyBook()),
    [](const ::testing::TestParamInfo<int>& book) { return std::to_string(book.param); });
