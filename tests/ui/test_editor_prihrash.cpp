#include "books/BookKind.h"
#include "editors/widgets/EditorFactory.h"
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

std::unique_ptr<frmKnjPRashFBiHPregled> prihRash(int book, int mode, qint32 redniBroj = 0)
{
    auto e
        = std::unique_ptr<frmKnjPRashFBiHPregled>(static_cast<frmKnjPRashFBiHPregled*>(createEditor(book).release()));
    e->setTipRada(mode);
    e->setTipSifarnika(book);
    e->sRedniBroj = redniBroj;
    return e;
}

void typeInto(QLineEdit* box, const QString& text)
{
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, text);
}

void fillValid(frmKnjPRashFBiHPregled& e, int rbroj, const QString& iznos)
{
    e.ubRBroj->setValue(Money::fromWhole(rbroj));
    e.dpDatum->setDate(QDate(2016, 3, 15));
    typeInto(e.txtIsprava, QStringLiteral("KIF-12"));
    typeInto(e.txtOpis, QStringLiteral("Dnevni pazar"));
    e.cmbVrsta->setCurrentIndex(0);
    typeInto(e.ubIznos, iznos);
}

class PrihRashEditor : public EditorTest
{
protected:
    void SetUp() override
    {
        EditorTest::SetUp();
        clearSettings();
    }
    void insertFBiH(int rbroj, int vrsta, const QString& iznos, const QString& pdv)
    {
        exec(QStringLiteral(
            "INSERT INTO dbo.KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Opis,Vrsta,Iznos,"
            "IznosPDV) VALUES (1,%1,'03.01.2016',2016,'D-%1','Stavka %1',%2,%3,%4)")
                 .arg(rbroj)
                 .arg(vrsta)
                 .arg(iznos, pdv));
    }
    void insertLink(int rbroj, int kpr)
    {
        exec(QStringLiteral(
            "INSERT INTO dbo.KnjEvidPotrIObvFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,SifKomit,Vrsta,Opis,"
            "Isprava,Iznos,RBrojKPR) VALUES (1,%1,'03.01.2016',2016,1,11,'Veza','R-%1',10,%2)")
                 .arg(rbroj)
                 .arg(kpr));
    }
};

} // namespace

TEST_F(PrihRashEditor, NewEntryWritesEveryColumnWithTheVatOfTheAmount)
{
    auto e = prihRash(96, 1);
    EXPECT_EQ(e->windowTitle(), QStringLiteral("Upis nove stavke knjige prihoda i rashoda"));
    EXPECT_EQ(e->cmdSpremi->text(), QStringLiteral("Spremi"));
    run(*e, [&] {
        fillValid(*e, 1, QStringLiteral("100,00"));
        EXPECT_EQ(e->ubIznosPDV->value(), Money::fromUnits(145299));
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_TRUE(texts().isEmpty()) << texts().join(u'|').toStdString();
    const ResultSet rs
        = rows(QStringLiteral("SELECT BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Opis,Vrsta,Iznos,IznosPDV "
                              "FROM dbo.KnjPrihRashFBiH"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), 1);
    EXPECT_EQ(rs.integer(0, 1), 1);
    EXPECT_EQ(rs.date(0, 2), QDate(2016, 3, 15));
    EXPECT_EQ(rs.integer(0, 3), 2016);
    EXPECT_EQ(rs.text(0, 4), QStringLiteral("KIF-12"));
    EXPECT_EQ(rs.text(0, 5), QStringLiteral("Dnevni pazar"));
    EXPECT_EQ(rs.integer(0, 6), 11);
    EXPECT_EQ(rs.money(0, 7), Money::fromWhole(100));
    EXPECT_EQ(rs.money(0, 8), Money::fromUnits(145299));
}

TEST_F(PrihRashEditor, OptionNotToComputeVatLeavesItAndPersists)
{
    settings::setFlag(QStringLiteral("Arbosa"), QStringLiteral("Settings"), QStringLiteral("KnjNeIzrPDV"), true);
    auto e = prihRash(96, 1);
    EXPECT_TRUE(e->mnuNeIzrPDV->isChecked());
    e->ubIznosPDV->setValue(Money::fromWhole(3));
    e->ubIznos->setValue(Money::fromWhole(100));
    EXPECT_EQ(e->ubIznosPDV->value(), Money::fromWhole(3));
    e->mnuNeIzrPDV->trigger();
    EXPECT_FALSE(
        settings::flag(QStringLiteral("Arbosa"), QStringLiteral("Settings"), QStringLiteral("KnjNeIzrPDV"), true));
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
        EXPECT_EQ(lastMessage().text, QStringLiteral("Morate upisati redni broj veći od 0!"));
        EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
        EXPECT_EQ(lastMessage().title, QString());
        EXPECT_EQ(focusOf(*e), QStringLiteral("ubRBroj"));

        e->ubRBroj->setValue(Money::fromWhole(4));
        e->cmdSpremi->click();
        EXPECT_EQ(
            lastMessage().text, QStringLiteral("Godina unesenog datuma ne odgovara tekućoj radnoj godini! Ispravite!"));
        EXPECT_EQ(focusOf(*e), QStringLiteral("dpDatum"));

        e->dpDatum->setDate(QDate(2016, 1, 2));
        e->txtIsprava->setText(QStringLiteral("   "));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, QStringLiteral("Mora se upisati isprava !"));
        EXPECT_EQ(focusOf(*e), QStringLiteral("txtIsprava"));

        e->txtIsprava->setText(QStringLiteral("I-1"));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, QStringLiteral("Mora se upisati šifra vrste knj.promjene!"));
        EXPECT_EQ(focusOf(*e), QStringLiteral("cmbVrsta"));

        e->cmbVrsta->setCurrentIndex(3);
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, QStringLiteral("Iznos mora biti različit od nule !"));
        EXPECT_EQ(focusOf(*e), QStringLiteral("ubIznos"));
        EXPECT_EQ(count(QStringLiteral("dbo.KnjPrihRashFBiH")), 0);
        EXPECT_TRUE(e->isVisible());

        e->ubIznos->setValue(-Money::fromWhole(20));
        e->cmdSpremi->click();
    });
    EXPECT_EQ(script->messages.size(), 6);
    EXPECT_EQ(lastMessage().text, QStringLiteral("Unesena vrijednost je negativna, pažljivo! Podatak će se upisati!"));
    EXPECT_EQ(lastMessage().title, QStringLiteral("Napomena"));
    const ResultSet rs = rows(QStringLiteral("SELECT RBroj,Vrsta,Iznos FROM dbo.KnjPrihRashFBiH"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), 4);
    EXPECT_EQ(rs.integer(0, 1), 16);
    EXPECT_EQ(rs.money(0, 2), -Money::fromWhole(20));
}

TEST_F(PrihRashEditor, LeavingANegativeAmountWarnsAndMovesToTheVat)
{
    auto e = prihRash(96, 1);
    run(*e, [&] {
        typeInto(e->ubIznos, QStringLiteral("-5"));
        QTest::keyClick(e->ubIznos, Qt::Key_Tab);
        EXPECT_EQ(lastMessage().text, QStringLiteral("Unesena vrijednost je negativna, pažljivo !"));
        EXPECT_EQ(lastMessage().title, QStringLiteral("Napomena"));
        EXPECT_EQ(focusOf(*e), QStringLiteral("ubIznosPDV"));
        EXPECT_EQ(e->ubIznos->value(), -Money::fromWhole(5));
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
}

TEST_F(PrihRashEditor, ChangingTheNumberCarriesTheReceivablesLink)
{
    insertFBiH(7, 11, QStringLiteral("50"), QStringLiteral("7.2650"));
    insertLink(1, 7);
    exec(QStringLiteral("INSERT INTO dbo.KnjEvidPotrIObvFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,SifKomit,Vrsta,Opis,"
                        "Isprava,Iznos,RBrojKPR) VALUES (1,2,'03.01.2015',2015,1,11,'Druga godina','R',10,7)"));
    auto e = prihRash(96, 2, 7);
    run(*e, [&] {
        EXPECT_EQ(e->txtIsprava->text(), QStringLiteral("D-7"));
        EXPECT_EQ(e->cmbVrsta->currentIndex(), 0);
        EXPECT_EQ(e->ubIznosPDV->value(), Money::fromUnits(72650));
        e->ubRBroj->setValue(Money::fromWhole(9));
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_EQ(session().db().lastSql(),
        QStringLiteral("UPDATE dbo.KnjEvidPotrIObvFBiH SET RBrojKPR=9 WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 "
                       "AND RBrojKPR=7"));
    const ResultSet links
        = rows(QStringLiteral("SELECT GodinaKnj,RBrojKPR FROM dbo.KnjEvidPotrIObvFBiH ORDER BY GodinaKnj"));
    ASSERT_EQ(links.rowCount(), 2);
    EXPECT_EQ(links.integer(0, 1), 7); // another year keeps its link
    EXPECT_EQ(links.integer(1, 1), 9);
    const ResultSet rs = rows(QStringLiteral("SELECT RBroj,Isprava FROM dbo.KnjPrihRashFBiH"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), 9);
}

TEST_F(PrihRashEditor, ALinkedEntryCannotBeDeletedAnUnlinkedOneCan)
{
    insertFBiH(3, 16, QStringLiteral("80"), QStringLiteral("0"));
    insertFBiH(4, 12, QStringLiteral("90"), QStringLiteral("0"));
    insertLink(1, 3);
    auto e = prihRash(96, 4, 3);
    run(*e, [&] {
        EXPECT_FALSE(e->txtIsprava->isEnabled());
        EXPECT_TRUE(e->cmdSpremi->isEnabled());
        EXPECT_EQ(e->cmdSpremi->text(), QStringLiteral("Obriši"));
        e->cmdSpremi->click();
        EXPECT_TRUE(e->isVisible());
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
    EXPECT_EQ(lastMessage().text,
        QStringLiteral("Postoji vezana stavka sa ovom stavkom u knjizi evidencije potraživanja i obveza (redni "
                       "broj).\nNije moguće izbrisati zapis u knjizi prihoda i rashoda, dok se ne obriše "
                       "odgovarajući zapis u knjizi evid.obv.i potraživanja!"));
    EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
    EXPECT_EQ(count(QStringLiteral("dbo.KnjPrihRashFBiH")), 2);

    auto d = prihRash(96, 4, 4);
    run(*d, [&] { d->cmdSpremi->click(); });
    EXPECT_FALSE(d->IzišaoSaPrekidom());
    const ResultSet left = rows(QStringLiteral("SELECT RBroj FROM dbo.KnjPrihRashFBiH"));
    ASSERT_EQ(left.rowCount(), 1);
    EXPECT_EQ(left.integer(0, 0), 3);
}

TEST_F(PrihRashEditor, ADeletionGoesOnWhenTheLinkCannotBeChecked)
{
    insertFBiH(3, 16, QStringLiteral("80"), QStringLiteral("0"));
    exec(QStringLiteral("DROP TABLE dbo.KnjEvidPotrIObvFBiH"));
    auto e = prihRash(96, 4, 3);
    run(*e, [&] { e->cmdSpremi->click(); });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    ASSERT_EQ(script->messages.size(), 1);
    EXPECT_EQ(lastMessage().text, QStringLiteral("Desila se greška: u čitanju stavke."));
    EXPECT_EQ(lastMessage().icon, Icon::None);
    EXPECT_EQ(count(QStringLiteral("dbo.KnjPrihRashFBiH")), 0);
}

TEST_F(PrihRashEditor, TheDbBookHasNoVatAndNeverComputesIt)
{
    settings::setFlag(QStringLiteral("Arbosa"), QStringLiteral("Settings"), QStringLiteral("KnjNeIzrPDV"), false);
    auto e = prihRash(109, 1);
    run(*e, [&] {
        EXPECT_FALSE(e->ubIznosPDV->isVisible());
        EXPECT_FALSE(e->lblIznosPDV->isVisible());
        EXPECT_FALSE(e->menuBar->isVisible());
        EXPECT_EQ(e->cmbVrsta->count(), 11);
        EXPECT_EQ(e->cmbVrsta->itemText(0), QStringLiteral(" 5 - Prihod - Gotovina"));
        e->ubRBroj->setValue(Money::fromWhole(1));
        e->dpDatum->setDate(QDate(2016, 6, 1));
        e->txtIsprava->setText(QStringLiteral("B-1"));
        e->cmbVrsta->setCurrentIndex(10);
        typeInto(e->ubIznos, QStringLiteral("100"));
        EXPECT_TRUE(e->ubIznosPDV->value().isZero());
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    const ResultSet rs = rows(QStringLiteral("SELECT * FROM dbo.KnjPrihRashDB"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.indexOf(QStringLiteral("IznosPDV")), -1);
    EXPECT_EQ(rs.integer(0, rs.indexOf(QStringLiteral("Vrsta"))), 16);
    EXPECT_EQ(rs.money(0, rs.indexOf(QStringLiteral("Iznos"))), Money::fromWhole(100));

    // Kind 16 maps back to the last list position; the DB book skips the link check.
    auto d = prihRash(109, 4, 1);
    run(*d, [&] {
        EXPECT_EQ(d->cmbVrsta->currentIndex(), 10);
        d->cmdSpremi->click();
    });
    EXPECT_EQ(count(QStringLiteral("dbo.KnjPrihRashDB")), 0);
}

TEST_F(PrihRashEditor, CopyFromTheListFillsEveryField)
{
    insertFBiH(5, 17, QStringLiteral("234.5"), QStringLiteral("34.07"));
    const ResultSet list = rows(findBook(96)->selectSql + QStringLiteral(" WHERE K.BrojPoduzeca=1 ORDER BY K.RBroj"));
    ASSERT_EQ(list.rowCount(), 1);
    auto e = prihRash(96, 1);
    e->PreuzmiStavku(list, 0);
    e->ubRBroj->setValue(Money::fromWhole(6));
    run(*e, [&] {
        EXPECT_EQ(e->txtIsprava->text(), QStringLiteral("D-5"));
        EXPECT_EQ(e->cmbVrsta->currentText(), QStringLiteral("17 - Rashod - Bruto plaće zaposlenika"));
        EXPECT_EQ(e->ubIznos->value(), Money::fromUnits(2345000));
        EXPECT_EQ(e->ubIznosPDV->value(), Money::fromUnits(340700));
        e->cmdSpremi->click();
    });
    EXPECT_EQ(count(QStringLiteral("dbo.KnjPrihRashFBiH")), 2);
}
