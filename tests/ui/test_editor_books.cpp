#include "editors/widgets/MoneyBox.h"
#include "editors/widgets/frmKnjEvidPotObvFBiH.h"
#include "editors/widgets/frmKnjPrihodaRashodaRS.h"
#include "editors/widgets/frmKnjPrometa.h"
#include "editors/widgets/frmKnjTrgovacke.h"
#include "editors/widgets/frmPopListaDImovineFBiH.h"
#include "session/HostServices.h"
#include "session/Session.h"
#include "test_editor_fixture.h"

#include <QTest>

using namespace knjige;
using namespace knjige::test;

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

TEST_F(BookEditors, ReceivablesNeedAPartnerBeforeTheKindAndWarnOnAMissingLink)
{
    auto e = editor<frmKnjEvidPotObvFBiH>(97, 1);
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
}

TEST_F(BookEditors, ReceivablesPartnerChooserByButtonAndF2)
{
    auto reg = std::make_unique<ChoosingRegister>();
    ChoosingRegister* partners = reg.get();
    HostServices services;
    services.partners = std::move(reg);
    installHostServices(std::move(services));
    auto e = editor<frmKnjEvidPotObvFBiH>(102, 1);
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

TEST_F(BookEditors, ReceivablesChangeReadsAndRewritesTheRow)
{
    exec("INSERT INTO dbo.KnjEvidPotrIObvFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,SifKomit,Vrsta,Opis,Isprava,Iznos,"
         "RBrojKPR) VALUES (1,5,'05.20.2016',2016,2,12,'Uplata','IR-9',40,3)");
    auto e = editor<frmKnjEvidPotObvFBiH>(97, 2, 5);
    run(*e, [&] {
        EXPECT_EQ(
            values(*e, "txtKomitent;lblKomit;cboVrsta;ubKPR"), "2| Prodavnica Zapad|12 - Uplate za izdate racune|3");
        save(*e, { { "ubIznos=45" } });
    });
    EXPECT_EQ(table("SELECT RBroj,Iznos,RBrojKPR,SifKomit,Opis FROM dbo.KnjEvidPotrIObvFBiH"), "5|45|3|2|Uplata");
}

// ---- negative amounts, in every editor that warns of them as they are left ----

TEST_F(BookEditors, LeavingANegativeAmountWarns)
{
    const struct {
        int book;
        const char* box;
        const char* typed;
        Money value;
        const char* text;
    } cases[] = {
        { 105, "ubNabavna", "-5", -Money::fromWhole(5), "Unešena vrijednost je negativna, pažljivo !" },
        { 105, "ubKnjigovodstvena", "-5", -Money::fromWhole(5), "Unešena vrijednost je negativna, pažljivo !" },
        { 98, "ubGotovina", "-1,5", -Money::fromUnits(15000), "Unešena vrijednost je negativna, pažljivo !" },
        { 98, "ubCek", "-1,5", -Money::fromUnits(15000), "Unešena vrijednost je negativna, pažljivo !" },
        { 96, "ubIznos", "-5", -Money::fromWhole(5), "Unesena vrijednost je negativna, pažljivo !" },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.box);
        script->clear();
        auto e = editor(c.book, 1);
        run(*e, [&] {
            auto* box = qobject_cast<MoneyBox*>(e->control(c.box));
            type(box, c.typed, true);
            ASSERT_EQ(script->messages.size(), 1);
            EXPECT_EQ(lastMessage().text, c.text);
            EXPECT_EQ(lastMessage().title, "Napomena");
            EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
            EXPECT_EQ(box->value(), c.value);
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

TEST_F(BookEditors, AssetListNeverWritesTheNumberAndChecksValues)
{
    auto e = editor<frmPopListaDImovineFBiH>(105, 1);
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

    auto c = editor<frmPopListaDImovineFBiH>(105, 2, 1);
    run(*c, [&] {
        EXPECT_EQ(c->txtNazivSredstva->text(), "Kombi vozilo");
        save(*c,
            { { "ubRBroj=9;ubKnjigovodstvena=0", "Unesena vrijednost je negativna ili 0 pažljivo !",
                  "ubKnjigovodstvena", "Napomena" },
                { "ubKnjigovodstvena=800" } });
    });
    EXPECT_EQ(table(sql), "1|Kombi vozilo|15|5|1000|800|2016");
}

TEST_F(BookEditors, AssetListRsUsesTheSharedTableAndRefusesNoLifeAndNoValue)
{
    auto e = editor<frmPopListaDImovineFBiH>(101, 1);
    EXPECT_EQ(e->readSql().left(48), "SELECT * FROM dbo.KnjPopListaDugImovFBiH WHERE G");
    run(*e, [&] {
        save(*e,
            { { "dpDatum=2016-12-01;txtBrojDokumenta=3;ubVijekTrajanja=0", "Vijek trajanja ne može biti 0 ili manji!" },
                { "ubVijekTrajanja=5;ubNabavna=0;ubKnjigovodstvena=0",
                    "Unesena vrijednost je negativna ili 0, pažljivo !", "ubNabavna", "Napomena" } });
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
    EXPECT_EQ(count("dbo.KnjPopListaDugImovFBiH"), 0);
}

// ---- turnover ----

TEST_F(BookEditors, TurnoverAcceptsANegativeNumberButNotZeroOrNoAmount)
{
    auto e = editor<frmKnjPrometa>(98, 1);
    run(*e, [&] {
        save(*e,
            { { "ubRBroj=0;dpDatum=2016-07-07;txtIsprava=P-1", "Morate upisati redni broj različit od 0!" },
                { "ubRBroj=-3", "Jedan od iznosa mora biti različit od nule !" }, { "ubCek=50" } });
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_EQ(table("SELECT RBroj,IznosGot,IznosCek,Isprava FROM dbo.KnjPrometaFBiH"), "-3|0|50|P-1");
}

TEST_F(BookEditors, TurnoverRsChangesTheSharedTableAndWarnsOnNegativeAmounts)
{
    exec("INSERT INTO dbo.KnjPrometaFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Isprava,IznosGot,IznosCek) "
         "VALUES (1,2,'02.02.2016',2016,'Promet','PR-2',100,0)");
    auto e = editor<frmKnjPrometa>(106, 2, 2);
    e->lblČekovi->setText("Račun:");
    run(*e, [&] {
        EXPECT_EQ(e->ubGotovina->value(), Money::fromWhole(100));
        save(*e, { { "ubGotovina=-10", "Unesena vrijednost je negativna, pažljivo !", {}, "Napomena" } });
    });
    EXPECT_EQ(table("SELECT IznosGot FROM dbo.KnjPrometaFBiH"), "-10");
}

// ---- trade books ----

TEST_F(BookEditors, ServicesNumberPerShopAndRefuseAZeroAmount)
{
    for (int shop : { 1, 2, 1 }) {
        auto e = editor<frmKnjUsluga>(125, 1);
        e->setSkladište(shop);
        run(*e, [&] {
            save(*e,
                { { "dpDatum=2016-08-01;txtOpis=Usluga", "Iznos mora biti različit od nule !", "ubIznos" },
                    { "ubIznos=10" } });
        });
        EXPECT_FALSE(e->IzišaoSaPrekidom()) << texts().join(u'|').toStdString();
    }
    EXPECT_EQ(table("SELECT BrojProd,RBroj FROM dbo.TrgKnjUsluga ORDER BY BrojProd,RBroj"), "1|1\n1|2\n2|1");
}

TEST_F(BookEditors, TradeBookChecksAndChangeByShop)
{
    auto e = editor<frmKnjKomisiona>(126, 1);
    EXPECT_EQ(e->windowTitle(), "Upis nove stavke trg.knjige komisione robe");
    run(*e, [&] {
        save(*e, { { "dpDatum=2016-08-01", "Mora se upisati maloprodaja!", "txtSkladište" } });
        set(*e, "txtSkladište=~2");
        EXPECT_EQ(values(*e, "lblSkladište;ubRBroj"), " Prodavnica Zapad|1");
        save(*e, { { {}, "Bar jedan iznos mora biti različit od nule !" }, { "ubRazduženje=120" } });
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());

    auto c = editor<frmKnjKomisiona>(126, 2, 1);
    c->setSkladište(2);
    EXPECT_EQ(c->readSql(),
        "SELECT * FROM dbo.TrgKnjKomisiona WHERE BROJPODUZECA=1 AND GODINAKNJ=2016AND BrojProd=2 AND RBroj=1");
    script->clear();
    run(*c, [&] {
        EXPECT_TRUE(texts().isEmpty()) << texts().join(u'|').toStdString();
        EXPECT_EQ(c->ubRazduženje->value(), Money::fromWhole(120));
        save(*c, { { "ubZaduženje=30" } });
    });
    EXPECT_EQ(table("SELECT BrojPoduzeca,BrojProd,RBroj,GodinaKnj,Zaduzenje,Razduzenje FROM dbo.TrgKnjKomisiona"),
        "1|2|1|2016|30|120");
}

TEST_F(BookEditors, TradeBooksRefuseAShopUnknownToThePartners)
{
    for (int book : { 125, 126 }) {
        auto e = editor<TrgKnjigaEditor>(book, 1);
        run(*e, [&] {
            set(*e, "txtSkladište=~77");
            set(*e, book == 125 ? "ubIznos=10" : "ubZaduženje=10");
            save(*e,
                { { "ubRBroj=1;dpDatum=2016-08-01;txtOpis=Nepostojeća", "Maloprodaja sa šifrom 77 ne postoji!",
                    "txtSkladište" } });
            EXPECT_TRUE(e->isVisible());
        });
        EXPECT_TRUE(e->IzišaoSaPrekidom());
        EXPECT_EQ(count(editors::entryTable(book)), 0);
    }
}

// ---- RS income and expense ----

TEST_F(BookEditors, RsIncomeAndExpenseCheckInOrderAndGoToTheirOwnTables)
{
    EXPECT_EQ(createEditor(100)->windowTitle(), "Knjiga rashoda RS");
    const struct {
        int book;
        const char* naslov;
        const char* table;
        const char* vrsta;
        const char* row;
    } books[] = {
        { 99, "Knjiga prihoda RS", "dbo.KnjPrihodaRS", "5 - Prihod - Robe", "5|70|7" },
        { 100, "Knjiga rashoda RS", "dbo.KnjRashodaRS", "10 - Rashod - Amortizacija", "10|70|7" },
    };
    for (const auto& b : books) {
        auto e = editor<frmKnjPrihodaRashodaRS>(b.book, 1);
        EXPECT_EQ(e->lblNaslov->text(), b.naslov);
        EXPECT_EQ(e->windowTitle(), "Upis nove stavke knjige prihoda");
        run(*e, [&] {
            save(*e,
                { { "ubRBroj=0;dpDatum=2016-09-09", "Morate upisati redni broj različit od 0!", "ubRBroj" },
                    { "ubRBroj=1", "Mora se upisati šifra vrste!", "cboVrsta" },
                    { QStringLiteral("cboVrsta=") + b.vrsta, "Iznos mora biti različit od nule !", "ubIznos" } });
            EXPECT_EQ(count(b.table), 0);
            save(*e, { { "ubIznos=70;ubIznosPDV=7" } });
        });
        EXPECT_FALSE(e->IzišaoSaPrekidom());
        EXPECT_EQ(table(QStringLiteral("SELECT Vrsta,Iznos,IznosPDV FROM ") + b.table), b.row);
    }

    exec("INSERT INTO dbo.KnjRashodaRS (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Vrsta,Iznos,IznosPDV) "
         "VALUES (1,2,'09.10.2016',2016,'Ne priznaje se',13,5,0)");
    auto d = editor<frmKnjPrihodaRashodaRS>(100, 4, 2);
    run(*d, [&] {
        EXPECT_EQ(d->cboVrsta->currentText(), "13 - Rashod - Rashodi koji se ne priznaju");
        save(*d, { {} });
    });
    EXPECT_EQ(count("dbo.KnjRashodaRS"), 1);
}
