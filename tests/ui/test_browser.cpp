// Opening the browser: captions, the opening query, menus per book and access level,
// the rights service, the remembered window position, and the insertion, renumbering
// and opening-state commands as an operator reaches them.
#include "books/BookKind.h"
#include "browser/BrowserRules.h"
#include "browser/widgets/BookGrid.h"
#include "editors/widgets/MoneyBox.h"
#include "editors/widgets/RecordEditor.h"
#include "output/widgets/frmPrikazTeksta.h"
#include "session/Clock.h"
#include "session/Session.h"
#include "session/SettingsStore.h"
#include "test_browser_fixture.h"

#include <QAction>
#include <QDateEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QToolBar>

using namespace knjige;
using namespace knjige::test;

TEST_F(BrowserTest, EveryBookOpensWithItsCaptionAndItsQueryRunsOnAnEmptyBook)
{
    for (const books::BookKind& book : books::allBooks()) {
        auto w = open(book.code);
        EXPECT_EQ(w->windowTitle(), book.caption);
        EXPECT_TRUE(w->jePrikazan()) << book.code;
        EXPECT_TRUE(w->isVisible());
        EXPECT_EQ(w->query().sql(),
            book.selectSql
                + " WHERE  K.Datum>='01.01.2016' AND K.GodinaKnj=2016 AND "
                  "K.BrojPoduzeca=1 ORDER BY K.RBroj");
        // The SELECT's fields are the grid's columns, the marker column last where the
        // book has one. A trade book whose sales point question was cancelled (as the
        // script does) loads nothing.
        EXPECT_EQ(w->model().columnCount() > 4, !books::isTradeBook(book.code)) << book.code;
        EXPECT_EQ(w->model().rowCount(), 0) << book.code;
        EXPECT_EQ(w->trenutniRed(), -1);
        EXPECT_EQ(w->trenutniRBroj(), 0);
        if (book.selectSql.contains("AS I ", Qt::CaseInsensitive) && !books::isTradeBook(book.code)) {
            EXPECT_EQ(w->rsStavke().fields().last().name, "I") << book.code;
        }
    }
    EXPECT_TRUE(script->messages.isEmpty()) << script->texts().join(u'\n').toStdString();
}

TEST_F(BrowserTest, MenuEntriesFollowTheBookKindAndTheAccessLevel)
{
    const struct {
        int book;
        const char* level;
        QStringList shown, hidden, enabled, disabled;
    } cases[] = {
        { 96, "0", { "mnuRekapKnjPrihRash", "mnuIstaStavka", "mnuRenumeracija" },
            { "mnuPocetnoStanje", "mnuGen", "mnuUvozIzvozPod", "mnuBrisPrikPod" },
            { "mnuUbaciZapis", "mnuIstaStavka", "mnuRekapKnjPrihRash" }, {} },
        { 96, "1", {}, {}, { "mnuRekapKnjPrihRash" }, { "mnuUbaciZapis", "mnuIstaStavka" } },
        { 96, "2", {}, {}, {}, { "mnuUbaciZapis", "mnuIstaStavka", "mnuRekapKnjPrihRash" } },
        { 105, "0", { "mnuIstaStavka", "mnuPocetnoStanje" },
            { "mnuRenumeracija", "mnuRenumeracijaPoDat", "mnuUbaciZapis", "mnuRekapKnjPrihRash" }, {}, {} },
        { 109, "2", { "mnuGen", "mnuBrisPrikPod" }, { "mnuRekapKnjPrihRash" }, {}, {} },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(QStringLiteral("%1 level %2").arg(c.book).arg(c.level).toStdString());
        auto w = open(c.book, c.level);
        for (const QString& name : c.shown)
            EXPECT_TRUE(w->menuItem(name)->isVisible()) << name.toStdString();
        for (const QString& name : c.hidden)
            EXPECT_FALSE(w->menuItem(name)->isVisible()) << name.toStdString();
        for (const QString& name : c.enabled)
            EXPECT_TRUE(w->menuItem(name)->isEnabled()) << name.toStdString();
        for (const QString& name : c.disabled)
            EXPECT_FALSE(w->menuItem(name)->isEnabled()) << name.toStdString();
    }
    // The import entry is hidden; shown, it would be usable at level 0. New entries stay
    // open at level 2.
    auto w = open(96, "0");
    w->menuItem("mnuUvozIzvozPod")->setVisible(true);
    EXPECT_TRUE(w->menuItem("mnuUvozIzvozPod")->isEnabled());
    EXPECT_TRUE(open(96, "2")->mnu(1)->isEnabled());
}

TEST_F(BrowserTest, TheRightsServiceIsAskedBelowLevelThreeAndMayRefuse)
{
    auto log = installRights(true, { OperatorRights::Brisanje, OperatorRights::Izvoz });
    auto w = open(97, "1");
    EXPECT_TRUE(w->jePrikazan());
    EXPECT_EQ(log->connectionString, session().ConnString);
    EXPECT_EQ(log->operatorName, "Ana");
    EXPECT_EQ(log->asked, (QList<int> { 0, 1, 2, 3, 4, 5 }));
    // Delete and export are withheld, with the toolbar buttons that forward to them.
    EXPECT_FALSE(w->mnu(3)->isEnabled());
    EXPECT_FALSE(w->findChild<QAction*>("tbObriši")->isEnabled());
    EXPECT_TRUE(w->mnu(1)->isEnabled());
    EXPECT_TRUE(w->mnu(2)->isEnabled());
    EXPECT_TRUE(w->mnu(6)->isEnabled());
    EXPECT_FALSE(w->menuItem("mnuPrebaciUExcel")->isEnabled());
    EXPECT_FALSE(w->findChild<QPushButton*>("cmdFG")->isEnabled());
    EXPECT_FALSE(w->menuItem("mnuUvozIzvozPod")->isVisible());

    // Above level two the service is not asked, even one that refuses everything.
    log = installRights(false);
    auto above = open(98, "3");
    EXPECT_TRUE(above->jePrikazan());
    EXPECT_TRUE(log->asked.isEmpty());
    EXPECT_TRUE(script->messages.isEmpty());
    above->menuItem("mnuUvozIzvozPod")->setVisible(true);
    EXPECT_FALSE(above->menuItem("mnuUvozIzvozPod")->isEnabled());

    auto refused = open(96, "2");
    EXPECT_FALSE(refused->jePrikazan());
    EXPECT_FALSE(refused->isVisible());
    EXPECT_EQ(log->asked, (QList<int> { 0 }));
    EXPECT_EQ(script->texts(), QStringList { "Nemate pravo pristupa !" });
}

TEST_F(BrowserTest, DisplayOptionsStartAtTheirDefaultsAndAreSharedAndWrittenAtEachClick)
{
    auto w = open(96);
    // An absent position gives the default window at the top left.
    EXPECT_EQ(w->pos(), QPoint(0, 0));
    EXPECT_EQ(w->size(),
        QSize(browser::twipsToPixels(9645, w->logicalDpiX()), browser::twipsToPixels(5800, w->logicalDpiY())));
    // Toolbar texts on, the new display, no filter at opening.
    EXPECT_TRUE(w->menuItem("mnuOpisiNaTipkama")->isChecked());
    EXPECT_FALSE(w->menuItem("mnuNeKoristiNoviGrid")->isChecked());
    EXPECT_FALSE(w->menuItem("mnuPostFiltera")->isChecked());
    EXPECT_FALSE(w->menuItem("mnuSelektMisem")->isChecked());
    EXPECT_TRUE(w->KoristiNoviPrikaz);
    EXPECT_EQ(w->findChild<QToolBar*>()->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);

    const QString app = settings::sharedApplication();
    const QString sec = settings::section();
    // Each click writes its option at once; another book reads them when its kind is set.
    const std::pair<const char*, const char*> options[]
        = { { "mnuNeKoristiNoviGrid", "mnuNeKoristiNoviGrid" }, { "mnuOpisiNaTipkama", "OpisiNaTipkama" },
              { "mnuPostFiltera", "PostaviFilterNaPočetku" }, { "mnuSelektMisem", "SelektiranjeKretanjemMiša" } };
    for (const auto& [item, key] : options) {
        const bool was = w->menuItem(item)->isChecked();
        w->menuItem(item)->trigger();
        EXPECT_NE(w->menuItem(item)->isChecked(), was) << item;
        EXPECT_EQ(settings::text(app, sec, QString::fromUtf8(key)), was ? "False" : "True") << item;
    }
    EXPECT_FALSE(w->KoristiNoviPrikaz);
    EXPECT_EQ(w->findChild<QToolBar*>()->toolButtonStyle(), Qt::ToolButtonIconOnly);
    auto other = open(99);
    for (const auto& option : options)
        EXPECT_EQ(other->menuItem(option.first)->isChecked(), w->menuItem(option.first)->isChecked()) << option.first;
    EXPECT_FALSE(other->KoristiNoviPrikaz);
}

TEST_F(BrowserTest, EachBookRemembersItsOwnPositionUnderItsCaptionButNotWhenMinimisedOrMaximised)
{
    {
        auto w = open(97);
        w->move(30, 45);
        w->resize(700, 420);
        w->close();
    }
    const QString caption = "Knjiga Evidencija potraživanja i obveza za FBiH";
    const QString sec = settings::section();
    if (QWidget().logicalDpiX() == 96) {
        for (const auto& [key, px] :
            { std::pair { "MainLeft", 30 }, { "MainTop", 45 }, { "MainWidth", 700 }, { "MainHeight", 420 } })
            EXPECT_EQ(settings::number(caption, sec, key, -1), browser::pixelsToTwips(px, 96)) << key;
    }
    auto same = open(97);
    EXPECT_EQ(same->pos(), QPoint(30, 45));
    EXPECT_EQ(same->size(), QSize(700, 420));
    // The RS variant of the same table keeps settings of its own.
    auto other = open(102);
    EXPECT_EQ(other->pos(), QPoint(0, 0));
    EXPECT_EQ(other->width(), browser::twipsToPixels(9645, other->logicalDpiX()));

    const QString turnover = "Knjiga prometa za FBiH";
    settings::setNumber(turnover, sec, "MainWidth", 6000);
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
    EXPECT_EQ(settings::number(turnover, sec, "MainWidth", -1), 6000);
    EXPECT_EQ(settings::text(turnover, sec, "MainLeft"), QString());
}

// The name column takes its width from the settings; the others fit their widest
// cell, though it lies far below the rows in view; the empty last column takes none.
TEST_F(BrowserTest, TheNameColumnTakesItsWidthFromTheSettingsTheOthersTheirContent)
{
    addPrihRash(1, 2016, 1, { 2016, 3, 1 }, 11, 100);
    settings::setNumber("Knjiga prihoda i rashoda za FBiH", settings::section(), "VelNazivaSifri", 4500);
    auto w = open(96);
    const int opis = w->rsStavke().indexOf("Opis");
    EXPECT_EQ(w->grid().columnWidth(opis), browser::twipsToPixels(4500, w->logicalDpiX()));
    EXPECT_TRUE(w->grid().isColumnHidden(w->model().columnCount() - 1)) << "the marker column I";

    for (int i = 1; i <= 80; ++i)
        add(99, i, { { "Vrsta", i == 80 ? 7 : 5 } });
    auto rs = open(99);
    const QString longest = "Prihod - Naplaćeni prihod od financiranja";
    const int vrsta = rs->rsStavke().indexOf("Vrsta");
    ASSERT_EQ(rs->model().displayText(rs->model().rowCount() - 2, vrsta), longest);
    EXPECT_GT(rs->grid().columnWidth(vrsta), rs->grid().fontMetrics().horizontalAdvance(longest));
    EXPECT_LT(rs->grid().columnWidth(rs->model().columnCount() - 1), rs->grid().columnWidth(vrsta) / 2);
}

TEST_F(BrowserTest, InsertAndRenumberFromTheMenusReloadTheGrid)
{
    for (int n = 1; n <= 5; ++n)
        addPrihRash(1, 2016, n, QDate(2016, 12 - n, 1), 11, n, 0, QStringLiteral("E%1").arg(n));
    auto w = open(Knjiga::PrihRashFBiH);
    const auto opisi = [&] {
        QStringList out;
        for (int r = 0; r < w->rsStavke().rowCount(); ++r)
            out << w->rsStavke().value(r, "Opis").toString();
        return out;
    };
    w->postaviTrenutniRed(2);
    w->menuItem("mnuUbaciZapis")->trigger();
    EXPECT_EQ(rBrojevi(*w), (QList<qint64> { 1, 2, 3, 4, 5, 6 }));
    EXPECT_EQ(opisi(), (QStringList { "E1", "E2", "", "E3", "E4", "E5" }));
    EXPECT_EQ(w->trenutniRBroj(), 3) << "the blank entry is current";
    EXPECT_TRUE(script->messages.isEmpty()) << "insertion asks nothing";

    script->answers.enqueue(Answer::Yes);
    w->menuItem("mnuRenumeracijaPoDat")->trigger();
    EXPECT_EQ(opisi(), (QStringList { "", "E5", "E4", "E3", "E2", "E1" }));
    EXPECT_EQ(rBrojevi(*w), (QList<qint64> { 1, 2, 3, 4, 5, 6 }));

    // The asset lists take no part even when reached directly; their own command asks.
    auto assets = open(Knjiga::PopListaFBiH);
    assets->ProvjeraNumeracije();
    assets->ReNumeracijaPoDatumu();
    assets->UbaciZapis();
    clock::setToday(QDate(2017, 1, 1));
    script->answers.enqueue(Answer::No);
    assets->menuItem("mnuPocetnoStanje")->trigger();
    clock::setToday({});
    ASSERT_EQ(script->messages.size(), 2);
    EXPECT_TRUE(script->messages[1].text.contains("početna stanja za 2017"));
}

// Alati: the book check's report in the text viewer, the closing of a period (level 0
// only) and an editor that refuses to save an entry of the closed period.
TEST_F(BrowserTest, TheCheckShowsItsReportAndAClosedPeriodRefusesTheEditor)
{
    add(96, 1, { { "Datum", QDate(2016, 1, 10) } });
    add(96, 2, { { "Datum", QDate(2016, 2, 10) } });
    auto w = open(Knjiga::PrihRashFBiH);
    db->exec("UPDATE dbo.KnjPrihRashFBiH SET Iznos=1 WHERE RBroj=2");
    QString report;
    script->onDialog = [&](QDialog& d) {
        auto* viewer = dynamic_cast<output::frmPrikazTeksta*>(&d);
        report = viewer ? viewer->txtPoruka->toPlainText() : QString();
        return int(QDialog::Accepted);
    };
    w->menuItem(QStringLiteral("mnuProvjeraKnjige"))->trigger();
    EXPECT_TRUE(report.startsWith("Provjera knjige: Knjiga prihoda i rashoda za FBiH (96)\nPoduzeće: 1, godina: 2016"))
        << report.toStdString();
    EXPECT_TRUE(report.contains("- Promijenjena izvan programa: stavka 2: IZNOS:")) << report.toStdString();

    // The period is closed through the dialog, by an operator of level 0 only.
    script->onDialog = [](QDialog& d) {
        d.findChild<QDateEdit*>(QStringLiteral("dpZakljucanoDo"))->setDate(QDate(2016, 1, 31));
        return int(QDialog::Accepted);
    };
    session().NivoPristupa = QStringLiteral("1");
    w->lockPeriod();
    session().NivoPristupa = QStringLiteral("0");
    w->lockPeriod();
    EXPECT_EQ(script->texts(),
        (QStringList { "Razdoblje knjige mogu zaključati samo operateri s nivoom pristupa 0.",
            "Knjiga je zaključana do 31.01.2016." }));

    // The editor refuses the January entry and lets the February one through.
    for (int row : { 0, 1 }) {
        script->messages.clear();
        script->onDialog = [](QDialog& d) {
            if (auto* e = dynamic_cast<editors::RecordEditor*>(&d))
                e->cmdSpremi->click();
            return d.result();
        };
        w->postaviTrenutniRed(row);
        w->IzmjenaZapisa(2);
        EXPECT_EQ(script->texts(),
            row == 0 ? QStringList { "Razdoblje knjige je zaključano do 31.01.2016. Stavka datirana 10.01.2016 ne može "
                                     "se mijenjati ni brisati." }
                     : QStringList());
    }
    EXPECT_EQ(table("SELECT Radnja FROM dbo.KnjDnevnik WHERE GodinaKnj=2016 AND TipKnjige=96 ORDER BY Redni"),
        "osnova\nzaključavanje\nizmjena");
}
