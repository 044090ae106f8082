// The generator as the operator meets it: opened from the DB book's menu, its
// captions, labels, fields and defaults per kind, a run that the browser shows after
// it closes, the remembered source, and the source password that is asked, never
// written to the settings.
#include "books/BookKind.h"
#include "demo/DemoData.h"
#include "demo/DemoSources.h"
#include "generate/SourceDatabase.h"
#include "generate/widgets/frmGenPrihRashDB.h"
#include "session/Session.h"
#include "session/SettingsStore.h"
#include "test_browser_fixture.h"

#include <QAction>
#include <QApplication>
#include <QDateEdit>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace knjige;
using namespace knjige::test;

namespace
{

class GenerateDialog : public BrowserTest
{
protected:
    void SetUp() override
    {
        BrowserTest::SetUp();
        previousStore = generate::setPasswordStore(std::make_unique<generate::MemoryPasswordStore>(true));
        ASSERT_TRUE(fillDemo(db->db(), 2016));
        QString error;
        ASSERT_TRUE(demo::createSourceTables(db->db(), &error)) << error.toStdString();
        ASSERT_TRUE(demo::fillDemoSources(db->db(), 2016, { generate::imeOperateraSustava() }, &error))
            << error.toStdString();
    }
    void TearDown() override
    {
        generate::setPasswordStore(std::move(previousStore));
        BrowserTest::TearDown();
    }

    static QString text(QDialog& d, const QString& name) { return d.findChild<QLabel*>(name)->text(); }
    static bool shown(QDialog& d, const QString& name) { return !d.findChild<QWidget*>(name)->isHidden(); }

    // The March 2016 values that give every kind entries on the demo documents.
    static void fillMarch(generate::frmGenPrihRashDB& d)
    {
        d.dpDatum->setDate(QDate(2016, 3, 1));
        d.dpDatum1->setDate(QDate(2016, 3, 31));
        d.txtOrgJed->setText(QString::number(demo::OrgJed));
        d.txtKomit->setText(QString::number(demo::CompensationSupplier));
        d.txtSkladište->setText(QString::number(demo::Maloprodaja1));
        d.txtPrima->setText(QString::number(demo::Primatelj));
        for (QLineEdit* e : { d.txtKomit, d.txtSkladište, d.txtPrima })
            emit e->editingFinished();
    }

    std::unique_ptr<generate::PasswordStore> previousStore;
};

} // namespace

TEST_F(GenerateDialog, KindsShowTheirFieldsARunIsShownByTheBookAndAServerPasswordIsNeverStored)
{
    const struct {
        int vrsta;
        QString partner, place, receiver;
    } kinds[] = {
        { generate::DgpRacuni, {}, {}, {} },
        { generate::UlazniRacuni, "Uklj.dobavljača:", {}, {} },
        { generate::UplateUlaznih, "Isklj.dobavljača:", {}, {} },
        { generate::MatOtpremnice, {}, "Skladište:", "Kupac (prima):" },
        { generate::PosPovrat, {}, "Maloprodaja:", "Tko prima:" },
    };
    for (const auto& k : kinds) {
        generate::frmGenPrihRashDB d;
        d.setVrsta(k.vrsta);
        EXPECT_EQ(d.windowTitle(), generate::opisVrste(k.vrsta).naslov);
        EXPECT_EQ(shown(d, "txtOrgJed"), k.vrsta <= generate::UplateUlaznih);
        EXPECT_EQ(shown(d, "cmdPrKomit"), !k.partner.isEmpty());
        EXPECT_EQ(shown(d, "cmdPrSkladište"), !k.place.isEmpty());
        if (!k.partner.isEmpty()) {
            EXPECT_EQ(text(d, "lblKomit"), k.partner);
        }
        if (!k.place.isEmpty()) {
            EXPECT_EQ(text(d, "lblSkladište"), k.place);
            EXPECT_EQ(text(d, "lblPrima"), k.receiver);
        }
    }

    // From the menu of the DB book: the embedded default source is the book's own file.
    auto w = open(Knjiga::PrihRashDB);
    const int before = w->rsStavke().rowCount();
    int written = 0;
    script->onDialog = [&](QDialog& dialog) {
        auto& d = dynamic_cast<generate::frmGenPrihRashDB&>(dialog);
        EXPECT_EQ(d.findChild<QGroupBox*>("fraServer")->title(), "Server i baza izl.računa");
        EXPECT_EQ(d.dpDatum->date(), QDate::currentDate().addDays(-7));
        EXPECT_EQ(d.dpDatum1->date(), QDate::currentDate());
        EXPECT_EQ(d.txtImeServera->text(), QString());
        EXPECT_EQ(d.txtBazaPodataka->text(), db->path());
        EXPECT_FALSE(shown(d, "txtLozinka"));
        fillMarch(d);
        d.OKButton->click();
        written = d.zapisano();
        return d.result();
    };
    w->menuItem("mnuGenDGP_1")->trigger();
    ASSERT_GT(written, 0);
    EXPECT_EQ(script->texts().last(),
        QStringLiteral("Uspješno generirano %1 zapisa u knjigu prihoda i rashoda DB!").arg(written));
    EXPECT_EQ(w->rsStavke().rowCount(), before + written);
    const QString app = settings::sharedApplication();
    EXPECT_EQ(settings::text(app, settings::section(), "KIFSQLBaze"), db->path());
    EXPECT_EQ(settings::text(app, settings::section(), "KIFSQLServera", "?"), QString());

    // A server source asks for the password and never stores it in the settings.
    script->clear();
    generate::frmGenPrihRashDB d;
    d.setVrsta(generate::UlazniRacuni);
    fillMarch(d);
    d.txtImeServera->setText("SRV\\POS");
    EXPECT_TRUE(shown(d, "txtLozinka"));
    EXPECT_FALSE(shown(d, "cmdBaza"));
    EXPECT_EQ(text(d, "lblBaza"), "Baza:");
    d.OKButton->click();
    EXPECT_EQ(script->texts(), QStringList { QStringLiteral("Upišite lozinku korisnika sa za server SRV\\POS!") });
    EXPECT_EQ(d.result(), QDialog::Rejected);
    EXPECT_EQ(settings::text(settings::sharedApplication(), settings::section(), "KUFSQLServera"), "SRV\\POS");
    EXPECT_EQ(settings::text(settings::sharedApplication(), settings::section(), generate::passwordKey()), QString());
    // A start after the end is refused before the password or any database is asked for.
    script->clear();
    d.dpDatum->setDate(QDate(2016, 4, 1));
    d.OKButton->click();
    EXPECT_EQ(script->texts(), QStringList { QStringLiteral("Prvi datum veći od drugog!") });
    // A run over every shop is asked about first, and No stops it there too.
    script->clear();
    d.setVrsta(generate::PosOtpremnice);
    fillMarch(d);
    d.txtSkladište->clear();
    script->answers << Answer::No;
    d.OKButton->click();
    ASSERT_EQ(script->texts().size(), 1);
    EXPECT_TRUE(script->texts().first().startsWith(QStringLiteral("Skladište/Maloprodaja nije upisano!")));
    EXPECT_EQ(d.result(), QDialog::Rejected);
}
