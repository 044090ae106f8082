#include "editors/widgets/MoneyBox.h"
#include "editors/widgets/frmKnjPRashFBiHPregled.h"
#include "session/Session.h"
#include "session/SettingsStore.h"
#include "support/Sandbox.h"
#include "test_editor_fixture.h"

#include <QMenuBar>
#include <QTest>

using namespace knjige;
using namespace knjige::test;

namespace
{

class PrihRashEditor : public EditorTest
{
protected:
    void SetUp() override
    {
        EditorTest::SetUp();
        clearSettings();
    }
    static std::unique_ptr<frmKnjPRashFBiHPregled> prihRash(int book, int mode, qint32 redniBroj = 0)
    {
        return editor<frmKnjPRashFBiHPregled>(book, mode, redniBroj);
    }
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

TEST_F(PrihRashEditor, NewEntryWritesEveryColumnWithTheVatOfTheAmount)
{
    auto e = prihRash(96, 1);
    EXPECT_EQ(e->windowTitle(), "Upis nove stavke knjige prihoda i rashoda");
    EXPECT_EQ(e->cmdSpremi->text(), "Spremi");
    run(*e, [&] {
        e->ubRBroj->setValue(Money::fromWhole(1));
        e->dpDatum->setDate(QDate(2016, 3, 15));
        type(e->txtIsprava, "KIF-12");
        type(e->txtOpis, "Dnevni pazar");
        e->cmbVrsta->setCurrentIndex(0);
        type(e->ubIznos, "100,00");
        EXPECT_EQ(e->ubIznosPDV->value(), Money::fromUnits(145299));
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_TRUE(texts().isEmpty()) << texts().join(u'|').toStdString();
    const ResultSet rs = rows("SELECT BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Opis,Vrsta,Iznos,IznosPDV "
                              "FROM dbo.KnjPrihRashFBiH");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), 1);
    EXPECT_EQ(rs.integer(0, 1), 1);
    EXPECT_EQ(rs.date(0, 2), QDate(2016, 3, 15));
    EXPECT_EQ(rs.integer(0, 3), 2016);
    EXPECT_EQ(rs.text(0, 4), "KIF-12");
    EXPECT_EQ(rs.text(0, 5), "Dnevni pazar");
    EXPECT_EQ(rs.integer(0, 6), 11);
    EXPECT_EQ(rs.money(0, 7), Money::fromWhole(100));
    EXPECT_EQ(rs.money(0, 8), Money::fromUnits(145299));
}

TEST_F(PrihRashEditor, OptionNotToComputeVatLeavesItAndPersists)
{
    settings::setFlag("Arbosa", "Settings", "KnjNeIzrPDV", true);
    auto e = prihRash(96, 1);
    EXPECT_TRUE(e->mnuNeIzrPDV->isChecked());
    e->ubIznosPDV->setValue(Money::fromWhole(3));
    e->ubIznos->setValue(Money::fromWhole(100));
    EXPECT_EQ(e->ubIznosPDV->value(), Money::fromWhole(3));
    e->mnuNeIzrPDV->trigger();
    EXPECT_FALSE(settings::flag("Arbosa", "Settings", "KnjNeIzrPDV", true));
    e->ubIznos->setValue(Money::fromWhole(117));
    EXPECT_EQ(e->ubIznosPDV->value(), Money::fromWhole(17));
}

TEST_F(PrihRashEditor, ChecksRunInOrderWithTheirMessagesAndFocus)
{
    auto e = prihRash(96, 1);
    run(*e, [&] {
        e->ubRBroj->setValue(Money());
        e->dpDatum->setDate(QDate(2015, 12, 31));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, "Morate upisati redni broj veći od 0!");
        EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
        EXPECT_EQ(lastMessage().title, QString());
        EXPECT_EQ(focusOf(*e), "ubRBroj");

        e->ubRBroj->setValue(Money::fromWhole(4));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, "Godina unesenog datuma ne odgovara tekućoj radnoj godini! Ispravite!");
        EXPECT_EQ(focusOf(*e), "dpDatum");

        e->dpDatum->setDate(QDate(2016, 1, 2));
        e->txtIsprava->setText("   ");
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, "Mora se upisati isprava !");
        EXPECT_EQ(focusOf(*e), "txtIsprava");

        e->txtIsprava->setText("I-1");
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, "Mora se upisati šifra vrste knj.promjene!");
        EXPECT_EQ(focusOf(*e), "cmbVrsta");

        e->cmbVrsta->setCurrentIndex(3);
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, "Iznos mora biti različit od nule !");
        EXPECT_EQ(focusOf(*e), "ubIznos");
        EXPECT_EQ(count("dbo.KnjPrihRashFBiH"), 0);
        EXPECT_TRUE(e->isVisible());

        e->ubIznos->setValue(-Money::fromWhole(20));
        e->cmdSpremi->click();
    });
    EXPECT_EQ(script->messages.size(), 6);
    EXPECT_EQ(lastMessage().text, "Unesena vrijednost je negativna, pažljivo! Podatak će se upisati!");
    EXPECT_EQ(lastMessage().title, "Napomena");
    const ResultSet rs = rows("SELECT RBroj,Vrsta,Iznos FROM dbo.KnjPrihRashFBiH");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), 4);
    EXPECT_EQ(rs.integer(0, 1), 16);
    EXPECT_EQ(rs.money(0, 2), -Money::fromWhole(20));
}

TEST_F(PrihRashEditor, ChangingTheNumberCarriesTheReceivablesLink)
{
    insertFBiH(7, 11, "50", "7.2650");
    insertLink(1, 7);
    exec("INSERT INTO dbo.KnjEvidPotrIObvFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,SifKomit,Vrsta,Opis,"
         "Isprava,Iznos,RBrojKPR) VALUES (1,2,'03.01.2015',2015,1,11,'Druga godina','R',10,7)");
    auto e = prihRash(96, 2, 7);
    run(*e, [&] {
        EXPECT_EQ(e->txtIsprava->text(), "D-7");
        EXPECT_EQ(e->cmbVrsta->currentIndex(), 0);
        EXPECT_EQ(e->ubIznosPDV->value(), Money::fromUnits(72650));
        e->ubRBroj->setValue(Money::fromWhole(9));
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_EQ(session().db().lastSql(),
        "UPDATE dbo.KnjEvidPotrIObvFBiH SET RBrojKPR=9 WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 "
        "AND RBrojKPR=7");
    const ResultSet links = rows("SELECT GodinaKnj,RBrojKPR FROM dbo.KnjEvidPotrIObvFBiH ORDER BY GodinaKnj");
    ASSERT_EQ(links.rowCount(), 2);
    EXPECT_EQ(links.integer(0, 1), 7); // another year keeps its link
    EXPECT_EQ(links.integer(1, 1), 9);
    const ResultSet rs = rows("SELECT RBroj,Isprava FROM dbo.KnjPrihRashFBiH");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), 9);
}

TEST_F(PrihRashEditor, ALinkedEntryCannotBeDeletedAnUnlinkedOneCanAndAnUncheckedOneIs)
{
    insertFBiH(3, 16, "80", "0");
    insertFBiH(4, 12, "90", "0");
    insertLink(1, 3);
    auto e = prihRash(96, 4, 3);
    run(*e, [&] {
        EXPECT_FALSE(e->txtIsprava->isEnabled());
        EXPECT_TRUE(e->cmdSpremi->isEnabled());
        EXPECT_EQ(e->cmdSpremi->text(), "Obriši");
        e->cmdSpremi->click();
        EXPECT_TRUE(e->isVisible());
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
    EXPECT_EQ(lastMessage().text,
        "Postoji vezana stavka sa ovom stavkom u knjizi evidencije potraživanja i obveza (redni "
        "broj).\nNije moguće izbrisati zapis u knjizi prihoda i rashoda, dok se ne obriše "
        "odgovarajući zapis u knjizi evid.obv.i potraživanja!");
    EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
    EXPECT_EQ(count("dbo.KnjPrihRashFBiH"), 2);

    auto d = prihRash(96, 4, 4);
    run(*d, [&] { d->cmdSpremi->click(); });
    EXPECT_FALSE(d->IzišaoSaPrekidom());
    const ResultSet left = rows("SELECT RBroj FROM dbo.KnjPrihRashFBiH");
    ASSERT_EQ(left.rowCount(), 1);
    EXPECT_EQ(left.integer(0, 0), 3);

    // When the link cannot be checked the deletion goes on, after saying so.
    exec("DROP TABLE dbo.KnjEvidPotrIObvFBiH");
    script->clear();
    auto u = prihRash(96, 4, 3);
    run(*u, [&] { u->cmdSpremi->click(); });
    EXPECT_FALSE(u->IzišaoSaPrekidom());
    ASSERT_EQ(script->messages.size(), 1);
    EXPECT_EQ(lastMessage().text, "Desila se greška: u čitanju stavke.");
    EXPECT_EQ(lastMessage().icon, Icon::None);
    EXPECT_EQ(count("dbo.KnjPrihRashFBiH"), 0);
}

TEST_F(PrihRashEditor, TheDbBookHasNoVatAndNeverComputesIt)
{
    settings::setFlag("Arbosa", "Settings", "KnjNeIzrPDV", false);
    auto e = prihRash(109, 1);
    run(*e, [&] {
        EXPECT_FALSE(e->ubIznosPDV->isVisible());
        EXPECT_FALSE(e->lblIznosPDV->isVisible());
        EXPECT_FALSE(e->menuBar->isVisible());
        EXPECT_EQ(e->cmbVrsta->count(), 11);
        EXPECT_EQ(e->cmbVrsta->itemText(0), " 5 - Prihod - Gotovina");
        e->ubRBroj->setValue(Money::fromWhole(1));
        e->dpDatum->setDate(QDate(2016, 6, 1));
        e->txtIsprava->setText("B-1");
        e->cmbVrsta->setCurrentIndex(10);
        type(e->ubIznos, "100");
        EXPECT_TRUE(e->ubIznosPDV->value().isZero());
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    const ResultSet rs = rows("SELECT * FROM dbo.KnjPrihRashDB");
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.indexOf("IznosPDV"), -1);
    EXPECT_EQ(rs.integer(0, rs.indexOf("Vrsta")), 16);
    EXPECT_EQ(rs.money(0, rs.indexOf("Iznos")), Money::fromWhole(100));

    // Kind 16 maps back to the last list position; the DB book skips the link check.
    auto d = prihRash(109, 4, 1);
    run(*d, [&] {
        EXPECT_EQ(d->cmbVrsta->currentIndex(), 10);
        d->cmdSpremi->click();
    });
    EXPECT_EQ(count("dbo.KnjPrihRashDB"), 0);
}
