// Each book's record editor: its checks in order with their messages and focus, the
// row it writes, the links it keeps, and the rules behind them (kind lists, read
// statements, captions, search periods, the entry a list row stands for).
#include "core/ResultText.h"
#include "editors/EditorRules.h"
#include "editors/widgets/MoneyBox.h"
#include "editors/widgets/frmKnjEvidPotObvFBiH.h"
#include "editors/widgets/frmKnjPRashFBiHPregled.h"
#include "editors/widgets/frmKnjPrihodaRashodaRS.h"
#include "editors/widgets/frmKnjPrometa.h"
#include "editors/widgets/frmKnjTrgovacke.h"
#include "editors/widgets/frmPopListaDImovineFBiH.h"
#include "session/HostServices.h"
#include "session/Session.h"
#include "session/SettingsStore.h"
#include "test_editor_fixture.h"

#include <QMenuBar>
#include <QTest>
#include <gtest/gtest.h>

using namespace knjige;
using namespace knjige::test;
using namespace knjige::editors;

namespace
{

// A partner register whose chooser answers with a fixed partner.
class ChoosingRegister final : public PartnerRegister
{
public:
    std::optional<Partner> choose() override
    {
        ++chosen;
        return Partner { 2, "Prodavnica Zapad" };
    }
    std::optional<Partner> find(qint32 code) override
    {
        if (code == 1 || code == 2)
            return Partner { code, code == 1 ? QStringLiteral("Prodavnica Centar") : "Prodavnica Zapad" };
        return std::nullopt;
    }
    int chosen = 0;
};

using BookEditors = EditorTest;

} // namespace

// ---- receivables and liabilities ----

TEST_F(BookEditors, ReceivablesNeedAPartnerBeforeTheKindWarnOnAMissingLinkAndChangeTheirRow)
{
    auto e = editor<editors::frmKnjEvidPotObvFBiH>(97, 1);
    EXPECT_EQ(e->windowTitle(), "Upis nove stavke knjige evidencije Potraživanja i obveza");
    run(*e, [&] {
        save(*e,
            { { "ubRBroj=1;dpDatum=2016-04-04", "Mora se upisati šifra komitenta!", "txtKomitent" },
                { "txtKomitent=~1", "Mora se upisati šifra vrste!", "cboVrsta" } });
        EXPECT_EQ(e->lblKomit->text(), " Prodavnica Centar");
        save(*e,
            { { "cboVrsta=#2;txtIsprava=UR-55;txtOpis=Primljeni račun;ubIznos=123.45",
                "Bilo bi poželjno da se upiše redni broj u knjizi prihoda i rashoda! Podatak će se spremiti, ali "
                "pažljivo!",
                {}, "Napomena" } });
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_EQ(table("SELECT BrojPoduzeca,RBroj,SifKomit,Vrsta,Datum,GodinaKnj,Isprava,Opis,Iznos,RBrojKPR "
                    "FROM dbo.KnjEvidPotrIObvFBiH"),
        "1|1|1|21|2016-04-04|2016|UR-55|Primljeni račun|123.45|0");

    // A change reads the partner, the kind and the link, and rewrites the row.
    auto c = editor<editors::frmKnjEvidPotObvFBiH>(97, 2, 1);
    run(*c, [&] {
        EXPECT_EQ(values(*c, "txtKomitent;lblKomit;cboVrsta;ubKPR"), "1| Prodavnica Centar|21 - Primljeni racuni|0");
        save(*c, { { "txtKomitent=~2;cboVrsta=#1;ubKPR=3;ubIznos=45" } });
    });
    EXPECT_EQ(table("SELECT RBroj,Datum,Vrsta,Iznos,RBrojKPR,SifKomit,Opis FROM dbo.KnjEvidPotrIObvFBiH"),
        "1|2016-04-04|12|45|3|2|Primljeni račun");
}

TEST_F(BookEditors, ReceivablesPartnerChooserByButtonAndF2)
{
    auto reg = std::make_unique<ChoosingRegister>();
    ChoosingRegister* partners = reg.get();
    HostServices services;
    services.partners = std::move(reg);
    installHostServices(std::move(services));
    auto e = editor<editors::frmKnjEvidPotObvFBiH>(102, 1);
    run(*e, [&] {
        e->cmdPrKomit->click();
        EXPECT_EQ(values(*e, "txtKomitent;lblKomit"), "2| Prodavnica Zapad");
        EXPECT_EQ(focusOf(*e), "txtKomitent");
        e->txtKomitent->clear();
        QTest::keyClick(e->txtKomitent, Qt::Key_F2);
        EXPECT_EQ(e->txtKomitent->text(), "2");
    });
    EXPECT_EQ(partners->chosen, 2);
    EXPECT_EQ(e->cKomit().ImeKomit1, "Prodavnica Zapad");
}

// ---- negative amounts, in every editor that warns of them as they are left ----

TEST_F(BookEditors, LeavingANegativeAmountWarns)
{
    const QString assets = "Unešena vrijednost je negativna, pažljivo !";
    const struct {
        int book;
        QString box, typed, value, text;
    } cases[] = {
        { 105, "ubNabavna", "-5", "-5", assets },
        { 105, "ubKnjigovodstvena", "-5", "-5", assets },
        { 98, "ubGotovina", "-1,5", "-1.5", assets },
        { 98, "ubCek", "-1,5", "-1.5", assets },
        { 96, "ubIznos", "-5", "-5", "Unesena vrijednost je negativna, pažljivo !" },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.box.toStdString());
        script->clear();
        auto e = editor(c.book, 1);
        run(*e, [&] {
            auto* box = qobject_cast<editors::MoneyBox*>(e->control(c.box));
            type(box, c.typed, true);
            ASSERT_EQ(script->messages.size(), 1);
            EXPECT_EQ(lastMessage().text, c.text);
            EXPECT_EQ(lastMessage().title, "Napomena");
            EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
            EXPECT_EQ(values(*e, c.box), c.value);
            // The income and expense book moves on to the VAT; a positive amount leaves quietly.
            if (c.book == 96) {
                EXPECT_EQ(focusOf(*e), "ubIznosPDV");
            }
            type(box, "7", true);
            EXPECT_EQ(script->messages.size(), 1);
        });
        EXPECT_TRUE(e->IzišaoSaPrekidom());
    }
}

// ---- asset lists ----

TEST_F(BookEditors, AssetListsNeverWriteTheNumberAndCheckLifeAndValues)
{
    auto e = editor<editors::frmPopListaDImovineFBiH>(105, 1);
    run(*e, [&] {
        save(*e,
            { { "ubRBroj=77;dpDatum=2016-02-01;txtBrojDokumenta=15;txtNazivSredstva=Kombi vozilo;ubVijekTrajanja=5;"
                "ubNabavna=900;ubKnjigovodstvena=1000",
                  "Nabavna vrijednost mora biti veća ili jednaka od knjigovodstvene!", "ubNabavna" },
                { "ubNabavna=1000" } });
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    // Numbered by the table, not the 77 typed.
    const QString sql = "SELECT RBroj,Naziv,Isprava,VijekTr,NabVrijednost,KnjigVrijednost,GodinaKnj "
                        "FROM dbo.KnjPopListaDugImovFBiH";
    EXPECT_EQ(table(sql), "1|Kombi vozilo|15|5|1000|1000|2016");

    auto c = editor<editors::frmPopListaDImovineFBiH>(105, 2, 1);
    run(*c, [&] {
        EXPECT_EQ(c->txtNazivSredstva->text(), "Kombi vozilo");
        save(*c,
            { { "ubRBroj=9;ubKnjigovodstvena=0", "Unesena vrijednost je negativna ili 0 pažljivo !",
                  "ubKnjigovodstvena", "Napomena" },
                { "ubKnjigovodstvena=800" } });
    });
    EXPECT_EQ(table(sql), "1|Kombi vozilo|15|5|1000|800|2016");

    // The RS list uses the same table and checks.
    auto r = editor<editors::frmPopListaDImovineFBiH>(101, 1);
    run(*r, [&] {
        save(*r,
            { { "dpDatum=2016-12-01;txtBrojDokumenta=3;ubVijekTrajanja=0", "Vijek trajanja ne može biti 0 ili manji!" },
                { "ubVijekTrajanja=5;ubNabavna=0;ubKnjigovodstvena=0",
                    "Unesena vrijednost je negativna ili 0, pažljivo !", "ubNabavna", "Napomena" } });
    });
    EXPECT_TRUE(r->IzišaoSaPrekidom());
    EXPECT_EQ(count("dbo.KnjPopListaDugImovFBiH"), 1);
}

// ---- turnover ----

TEST_F(BookEditors, TurnoverTakesANegativeNumberButNotZeroOrNoAmountAndWarnsOfANegativeAmount)
{
    auto e = editor<editors::frmKnjPrometa>(98, 1);
    run(*e, [&] {
        save(*e,
            { { "ubRBroj=0;dpDatum=2016-07-07;txtIsprava=P-1", "Morate upisati redni broj različit od 0!" },
                { "ubRBroj=-3", "Jedan od iznosa mora biti različit od nule !" }, { "ubCek=50" } });
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_EQ(table("SELECT RBroj,IznosGot,IznosCek,Isprava FROM dbo.KnjPrometaFBiH"), "-3|0|50|P-1");

    // The RS book changes the same table, its cheques relabelled by the browser.
    auto c = editor<editors::frmKnjPrometa>(106, 2, -3);
    c->lblČekovi->setText("Račun:");
    run(*c, [&] {
        EXPECT_EQ(values(*c, "ubGotovina;ubCek"), "0|50");
        save(*c, { { "ubGotovina=-10", "Unesena vrijednost je negativna, pažljivo !", {}, "Napomena" } });
    });
    EXPECT_EQ(table("SELECT RBroj,IznosGot,IznosCek FROM dbo.KnjPrometaFBiH"), "-3|-10|50");
}

// ---- trade books ----

TEST_F(BookEditors, TradeBooksNumberPerShopCheckTheirShopAndAmountsAndChangeByShop)
{
    for (int shop : { 1, 2, 1 }) {
        auto e = editor<editors::frmKnjUsluga>(125, 1);
        e->setShop(shop);
        run(*e, [&] {
            save(*e,
                { { "dpDatum=2016-08-01;txtOpis=Usluga", "Iznos mora biti različit od nule !", "ubIznos" },
                    { "ubIznos=10" } });
        });
        EXPECT_FALSE(e->IzišaoSaPrekidom()) << texts().join(u'|').toStdString();
    }
    EXPECT_EQ(table("SELECT BrojProd,RBroj FROM dbo.TrgKnjUsluga ORDER BY BrojProd,RBroj"), "1|1\n1|2\n2|1");

    // The consignment book checks its shop and amounts, and changes an entry by its shop.
    auto e = editor<editors::frmKnjKomisiona>(126, 1);
    EXPECT_EQ(e->windowTitle(), "Upis nove stavke trg.knjige komisione robe");
    run(*e, [&] {
        save(*e, { { "dpDatum=2016-08-01", "Mora se upisati maloprodaja!", "txtSkladište" } });
        set(*e, "txtSkladište=~2");
        EXPECT_EQ(values(*e, "lblSkladište;ubRBroj"), " Prodavnica Zapad|1");
        save(*e, { { {}, "Bar jedan iznos mora biti različit od nule !" }, { "ubRazduženje=120" } });
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());

    auto c = editor<editors::frmKnjKomisiona>(126, 2, 1);
    c->setShop(2); // read by its shop (the statement: EditorRules)
    script->clear();
    run(*c, [&] {
        EXPECT_TRUE(texts().isEmpty()) << texts().join(u'|').toStdString();
        EXPECT_EQ(c->ubRazduženje->value(), Money::fromWhole(120));
        save(*c, { { "ubZaduženje=30" } });
    });
    EXPECT_EQ(table("SELECT BrojPoduzeca,BrojProd,RBroj,GodinaKnj,Zaduzenje,Razduzenje FROM dbo.TrgKnjKomisiona"),
        "1|2|1|2016|30|120");

    // A shop unknown to the partners is refused.
    for (int book : { 125, 126 }) {
        auto u = editor<editors::TrgKnjigaEditor>(book, 1);
        run(*u, [&] {
            set(*u, "txtSkladište=~77");
            set(*u, book == 125 ? "ubIznos=10" : "ubZaduženje=10");
            save(*u,
                { { "ubRBroj=1;dpDatum=2016-08-01;txtOpis=Nepostojeća", "Maloprodaja sa šifrom 77 ne postoji!",
                    "txtSkladište" } });
            EXPECT_TRUE(u->isVisible());
        });
        EXPECT_TRUE(u->IzišaoSaPrekidom());
    }
    EXPECT_EQ(count("dbo.TrgKnjUsluga") + count("dbo.TrgKnjKomisiona"), 4);
}

// ---- RS income and expense ----

TEST_F(BookEditors, RsIncomeAndExpenseCheckInOrderAndGoToTheirOwnTables)
{
    EXPECT_EQ(editors::createEditor(100)->windowTitle(), "Knjiga rashoda RS");
    const struct {
        int book;
        QString naslov, table, vrsta, row;
    } books[] = {
        { 99, "Knjiga prihoda RS", "dbo.KnjPrihodaRS", "5 - Prihod - Robe", "5|70|7" },
        { 100, "Knjiga rashoda RS", "dbo.KnjRashodaRS", "10 - Rashod - Amortizacija", "10|70|7" },
    };
    for (const auto& b : books) {
        auto e = editor<editors::frmKnjPrihodaRashodaRS>(b.book, 1);
        EXPECT_EQ(e->lblNaslov->text(), b.naslov);
        EXPECT_EQ(e->windowTitle(), "Upis nove stavke knjige prihoda");
        run(*e, [&] {
            save(*e,
                { { "ubRBroj=0;dpDatum=2016-09-09", "Morate upisati redni broj različit od 0!", "ubRBroj" },
                    { "ubRBroj=1", "Mora se upisati šifra vrste!", "cboVrsta" },
                    { "cboVrsta=" + b.vrsta, "Iznos mora biti različit od nule !", "ubIznos" } });
            EXPECT_EQ(count(b.table), 0);
            save(*e, { { "ubIznos=70;ubIznosPDV=7" } });
        });
        EXPECT_FALSE(e->IzišaoSaPrekidom());
        EXPECT_EQ(table("SELECT Vrsta,Iznos,IznosPDV FROM " + b.table), b.row);
    }

    exec("INSERT INTO dbo.KnjRashodaRS (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Vrsta,Iznos,IznosPDV) "
         "VALUES (1,2,'09.10.2016',2016,'Ne priznaje se',13,5,0)");
    auto d = editor<editors::frmKnjPrihodaRashodaRS>(100, 4, 2);
    run(*d, [&] {
        EXPECT_EQ(d->cboVrsta->currentText(), "13 - Rashod - Rashodi koji se ne priznaju");
        save(*d, { {} });
    });
    EXPECT_EQ(count("dbo.KnjRashodaRS"), 1);
}

namespace
{

class PrihRashEditor : public EditorTest
{
protected:
    void insertFBiH(int rbroj, int vrsta, const QString& iznos, const QString& pdv)
    {
        exec(QStringLiteral("INSERT INTO dbo.KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Opis,Vrsta,"
                            "Iznos,IznosPDV) VALUES (1,%1,'03.01.2016',2016,'D-%1','Stavka %1',%2,%3,%4)")
                 .arg(rbroj)
                 .arg(vrsta)
                 .arg(iznos, pdv));
    }
    void insertLink(int rbroj, int kpr)
    {
        exec(QStringLiteral("INSERT INTO dbo.KnjEvidPotrIObvFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,SifKomit,Vrsta,"
                            "Opis,Isprava,Iznos,RBrojKPR) VALUES (1,%1,'03.01.2016',2016,1,11,'Veza','R-%1',10,%2)")
                 .arg(rbroj)
                 .arg(kpr));
    }
};

} // namespace

TEST_F(PrihRashEditor, NewEntryWritesEveryColumnWithTheVatOfTheAmountUnlessTheOptionSaysNot)
{
    auto e = editor<frmKnjPRashFBiHPregled>(96, 1);
    EXPECT_EQ(e->windowTitle(), "Upis nove stavke knjige prihoda i rashoda");
    EXPECT_EQ(e->cmdSpremi->text(), "Spremi");
    run(*e, [&] {
        set(*e, "ubRBroj=1;dpDatum=2016-03-15;txtIsprava=~KIF-12;txtOpis=~Dnevni pazar;cmbVrsta=#0");
        type(e->ubIznos, "100,00");
        EXPECT_EQ(e->ubIznosPDV->value(), Money::fromUnits(145299));
        save(*e, { {} });
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_TRUE(texts().isEmpty()) << texts().join(u'|').toStdString();
    EXPECT_EQ(
        table("SELECT BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Opis,Vrsta,Iznos,IznosPDV FROM dbo.KnjPrihRashFBiH"),
        "1|1|2016-03-15|2016|KIF-12|Dnevni pazar|11|100|14.5299");

    // The option not to compute the VAT leaves it, and persists.
    settings::setFlag("Arbosa", "Settings", "KnjNeIzrPDV", true);
    auto o = editor<frmKnjPRashFBiHPregled>(96, 1);
    EXPECT_TRUE(o->mnuNeIzrPDV->isChecked());
    o->ubIznosPDV->setValue(Money::fromWhole(3));
    o->ubIznos->setValue(Money::fromWhole(100));
    EXPECT_EQ(o->ubIznosPDV->value(), Money::fromWhole(3));
    o->mnuNeIzrPDV->trigger();
    EXPECT_FALSE(settings::flag("Arbosa", "Settings", "KnjNeIzrPDV", true));
    o->ubIznos->setValue(Money::fromWhole(117));
    EXPECT_EQ(o->ubIznosPDV->value(), Money::fromWhole(17));
}

TEST_F(PrihRashEditor, ChecksRunInOrderWithTheirMessagesAndFocus)
{
    auto e = editor<frmKnjPRashFBiHPregled>(96, 1);
    run(*e, [&] {
        save(*e,
            { { "ubRBroj=0;dpDatum=2015-12-31", "Morate upisati redni broj veći od 0!", "ubRBroj" },
                { "ubRBroj=4", "Godina unesenog datuma ne odgovara tekućoj radnoj godini! Ispravite!", "dpDatum" },
                { "dpDatum=2016-01-02;txtIsprava=   ", "Mora se upisati isprava !", "txtIsprava" },
                { "txtIsprava=I-1", "Mora se upisati šifra vrste knj.promjene!", "cmbVrsta" },
                { "cmbVrsta=#3", "Iznos mora biti različit od nule !", "ubIznos" } });
        EXPECT_EQ(count("dbo.KnjPrihRashFBiH"), 0);
        EXPECT_TRUE(e->isVisible());
        save(*e,
            { { "ubIznos=-20", "Unesena vrijednost je negativna, pažljivo! Podatak će se upisati!", {}, "Napomena" } });
    });
    EXPECT_EQ(table("SELECT RBroj,Vrsta,Iznos FROM dbo.KnjPrihRashFBiH"), "4|16|-20");
}

TEST_F(PrihRashEditor, ChangingTheNumberCarriesTheReceivablesLink)
{
    insertFBiH(7, 11, "50", "7.2650");
    insertLink(1, 7);
    exec("INSERT INTO dbo.KnjEvidPotrIObvFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,SifKomit,Vrsta,Opis,"
         "Isprava,Iznos,RBrojKPR) VALUES (1,2,'03.01.2015',2015,1,11,'Druga godina','R',10,7)");
    auto e = editor<frmKnjPRashFBiHPregled>(96, 2, 7);
    run(*e, [&] {
        EXPECT_EQ(values(*e, "txtIsprava;cmbVrsta;ubIznosPDV"), "D-7|11 - Prihod - Gotovina|7.265");
        save(*e, { { "ubRBroj=9" } });
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    // The entry's change and the links that followed it, journaled in that order.
    std::vector<journal::Record> chain;
    ASSERT_TRUE(journal::readChain(session().db(), 1, 2016, chain));
    ASSERT_GE(chain.size(), 2u);
    EXPECT_EQ(chain[chain.size() - 2].radnja + QString::number(chain[chain.size() - 2].rBroj.value_or(0)), "izmjena9");
    EXPECT_EQ(chain.back().radnja + u':' + chain.back().poslije, "veze:=7>9\n");
    // Another year keeps its link.
    EXPECT_EQ(table("SELECT GodinaKnj,RBrojKPR FROM dbo.KnjEvidPotrIObvFBiH ORDER BY GodinaKnj"), "2015|7\n2016|9");
    EXPECT_EQ(table("SELECT RBroj,Isprava FROM dbo.KnjPrihRashFBiH"), "9|D-7");
}

TEST_F(PrihRashEditor, ALinkedEntryCannotBeDeletedAnUnlinkedOneCanAndAnUncheckedOneIs)
{
    insertFBiH(3, 16, "80", "0");
    insertFBiH(4, 12, "90", "0");
    insertLink(1, 3);
    auto e = editor<frmKnjPRashFBiHPregled>(96, 4, 3);
    run(*e, [&] {
        EXPECT_FALSE(e->txtIsprava->isEnabled());
        EXPECT_TRUE(e->cmdSpremi->isEnabled());
        EXPECT_EQ(e->cmdSpremi->text(), "Obriši");
        save(*e,
            { { {},
                "Postoji vezana stavka sa ovom stavkom u knjizi evidencije potraživanja i obveza (redni "
                "broj).\nNije moguće izbrisati zapis u knjizi prihoda i rashoda, dok se ne obriše "
                "odgovarajući zapis u knjizi evid.obv.i potraživanja!" } });
        EXPECT_TRUE(e->isVisible());
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
    EXPECT_EQ(count("dbo.KnjPrihRashFBiH"), 2);

    auto d = editor<frmKnjPRashFBiHPregled>(96, 4, 4);
    run(*d, [&] { save(*d, { {} }); });
    EXPECT_FALSE(d->IzišaoSaPrekidom());
    EXPECT_EQ(table("SELECT RBroj FROM dbo.KnjPrihRashFBiH"), "3");

    // When the link cannot be checked the deletion goes on, after saying so.
    exec("DROP TABLE dbo.KnjEvidPotrIObvFBiH");
    auto u = editor<frmKnjPRashFBiHPregled>(96, 4, 3);
    run(*u, [&] { save(*u, { { {}, "Desila se greška: u čitanju stavke.", {}, {}, Icon::None } }); });
    EXPECT_FALSE(u->IzišaoSaPrekidom());
    EXPECT_EQ(count("dbo.KnjPrihRashFBiH"), 0);
}

TEST_F(PrihRashEditor, TheDbBookHasNoVatAndNeverComputesIt)
{
    settings::setFlag("Arbosa", "Settings", "KnjNeIzrPDV", false);
    auto e = editor<frmKnjPRashFBiHPregled>(109, 1);
    run(*e, [&] {
        EXPECT_FALSE(e->ubIznosPDV->isVisible());
        EXPECT_FALSE(e->lblIznosPDV->isVisible());
        EXPECT_FALSE(e->menuBar->isVisible());
        EXPECT_EQ(e->cmbVrsta->count(), 11);
        EXPECT_EQ(e->cmbVrsta->itemText(0), " 5 - Prihod - Gotovina");
        set(*e, "ubRBroj=1;dpDatum=2016-06-01;txtIsprava=B-1;cmbVrsta=#10;ubIznos=~100");
        EXPECT_TRUE(e->ubIznosPDV->value().isZero());
        save(*e, { {} });
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    const db::ResultSet rs = rows("SELECT * FROM dbo.KnjPrihRashDB");
    EXPECT_EQ(rs.indexOf("IznosPDV"), -1);
    EXPECT_EQ(dump(rs), "1|1|2016-06-01|2016|B-1||16|100");

    // Kind 16 maps back to the last list position; the DB book skips the link check.
    auto d = editor<frmKnjPRashFBiHPregled>(109, 4, 1);
    run(*d, [&] {
        EXPECT_EQ(d->cmbVrsta->currentIndex(), 10);
        d->cmdSpremi->click();
    });
    EXPECT_EQ(count("dbo.KnjPrihRashDB"), 0);
}

TEST(EditorRules, KindListsMapCodesToPositionsBothWays)
{
    for (int book : { 96, 109, 97, 102, 99, 100 }) {
        const QStringList texts = vrstaTexts(book);
        ASSERT_FALSE(texts.isEmpty()) << book;
        for (int i = 0; i < texts.size(); ++i)
            EXPECT_EQ(vrstaPosition(book, vrstaCode(texts[i])), i) << book << " " << texts[i].toStdString();
    }
    // The expense list RS jumps from 10 to 13; the DB list from 7 to 9.
    EXPECT_EQ(vrstaCode(vrstaTexts(100).at(6)), 10);
    EXPECT_EQ(vrstaCode(vrstaTexts(100).at(7)), 13);
    EXPECT_EQ(vrstaPosition(100, 11), -1);
    EXPECT_EQ(vrstaCode(QString()), 0);
    EXPECT_TRUE(vrstaTexts(98).isEmpty());
}

TEST(EditorRules, ReadStatementsAndCaptionsAreTheSystemsTexts)
{
    const QString read = "SELECT * FROM %1 WHERE GODINAKNJ=2016 AND BROJPODUZECA=%2 AND RBroj=%3";
    const std::tuple<int, int, int, const char*> entries[]
        = { { 96, 1, 7, "dbo.KnjPrihRashFBiH" }, { 102, 3, 2, "dbo.KnjEvidPotrIObvFBiH" } };
    for (const auto& [book, company, rbroj, table] : entries)
        EXPECT_EQ(readEntrySql(book, 2016, company, rbroj), read.arg(table).arg(company).arg(rbroj)) << book;
    EXPECT_EQ(readEntrySql(101, 2016, 1, 1), readEntrySql(105, 2016, 1, 1));
    // The year and the keyword touch in the trade books.
    EXPECT_EQ(readEntrySql(125, 2016, 1, 5, 2),
        "SELECT * FROM dbo.TrgKnjUsluga WHERE BROJPODUZECA=1 AND GODINAKNJ=2016AND BrojProd=2 AND RBroj=5");

    // Searching has one caption for every book.
    EXPECT_EQ(modeCaption(3, 98), "Pretraživanje");
    EXPECT_EQ(modeCaption(7, 98), QString());
}

TEST(EditorRules, SearchPeriodAndTheReceivablesWarningBeforeARefusal)
{
    const struct {
        QDate today;
        int year;
        QDate from, to;
    } periods[] = {
        // 10 January of the working year: from 11 December of the year before, to today.
        { { 2016, 1, 10 }, 2016, { 2015, 12, 11 }, { 2016, 1, 10 } },
        // A past working year pulls both dates back into it.
        { { 2017, 3, 15 }, 2016, { 2016, 1, 1 }, { 2016, 12, 31 } },
        // Early January: the start stays in the working year, the end is pulled back.
        { { 2017, 1, 5 }, 2016, { 2016, 12, 6 }, { 2016, 12, 31 } },
        // A working year after today's is left as computed.
        { { 2016, 6, 30 }, 2017, { 2016, 5, 31 }, { 2016, 6, 30 } },
    };
    for (const auto& p : periods)
        EXPECT_EQ(searchPeriod(p.today, p.year), std::make_pair(p.from, p.to)) << p.today.toString().toStdString();

    // The receivables warning on a missing link comes before the document check.
    const Findings f
        = checkEvid({ 1, QDate(2016, 2, 2), 1, "11 - Izdati racuni", 0, QString(), Money::fromWhole(1) }, 2016);
    ASSERT_EQ(f.size(), 2);
    EXPECT_TRUE(f[0].warning);
    EXPECT_EQ(f[1].text, "Mora se upisati isprava !");
    EXPECT_TRUE(refuses(f));
}

TEST(EditorRules, AnEntryReadByItsNumberIsTheOneTheListShows)
{
    const QDate first(2016, 3, 1), second(2016, 3, 2);
    const db::ResultSet read = resultSet(
        { { "RBroj", db::FieldType::Integer }, { "Datum", db::FieldType::Date }, { "Opis", db::FieldType::Text },
            { "Iznos", db::FieldType::Currency }, { "Vrsta", db::FieldType::Integer } },
        { { 5, first, "Prva", "10", 5 }, { 5, second, "Druga", "20", 5 }, { 5, second, "Druga", "30", 5 } });
    // The list names its kind column by text and shows the amount as an integer.
    const db::ResultSet list
        = resultSet({ { "RBroj", db::FieldType::Integer }, { "Vrsta", db::FieldType::Text },
                        { "Datum", db::FieldType::Date }, { "Opis", db::FieldType::Text },
                        { "Iznos", db::FieldType::Integer }, { "Prihodi", db::FieldType::Currency } },
            { { 5, "Prihod - Robe", second, "Druga", 30 }, { 5, "Prihod - Robe", first, "Prva", 10 },
                { 5, "Prihod - Robe", second, "Druga", 20 }, { 5, "Prihod - Robe", second, "Druga", 25 } });
    EXPECT_EQ(matchingRow(read, &list, 0), 2);
    EXPECT_EQ(matchingRow(read, &list, 1), 0);
    EXPECT_EQ(matchingRow(read, &list, 2), 1);
    EXPECT_EQ(matchingRow(read, &list, 3), 1) << "the first of equals";
    // Without a list row the first is taken; without candidates there is none.
    EXPECT_EQ(matchingRow(read, nullptr, -1), 0);
    EXPECT_EQ(matchingRow(read, &list, -1), 0);
    EXPECT_EQ(matchingRow(db::ResultSet(read.fields()), &list, 0), -1);

    const db::ResultSet one = singleRow(read, 2);
    ASSERT_EQ(one.rowCount(), 1);
    EXPECT_EQ(one.money(0, 3), Money::fromWhole(30));
    EXPECT_EQ(one.text(0, 2), "Druga");
    EXPECT_EQ(one.date(0, 1), second);
}
