#include "editors/widgets/EditorFactory.h"
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

template <typename T> std::unique_ptr<T> editor(int book, int mode, qint32 redniBroj = 0)
{
    auto e = std::unique_ptr<T>(dynamic_cast<T*>(createEditor(book).release()));
    EXPECT_TRUE(e);
    e->setTipRada(mode);
    e->setPTip(book);
    e->sRedniBroj = redniBroj;
    return e;
}

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
    EXPECT_EQ(e->windowTitle(), QStringLiteral("Upis nove stavke knjige evidencije Potraživanja i obveza"));
    run(*e, [&] {
        e->ubRBroj->setValue(Money::fromWhole(1));
        e->dpDatum->setDate(QDate(2016, 4, 4));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, QStringLiteral("Mora se upisati šifra komitenta!"));
        EXPECT_EQ(focusOf(*e), QStringLiteral("txtKomitent"));

        QTest::keyClicks(e->txtKomitent, QStringLiteral("1"));
        QTest::keyClick(e->txtKomitent, Qt::Key_Tab);
        EXPECT_EQ(e->lblKomit->text(), QStringLiteral(" Prodavnica Centar"));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, QStringLiteral("Mora se upisati šifra vrste!"));
        EXPECT_EQ(focusOf(*e), QStringLiteral("cboVrsta"));

        e->cboVrsta->setCurrentIndex(2);
        e->txtIsprava->setText(QStringLiteral("UR-55"));
        e->txtOpis->setText(QStringLiteral("Primljeni račun"));
        e->ubIznos->setValue(Money::fromUnits(1234500));
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_EQ(lastMessage().text,
        QStringLiteral("Bilo bi poželjno da se upiše redni broj u knjizi prihoda i rashoda! "
                       "Podatak će se spremiti, ali pažljivo!"));
    EXPECT_EQ(lastMessage().title, QStringLiteral("Napomena"));
    const ResultSet rs
        = rows(QStringLiteral("SELECT BrojPoduzeca,RBroj,SifKomit,Vrsta,Datum,GodinaKnj,Isprava,Opis,Iznos,"
                              "RBrojKPR FROM dbo.KnjEvidPotrIObvFBiH"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 2), 1);
    EXPECT_EQ(rs.integer(0, 3), 21);
    EXPECT_EQ(rs.date(0, 4), QDate(2016, 4, 4));
    EXPECT_EQ(rs.text(0, 6), QStringLiteral("UR-55"));
    EXPECT_EQ(rs.money(0, 8), Money::fromUnits(1234500));
    EXPECT_EQ(rs.integer(0, 9), 0);
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
        EXPECT_EQ(e->txtKomitent->text(), QStringLiteral("2"));
        EXPECT_EQ(e->lblKomit->text(), QStringLiteral(" Prodavnica Zapad"));
        EXPECT_EQ(focusOf(*e), QStringLiteral("txtKomitent"));
        e->txtKomitent->clear();
        QTest::keyClick(e->txtKomitent, Qt::Key_F2);
        EXPECT_EQ(e->txtKomitent->text(), QStringLiteral("2"));
    });
    EXPECT_EQ(partners->chosen, 2);
    EXPECT_EQ(e->cKomit().ImeKomit1, QStringLiteral("Prodavnica Zapad"));
}

TEST_F(BookEditors, ReceivablesChangeReadsAndRewritesTheRow)
{
    exec(QStringLiteral("INSERT INTO dbo.KnjEvidPotrIObvFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,SifKomit,Vrsta,Opis,"
                        "Isprava,Iznos,RBrojKPR) VALUES (1,5,'05.20.2016',2016,2,12,'Uplata','IR-9',40,3)"));
    auto e = editor<frmKnjEvidPotObvFBiH>(97, 2, 5);
    run(*e, [&] {
        EXPECT_EQ(e->txtKomitent->text(), QStringLiteral("2"));
        EXPECT_EQ(e->lblKomit->text(), QStringLiteral(" Prodavnica Zapad"));
        EXPECT_EQ(e->cboVrsta->currentText(), QStringLiteral("12 - Uplate za izdate racune"));
        EXPECT_EQ(e->ubKPR->integerValue(), 3);
        e->ubIznos->setValue(Money::fromWhole(45));
        e->cmdSpremi->click();
    });
    EXPECT_TRUE(texts().isEmpty()) << texts().join(u'|').toStdString();
    const ResultSet rs = rows(QStringLiteral("SELECT RBroj,Iznos,RBrojKPR,SifKomit FROM dbo.KnjEvidPotrIObvFBiH"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.money(0, 1), Money::fromWhole(45));
    EXPECT_EQ(rs.integer(0, 2), 3);
    EXPECT_EQ(rs.integer(0, 3), 2);
}

// ---- asset lists ----

TEST_F(BookEditors, AssetListNeverWritesTheNumberAndChecksValues)
{
    auto e = editor<frmPopListaDImovineFBiH>(105, 1);
    run(*e, [&] {
        e->ubRBroj->setValue(Money::fromWhole(77));
        e->dpDatum->setDate(QDate(2016, 2, 1));
        e->txtBrojDokumenta->setText(QStringLiteral("15"));
        e->txtNazivSredstva->setText(QStringLiteral("Kombi vozilo"));
        e->ubVijekTrajanja->setValue(Money::fromWhole(5));
        e->ubNabavna->setValue(Money::fromWhole(900));
        e->ubKnjigovodstvena->setValue(Money::fromWhole(1000));
        e->cmdSpremi->click();
        EXPECT_EQ(
            lastMessage().text, QStringLiteral("Nabavna vrijednost mora biti veća ili jednaka od knjigovodstvene!"));
        EXPECT_EQ(focusOf(*e), QStringLiteral("ubNabavna"));
        e->ubNabavna->setValue(Money::fromWhole(1000));
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    const ResultSet rs
        = rows(QStringLiteral("SELECT RBroj,Naziv,Isprava,VijekTr,NabVrijednost,KnjigVrijednost,GodinaKnj "
                              "FROM dbo.KnjPopListaDugImovFBiH"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), 1); // numbered by the table, not the 77 typed
    EXPECT_EQ(rs.text(0, 1), QStringLiteral("Kombi vozilo"));
    EXPECT_EQ(rs.text(0, 2), QStringLiteral("15"));
    EXPECT_EQ(rs.integer(0, 3), 5);
    EXPECT_EQ(rs.money(0, 5), Money::fromWhole(1000));

    auto c = editor<frmPopListaDImovineFBiH>(105, 2, 1);
    run(*c, [&] {
        EXPECT_EQ(c->txtNazivSredstva->text(), QStringLiteral("Kombi vozilo"));
        c->ubRBroj->setValue(Money::fromWhole(9));
        c->ubKnjigovodstvena->setValue(Money());
        c->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, QStringLiteral("Unesena vrijednost je negativna ili 0 pažljivo !"));
        EXPECT_EQ(lastMessage().title, QStringLiteral("Napomena"));
        EXPECT_EQ(focusOf(*c), QStringLiteral("ubKnjigovodstvena"));
        c->ubKnjigovodstvena->setValue(Money::fromWhole(800));
        c->cmdSpremi->click();
    });
    const ResultSet after = rows(QStringLiteral("SELECT RBroj,KnjigVrijednost FROM dbo.KnjPopListaDugImovFBiH"));
    ASSERT_EQ(after.rowCount(), 1);
    EXPECT_EQ(after.integer(0, 0), 1);
    EXPECT_EQ(after.money(0, 1), Money::fromWhole(800));
}

TEST_F(BookEditors, AssetListWarnsOnNegativeValuesAndRefusesAZeroPurchaseValue)
{
    auto e = editor<frmPopListaDImovineFBiH>(105, 1);
    run(*e, [&] {
        for (MoneyBox* box : { e->ubNabavna, e->ubKnjigovodstvena }) {
            script->messages.clear();
            box->setFocus();
            box->selectAll();
            QTest::keyClicks(box, QStringLiteral("-5"));
            QTest::keyClick(box, Qt::Key_Tab);
            ASSERT_EQ(script->messages.size(), 1) << box->objectName().toStdString();
            EXPECT_EQ(lastMessage().text, QStringLiteral("Unešena vrijednost je negativna, pažljivo !"));
            EXPECT_EQ(lastMessage().title, QStringLiteral("Napomena"));
            EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
        }
        e->dpDatum->setDate(QDate(2016, 2, 1));
        e->txtBrojDokumenta->setText(QStringLiteral("15"));
        e->ubVijekTrajanja->setValue(Money::fromWhole(5));
        e->ubNabavna->setValue(Money());
        e->ubKnjigovodstvena->setValue(Money());
        script->messages.clear();
        e->cmdSpremi->click();
        ASSERT_EQ(script->messages.size(), 1);
        EXPECT_EQ(lastMessage().text, QStringLiteral("Unesena vrijednost je negativna ili 0, pažljivo !"));
        EXPECT_EQ(lastMessage().title, QStringLiteral("Napomena"));
        EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
        EXPECT_EQ(focusOf(*e), QStringLiteral("ubNabavna"));
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
    EXPECT_EQ(count(QStringLiteral("dbo.KnjPopListaDugImovFBiH")), 0);
}

TEST_F(BookEditors, AssetListRsUsesTheSharedTable)
{
    auto e = editor<frmPopListaDImovineFBiH>(101, 1);
    EXPECT_EQ(e->readSql().left(48), QStringLiteral("SELECT * FROM dbo.KnjPopListaDugImovFBiH WHERE G"));
    run(*e, [&] {
        e->dpDatum->setDate(QDate(2016, 12, 1));
        e->txtBrojDokumenta->setText(QStringLiteral("3"));
        e->ubVijekTrajanja->setValue(Money());
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, QStringLiteral("Vijek trajanja ne može biti 0 ili manji!"));
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
    EXPECT_EQ(count(QStringLiteral("dbo.KnjPopListaDugImovFBiH")), 0);
}

// ---- turnover ----

TEST_F(BookEditors, TurnoverAcceptsANegativeNumberButNotZeroOrNoAmount)
{
    auto e = editor<frmKnjPrometa>(98, 1);
    run(*e, [&] {
        e->ubRBroj->setValue(Money());
        e->dpDatum->setDate(QDate(2016, 7, 7));
        e->txtIsprava->setText(QStringLiteral("P-1"));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, QStringLiteral("Morate upisati redni broj različit od 0!"));
        e->ubRBroj->setValue(-Money::fromWhole(3));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, QStringLiteral("Jedan od iznosa mora biti različit od nule !"));
        e->ubCek->setValue(Money::fromWhole(50));
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    const ResultSet rs = rows(QStringLiteral("SELECT RBroj,IznosGot,IznosCek,Isprava FROM dbo.KnjPrometaFBiH"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), -3);
    EXPECT_TRUE(rs.money(0, 1).isZero());
    EXPECT_EQ(rs.money(0, 2), Money::fromWhole(50));
}

TEST_F(BookEditors, TurnoverWarnsWhenANegativeAmountIsLeft)
{
    auto e = editor<frmKnjPrometa>(98, 1);
    run(*e, [&] {
        for (MoneyBox* box : { e->ubGotovina, e->ubCek }) {
            script->messages.clear();
            box->setFocus();
            box->selectAll();
            QTest::keyClicks(box, QStringLiteral("-1,5"));
            QTest::keyClick(box, Qt::Key_Tab);
            ASSERT_EQ(script->messages.size(), 1) << box->objectName().toStdString();
            EXPECT_EQ(lastMessage().text, QStringLiteral("Unešena vrijednost je negativna, pažljivo !"));
            EXPECT_EQ(lastMessage().title, QStringLiteral("Napomena"));
            EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
            EXPECT_EQ(box->value(), -Money::fromUnits(15000));
        }
        // A positive amount leaves quietly.
        script->messages.clear();
        e->ubCek->setFocus();
        e->ubCek->selectAll();
        QTest::keyClicks(e->ubCek, QStringLiteral("7"));
        QTest::keyClick(e->ubCek, Qt::Key_Tab);
        EXPECT_TRUE(script->messages.isEmpty());
    });
}

TEST_F(BookEditors, TurnoverRsChangesTheSharedTableAndWarnsOnNegativeAmounts)
{
    exec(QStringLiteral(
        "INSERT INTO dbo.KnjPrometaFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Isprava,IznosGot,IznosCek) "
        "VALUES (1,2,'02.02.2016',2016,'Promet','PR-2',100,0)"));
    auto e = editor<frmKnjPrometa>(106, 2, 2);
    e->lblČekovi->setText(QStringLiteral("Račun:"));
    run(*e, [&] {
        EXPECT_EQ(e->ubGotovina->value(), Money::fromWhole(100));
        e->ubGotovina->setValue(-Money::fromWhole(10));
        e->cmdSpremi->click();
    });
    EXPECT_EQ(lastMessage().text, QStringLiteral("Unesena vrijednost je negativna, pažljivo !"));
    EXPECT_EQ(lastMessage().title, QStringLiteral("Napomena"));
    const ResultSet rs = rows(QStringLiteral("SELECT IznosGot FROM dbo.KnjPrometaFBiH"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.money(0, 0), -Money::fromWhole(10));
}

// ---- trade books ----

TEST_F(BookEditors, TradeBooksNumberPerShop)
{
    for (int shop : { 1, 2, 1 }) {
        auto e = editor<frmKnjUsluga>(125, 1);
        e->setSkladište(shop);
        run(*e, [&] {
            e->dpDatum->setDate(QDate(2016, 8, 1));
            e->txtOpis->setText(QStringLiteral("Usluga"));
            e->ubIznos->setValue(Money::fromWhole(10));
            e->cmdSpremi->click();
        });
        EXPECT_FALSE(e->IzišaoSaPrekidom()) << texts().join(u'|').toStdString();
    }
    const ResultSet rs = rows(QStringLiteral("SELECT BrojProd,RBroj FROM dbo.TrgKnjUsluga ORDER BY BrojProd,RBroj"));
    ASSERT_EQ(rs.rowCount(), 3);
    EXPECT_EQ(rs.integer(0, 1), 1);
    EXPECT_EQ(rs.integer(1, 1), 2);
    EXPECT_EQ(rs.integer(2, 0), 2);
    EXPECT_EQ(rs.integer(2, 1), 1);
}

TEST_F(BookEditors, TradeBookChecksAndChangeByShop)
{
    auto e = editor<frmKnjKomisiona>(126, 1);
    EXPECT_EQ(e->windowTitle(), QStringLiteral("Upis nove stavke trg.knjige komisione robe"));
    run(*e, [&] {
        e->dpDatum->setDate(QDate(2016, 8, 1));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, QStringLiteral("Mora se upisati maloprodaja!"));
        EXPECT_EQ(focusOf(*e), QStringLiteral("txtSkladište"));
        QTest::keyClicks(e->txtSkladište, QStringLiteral("2"));
        QTest::keyClick(e->txtSkladište, Qt::Key_Tab);
        EXPECT_EQ(e->lblSkladište->text(), QStringLiteral(" Prodavnica Zapad"));
        EXPECT_EQ(e->ubRBroj->integerValue(), 1);
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, QStringLiteral("Bar jedan iznos mora biti različit od nule !"));
        e->ubRazduženje->setValue(Money::fromWhole(120));
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());

    auto c = editor<frmKnjKomisiona>(126, 2, 1);
    c->setSkladište(2);
    EXPECT_EQ(c->readSql(),
        QStringLiteral("SELECT * FROM dbo.TrgKnjKomisiona WHERE BROJPODUZECA=1 AND "
                       "GODINAKNJ=2016AND BrojProd=2 AND RBroj=1"));
    script->messages.clear();
    run(*c, [&] {
        EXPECT_TRUE(texts().isEmpty()) << texts().join(u'|').toStdString();
        EXPECT_EQ(c->ubRazduženje->value(), Money::fromWhole(120));
        c->ubZaduženje->setValue(Money::fromWhole(30));
        c->cmdSpremi->click();
    });
    const ResultSet rs = rows(QStringLiteral("SELECT BrojPoduzeca,BrojProd,RBroj,GodinaKnj,Zaduzenje,Razduzenje "
                                             "FROM dbo.TrgKnjKomisiona"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 1), 2);
    EXPECT_EQ(rs.money(0, 4), Money::fromWhole(30));
    EXPECT_EQ(rs.money(0, 5), Money::fromWhole(120));
}

TEST_F(BookEditors, TradeBooksRefuseAShopUnknownToThePartners)
{
    for (int book : { 125, 126 }) {
        auto e = std::unique_ptr<TrgKnjigaEditor>(dynamic_cast<TrgKnjigaEditor*>(createEditor(book).release()));
        ASSERT_TRUE(e);
        e->setTipRada(1);
        run(*e, [&] {
            script->messages.clear();
            QTest::keyClicks(e->txtSkladište, QStringLiteral("77"));
            QTest::keyClick(e->txtSkladište, Qt::Key_Tab);
            e->ubRBroj->setValue(Money::fromWhole(1));
            e->dpDatum->setDate(QDate(2016, 8, 1));
            e->txtOpis->setText(QStringLiteral("Nepostojeća"));
            for (const char* name : { "ubIznos", "ubZaduženje" })
                if (auto* box = qobject_cast<MoneyBox*>(e->control(QString::fromUtf8(name))))
                    box->setValue(Money::fromWhole(10));
            e->cmdSpremi->click();
            ASSERT_EQ(script->messages.size(), 1) << book;
            EXPECT_EQ(lastMessage().text, QStringLiteral("Maloprodaja sa šifrom 77 ne postoji!"));
            EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
            EXPECT_EQ(focusOf(*e), QStringLiteral("txtSkladište"));
            EXPECT_TRUE(e->isVisible());
        });
        EXPECT_TRUE(e->IzišaoSaPrekidom());
        EXPECT_EQ(count(editors::entryTable(book)), 0);
    }
}

TEST_F(BookEditors, ServicesRefuseAZeroAmount)
{
    auto e = editor<frmKnjUsluga>(125, 1);
    e->setSkladište(1);
    run(*e, [&] {
        e->dpDatum->setDate(QDate(2016, 8, 1));
        e->cmdSpremi->click();
        EXPECT_EQ(texts(), QStringList { QStringLiteral("Iznos mora biti različit od nule !") });
        EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
        EXPECT_EQ(lastMessage().title, QString());
        EXPECT_EQ(focusOf(*e), QStringLiteral("ubIznos"));
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
    EXPECT_EQ(count(QStringLiteral("dbo.TrgKnjUsluga")), 0);
}

// ---- RS income and expense ----

TEST_F(BookEditors, RsIncomeAndExpenseRefuseNumberZeroAndAmountZero)
{
    for (int book : { 99, 100 }) {
        script->messages.clear();
        auto e = editor<frmKnjPrihodaRashodaRS>(book, 1);
        run(*e, [&] {
            e->ubRBroj->setValue(Money());
            e->dpDatum->setDate(QDate(2016, 9, 9));
            e->cboVrsta->setCurrentIndex(0);
            e->cmdSpremi->click();
            EXPECT_EQ(lastMessage().text, QStringLiteral("Morate upisati redni broj različit od 0!"));
            EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
            EXPECT_EQ(focusOf(*e), QStringLiteral("ubRBroj"));
            e->ubRBroj->setValue(Money::fromWhole(3));
            e->cmdSpremi->click();
            EXPECT_EQ(lastMessage().text, QStringLiteral("Iznos mora biti različit od nule !"));
            EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
            EXPECT_EQ(focusOf(*e), QStringLiteral("ubIznos"));
        });
        EXPECT_EQ(script->messages.size(), 2) << book;
        EXPECT_TRUE(e->IzišaoSaPrekidom());
        EXPECT_EQ(count(editors::entryTable(book)), 0);
    }
}

TEST_F(BookEditors, RsIncomeAndExpenseGoToTheirOwnTables)
{
    auto prihod = editor<frmKnjPrihodaRashodaRS>(99, 1);
    EXPECT_EQ(prihod->lblNaslov->text(), QStringLiteral("Knjiga prihoda RS"));
    run(*prihod, [&] {
        prihod->ubRBroj->setValue(Money::fromWhole(1));
        prihod->dpDatum->setDate(QDate(2016, 9, 9));
        prihod->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, QStringLiteral("Mora se upisati šifra vrste!"));
        EXPECT_EQ(focusOf(*prihod), QStringLiteral("cboVrsta"));
        prihod->cboVrsta->setCurrentIndex(1);
        prihod->ubIznos->setValue(Money::fromWhole(500));
        prihod->cmdSpremi->click();
    });
    auto rashod
        = std::unique_ptr<frmKnjPrihodaRashodaRS>(dynamic_cast<frmKnjPrihodaRashodaRS*>(createEditor(100).release()));
    EXPECT_EQ(rashod->windowTitle(), QStringLiteral("Knjiga rashoda RS"));
    rashod->setTipRada(1);
    rashod->setPTip(100);
    rashod->setITipSifarnika(100);
    EXPECT_EQ(rashod->windowTitle(), QStringLiteral("Upis nove stavke knjige prihoda"));
    run(*rashod, [&] {
        rashod->ubRBroj->setValue(Money::fromWhole(1));
        rashod->dpDatum->setDate(QDate(2016, 9, 9));
        rashod->cboVrsta->setCurrentText(QStringLiteral("10 - Rashod - Amortizacija"));
        rashod->ubIznos->setValue(Money::fromWhole(70));
        rashod->ubIznosPDV->setValue(Money::fromWhole(7));
        rashod->cmdSpremi->click();
    });
    const ResultSet p = rows(QStringLiteral("SELECT Vrsta,Iznos FROM dbo.KnjPrihodaRS"));
    ASSERT_EQ(p.rowCount(), 1);
    EXPECT_EQ(p.integer(0, 0), 5);
    const ResultSet r = rows(QStringLiteral("SELECT Vrsta,Iznos,IznosPDV FROM dbo.KnjRashodaRS"));
    ASSERT_EQ(r.rowCount(), 1);
    EXPECT_EQ(r.integer(0, 0), 10);
    EXPECT_EQ(r.money(0, 2), Money::fromWhole(7));

    exec(QStringLiteral("INSERT INTO dbo.KnjRashodaRS (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Vrsta,Iznos,IznosPDV) "
                        "VALUES (1,2,'09.10.2016',2016,'Ne priznaje se',13,5,0)"));
    auto d = editor<frmKnjPrihodaRashodaRS>(100, 4, 2);
    run(*d, [&] {
        EXPECT_EQ(d->cboVrsta->currentText(), QStringLiteral("13 - Rashod - Rashodi koji se ne priznaju"));
        d->cmdSpremi->click();
    });
    EXPECT_EQ(count(QStringLiteral("dbo.KnjRashodaRS")), 1);
}
