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
    auto e = prihRash(96, 2, 7);
    run(*e, [&] {
        EXPECT_EQ(values(*e, "txtIsprava;cmbVrsta;ubIznosPDV"), "D-7|11 - Prihod - Gotovina|7.265");
        save(*e, { { "ubRBroj=9" } });
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_EQ(session().db().lastSql(),
        "UPDATE dbo.KnjEvidPotrIObvFBiH SET RBrojKPR=9 WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 AND RBrojKPR=7");
    // Another year keeps its link.
    EXPECT_EQ(table("SELECT GodinaKnj,RBrojKPR FROM dbo.KnjEvidPotrIObvFBiH ORDER BY GodinaKnj"), "2015|7\n2016|9");
    EXPECT_EQ(table("SELECT RBroj,Isprava FROM dbo.KnjPrihRashFBiH"), "9|D-7");
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
        save(*e,
            { { {},
                "Postoji vezana stavka sa ovom stavkom u knjizi evidencije potraživanja i obveza (redni "
                "broj).\nNije moguće izbrisati zapis u knjizi prihoda i rashoda, dok se ne obriše "
                "odgovarajući zapis u knjizi evid.obv.i potraživanja!" } });
        EXPECT_TRUE(e->isVisible());
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
    EXPECT_EQ(count("dbo.KnjPrihRashFBiH"), 2);

    auto d = prihRash(96, 4, 4);
    run(*d, [&] { save(*d, { {} }); });
    EXPECT_FALSE(d->IzišaoSaPrekidom());
    EXPECT_EQ(table("SELECT RBroj FROM dbo.KnjPrihRashFBiH"), "3");

    // When the link cannot be checked the deletion goes on, after saying so.
    exec("DROP TABLE dbo.KnjEvidPotrIObvFBiH");
    auto u = prihRash(96, 4, 3);
    run(*u, [&] { save(*u, { { {}, "Desila se greška: u čitanju stavke.", {}, {}, Icon::None } }); });
    EXPECT_FALSE(u->IzišaoSaPrekidom());
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
        set(*e, "ubRBroj=1;dpDatum=2016-06-01;txtIsprava=B-1;cmbVrsta=#10;ubIznos=~100");
        EXPECT_TRUE(e->ubIznosPDV->value().isZero());
        save(*e, { {} });
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    const ResultSet rs = rows("SELECT * FROM dbo.KnjPrihRashDB");
    EXPECT_EQ(rs.indexOf("IznosPDV"), -1);
    EXPECT_EQ(dump(rs), "1|1|2016-06-01|2016|B-1||16|100");

    // Kind 16 maps back to the last list position; the DB book skips the link check.
    auto d = prihRash(109, 4, 1);
    run(*d, [&] {
        EXPECT_EQ(d->cmbVrsta->currentIndex(), 10);
        d->cmdSpremi->click();
    });
    EXPECT_EQ(count("dbo.KnjPrihRashDB"), 0);
}
