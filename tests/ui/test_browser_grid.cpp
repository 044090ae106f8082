// The browser's grid: totals rows, refresh with position and sort, keys and the
// command menu, load failures and the grid dump.
#include "browser/BrowserRules.h"
#include "browser/widgets/BookGrid.h"
#include "session/Session.h"
#include "session/widgets/DialogInteraction.h"
#include "support/Sandbox.h"
#include "test_browser_fixture.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QFont>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using namespace knjige;
using namespace knjige::test;

namespace
{

class BrowserGridTest : public BrowserTest
{
protected:
    // Five entries of the income and expense book FBiH, in RBroj order.
    void fillFive()
    {
        addPrihRash(1, 2016, 1, { 2016, 1, 10 }, 11, 1170, 170, "Pazar");
        addPrihRash(1, 2016, 2, { 2016, 1, 12 }, 12, 2340.5, 340.07, "banka");
        addPrihRash(1, 2016, 3, { 2016, 2, 1 }, 16, 585, 85, "Nabavka");
        addPrihRash(1, 2016, 4, { 2016, 2, 3 }, 19, 1000000.25, 0, "Amortizacija");
        addPrihRash(1, 2016, 5, { 2016, 3, 1 }, 17, 1500, 0, "Plaće");
    }
    static void key(browser::frmSifarnikKnj& w, Qt::Key k) { QTest::keyClick(&w.grid(), k); }
    static QList<int> commands(const QSignalSpy& spy)
    {
        QList<int> out;
        for (const QList<QVariant>& args : spy)
            out << args.at(0).toInt();
        return out;
    }
};

} // namespace

TEST_F(BrowserGridTest, TotalsRowsStandAboveAndBelowTheEntriesAndALoadFailureLeavesThemAsTheyWere)
{
    fillFive();
    auto w = open(96);
    browser::BookModel& m = w->model();
    ASSERT_EQ(m.rowCount(), 7);
    // The sums are the model's (BookModel's own tests); the grid shows them in bold on white.
    for (int row : { 0, 6 }) {
        EXPECT_TRUE(m.data(m.index(row, 7), Qt::FontRole).value<QFont>().bold());
        EXPECT_FALSE(m.data(m.index(row, 8), Qt::FontRole).isValid());
        EXPECT_EQ(m.data(m.index(row, 7), Qt::BackgroundRole).value<QBrush>().color(), QColor(Qt::white));
        EXPECT_EQ(m.data(m.index(row, 7), Qt::ForegroundRole).value<QBrush>().color(), QColor(Qt::black));
    }
    EXPECT_FALSE(m.data(m.index(1, 7), Qt::FontRole).isValid());
    // The first entry is current after opening, not the totals row.
    EXPECT_EQ(w->trenutniRed(), 0);
    EXPECT_EQ(w->trenutniRBroj(), 1);
    // A query the engine refuses is reported and the grid stays as it was.
    change(*w, [](browser::BookQuery& q) { q.filter.where = " WHERE  K.NemaTakveKolone=1"; });
    w->OsvjeziZapise();
    EXPECT_EQ(expectOneError(script->messages, "Desila se greška u pristupu podacima. Ponovite!\r\n").title,
        "Greška u pristupu podacima");
    EXPECT_EQ(w->model().entryCount(), 5);
    EXPECT_EQ(w->model().rowCount(), 7);
}

TEST_F(BrowserGridTest, HeaderSortTogglesAndSurvivesARefresh)
{
    fillFive();
    auto w = open(96);
    QHeaderView* header = w->grid().horizontalHeader();
    // Grid column 5 is Opis (field 4).
    w->fg_HeaderClick(5);
    EXPECT_EQ(w->model().sortExpression(), "[Opis] ASC");
    EXPECT_EQ(rBrojevi(*w), (QList<qint64> { 4, 2, 3, 1, 5 }));
    EXPECT_TRUE(header->isSortIndicatorShown());
    EXPECT_EQ(header->sortIndicatorSection(), 4);
    EXPECT_EQ(header->sortIndicatorOrder(), Qt::AscendingOrder);
    // The header's own click leads to the same place.
    QTest::mouseClick(
        header->viewport(), Qt::LeftButton, {}, QPoint(header->sectionViewportPosition(4) + 5, header->height() / 2));
    EXPECT_EQ(w->model().sortExpression(), "[Opis] DESC");
    EXPECT_EQ(header->sortIndicatorOrder(), Qt::DescendingOrder);
    w->fg_HeaderClick(5);

    addPrihRash(1, 2016, 6, { 2016, 3, 2 }, 11, 10, 0, "Avans");
    w->OsvjeziZapise();
    EXPECT_EQ(w->model().sortExpression(), "[Opis] ASC");
    EXPECT_EQ(rBrojevi(*w), (QList<qint64> { 4, 6, 2, 3, 1, 5 }));
    EXPECT_EQ(header->sortIndicatorSection(), 4);
    EXPECT_EQ(*w->model().total(8), Money::parse("3520.5").value());
}

TEST_F(BrowserGridTest, RefreshKeepsThePositionOrGoesToTheRememberedEntryOnce)
{
    fillFive();
    auto w = open(96);
    w->postaviTrenutniRed(2);
    w->OsvjeziZapise();
    EXPECT_EQ(w->trenutniRBroj(), 3);

    // After the last entry was deleted: the new last row.
    w->postaviTrenutniRed(4);
    ASSERT_EQ(w->trenutniRBroj(), 5);
    db->exec("DELETE FROM dbo.KnjPrihRashFBiH WHERE RBroj=5");
    w->OsvjeziZapise();
    EXPECT_EQ(w->model().entryCount(), 4);
    EXPECT_EQ(w->trenutniRBroj(), 4);

    // The bottom totals row stands for the last entry.
    w->grid().setCurrentIndex(w->model().index(w->model().rowCount() - 1, 0));
    EXPECT_EQ(w->trenutniRed(), -1);
    w->OsvjeziZapise();
    EXPECT_EQ(w->trenutniRBroj(), 4);

    addPrihRash(1, 2016, 5, { 2016, 3, 1 }, 17, 1500, 0, "Plaće");
    w->fg_HeaderClick(5); // sorted by Opis: RBroj 3 is the third row
    change(*w, [](browser::BookQuery& q) { q.returnTo = 3; });
    w->OsvjeziZapise();
    EXPECT_EQ(w->trenutniRBroj(), 3);
    EXPECT_EQ(w->trenutniRed(), 2);

    // The number is used once: after the operator moves on, a refresh keeps his row.
    w->postaviTrenutniRed(4);
    w->OsvjeziZapise();
    EXPECT_EQ(w->trenutniRed(), 4);

    w->postaviTrenutniRed(1);
    change(*w, [](browser::BookQuery& q) { q.returnTo = 77; }); // not in the book: the position stays
    w->OsvjeziZapise();
    EXPECT_EQ(w->trenutniRed(), 1);
}

TEST_F(BrowserGridTest, KeysLeadToTheirCommandsButNotOnATotalsRowNorToADisabledTransfer)
{
    fillFive();
    auto w = open(96);
    QSignalSpy spy(w.get(), &browser::frmSifarnikKnj::naredba);
    // Not in transfer mode: F10's command 8 is disabled.
    for (Qt::Key k : { Qt::Key_Return, Qt::Key_F9, Qt::Key_Insert, Qt::Key_F3, Qt::Key_Delete, Qt::Key_F10 })
        key(*w, k);
    EXPECT_EQ(commands(spy), (QList<int> { 2, 1, 1, 4, 3 }));
    EXPECT_TRUE(w->isVisible());

    spy.clear();
    w->setPrijenos(true);
    w->grid().setCurrentIndex(w->model().index(0, 2));
    for (Qt::Key k : { Qt::Key_Return, Qt::Key_Delete, Qt::Key_F10 })
        key(*w, k);
    w->mnu_Click(2);
    EXPECT_TRUE(spy.isEmpty());
    key(*w, Qt::Key_F9); // a new entry needs no current one
    EXPECT_EQ(commands(spy), (QList<int> { 1 }));

    // Enter in transfer mode runs the transfer only when it is enabled.
    spy.clear();
    w->mnu(8)->setEnabled(false);
    w->postaviTrenutniRed(1);
    key(*w, Qt::Key_Return);
    EXPECT_TRUE(spy.isEmpty());
    EXPECT_TRUE(w->isVisible());
    EXPECT_EQ(w->PreneseniRBroj, 0);
    w->mnu(8)->setEnabled(true);
    key(*w, Qt::Key_Return);
    EXPECT_EQ(commands(spy), (QList<int> { 8 }));
    EXPECT_EQ(w->PreneseniRBroj, 2);
    EXPECT_FALSE(w->isVisible());
}

TEST_F(BrowserGridTest, TheCommandMenuHasItsEightCaptionsAndTheToolbarForwardsToIt)
{
    auto w = open(96);
    const QStringList captions = { "&Novi (F9)", "&Izmjena(Ret)", "Obriši(&Del)", "&Filter(F3)", "&Osvježi", "Is&pis",
        "I&zlaz(Esc)", "P&rijenos(F10)" };
    for (int i = 1; i <= 8; ++i)
        EXPECT_EQ(w->mnu(i)->text(), captions[i - 1]);
    EXPECT_EQ(w->toolbarButton(1)->text(), "Novi");
    EXPECT_EQ(w->toolbarButton(6)->text() + w->toolbarButton(6)->data().toString(), "IspisPrint");
    EXPECT_EQ(w->toolbarButton(8)->text(), "Izlaz");
    EXPECT_EQ(w->toolbarButton(10)->text(), "Prenesi");
    EXPECT_FALSE(w->toolbarButton(10)->isVisible());

    QSignalSpy spy(w.get(), &browser::frmSifarnikKnj::naredba);
    w->toolbarButton(4)->trigger();
    w->toolbarButton(5)->trigger();
    EXPECT_EQ(commands(spy), (QList<int> { 4, 5 }));
    w->mnu(1)->setEnabled(false);
    EXPECT_FALSE(w->toolbarButton(1)->isEnabled());
    w->toolbarButton(1)->trigger();
    w->mnu_Click(1);
    EXPECT_EQ(commands(spy), (QList<int> { 4, 5 }));
    w->toolbarButton(8)->trigger(); // Izlaz
    EXPECT_FALSE(w->isVisible());

    // Esc closes the book even after a menu opened with the mouse was closed with Esc,
    // which leaves the menu bar holding the keys.
    w->show();
    // A message that comes before the window system activates the window opens over it.
    QApplication::setActiveWindow(nullptr);
    EXPECT_EQ(dialogOwner(), w.get());
    QApplication::setActiveWindow(w.get());
    auto* bar = w->findChild<QMenuBar*>("menuBar");
    QMenu* naredbe = w->findChild<QMenu*>("mnuNaredbe");
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(naredbe->menuAction()).center());
    ASSERT_TRUE(naredbe->isVisible());
    QTest::keyClick(naredbe, Qt::Key_Escape);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(w->isVisible());
    EXPECT_EQ(commands(spy).last(), 7);
}

TEST_F(BrowserGridTest, TheGridDumpGoesToTheHomeFolderWhereThereIsNoDriveC)
{
    fillFive();
    auto w = open(96);
    const QString home = scratchDir();
    const QByteArray oldHome = qgetenv("HOME");
    qputenv("HOME", home.toLocal8Bit());
    w->findChild<QPushButton*>("cmdFG")->click();
    qputenv("HOME", oldHome);
    QFile dump(home + QStringLiteral("/PelunGrid.xlsx"));
    ASSERT_TRUE(dump.open(QIODevice::ReadOnly)) << script->texts().join(u'\n').toStdString();
    EXPECT_EQ(dump.read(2), QByteArray("PK"));
    ASSERT_EQ(script->messages.size(), 1);
    EXPECT_EQ(script->messages[0].text, "Tablica je spremljena kao Excel radna knjiga u datoteku:\n" + dump.fileName());
    EXPECT_EQ(script->messages[0].title, "Tablica u Excel");
    // The fixed name on drive C keeps its old ending, and the message says what follows.
    EXPECT_TRUE(browser::gridDumpMessage("c:/PelunGrid.xls").endsWith("odgovorite s \"Da\"."));
}
