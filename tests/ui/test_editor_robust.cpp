#include "books/Schema.h"
#include "editors/widgets/EditorFactory.h"
#include "editors/widgets/MoneyBox.h"
#include "editors/widgets/frmKnjPRashFBiHPregled.h"
#include "editors/widgets/frmKnjPrometa.h"
#include "session/Session.h"
#include "test_editor_fixture.h"

#include <QFile>
#include <QTest>

using namespace knjige;
using namespace knjige::test;

namespace
{

std::unique_ptr<frmKnjPrometa> promet(int mode, qint32 redniBroj = 0)
{
    auto e = std::unique_ptr<frmKnjPrometa>(static_cast<frmKnjPrometa*>(createEditor(98).release()));
    e->setTipRada(mode);
    e->sRedniBroj = redniBroj;
    return e;
}

void fill(frmKnjPrometa& e, const QString& opis)
{
    e.ubRBroj->setValue(Money::fromWhole(1));
    e.dpDatum->setDate(QDate(2016, 10, 10));
    e.txtIsprava->setText(QStringLiteral("O'Brien"));
    e.txtOpis->setText(opis);
    e.ubGotovina->setValue(Money::fromUnits(123456789));
}

const QString kSaveFailed = QStringLiteral("Desila se greška u spremanju stavke. Promjene nisu prihvaćene!\n");

using RobustEditor = EditorTest;

} // namespace

TEST_F(RobustEditor, ApostropheAndOverlongTextSaveWhole)
{
    const int width = textColumnWidth(QStringLiteral("dbo.KnjPrometaFBiH"), QStringLiteral("Opis"));
    ASSERT_GT(width, 0);
    auto e = promet(1);
    EXPECT_EQ(e->txtOpis->maxLength(), width);
    run(*e, [&] {
        fill(*e, QString());
        e->txtOpis->setFocus();
        QTest::keyClicks(e->txtOpis, QStringLiteral("x").repeated(width + 5));
        EXPECT_EQ(e->txtOpis->text().size(), width);
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom()) << texts().join(u'|').toStdString();
    const ResultSet rs = rows(QStringLiteral("SELECT Isprava,Opis,IznosGot FROM dbo.KnjPrometaFBiH"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.text(0, 0), QStringLiteral("O'Brien"));
    EXPECT_EQ(rs.text(0, 1), QStringLiteral("x").repeated(width));
    EXPECT_EQ(rs.money(0, 2), Money::fromUnits(123456789));
}

TEST_F(RobustEditor, ADateOutsideTheYearKeepsTheDialogAndWritesNothing)
{
    auto e = promet(1);
    run(*e, [&] {
        fill(*e, QStringLiteral("Van godine"));
        e->dpDatum->setDate(QDate(2017, 1, 1));
        e->cmdSpremi->click();
        EXPECT_TRUE(e->isVisible());
        EXPECT_EQ(e->txtOpis->text(), QStringLiteral("Van godine"));
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
    EXPECT_EQ(texts(),
        QStringList { QStringLiteral("Godina unesenog datuma ne odgovara tekućoj radnoj godini! Ispravite!") });
    EXPECT_EQ(count(QStringLiteral("dbo.KnjPrometaFBiH")), 0);
}

TEST_F(RobustEditor, ADatabaseThatGoesAwayKeepsTheInputAndASecondTrySaves)
{
    auto e = promet(1);
    run(*e, [&] {
        fill(*e, QStringLiteral("Ostaje u dijalogu"));
        session().ConnString = dbPath + QStringLiteral(".nema");
        e->cmdSpremi->click();
        ASSERT_EQ(script->messages.size(), 1);
        EXPECT_TRUE(lastMessage().text.startsWith(kSaveFailed)) << lastMessage().text.toStdString();
        EXPECT_GT(lastMessage().text.size(), kSaveFailed.size());
        EXPECT_EQ(lastMessage().icon, Icon::Exclamation);
        EXPECT_TRUE(e->isVisible());
        EXPECT_EQ(e->txtOpis->text(), QStringLiteral("Ostaje u dijalogu"));
        EXPECT_EQ(e->ubGotovina->value(), Money::fromUnits(123456789));
        session().ConnString = dbPath;
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_EQ(count(QStringLiteral("dbo.KnjPrometaFBiH")), 1);
}

TEST_F(RobustEditor, AChangeToARowThatVanishedIsRefusedWhole)
{
    exec(QStringLiteral(
        "INSERT INTO dbo.KnjPrometaFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Isprava,IznosGot,IznosCek) "
        "VALUES (1,4,'02.02.2016',2016,'Prvi','A',10,0)"));
    auto e = promet(2, 4);
    run(*e, [&] {
        EXPECT_EQ(e->txtOpis->text(), QStringLiteral("Prvi"));
        // Another workstation changes the row while the dialog is open.
        exec(QStringLiteral("UPDATE dbo.KnjPrometaFBiH SET IznosGot=11 WHERE RBroj=4"));
        e->txtOpis->setText(QStringLiteral("Drugi"));
        e->cmdSpremi->click();
        EXPECT_TRUE(lastMessage().text.startsWith(kSaveFailed));
        EXPECT_TRUE(e->isVisible());
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
    const ResultSet rs = rows(QStringLiteral("SELECT Opis,IznosGot FROM dbo.KnjPrometaFBiH"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.text(0, 0), QStringLiteral("Prvi"));
    EXPECT_EQ(rs.money(0, 1), Money::fromWhole(11));
}

TEST_F(RobustEditor, AFailedReadIsReportedAndTheDialogStillShows)
{
    exec(QStringLiteral("DROP TABLE dbo.KnjPrometaFBiH"));
    auto e = promet(2, 1);
    bool shown = false;
    run(*e, [&] { shown = true; });
    EXPECT_TRUE(shown);
    ASSERT_EQ(script->messages.size(), 1);
    EXPECT_TRUE(lastMessage().text.startsWith(QStringLiteral("Desila se greška:  Čitanje tek.zapisa ")));
    EXPECT_EQ(lastMessage().icon, Icon::None);
}

TEST_F(RobustEditor, KeysConfirmCancelAndMoveThroughTheFields)
{
    auto e = promet(1);
    run(*e, [&] {
        e->txtIsprava->setFocus();
        QTest::keyClick(e->txtIsprava, Qt::Key_Return);
        EXPECT_EQ(focusOf(*e), QStringLiteral("txtOpis"));
        QTest::keyClick(e->txtOpis, Qt::Key_Down);
        EXPECT_EQ(focusOf(*e), QStringLiteral("ubGotovina"));
        QTest::keyClick(e->ubGotovina, Qt::Key_Up);
        EXPECT_EQ(focusOf(*e), QStringLiteral("txtOpis"));
        // Page Down confirms as the button does: here the checks refuse.
        e->ubRBroj->setValue(Money());
        QTest::keyClick(e->txtOpis, Qt::Key_PageDown);
        EXPECT_EQ(lastMessage().text, QStringLiteral("Morate upisati redni broj različit od 0!"));
        QTest::keyClick(e->ubRBroj, Qt::Key_Escape);
        EXPECT_FALSE(e->isVisible());
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
}

TEST_F(RobustEditor, SearchModePreparesThePeriodAndChecksIt)
{
    auto e = std::unique_ptr<frmKnjPRashFBiHPregled>(static_cast<frmKnjPRashFBiHPregled*>(createEditor(96).release()));
    e->setTipRada(3);
    EXPECT_EQ(e->windowTitle(), QStringLiteral("Pretraživanje"));
    EXPECT_EQ(e->cmdSpremi->text(), QStringLiteral("Postavi filter"));
    const auto [from, to] = editors::searchPeriod(QDate::currentDate(), 2016);
    run(*e, [&] {
        EXPECT_TRUE(e->dpDatumDo->isVisible());
        EXPECT_TRUE(e->lblDatumDo->isVisible());
        EXPECT_TRUE(e->chkPoDatumima->isVisible());
        EXPECT_FALSE(e->chkPoDatumima->isChecked());
        EXPECT_EQ(e->dpDatum->date(), from);
        EXPECT_EQ(e->dpDatumDo->date(), to);
        EXPECT_EQ(e->cmbVrsta->currentText(), QString());
        EXPECT_EQ(e->cmbVrsta->count(), 8);
        e->dpDatum->setDate(QDate(2016, 12, 31));
        EXPECT_TRUE(e->chkPoDatumima->isChecked());
        e->dpDatumDo->setDate(QDate(2016, 6, 1));
        e->cmdSpremi->click();
        EXPECT_EQ(lastMessage().text, QStringLiteral("Početni datum računa računa veći od konačnog. Ispravite!"));
        EXPECT_EQ(lastMessage().icon, Icon::None);
        EXPECT_EQ(focusOf(*e), QStringLiteral("dpDatum"));
        e->dpDatum->setDate(QDate(2016, 1, 1));
        e->txtOpis->setText(QStringLiteral("Traži"));
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_EQ(e->txtOpis->text(), QStringLiteral("Traži"));
    EXPECT_EQ(count(QStringLiteral("dbo.KnjPrihRashFBiH")), 0);
}
