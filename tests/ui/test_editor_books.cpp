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
        return Partner { 2, QStringLiteral("Prodavnica Zapad") };
    }
    std::optional<Partner> find(qint32 code) override
    {
        if (code == 1 || code == 2)
            return Partner { code,
                code == 1 ? QStringLiteral("Prodavnica Centar") : QStringLiteral("Prodavnica Zapad") };
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
        e->ubRBroj->setValue(Money::fromWhole(1));
        e->dpDatum->setDate(QDate(2016, 4, 4));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, "Mora se upisati šifra komitenta!");
        EXPECT_EQ(focusOf(*e), "txtKomitent");

        type(e->txtKomitent, "1", true);
        EXPECT_EQ(e->lblKomit->text(), " Prodavnica Centar");
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, "Mora se upisati šifra vrste!");
        EXPECT_EQ(focusOf(*e), "cboVrsta");

        e->cboVrsta->setCurrentIndex(2);
        e->txtIsprava->setText("UR-55");
        e->txtOpis->setText("Primljeni račun");
        e->ubIznos->setValue(Money::fromUnits(1234500));
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_EQ(lastMessage().text,
        "Bilo bi poželjno da se upiše redni broj u knjizi prihoda i rashoda! Podatak će se spremiti, ali pažljivo!");
    EXPECT_EQ(lastMessage().title, "Napomena");
    const ResultSet rs = rows("SELECT SifKomit,Vrsta,Datum,Isprava,Iznos,RBrojKPR FROM dbo.KnjEvidPotrIObvFBiH");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), 1);
    EXPECT_EQ(rs.integer(0, 1), 21);
    EXPECT_EQ(rs.date(0, 2), QDate(2016, 4, 4));
    EXPECT_EQ(rs.text(0, 3), "UR-55");
    EXPECT_EQ(rs.money(0, 4), Money::fromUnits(1234500));
    EXPECT_EQ(rs.integer(0, 5), 0);
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
        EXPECT_EQ(e->txtKomitent->text(), "2");
        EXPECT_EQ(e->lblKomit->text(), " Prodavnica Zapad");
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
        EXPECT_EQ(e->txtKomitent->text(), "2");
        EXPECT_EQ(e->lblKomit->text(), " Prodavnica Zapad");
        EXPECT_EQ(e->cboVrsta->currentText(), "12 - Uplate za izdate racune");
        EXPECT_EQ(e->ubKPR->integerValue(), 3);
        e->ubIznos->setValue(Money::fromWhole(45));
        e->cmdSpremi->click();
    });
    EXPECT_TRUE(texts().isEmpty()) << texts().join(u'|').toStdString();
    const ResultSet rs = rows("SELECT RBroj,Iznos,RBrojKPR,SifKomit FROM dbo.KnjEvidPotrIObvFBiH");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.money(0, 1), Money::fromWhole(45));
    EXPECT_EQ(rs.integer(0, 2), 3);
    EXPECT_EQ(rs.integer(0, 3), 2);
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
        e->ubRBroj->setValue(Money::fromWhole(77));
        e->dpDatum->setDate(QDate(2016, 2, 1));
        e->txtBrojDokumenta->setText("15");
        e->txtNazivSredstva->setText("Kombi vozilo");
        e->ubVijekTrajanja->setValue(Money::fromWhole(5));
        e->ubNabavna->setValue(Money::fromWhole(900));
        e->ubKnjigovodstvena->setValue(Money::fromWhole(1000));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, "Nabavna vrijednost mora biti veća ili jednaka od knjigovodstvene!");
        EXPECT_EQ(focusOf(*e), "ubNabavna");
        e->ubNabavna->setValue(Money::fromWhole(1000));
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    const ResultSet rs = rows("SELECT RBroj,Naziv,Isprava,VijekTr,KnjigVrijednost FROM dbo.KnjPopListaDugImovFBiH");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), 1); // numbered by the table, not the 77 typed
    EXPECT_EQ(rs.text(0, 1), "Kombi vozilo");
    EXPECT_EQ(rs.text(0, 2), "15");
    EXPECT_EQ(rs.integer(0, 3), 5);
    EXPECT_EQ(rs.money(0, 4), Money::fromWhole(1000));

    auto c = editor<frmPopListaDImovineFBiH>(105, 2, 1);
    run(*c, [&] {
        EXPECT_EQ(c->txtNazivSredstva->text(), "Kombi vozilo");
        c->ubRBroj->setValue(Money::fromWhole(9));
        c->ubKnjigovodstvena->setValue(Money());
        c->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, "Unesena vrijednost je negativna ili 0 pažljivo !");
        EXPECT_EQ(lastMessage().title, "Napomena");
        EXPECT_EQ(focusOf(*c), "ubKnjigovodstvena");
        c->ubKnjigovodstvena->setValue(Money::fromWhole(800));
        c->cmdSpremi->click();
    });
    const ResultSet after = rows("SELECT RBroj,KnjigVrijednost FROM dbo.KnjPopListaDugImovFBiH");
    ASSERT_EQ(after.rowCount(), 1);
    EXPECT_EQ(after.integer(0, 0), 1);
    EXPECT_EQ(after.money(0, 1), Money::fromWhole(800));
}

TEST_F(BookEditors, AssetListRsUsesTheSharedTableAndRefusesNoLifeAndNoValue)
{
    auto e = editor<frmPopListaDImovineFBiH>(101, 1);
    EXPECT_EQ(e->readSql().left(48), "SELECT * FROM dbo.KnjPopListaDugImovFBiH WHERE G");
    run(*e, [&] {
        e->dpDatum->setDate(QDate(2016, 12, 1));
        e->txtBrojDokumenta->setText("3");
        e->ubVijekTrajanja->setValue(Money());
        e->cmdSpremi->click();
        EXPECT_EQ(texts(), QStringList { "Vijek trajanja ne može biti 0 ili manji!" });
        e->ubVijekTrajanja->setValue(Money::fromWhole(5));
        e->ubNabavna->setValue(Money());
        e->ubKnjigovodstvena->setValue(Money());
        e->cmdSpremi->click();
        ASSERT_EQ(script->messages.size(), 2);
        EXPECT_EQ(lastMessage().text, "Unesena vrijednost je negativna ili 0, pažljivo !");
        EXPECT_EQ(lastMessage().title, "Napomena");
        EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
        EXPECT_EQ(focusOf(*e), "ubNabavna");
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
    EXPECT_EQ(count("dbo.KnjPopListaDugImovFBiH"), 0);
}

// ---- turnover ----

TEST_F(BookEditors, TurnoverAcceptsANegativeNumberButNotZeroOrNoAmount)
{
    auto e = editor<frmKnjPrometa>(98, 1);
    run(*e, [&] {
        e->ubRBroj->setValue(Money());
        e->dpDatum->setDate(QDate(2016, 7, 7));
        e->txtIsprava->setText("P-1");
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, "Morate upisati redni broj različit od 0!");
        e->ubRBroj->setValue(-Money::fromWhole(3));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, "Jedan od iznosa mora biti različit od nule !");
        e->ubCek->setValue(Money::fromWhole(50));
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    const ResultSet rs = rows("SELECT RBroj,IznosGot,IznosCek FROM dbo.KnjPrometaFBiH");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), -3);
    EXPECT_TRUE(rs.money(0, 1).isZero());
    EXPECT_EQ(rs.money(0, 2), Money::fromWhole(50));
}

TEST_F(BookEditors, TurnoverRsChangesTheSharedTableAndWarnsOnNegativeAmounts)
{
    exec("INSERT INTO dbo.KnjPrometaFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Isprava,IznosGot,IznosCek) "
         "VALUES (1,2,'02.02.2016',2016,'Promet','PR-2',100,0)");
    auto e = editor<frmKnjPrometa>(106, 2, 2);
    e->lblČekovi->setText("Račun:");
    run(*e, [&] {
        EXPECT_EQ(e->ubGotovina->value(), Money::fromWhole(100));
        e->ubGotovina->setValue(-Money::fromWhole(10));
        e->cmdSpremi->click();
    });
    EXPECT_EQ(lastMessage().text, "Unesena vrijednost je negativna, pažljivo !");
    EXPECT_EQ(lastMessage().title, "Napomena");
    const ResultSet rs = rows("SELECT IznosGot FROM dbo.KnjPrometaFBiH");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.money(0, 0), -Money::fromWhole(10));
}

// ---- trade books ----

TEST_F(BookEditors, ServicesNumberPerShopAndRefuseAZeroAmount)
{
    for (int shop : { 1, 2, 1 }) {
        script->clear();
        auto e = editor<frmKnjUsluga>(125, 1);
        e->setSkladište(shop);
        run(*e, [&] {
            e->dpDatum->setDate(QDate(2016, 8, 1));
            e->txtOpis->setText("Usluga");
            e->cmdSpremi->click();
            EXPECT_EQ(texts(), QStringList { "Iznos mora biti različit od nule !" });
            EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
            EXPECT_EQ(lastMessage().title, QString());
            EXPECT_EQ(focusOf(*e), "ubIznos");
            EXPECT_TRUE(e->isVisible());
            e->ubIznos->setValue(Money::fromWhole(10));
            e->cmdSpremi->click();
        });
        EXPECT_FALSE(e->IzišaoSaPrekidom()) << texts().join(u'|').toStdString();
    }
    const ResultSet rs = rows("SELECT BrojProd,RBroj FROM dbo.TrgKnjUsluga ORDER BY BrojProd,RBroj");
    ASSERT_EQ(rs.rowCount(), 3);
    EXPECT_EQ(rs.integer(0, 1), 1);
    EXPECT_EQ(rs.integer(1, 1), 2);
    EXPECT_EQ(rs.integer(2, 0), 2);
    EXPECT_EQ(rs.integer(2, 1), 1);
}

TEST_F(BookEditors, TradeBookChecksAndChangeByShop)
{
    auto e = editor<frmKnjKomisiona>(126, 1);
    EXPECT_EQ(e->windowTitle(), "Upis nove stavke trg.knjige komisione robe");
    run(*e, [&] {
        e->dpDatum->setDate(QDate(2016, 8, 1));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, "Mora se upisati maloprodaja!");
        EXPECT_EQ(focusOf(*e), "txtSkladište");
        type(e->txtSkladište, "2", true);
        EXPECT_EQ(e->lblSkladište->text(), " Prodavnica Zapad");
        EXPECT_EQ(e->ubRBroj->integerValue(), 1);
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, "Bar jedan iznos mora biti različit od nule !");
        e->ubRazduženje->setValue(Money::fromWhole(120));
        e->cmdSpremi->click();
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
        c->ubZaduženje->setValue(Money::fromWhole(30));
        c->cmdSpremi->click();
    });
    const ResultSet rs = rows("SELECT BrojProd,Zaduzenje,Razduzenje FROM dbo.TrgKnjKomisiona");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), 2);
    EXPECT_EQ(rs.money(0, 1), Money::fromWhole(30));
    EXPECT_EQ(rs.money(0, 2), Money::fromWhole(120));
}

TEST_F(BookEditors, TradeBooksRefuseAShopUnknownToThePartners)
{
    for (int book : { 125, 126 }) {
        auto e = editor<TrgKnjigaEditor>(book, 1);
        run(*e, [&] {
            script->clear();
            type(e->txtSkladište, "77", true);
            e->ubRBroj->setValue(Money::fromWhole(1));
            e->dpDatum->setDate(QDate(2016, 8, 1));
            e->txtOpis->setText("Nepostojeća");
            for (const char* name : { "ubIznos", "ubZaduženje" })
                if (auto* box = qobject_cast<MoneyBox*>(e->control(QString::fromUtf8(name))))
                    box->setValue(Money::fromWhole(10));
            e->cmdSpremi->click();
            ASSERT_EQ(script->messages.size(), 1) << book;
            EXPECT_EQ(lastMessage().text, "Maloprodaja sa šifrom 77 ne postoji!");
            EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
            EXPECT_EQ(focusOf(*e), "txtSkladište");
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
        int code;
    } books[] = {
        { 99, "Knjiga prihoda RS", "dbo.KnjPrihodaRS", "5 - Prihod - Robe", 5 },
        { 100, "Knjiga rashoda RS", "dbo.KnjRashodaRS", "10 - Rashod - Amortizacija", 10 },
    };
    for (const auto& b : books) {
        script->clear();
        auto e = editor<frmKnjPrihodaRashodaRS>(b.book, 1);
        EXPECT_EQ(e->lblNaslov->text(), b.naslov);
        EXPECT_EQ(e->windowTitle(), "Upis nove stavke knjige prihoda");
        run(*e, [&] {
            e->ubRBroj->setValue(Money());
            e->dpDatum->setDate(QDate(2016, 9, 9));
            e->cmdSpremi->click();
            EXPECT_EQ(lastMessage().text, "Morate upisati redni broj različit od 0!");
            EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
            EXPECT_EQ(focusOf(*e), "ubRBroj");
            e->ubRBroj->setValue(Money::fromWhole(1));
            e->cmdSpremi->click();
            EXPECT_EQ(lastMessage().text, "Mora se upisati šifra vrste!");
            EXPECT_EQ(focusOf(*e), "cboVrsta");
            e->cboVrsta->setCurrentText(b.vrsta);
            e->cmdSpremi->click();
            EXPECT_EQ(lastMessage().text, "Iznos mora biti različit od nule !");
            EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
            EXPECT_EQ(focusOf(*e), "ubIznos");
            EXPECT_EQ(count(b.table), 0);
            e->ubIznos->setValue(Money::fromWhole(70));
            e->ubIznosPDV->setValue(Money::fromWhole(7));
            e->cmdSpremi->click();
        });
        EXPECT_EQ(script->messages.size(), 3) << b.book;
        EXPECT_FALSE(e->IzišaoSaPrekidom());
        const ResultSet rs = rows(QStringLiteral("SELECT Vrsta,Iznos,IznosPDV FROM ") + b.table);
        ASSERT_EQ(rs.rowCount(), 1);
        EXPECT_EQ(rs.integer(0, 0), b.code);
        EXPECT_EQ(rs.money(0, 1), Money::fromWhole(70));
        EXPECT_EQ(rs.money(0, 2), Money::fromWhole(7));
    }

    exec("INSERT INTO dbo.KnjRashodaRS (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Vrsta,Iznos,IznosPDV) "
         "VALUES (1,2,'09.10.2016',2016,'Ne priznaje se',13,5,0)");
    auto d = editor<frmKnjPrihodaRashodaRS>(100, 4, 2);
    run(*d, [&] {
        EXPECT_EQ(d->cboVrsta->currentText(), "13 - Rashod - Rashodi koji se ne priznaju");
        d->cmdSpremi->click();
    });
    EXPECT_EQ(count("dbo.KnjRashodaRS"), 1);
}
