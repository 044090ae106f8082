#include "books/BookKind.h"
#include "books/Schema.h"
#include "editors/widgets/MoneyBox.h"
#include "editors/widgets/frmKnjEvidPotObvFBiH.h"
#include "editors/widgets/frmKnjPRashFBiHPregled.h"
#include "editors/widgets/frmKnjPrometa.h"
#include "editors/widgets/frmPopListaDImovineFBiH.h"
#include "session/Session.h"
#include "test_editor_fixture.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QTest>

using namespace knjige;
using namespace knjige::test;

namespace
{

// A valid turnover entry but for its description.
const QString kFill = "ubRBroj=1;dpDatum=2016-10-10;txtIsprava=O'Brien;ubGotovina=12345.6789;txtOpis=";

const QList<int> kEveryBook = { 96, 109, 97, 102, 98, 106, 99, 100, 101, 105, 125, 126 };

// The controls a person reaches with Tab, in the order Tab reaches them, starting
// after cmdPrekid.
QList<QWidget*> tabChain(editors::RecordEditor& e)
{
    QList<QWidget*> chain;
    for (QWidget* w = e.cmdPrekid->nextInFocusChain(); w && w != e.cmdPrekid; w = w->nextInFocusChain()) {
        const QWidget* parent = w->parentWidget();
        if (w->window() != &e || !w->isVisible() || !w->isEnabled() || !(w->focusPolicy() & Qt::TabFocus)
            || qobject_cast<const QAbstractSpinBox*>(parent) || qobject_cast<const QComboBox*>(parent))
            continue;
        chain << w;
    }
    return chain << e.cmdPrekid;
}

// Screen order: each control lies on the row after the one before it, or on the same
// row to its right.
QString screenOrderBreak(editors::RecordEditor& e, const QList<QWidget*>& chain)
{
    for (int i = 1; i < chain.size(); ++i) {
        const QRect a(chain[i - 1]->mapTo(&e, QPoint(0, 0)), chain[i - 1]->size());
        const QRect b(chain[i]->mapTo(&e, QPoint(0, 0)), chain[i]->size());
        const bool sameRow = qAbs(a.center().y() - b.center().y()) <= qMin(a.height(), b.height()) / 2;
        const bool ok = sameRow ? b.left() > a.right() : b.center().y() > a.bottom();
        if (!ok)
            return chain[i - 1]->objectName() + QStringLiteral(" -> ") + chain[i]->objectName();
    }
    return {};
}

const QString kSaveFailed = "Desila se greška u spremanju stavke. Promjene nisu prihvaćene!\n";

using RobustEditor = EditorTest;

} // namespace

TEST_F(RobustEditor, ApostropheAndOverlongTextSaveWhole)
{
    const int width = books::textColumnWidth("dbo.KnjPrometaFBiH", "Opis");
    ASSERT_GT(width, 0);
    auto e = editor<editors::frmKnjPrometa>(98, 1);
    EXPECT_EQ(e->txtOpis->maxLength(), width);
    run(*e, [&] {
        set(*e, kFill + "~" + QString("x").repeated(width + 5));
        EXPECT_EQ(e->txtOpis->text().size(), width);
        save(*e, { {} });
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_EQ(table("SELECT Isprava,Opis,IznosGot FROM dbo.KnjPrometaFBiH"),
        "O'Brien|" + QString("x").repeated(width) + "|12345.6789");
}

TEST_F(RobustEditor, ARefusedOrFailedSaveKeepsTheInputAndASecondTrySaves)
{
    auto e = editor<editors::frmKnjPrometa>(98, 1);
    run(*e, [&] {
        save(*e,
            { { kFill + "Ostaje u dijalogu;dpDatum=2017-01-01",
                "Godina unesenog datuma ne odgovara tekućoj radnoj godini! Ispravite!" } });
        set(*e, "dpDatum=2016-10-10");
        session().ConnString = db->path() + QStringLiteral(".nema");
        e->cmdSpremi->click();
        expectOneError(script->messages.mid(1), kSaveFailed);
        EXPECT_TRUE(e->isVisible());
        EXPECT_EQ(values(*e, "txtOpis;ubGotovina"), "Ostaje u dijalogu|12345.6789");
        session().ConnString = db->path();
        EXPECT_EQ(count("dbo.KnjPrometaFBiH"), 0);
        e->cmdSpremi->click();
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_EQ(count("dbo.KnjPrometaFBiH"), 1);
}

TEST_F(RobustEditor, AChangeToARowThatVanishedIsRefusedWholeAndAFailedReadIsReported)
{
    exec("INSERT INTO dbo.KnjPrometaFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Isprava,IznosGot,IznosCek) "
         "VALUES (1,4,'02.02.2016',2016,'Prvi','A',10,0)");
    auto e = editor<editors::frmKnjPrometa>(98, 2, 4);
    run(*e, [&] {
        EXPECT_EQ(e->txtOpis->text(), "Prvi");
        // Another workstation changes the row while the dialog is open.
        exec("UPDATE dbo.KnjPrometaFBiH SET IznosGot=11 WHERE RBroj=4");
        e->txtOpis->setText("Drugi");
        e->cmdSpremi->click();
        expectOneError(script->messages, kSaveFailed);
        EXPECT_TRUE(e->isVisible());
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
    EXPECT_EQ(table("SELECT Opis,IznosGot FROM dbo.KnjPrometaFBiH"), "Prvi|11");

    // A read that fails is reported and the dialog still shows.
    exec("DROP TABLE dbo.KnjPrometaFBiH");
    script->clear();
    auto r = editor<editors::frmKnjPrometa>(98, 2, 1);
    bool shown = false;
    run(*r, [&] { shown = true; });
    EXPECT_TRUE(shown);
    expectOneError(script->messages, "Desila se greška:  Čitanje tek.zapisa ", Icon::None);
}

TEST_F(RobustEditor, KeysConfirmCancelAndMoveThroughTheFields)
{
    auto e = editor<editors::frmKnjPrometa>(98, 1);
    run(*e, [&] {
        e->txtIsprava->setFocus();
        QTest::keyClick(e->txtIsprava, Qt::Key_Return);
        EXPECT_EQ(focusOf(*e), "txtOpis");
        QTest::keyClick(e->txtOpis, Qt::Key_Down);
        EXPECT_EQ(focusOf(*e), "ubGotovina");
        QTest::keyClick(e->ubGotovina, Qt::Key_Up);
        EXPECT_EQ(focusOf(*e), "txtOpis");
        // Page Down confirms as the button does: here the checks refuse.
        e->ubRBroj->setValue(Money());
        QTest::keyClick(e->txtOpis, Qt::Key_PageDown);
        EXPECT_EQ(lastMessage().text, "Morate upisati redni broj različit od 0!");
        QTest::keyClick(e->ubRBroj, Qt::Key_Escape);
        EXPECT_FALSE(e->isVisible());
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
}

// Every kind list takes the code typed, whatever its text begins with (the DB list
// aligns one-digit codes with a blank); Alt+Down and F4 open it, Down alone moves on.
TEST_F(RobustEditor, KindListsTakeTheTypedCodeAndOpenWithAltDownOrF4)
{
    const struct {
        int book;
        const char* keys;
        const char* chosen;
    } cases[] = {
        { 109, "5", " 5 - Prihod - Gotovina" }, { 109, "15", "15 - Rashod - Plaćen PPU" },
        { 109, "1", "10 - Rashod - Žiro račun" }, { 96, "16", "16 - Rashod - Nabavka robe/materijala" },
        { 96, "5", "" }, { 97, "21", "21 - Primljeni racuni" },
        { 100, "13", "13 - Rashod - Rashodi koji se ne priznaju" },
        { 99, "87", "7 - Prihod - Naplaćeni prihod od financiranja" }, // 87 is no code: 7 starts anew
    };
    for (const auto& c : cases) {
        auto e = editor(c.book, 1);
        auto* list = qobject_cast<QComboBox*>(e->control(c.book == 96 || c.book == 109 ? "cmbVrsta" : "cboVrsta"));
        ASSERT_TRUE(list) << c.book;
        run(*e, [&] {
            list->setFocus();
            QTest::keyClicks(list, c.keys);
            EXPECT_EQ(list->currentText(), QString::fromUtf8(c.chosen)) << c.book << " " << c.keys;
            for (const auto& [key, modifier] :
                { std::pair(Qt::Key_Down, Qt::AltModifier), std::pair(Qt::Key_F4, Qt::NoModifier) }) {
                QTest::keyClick(list, key, modifier);
                EXPECT_TRUE(list->view()->isVisible()) << c.book;
                list->hidePopup();
            }
            QTest::keyClick(list, Qt::Key_Down);
            EXPECT_NE(focusOf(*e), list->objectName());
        });
    }
}

TEST_F(RobustEditor, SearchModePreparesThePeriodAndChecksIt)
{
    auto e = editor<editors::frmKnjPRashFBiHPregled>(96, 3);
    EXPECT_EQ(e->windowTitle(), "Pretraživanje");
    EXPECT_EQ(e->cmdSpremi->text(), "Postavi filter");
    const auto [from, to] = editors::searchPeriod(QDate::currentDate(), 2016);
    run(*e, [&] {
        EXPECT_TRUE(e->dpDatumDo->isVisible());
        EXPECT_TRUE(e->lblDatumDo->isVisible());
        EXPECT_TRUE(e->chkPoDatumima->isVisible());
        EXPECT_FALSE(e->chkPoDatumima->isChecked());
        EXPECT_EQ(values(*e, "dpDatum;dpDatumDo;cmbVrsta"),
            from.toString(Qt::ISODate) + "|" + to.toString(Qt::ISODate) + "|");
        EXPECT_EQ(e->cmbVrsta->count(), 8);
        set(*e, "dpDatum=2016-12-31");
        EXPECT_TRUE(e->chkPoDatumima->isChecked());
        save(*e,
            { { "dpDatumDo=2016-06-01", "Početni datum računa računa veći od konačnog. Ispravite!", "dpDatum", {},
                  Icon::None },
                { "dpDatum=2016-01-01;txtOpis=Traži" } });
    });
    EXPECT_FALSE(e->IzišaoSaPrekidom());
    EXPECT_EQ(e->txtOpis->text(), "Traži");
    EXPECT_EQ(count("dbo.KnjPrihRashFBiH"), 0);
}

TEST_F(RobustEditor, WholeNumberBoxesTakeNoMoreThanTheirColumnHolds)
{
    auto r = editor<editors::frmKnjEvidPotObvFBiH>(97, 1);
    run(*r, [&] {
        for (editors::MoneyBox* box : { r->ubRBroj, r->ubKPR }) {
            type(box, "3000000000");
            EXPECT_EQ(box->integerValue(), 300000000) << box->objectName().toStdString();
            type(box, "2147483647");
            EXPECT_EQ(box->integerValue(), 2147483647) << box->objectName().toStdString();
        }
    });
    auto a = editor<editors::frmPopListaDImovineFBiH>(105, 1);
    run(*a, [&] {
        type(a->ubVijekTrajanja, "40000");
        EXPECT_EQ(a->ubVijekTrajanja->integerValue(), 4000);
    });

    // A number set from elsewhere beyond the column is refused, never narrowed.
    auto e = editor<editors::frmKnjPrometa>(98, 1);
    run(*e, [&] {
        save(*e,
            { { kFill + "Preveliki broj;ubRBroj=3000000000", "Broj mora biti između -2147483648 i 2147483647!",
                "ubRBroj" } });
        EXPECT_TRUE(e->isVisible());
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
    EXPECT_EQ(count("dbo.KnjPrometaFBiH"), 0);
}

TEST_F(RobustEditor, TabFollowsTheScreenAClickSelectsAndEnterPassesOverTheLookupButtons)
{
    for (int book : kEveryBook)
        for (int mode : { 1, 3 }) {
            auto e = editor(book, mode);
            const QString name = books::isAssetList(book) ? QStringLiteral("txtNazivSredstva") : "txtOpis";
            auto* text = qobject_cast<QLineEdit*>(e->control(name));
            ASSERT_TRUE(text) << book;
            run(*e, [&] {
                const QList<QWidget*> chain = tabChain(*e);
                EXPECT_EQ(screenOrderBreak(*e, chain), QString()) << book << " mode " << mode;
                EXPECT_EQ(chain.value(chain.size() - 2), e->cmdSpremi) << book;
                // A click into a text field selects its whole text.
                text->setText("Stari opis");
                e->ubRBroj->setFocus();
                QTest::mouseClick(text, Qt::LeftButton, {}, QPoint(text->width() / 3, text->height() / 2));
                QApplication::processEvents();
                EXPECT_TRUE(text->hasFocus()) << book;
                EXPECT_EQ(text->selectedText(), "Stari opis") << book;
            });
        }

    // A code typed, Enter or Down passes over the lookup button beside it, and Up comes back.
    for (const auto& [book, code, button, key, next] :
        { std::tuple(97, "txtKomitent", "cmdPrKomit", Qt::Key_Return, "cboVrsta"),
            std::tuple(125, "txtSkladište", "cmdPrSkladište", Qt::Key_Down, "ubRBroj") }) {
        auto e = editor(book, 1);
        run(*e, [&] {
            QWidget* field = e->control(code);
            EXPECT_EQ(field->nextInFocusChain(), e->control(button));
            field->setFocus();
            QTest::keyClick(field, key);
            EXPECT_EQ(focusOf(*e), next);
            QTest::keyClick(e->focusWidget(), Qt::Key_Up);
            EXPECT_EQ(focusOf(*e), code);
        });
    }
}
