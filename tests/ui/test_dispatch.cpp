#include "browser/widgets/BookGrid.h"
#include "editors/widgets/MoneyBox.h"
#include "editors/widgets/RecordEditor.h"
#include "session/Clock.h"
#include "session/Session.h"
#include "test_browser_fixture.h"

#include <QAction>
#include <QApplication>
#include <QTest>

using namespace knjige;
using namespace knjige::test;

namespace
{

// What the browser handed to each editor it showed, and what the test did there.
struct Shown {
    int mode = 0;
    qint32 sRedniBroj = 0;
    qint64 proposed = 0;
    QDate date;
    QString windowTitle;
};

class Dispatch : public BrowserTest
{
protected:
    // Every editor (not the filter) runs `act`; the filter is cancelled.
    void onEditor(std::function<void(RecordEditor&)> act)
    {
        script->onDialog = [this, act](QDialog& d) -> int {
            auto* e = dynamic_cast<RecordEditor*>(&d);
            if (!e || e->TipRada() == 3)
                return QDialog::Rejected;
            shown.append(
                { e->TipRada(), e->sRedniBroj, e->ubRBroj->integerValue(), e->dpDatum->date(), e->windowTitle() });
            d.show();
            act(*e);
            d.hide();
            return d.result();
        };
    }
    static void key(frmSifarnikKnj& w, Qt::Key k) { QTest::keyClick(&w.grid(), k); }
    static void goToEntry(frmSifarnikKnj& w, int dataRow) { w.postaviTrenutniRed(dataRow); }
    // Makes the entry of a shop current in a trade book.
    static void goToShopEntry(frmSifarnikKnj& w, int shop, int rbroj)
    {
        const ResultSet& rs = w.rsStavke();
        for (int r = 0; r < rs.rowCount(); ++r)
            if (rs.integer(r, rs.indexOf(QStringLiteral("BrojProd"))) == shop
                && rs.integer(r, rs.indexOf(QStringLiteral("RBroj"))) == rbroj)
                w.postaviTrenutniRed(r);
    }
    template <typename T> static T* field(RecordEditor& e, const char* name)
    {
        return qobject_cast<T*>(e.control(QString::fromUtf8(name)));
    }
    void addPromet(int rbroj, double got)
    {
        db->insert(QStringLiteral("dbo.KnjPrometaFBiH"),
            { { QStringLiteral("BrojPoduzeca"), 1 }, { QStringLiteral("RBroj"), rbroj },
                { QStringLiteral("Datum"), QDate(2016, 4, rbroj) }, { QStringLiteral("GodinaKnj"), 2016 },
                { QStringLiteral("Opis"), QStringLiteral("Promet %1").arg(rbroj) },
                { QStringLiteral("Isprava"), QStringLiteral("P-%1").arg(rbroj) },
                { QStringLiteral("IznosGot"), money(got) }, { QStringLiteral("IznosCek"), money(0) } });
    }
    void addUsluga(int shop, int rbroj, double iznos)
    {
        db->insert(QStringLiteral("dbo.TrgKnjUsluga"),
            { { QStringLiteral("BrojPoduzeca"), 1 }, { QStringLiteral("BrojProd"), shop },
                { QStringLiteral("RBroj"), rbroj }, { QStringLiteral("Datum"), QDate(2016, 5, rbroj) },
                { QStringLiteral("GodinaKnj"), 2016 },
                { QStringLiteral("Opis"), QStringLiteral("Usluga %1").arg(rbroj) },
                { QStringLiteral("Iznos"), money(iznos) } });
    }
    void addKomitent(int code, const QString& name)
    {
        db->exec(QStringLiteral("INSERT INTO dbo.Komitent (SifKomit,ImeKomit1) VALUES (%1,'%2')").arg(code).arg(name));
    }

    QList<Shown> shown;
};

} // namespace

TEST_F(Dispatch, NewEntryInAnEmptyBookProposesOneAndTheLastDayOfAPastYear)
{
    auto w = open(96);
    ASSERT_TRUE(w->jePrikazan());
    onEditor([](RecordEditor& e) {
        field<QLineEdit>(e, "txtIsprava")->setText(QStringLiteral("KIF-1"));
        field<QComboBox>(e, "cmbVrsta")->setCurrentIndex(0);
        field<MoneyBox>(e, "ubIznos")->setValue(Money::fromWhole(100));
        e.cmdSpremi->click();
    });
    key(*w, Qt::Key_F9);
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown[0].mode, 1);
    EXPECT_EQ(shown[0].sRedniBroj, 0);
    EXPECT_EQ(shown[0].proposed, 1);
    // The working year 2016 lies in the past: its last day.
    EXPECT_EQ(shown[0].date, QDate(2016, 12, 31));
    EXPECT_EQ(rBrojevi(*w), QList<qint64> { 1 });
    EXPECT_EQ(w->trenutniRBroj(), 1);

    key(*w, Qt::Key_Insert);
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[1].proposed, 2);
    EXPECT_EQ(w->trenutniRBroj(), 2);
    const ResultSet rs = db->query(QStringLiteral("SELECT IznosPDV FROM dbo.KnjPrihRashFBiH WHERE RBroj=2"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.money(0, 0), Money::fromUnits(145299));
}

TEST_F(Dispatch, NewEntryInTheCurrentYearProposesToday)
{
    // Today as the component's clock has it, not the system's.
    clock::setToday(QDate(2019, 7, 14));
    db.reset();
    db = std::make_unique<TestDatabase>(1, qint16(2019));
    auto w = open(98);
    onEditor([](RecordEditor& e) { e.cmdPrekid->click(); });
    key(*w, Qt::Key_F9);
    clock::setToday({});
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown[0].date, QDate(2019, 7, 14));
}

TEST_F(Dispatch, CancelLeavesTheListUnreloaded)
{
    addPrihRash(1, 2016, 1, QDate(2016, 2, 1), 11, 10);
    auto w = open(96);
    ASSERT_EQ(rBrojevi(*w).size(), 1);
    // Another workstation adds an entry; the list learns of it only on a reload.
    addPrihRash(1, 2016, 2, QDate(2016, 2, 2), 11, 20);
    onEditor([](RecordEditor& e) { QTest::keyClick(e.cmdSpremi, Qt::Key_Escape); });
    key(*w, Qt::Key_F9);
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown[0].proposed, 3);
    EXPECT_EQ(rBrojevi(*w).size(), 1);
    key(*w, Qt::Key_Return);
    EXPECT_EQ(rBrojevi(*w).size(), 1);
    EXPECT_EQ(db->count(QStringLiteral("dbo.KnjPrihRashFBiH")), 2);
}

TEST_F(Dispatch, EnterChangesAndDeleteRemovesTheCurrentEntry)
{
    for (int r = 1; r <= 3; ++r)
        addPrihRash(1, 2016, r, QDate(2016, 3, r), 16, 10.0 * r);
    auto w = open(96);
    goToEntry(*w, 1);
    onEditor([](RecordEditor& e) {
        EXPECT_EQ(field<QLineEdit>(e, "txtIsprava")->text(), QStringLiteral("D-2"));
        e.ubRBroj->setValue(Money::fromWhole(7));
        e.cmdSpremi->click();
    });
    key(*w, Qt::Key_Return);
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown[0].mode, 2);
    EXPECT_EQ(shown[0].sRedniBroj, 2);
    EXPECT_EQ(shown[0].windowTitle, QStringLiteral("Izmjena stavke knjige prihoda i rashoda"));
    EXPECT_EQ(rBrojevi(*w), (QList<qint64> { 1, 3, 7 }));
    EXPECT_EQ(w->trenutniRBroj(), 7);

    goToEntry(*w, 0);
    onEditor([](RecordEditor& e) {
        EXPECT_FALSE(field<QLineEdit>(e, "txtOpis")->isEnabled());
        e.cmdSpremi->click();
    });
    key(*w, Qt::Key_Delete);
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[1].mode, 4);
    EXPECT_EQ(shown[1].windowTitle, QStringLiteral("Brisanje stavke knjige prihoda i rashoda"));
    EXPECT_EQ(rBrojevi(*w), (QList<qint64> { 3, 7 }));
}

TEST_F(Dispatch, NothingOpensOnATotalsRow)
{
    addPrihRash(1, 2016, 1, QDate(2016, 3, 1), 11, 10);
    auto w = open(96);
    onEditor([](RecordEditor& e) { e.cmdSpremi->click(); });
    for (int modelRow = 0; modelRow < w->grid().model()->rowCount(); ++modelRow) {
        if (!w->jeRedUkupno(modelRow))
            continue;
        w->grid().setCurrentIndex(w->grid().model()->index(modelRow, 1));
        w->IzmjenaZapisa(2);
        w->IzmjenaZapisa(4);
    }
    EXPECT_TRUE(shown.isEmpty());
    EXPECT_EQ(db->count(QStringLiteral("dbo.KnjPrihRashFBiH")), 1);
}

TEST_F(Dispatch, TurnoverRsRelabelsTheChequeAndReceivablesRsLockTheLink)
{
    addPromet(1, 40);
    auto w = open(106);
    goToEntry(*w, 0);
    QString label;
    onEditor([&](RecordEditor& e) {
        label = field<QLabel>(e, "lblČekovi")->text();
        e.cmdPrekid->click();
    });
    key(*w, Qt::Key_Return);
    EXPECT_EQ(label, QStringLiteral("Račun:"));

    addKomitent(5, QStringLiteral("Kupac d.o.o."));
    db->insert(QStringLiteral("dbo.KnjEvidPotrIObvFBiH"),
        { { QStringLiteral("BrojPoduzeca"), 1 }, { QStringLiteral("RBroj"), 1 },
            { QStringLiteral("Datum"), QDate(2016, 6, 1) }, { QStringLiteral("GodinaKnj"), 2016 },
            { QStringLiteral("SifKomit"), 5 }, { QStringLiteral("Vrsta"), 11 },
            { QStringLiteral("Opis"), QStringLiteral("R") }, { QStringLiteral("Isprava"), QStringLiteral("IR-1") },
            { QStringLiteral("Iznos"), money(10) }, { QStringLiteral("RBrojKPR"), 0 } });
    auto r = open(102);
    goToEntry(*r, 0);
    bool kprEnabled = true;
    QString partner;
    onEditor([&](RecordEditor& e) {
        kprEnabled = e.control(QStringLiteral("ubKPR"))->isEnabled();
        partner = field<QLabel>(e, "lblKomit")->text();
        e.cmdPrekid->click();
    });
    key(*r, Qt::Key_Return);
    EXPECT_FALSE(kprEnabled);
    EXPECT_EQ(partner, QStringLiteral(" Kupac d.o.o."));
}

TEST_F(Dispatch, SameEntryCopiesEveryFieldWithTheNextNumber)
{
    addPrihRash(1, 2016, 4, QDate(2016, 3, 9), 12, 234.5, 34.07, QStringLiteral("Uplata kupca"));
    auto w = open(96);
    goToEntry(*w, 0);
    onEditor([](RecordEditor& e) {
        EXPECT_EQ(field<QLineEdit>(e, "txtOpis")->text(), QStringLiteral("Uplata kupca"));
        EXPECT_EQ(field<QComboBox>(e, "cmbVrsta")->currentText(), QStringLiteral("12 - Prihod - Bankovni račun"));
        EXPECT_EQ(field<MoneyBox>(e, "ubIznosPDV")->value(), Money::fromUnits(340700));
        e.cmdSpremi->click();
    });
    key(*w, Qt::Key_F4);
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown[0].mode, 1);
    EXPECT_EQ(shown[0].proposed, 5);
    EXPECT_EQ(shown[0].date, QDate(2016, 3, 9));
    EXPECT_EQ(rBrojevi(*w), (QList<qint64> { 4, 5 }));
    EXPECT_EQ(w->trenutniRBroj(), 5);
    const ResultSet rs = db->query(QStringLiteral("SELECT Isprava,Opis,Vrsta,Iznos,IznosPDV FROM dbo.KnjPrihRashFBiH "
                                                  "WHERE RBroj=5"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.text(0, 0), QStringLiteral("D-4"));
    EXPECT_EQ(rs.integer(0, 2), 12);
    EXPECT_EQ(rs.money(0, 3), Money::fromUnits(2345000));
    EXPECT_EQ(rs.money(0, 4), Money::fromUnits(340700));
}

TEST_F(Dispatch, TradeBookEntriesAreAddedChangedCopiedAndDeletedPerShop)
{
    addKomitent(1, QStringLiteral("Centar"));
    addKomitent(2, QStringLiteral("Zapad"));
    addUsluga(1, 1, 10);
    addUsluga(1, 2, 20);
    auto w = open(125);
    w->BrojProd = 2;
    onEditor([](RecordEditor& e) {
        field<QLineEdit>(e, "txtOpis")->setText(QStringLiteral("Prva u Zapadu"));
        field<MoneyBox>(e, "ubIznos")->setValue(Money::fromWhole(5));
        e.cmdSpremi->click();
    });
    key(*w, Qt::Key_F9);
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown[0].proposed, 1);
    EXPECT_EQ(w->rsStavke().rowCount(), 3);

    // Change the second entry of shop 1.
    goToShopEntry(*w, 1, 2);
    ASSERT_EQ(w->trenutniRBroj(), 2);
    onEditor([](RecordEditor& e) {
        EXPECT_EQ(field<QLineEdit>(e, "txtSkladište")->text(), QStringLiteral("1"));
        EXPECT_EQ(field<QLineEdit>(e, "txtOpis")->text(), QStringLiteral("Usluga 2"));
        field<MoneyBox>(e, "ubIznos")->setValue(Money::fromWhole(22));
        e.cmdSpremi->click();
    });
    key(*w, Qt::Key_Return);
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[1].mode, 2);

    // Copy it: the next number of its own shop.
    goToShopEntry(*w, 1, 2);
    onEditor([](RecordEditor& e) { e.cmdSpremi->click(); });
    key(*w, Qt::Key_F4);
    ASSERT_EQ(shown.size(), 3);
    EXPECT_EQ(shown[2].proposed, 3);

    const ResultSet rs
        = db->query(QStringLiteral("SELECT BrojProd,RBroj,Iznos FROM dbo.TrgKnjUsluga ORDER BY BrojProd,RBroj"));
    ASSERT_EQ(rs.rowCount(), 4);
    EXPECT_EQ(rs.money(1, 2), Money::fromWhole(22));
    EXPECT_EQ(rs.integer(2, 1), 3);
    EXPECT_EQ(rs.money(2, 2), Money::fromWhole(22));
    EXPECT_EQ(rs.integer(3, 0), 2);

    goToShopEntry(*w, 2, 1);
    onEditor([](RecordEditor& e) {
        EXPECT_EQ(field<QLineEdit>(e, "txtOpis")->text(), QStringLiteral("Prva u Zapadu"));
        e.cmdSpremi->click();
    });
    key(*w, Qt::Key_Delete);
    ASSERT_EQ(shown.size(), 4);
    EXPECT_EQ(shown[3].mode, 4);
    EXPECT_EQ(db->count(QStringLiteral("dbo.TrgKnjUsluga")), 3);
    EXPECT_EQ(db->count(QStringLiteral("dbo.TrgKnjUsluga WHERE BrojProd=2")), 0);
}

TEST_F(Dispatch, BulkDeleteAsksAndRemovesExactlyTheListedEntries)
{
    for (int r = 1; r <= 3; ++r)
        db->insert(QStringLiteral("dbo.KnjPrihRashDB"),
            { { QStringLiteral("BrojPoduzeca"), 1 }, { QStringLiteral("RBroj"), r },
                { QStringLiteral("Datum"), QDate(2016, 1, r) }, { QStringLiteral("GodinaKnj"), 2016 },
                { QStringLiteral("Isprava"), QStringLiteral("B") }, { QStringLiteral("Opis"), QStringLiteral("x") },
                { QStringLiteral("Vrsta"), 5 }, { QStringLiteral("Iznos"), money(r) } });
    db->insert(QStringLiteral("dbo.KnjPrihRashDB"),
        { { QStringLiteral("BrojPoduzeca"), 2 }, { QStringLiteral("RBroj"), 1 },
            { QStringLiteral("Datum"), QDate(2016, 1, 1) }, { QStringLiteral("GodinaKnj"), 2016 },
            { QStringLiteral("Vrsta"), 5 }, { QStringLiteral("Iznos"), money(9) } });
    auto w = open(109, QStringLiteral("2"));
    QAction* bulk = w->menuItem(QStringLiteral("mnuBrisPrikPod"));
    ASSERT_TRUE(bulk->isVisible());
    script->answers.enqueue(Answer::No);
    bulk->trigger();
    ASSERT_EQ(script->messages.size(), 1);
    const Message asked = script->messages[0];
    EXPECT_EQ(asked.text,
        QStringLiteral("Želite li zaista obrisati sve prikazane podatke ?\nIzbrisati će se 3 zapisa! "
                       "Pažljivo, jer više neće biti moguće vratiti podatke!"));
    EXPECT_EQ(asked.icon, Icon::Question);
    EXPECT_EQ(asked.buttons, Buttons::YesNo);
    EXPECT_EQ(asked.defaultAnswer, Answer::No);
    EXPECT_EQ(db->count(QStringLiteral("dbo.KnjPrihRashDB")), 4);

    script->answers.enqueue(Answer::Yes);
    bulk->trigger();
    EXPECT_TRUE(w->rsStavke().isEmpty());
    const ResultSet left = db->query(QStringLiteral("SELECT BrojPoduzeca FROM dbo.KnjPrihRashDB"));
    ASSERT_EQ(left.rowCount(), 1);
    EXPECT_EQ(left.integer(0, 0), 2);
}

TEST_F(Dispatch, TwoEntriesSharingANumberAreChangedAndDeletedOneByOne)
{
    addPrihRash(1, 2016, 5, QDate(2016, 3, 1), 11, 10, 0, QStringLiteral("Prva petica"));
    addPrihRash(1, 2016, 5, QDate(2016, 3, 2), 16, 20, 0, QStringLiteral("Druga petica"));
    auto w = open(96);
    const auto goToOpis = [&](const QString& opis) {
        const ResultSet& rs = w->rsStavke();
        for (int r = 0; r < rs.rowCount(); ++r)
            if (rs.text(r, rs.indexOf(QStringLiteral("Opis"))) == opis)
                goToEntry(*w, r);
        return w->rsStavke().text(w->trenutniRed(), w->rsStavke().indexOf(QStringLiteral("Opis"))) == opis;
    };
    ASSERT_TRUE(goToOpis(QStringLiteral("Druga petica")));
    onEditor([](RecordEditor& e) {
        EXPECT_EQ(field<QLineEdit>(e, "txtOpis")->text(), QStringLiteral("Druga petica"));
        field<MoneyBox>(e, "ubIznos")->setValue(Money::fromWhole(25));
        e.cmdSpremi->click();
    });
    key(*w, Qt::Key_Return);
    ASSERT_EQ(shown.size(), 1);
    const QString byOpis = QStringLiteral("SELECT Opis,Iznos FROM dbo.KnjPrihRashFBiH ORDER BY Opis");
    ResultSet rs = db->query(byOpis);
    ASSERT_EQ(rs.rowCount(), 2);
    EXPECT_EQ(rs.text(1, 0), QStringLiteral("Prva petica"));
    EXPECT_EQ(rs.money(1, 1), Money::fromWhole(10));
    EXPECT_EQ(rs.money(0, 1), Money::fromWhole(25));

    ASSERT_TRUE(goToOpis(QStringLiteral("Druga petica")));
    onEditor([](RecordEditor& e) {
        EXPECT_EQ(field<QLineEdit>(e, "txtOpis")->text(), QStringLiteral("Druga petica"));
        e.cmdSpremi->click();
    });
    key(*w, Qt::Key_Delete);
    ASSERT_EQ(shown.size(), 2);
    rs = db->query(byOpis);
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.text(0, 0), QStringLiteral("Prva petica"));

    // The first of the two is reached as well.
    addPrihRash(1, 2016, 5, QDate(2016, 3, 3), 12, 30, 0, QStringLiteral("Treća petica"));
    w->OsvjeziZapise();
    ASSERT_TRUE(goToOpis(QStringLiteral("Prva petica")));
    onEditor([](RecordEditor& e) {
        EXPECT_EQ(field<QLineEdit>(e, "txtOpis")->text(), QStringLiteral("Prva petica"));
        e.cmdSpremi->click();
    });
    key(*w, Qt::Key_Delete);
    rs = db->query(byOpis);
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.text(0, 0), QStringLiteral("Treća petica"));
}

TEST_F(Dispatch, ReceivablesRsKeepTheLinkLockedAndACopyNeverCarriesIt)
{
    addKomitent(5, QStringLiteral("Kupac d.o.o."));
    // The FBiH and RS records share their table.
    db->insert(QStringLiteral("dbo.KnjEvidPotrIObvFBiH"),
        { { QStringLiteral("BrojPoduzeca"), 1 }, { QStringLiteral("RBroj"), 1 },
            { QStringLiteral("Datum"), QDate(2016, 6, 1) }, { QStringLiteral("GodinaKnj"), 2016 },
            { QStringLiteral("SifKomit"), 5 }, { QStringLiteral("Vrsta"), 11 },
            { QStringLiteral("Opis"), QStringLiteral("Račun") }, { QStringLiteral("Isprava"), QStringLiteral("IR-1") },
            { QStringLiteral("Iznos"), money(10) }, { QStringLiteral("RBrojKPR"), 4 } });
    struct Seen {
        bool kprEnabled;
        qint64 kpr;
    };
    QList<Seen> seen;
    const auto record = [&](bool save) {
        onEditor([&seen, save](RecordEditor& e) {
            auto* kpr = field<MoneyBox>(e, "ubKPR");
            seen.append({ kpr->isEnabled(), kpr->integerValue() });
            (save ? e.cmdSpremi : e.cmdPrekid)->click();
        });
    };

    auto rs = open(102);
    record(false);
    key(*rs, Qt::Key_F9);
    goToEntry(*rs, 0);
    key(*rs, Qt::Key_F4);
    key(*rs, Qt::Key_Return);
    ASSERT_EQ(seen.size(), 3);
    for (const Seen& s : seen)
        EXPECT_FALSE(s.kprEnabled);
    EXPECT_EQ(seen[1].kpr, 0); // the copy
    EXPECT_EQ(seen[2].kpr, 4); // the entry itself

    // In the FBiH book the copy is saved after the warning about the missing link.
    seen.clear();
    auto fbih = open(97);
    goToEntry(*fbih, 0);
    record(true);
    key(*fbih, Qt::Key_F4);
    ASSERT_EQ(seen.size(), 1);
    EXPECT_TRUE(seen[0].kprEnabled);
    EXPECT_EQ(seen[0].kpr, 0);
    EXPECT_EQ(script->messages.last().text,
        QStringLiteral("Bilo bi poželjno da se upiše redni broj u knjizi prihoda i rashoda! "
                       "Podatak će se spremiti, ali pažljivo!"));
    const ResultSet links
        = db->query(QStringLiteral("SELECT RBroj,RBrojKPR FROM dbo.KnjEvidPotrIObvFBiH ORDER BY RBroj,RBrojKPR"));
    ASSERT_EQ(links.rowCount(), 2);
    EXPECT_EQ(links.integer(0, 1), 4);
    EXPECT_EQ(links.integer(1, 0), 2);
    EXPECT_EQ(links.integer(1, 1), 0);
}

TEST_F(Dispatch, ANewAssetIsFoundUnderTheNumberTheTableGaveIt)
{
    for (int r = 1; r <= 3; ++r)
        db->insert(QStringLiteral("dbo.KnjPopListaDugImovFBiH"),
            { { QStringLiteral("BrojPoduzeca"), 1 }, { QStringLiteral("GodinaKnj"), 2016 },
                { QStringLiteral("RBroj"), r }, { QStringLiteral("Naziv"), QStringLiteral("Sredstvo %1").arg(r) },
                { QStringLiteral("Datum"), QDate(2016, 2, r) }, { QStringLiteral("Isprava"), QStringLiteral("1") },
                { QStringLiteral("NabVrijednost"), money(1000) }, { QStringLiteral("KnjigVrijednost"), money(900) },
                { QStringLiteral("VijekTr"), 5 } });
    for (int book : { 105, 101 }) {
        auto w = open(book);
        onEditor([](RecordEditor& e) {
            // The operator's number is not what the table assigns.
            e.ubRBroj->setValue(Money::fromWhole(2));
            field<QLineEdit>(e, "txtBrojDokumenta")->setText(QStringLiteral("44"));
            field<QLineEdit>(e, "txtNazivSredstva")->setText(QStringLiteral("Novo sredstvo"));
            field<MoneyBox>(e, "ubVijekTrajanja")->setValue(Money::fromWhole(4));
            field<MoneyBox>(e, "ubNabavna")->setValue(Money::fromWhole(800));
            field<MoneyBox>(e, "ubKnjigovodstvena")->setValue(Money::fromWhole(800));
            e.cmdSpremi->click();
        });
        key(*w, Qt::Key_F9);
        const qint32 expected = book == 105 ? 4 : 5;
        EXPECT_EQ(w->trenutniRBroj(), expected) << book;
        const ResultSet& rs = w->rsStavke();
        ASSERT_GE(w->trenutniRed(), 0);
        EXPECT_EQ(rs.text(w->trenutniRed(), rs.indexOf(QStringLiteral("Naziv"))), QStringLiteral("Novo sredstvo"));
    }
}
