// Opening the browser: captions, the opening query, menus per book and access level,
// the rights service, and the remembered window position.
#include "test_browser_fixture.h"

#include "books/BookKind.h"
#include "browser/BrowserRules.h"
#include "browser/widgets/BookGrid.h"
#include "session/Session.h"
#include "session/SettingsStore.h"

#include <QAction>
#include <QPushButton>
#include <QToolBar>

using namespace knjige;
using namespace knjige::test;

namespace {

bool shown(frmSifarnikKnj& w, const char* name) { return w.menuItem(QString::fromLatin1(name))->isVisible(); }
bool enabled(frmSifarnikKnj& w, const char* name) { return w.menuItem(QString::fromLatin1(name))->isEnabled(); }

} // namespace

TEST_F(BrowserTest, EveryBookOpensWithItsCaptionAndItsQueryRunsOnAnEmptyBook)
{
    for (const BookKind& book : allBooks()) {
        auto w = open(book.code);
        EXPECT_EQ(w->windowTitle(), book.caption);
        EXPECT_TRUE(w->jePrikazan()) << book.code;
        EXPECT_TRUE(w->isVisible());
        EXPECT_EQ(w->upit(), book.selectSql
                                 + QStringLiteral(" WHERE  K.Datum>='01.01.2016' AND K.GodinaKnj=2016 AND "
                                                  "K.BrojPoduzeca=1 ORDER BY K.RBroj"));
        // The SELECT's fields are the grid's columns, the marker column last where the
        // book has one.
        EXPECT_GT(w->model().columnCount(), 4) << book.code;
        EXPECT_EQ(w->model().rowCount(), 0) << book.code;
        if (book.selectSql.contains(QStringLiteral("AS I "), Qt::CaseInsensitive)) {
            EXPECT_EQ(w->rsStavke().fields().last().name, QStringLiteral("I")) << book.code;
        }
        EXPECT_EQ(w->DatumOd, QDate(2016, 1, 1));
        EXPECT_EQ(w->DatumDo, QDate(2016, 12, 31));
    }
    EXPECT_TRUE(script->messages.isEmpty()) << script->texts().join(u'\n').toStdString();
}

TEST_F(BrowserTest, OpensTheYearOfTheCompanyFromTheFirstOfJanuaryWithoutAnUpperBound)
{
    addPrihRash(1, 2016, 1, {2016, 3, 1}, 11, 100);
    addPrihRash(1, 2016, 2, {2017, 1, 5}, 11, 200);    // booked to 2016, dated later: listed
    addPrihRash(1, 2016, 3, {2015, 12, 31}, 11, 300);  // dated before the year: not listed
    addPrihRash(2, 2016, 4, {2016, 3, 1}, 11, 400);    // another company
    addPrihRash(1, 2015, 5, {2016, 2, 1}, 11, 500);    // another book year
    addPrihRash(1, 2016, 6, {2016, 1, 1}, 16, 600);
    auto w = open(96);
    EXPECT_EQ(w->WhereUvjet, QStringLiteral(" WHERE  K.Datum>='01.01.2016' AND K.GodinaKnj=2016 AND K.BrojPoduzeca=1"));
    EXPECT_EQ(rBrojevi(*w), (QList<qint64>{1, 2, 6}));
    EXPECT_TRUE(script->messages.isEmpty());
}

TEST_F(BrowserTest, MenuEntriesFollowTheBookKind)
{
    auto w96 = open(96);
    EXPECT_TRUE(shown(*w96, "mnuRekapKnjPrihRash"));
    EXPECT_TRUE(shown(*w96, "mnuIstaStavka"));
    EXPECT_TRUE(shown(*w96, "mnuRenumeracija"));
    EXPECT_FALSE(shown(*w96, "mnuPocetnoStanje"));
    EXPECT_FALSE(shown(*w96, "mnuGen"));
    EXPECT_FALSE(shown(*w96, "mnuUvozIzvozPod"));
    EXPECT_FALSE(shown(*w96, "mnuBrisPrikPod"));

    auto w105 = open(105);
    EXPECT_TRUE(shown(*w105, "mnuIstaStavka"));
    EXPECT_TRUE(shown(*w105, "mnuPocetnoStanje"));
    EXPECT_FALSE(shown(*w105, "mnuRenumeracija"));
    EXPECT_FALSE(shown(*w105, "mnuRenumeracijaPoDat"));
    EXPECT_FALSE(shown(*w105, "mnuUbaciZapis"));
    EXPECT_FALSE(shown(*w105, "mnuRekapKnjPrihRash"));

    auto w109 = open(109, QStringLiteral("2"));
    EXPECT_TRUE(shown(*w109, "mnuGen"));
    EXPECT_TRUE(shown(*w109, "mnuBrisPrikPod"));
    EXPECT_FALSE(shown(*w109, "mnuRekapKnjPrihRash"));
    auto w109b = open(109, QStringLiteral("1"));
    EXPECT_FALSE(shown(*w109b, "mnuBrisPrikPod"));

    auto w126 = open(126);
    EXPECT_TRUE(shown(*w126, "mnuIstaStavka"));
    EXPECT_TRUE(shown(*w126, "mnuRenumeracija"));
    EXPECT_FALSE(shown(*w126, "mnuRekapKnjPrihRash"));
    EXPECT_FALSE(shown(*w126, "mnuGen"));
}

TEST_F(BrowserTest, AccessLevelsDisableInsertionCopyAndRecapitulation)
{
    auto w0 = open(96, QStringLiteral("0"));
    EXPECT_TRUE(enabled(*w0, "mnuUbaciZapis"));
    EXPECT_TRUE(enabled(*w0, "mnuIstaStavka"));
    EXPECT_TRUE(enabled(*w0, "mnuRekapKnjPrihRash"));
    // The entry is hidden; shown, it would be usable at this level.
    w0->menuItem(QStringLiteral("mnuUvozIzvozPod"))->setVisible(true);
    EXPECT_TRUE(enabled(*w0, "mnuUvozIzvozPod"));

    auto w1 = open(96, QStringLiteral("1"));
    EXPECT_FALSE(enabled(*w1, "mnuUbaciZapis"));
    EXPECT_FALSE(enabled(*w1, "mnuIstaStavka"));
    EXPECT_TRUE(enabled(*w1, "mnuRekapKnjPrihRash"));

    auto w2 = open(96, QStringLiteral("2"));
    EXPECT_FALSE(enabled(*w2, "mnuUbaciZapis"));
    EXPECT_FALSE(enabled(*w2, "mnuIstaStavka"));
    EXPECT_FALSE(enabled(*w2, "mnuRekapKnjPrihRash"));
    EXPECT_TRUE(w2->mnu(1)->isEnabled());
}

TEST_F(BrowserTest, TheRightsServiceIsAskedWithTheSessionsConnectionAndOperator)
{
    auto log = installRights(true, {OperatorRights::Brisanje, OperatorRights::Izvoz});
    auto w = open(97, QStringLiteral("1"));
    EXPECT_TRUE(w->jePrikazan());
    EXPECT_EQ(log->connectionString, session().ConnString);
    EXPECT_EQ(log->operatorName, QStringLiteral("Ana"));
    EXPECT_EQ(log->asked, (QList<int>{0, 1, 2, 3, 4, 5}));
    // Delete and export are withheld, with the toolbar buttons that forward to them.
    EXPECT_FALSE(w->mnu(3)->isEnabled());
    EXPECT_FALSE(w->findChild<QAction*>(QStringLiteral("tbObriši"))->isEnabled());
    EXPECT_TRUE(w->mnu(1)->isEnabled());
    EXPECT_TRUE(w->mnu(2)->isEnabled());
    EXPECT_TRUE(w->mnu(6)->isEnabled());
    EXPECT_FALSE(enabled(*w, "mnuPrebaciUExcel"));
    EXPECT_FALSE(w->findChild<QPushButton*>(QStringLiteral("cmdFG"))->isEnabled());
    EXPECT_FALSE(shown(*w, "mnuUvozIzvozPod"));
}

TEST_F(BrowserTest, ALevelAboveTwoSkipsTheRightsService)
{
    auto log = installRights(false);
    auto w = open(98, QStringLiteral("3"));
    EXPECT_TRUE(w->jePrikazan());
    EXPECT_TRUE(log->asked.isEmpty());
    w->menuItem(QStringLiteral("mnuUvozIzvozPod"))->setVisible(true);
    EXPECT_FALSE(enabled(*w, "mnuUvozIzvozPod"));
    EXPECT_TRUE(script->messages.isEmpty());
}

TEST_F(BrowserTest, RefusedAccessShowsTheMessageAndNoWindow)
{
    auto log = installRights(false);
    auto w = open(96, QStringLiteral("2"));
    EXPECT_FALSE(w->jePrikazan());
    EXPECT_FALSE(w->isVisible());
    EXPECT_EQ(log->asked, (QList<int>{0}));
    ASSERT_EQ(script->messages.size(), 1);
    EXPECT_EQ(script->messages[0].text, QStringLiteral("Nemate pravo pristupa !"));
}

TEST_F(BrowserTest, AnAbsentPositionGivesTheDefaultWindowAtTheTopLeft)
{
    auto w = open(96);
    const int dpiX = w->logicalDpiX();
    const int dpiY = w->logicalDpiY();
    EXPECT_EQ(w->pos(), QPoint(0, 0));
    EXPECT_EQ(w->size(), QSize(browser::twipsToPixels(9645, dpiX), browser::twipsToPixels(5800, dpiY)));
    // The options' defaults: toolbar texts on, the new display, no filter at opening.
    EXPECT_TRUE(w->menuItem(QStringLiteral("mnuOpisiNaTipkama"))->isChecked());
    EXPECT_FALSE(w->menuItem(QStringLiteral("mnuNeKoristiNoviGrid"))->isChecked());
    EXPECT_FALSE(w->menuItem(QStringLiteral("mnuPostFiltera"))->isChecked());
    EXPECT_FALSE(w->menuItem(QStringLiteral("mnuSelektMisem"))->isChecked());
    EXPECT_TRUE(w->KoristiNoviPrikaz);
    EXPECT_EQ(w->findChild<QToolBar*>()->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
}

TEST_F(BrowserTest, EachBookRemembersItsOwnPositionUnderItsCaption)
{
    {
        auto w = open(97);
        w->move(30, 45);
        w->resize(700, 420);
        w->close();
    }
    const QString caption = QStringLiteral("Knjiga Evidencija potraživanja i obveza za FBiH");
    const QString sec = settings::section();
    auto twips = [](int px) { return browser::pixelsToTwips(px, 96); };
    if (QWidget().logicalDpiX() == 96) {
        EXPECT_EQ(settings::number(caption, sec, QStringLiteral("MainLeft"), -1), twips(30));
        EXPECT_EQ(settings::number(caption, sec, QStringLiteral("MainTop"), -1), twips(45));
        EXPECT_EQ(settings::number(caption, sec, QStringLiteral("MainWidth"), -1), twips(700));
        EXPECT_EQ(settings::number(caption, sec, QStringLiteral("MainHeight"), -1), twips(420));
    }
    auto same = open(97);
    EXPECT_EQ(same->pos(), QPoint(30, 45));
    EXPECT_EQ(same->size(), QSize(700, 420));
    // The RS variant of the same table keeps settings of its own.
    auto other = open(102);
    EXPECT_EQ(other->pos(), QPoint(0, 0));
    EXPECT_EQ(other->width(), browser::twipsToPixels(9645, other->logicalDpiX()));
}

TEST_F(BrowserTest, AMinimisedOrMaximisedWindowKeepsTheRememberedPosition)
{
    const QString caption = QStringLiteral("Knjiga prometa za FBiH");
    settings::setNumber(caption, settings::section(), QStringLiteral("MainWidth"), 6000);
    {
        auto w = open(98);
        w->resize(900, 500);
        w->showMinimized();
        w->close();
    }
    {
        auto w = open(98);
        w->showMaximized();
        w->close();
    }
    EXPECT_EQ(settings::number(caption, settings::section(), QStringLiteral("MainWidth"), -1), 6000);
    EXPECT_EQ(settings::text(caption, settings::section(), QStringLiteral("MainLeft")), QString());
}

TEST_F(BrowserTest, DisplayOptionsAreSharedAndWrittenAtEachClick)
{
    auto w = open(96);
    const QString app = settings::sharedApplication();
    const QString sec = settings::section();
    w->menuItem(QStringLiteral("mnuNeKoristiNoviGrid"))->trigger();
    EXPECT_EQ(settings::text(app, sec, QStringLiteral("mnuNeKoristiNoviGrid")), QStringLiteral("True"));
    EXPECT_FALSE(w->KoristiNoviPrikaz);
    w->menuItem(QStringLiteral("mnuOpisiNaTipkama"))->trigger();
    EXPECT_EQ(settings::text(app, sec, QStringLiteral("OpisiNaTipkama")), QStringLiteral("False"));
    EXPECT_EQ(w->findChild<QToolBar*>()->toolButtonStyle(), Qt::ToolButtonIconOnly);
    w->menuItem(QStringLiteral("mnuPostFiltera"))->trigger();
    EXPECT_EQ(settings::text(app, sec, QStringLiteral("PostaviFilterNaPočetku")), QStringLiteral("True"));
    w->menuItem(QStringLiteral("mnuSelektMisem"))->trigger();
    EXPECT_EQ(settings::text(app, sec, QStringLiteral("SelektiranjeKretanjemMiša")), QStringLiteral("True"));

    // Another book reads them when its kind is set.
    auto other = open(99);
    EXPECT_TRUE(other->menuItem(QStringLiteral("mnuNeKoristiNoviGrid"))->isChecked());
    EXPECT_FALSE(other->KoristiNoviPrikaz);
    EXPECT_FALSE(other->menuItem(QStringLiteral("mnuOpisiNaTipkama"))->isChecked());
    EXPECT_TRUE(other->menuItem(QStringLiteral("mnuPostFiltera"))->isChecked());
    EXPECT_TRUE(other->menuItem(QStringLiteral("mnuSelektMisem"))->isChecked());
}

TEST_F(BrowserTest, TheNameColumnTakesItsWidthFromTheSettings)
{
    addPrihRash(1, 2016, 1, {2016, 3, 1}, 11, 100);
    settings::setNumber(QStringLiteral("Knjiga prihoda i rashoda za FBiH"), settings::section(),
                        QStringLiteral("VelNazivaSifri"), 4500);
    auto w = open(96);
    const int opis = w->rsStavke().indexOf(QStringLiteral("Opis"));
    EXPECT_EQ(w->grid().columnWidth(opis), browser::twipsToPixels(4500, w->logicalDpiX()));
}
