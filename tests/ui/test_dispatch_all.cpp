#include "browser/widgets/BookGrid.h"
#include "editors/widgets/MoneyBox.h"
#include "editors/widgets/RecordEditor.h"
#include "test_browser_fixture.h"

#include <QTest>

using namespace knjige;
using namespace knjige::test;

namespace
{

// One valid entry of each book, as the table holds it.
struct Seed {
    int kind;
    QString table;
    RowChange::Values row;
};

RowChange::Values base(int rbroj)
{
    return { { QStringLiteral("BrojPoduzeca"), 1 }, { QStringLiteral("RBroj"), rbroj },
        { QStringLiteral("Datum"), QDate(2016, 6, 15) }, { QStringLiteral("GodinaKnj"), 2016 } };
}

RowChange::Values with(RowChange::Values v, const RowChange::Values& more)
{
    v += more;
    return v;
}

QVector<Seed> seeds()
{
    const RowChange::Values prihRashRS
        = { { QStringLiteral("Opis"), QStringLiteral("Stavka") }, { QStringLiteral("Vrsta"), 5 },
              { QStringLiteral("Iznos"), money(50) }, { QStringLiteral("IznosPDV"), money(7.26) } };
    const RowChange::Values evid = { { QStringLiteral("SifKomit"), 1 }, { QStringLiteral("Vrsta"), 21 },
        { QStringLiteral("Opis"), QStringLiteral("Račun") }, { QStringLiteral("Isprava"), QStringLiteral("UR-1") },
        { QStringLiteral("Iznos"), money(80) }, { QStringLiteral("RBrojKPR"), 3 } };
    const RowChange::Values promet
        = { { QStringLiteral("Opis"), QStringLiteral("Promet") }, { QStringLiteral("Isprava"), QStringLiteral("P-1") },
              { QStringLiteral("IznosGot"), money(100) }, { QStringLiteral("IznosCek"), money(20) } };
    const RowChange::Values popis = { { QStringLiteral("Naziv"), QStringLiteral("Računar") },
        { QStringLiteral("Isprava"), QStringLiteral("17") }, { QStringLiteral("NabVrijednost"), money(1200) },
        { QStringLiteral("KnjigVrijednost"), money(1000) }, { QStringLiteral("VijekTr"), 4 } };
    return {
        { 96, QStringLiteral("dbo.KnjPrihRashFBiH"),
            with(base(1),
                { { QStringLiteral("Isprava"), QStringLiteral("D-1") }, { QStringLiteral("Opis"), QStringLiteral("x") },
                    { QStringLiteral("Vrsta"), 16 }, { QStringLiteral("Iznos"), money(117) },
                    { QStringLiteral("IznosPDV"), money(17) } }) },
        { 109, QStringLiteral("dbo.KnjPrihRashDB"),
            with(base(1),
                { { QStringLiteral("Isprava"), QStringLiteral("D-1") }, { QStringLiteral("Opis"), QStringLiteral("x") },
                    { QStringLiteral("Vrsta"), 9 }, { QStringLiteral("Iznos"), money(30) } }) },
        { 97, QStringLiteral("dbo.KnjEvidPotrIObvFBiH"), with(base(1), evid) },
        { 102, QStringLiteral("dbo.KnjEvidPotrIObvFBiH"), with(base(1), evid) },
        { 98, QStringLiteral("dbo.KnjPrometaFBiH"), with(base(1), promet) },
        { 106, QStringLiteral("dbo.KnjPrometaFBiH"), with(base(1), promet) },
        { 99, QStringLiteral("dbo.KnjPrihodaRS"), with(base(1), prihRashRS) },
        { 100, QStringLiteral("dbo.KnjRashodaRS"), with(base(1), prihRashRS) },
        { 101, QStringLiteral("dbo.KnjPopListaDugImovFBiH"), with(base(1), popis) },
        { 105, QStringLiteral("dbo.KnjPopListaDugImovFBiH"), with(base(1), popis) },
        { 125, QStringLiteral("dbo.TrgKnjUsluga"),
            with(base(1),
                { { QStringLiteral("BrojProd"), 1 }, { QStringLiteral("Opis"), QStringLiteral("Usluga") },
                    { QStringLiteral("Iznos"), money(15) } }) },
        { 126, QStringLiteral("dbo.TrgKnjKomisiona"),
            with(base(1),
                { { QStringLiteral("BrojProd"), 1 }, { QStringLiteral("Opis"), QStringLiteral("Komision") },
                    { QStringLiteral("Zaduzenje"), money(0) }, { QStringLiteral("Razduzenje"), money(120) } }) },
    };
}

class EveryBook : public BrowserTest, public ::testing::WithParamInterface<Seed>
{
};

void PrintTo(const Seed& s, std::ostream* os)
{
    *os << "book " << s.kind;
}

std::string seedName(const ::testing::TestParamInfo<Seed>& info)
{
    return std::to_string(info.param.kind);
}

} // namespace

// Copy, change and delete of one entry through the browser's keys, in every book: each
// confirmed editor writes exactly one row and the list follows.
TEST_P(EveryBook, CopyChangeAndDeleteFromTheBrowser)
{
    const Seed& seed = GetParam();
    db->exec(QStringLiteral("INSERT INTO dbo.Komitent (SifKomit,ImeKomit1) VALUES (1,'Prodavnica Centar')"));
    db->insert(seed.table, seed.row);
    auto w = open(seed.kind);
    ASSERT_EQ(w->rsStavke().rowCount(), 1);
    QList<int> modes;
    QStringList problems;
    script->onDialog = [&](QDialog& d) -> int {
        auto* e = dynamic_cast<RecordEditor*>(&d);
        if (!e || e->TipRada() == 3)
            return QDialog::Rejected;
        modes << e->TipRada();
        d.show();
        if (e->TipRada() == 2)
            e->dpDatum->setDate(QDate(2016, 7, 1));
        const int before = script->messages.size();
        e->cmdSpremi->click();
        for (int i = before; i < script->messages.size(); ++i)
            if (script->messages[i].title != QStringLiteral("Napomena"))
                problems << script->messages[i].text;
        d.hide();
        return d.result();
    };
    w->postaviTrenutniRed(0);
    QTest::keyClick(&w->grid(), Qt::Key_F4);
    ASSERT_EQ(db->count(seed.table), 2) << problems.join(u'|').toStdString();
    ASSERT_EQ(w->rsStavke().rowCount(), 2);
    EXPECT_EQ(w->trenutniRBroj(), 2);

    QTest::keyClick(&w->grid(), Qt::Key_Return);
    const ResultSet changed
        = db->query(QStringLiteral("SELECT RBroj FROM ") + seed.table + QStringLiteral(" WHERE Datum='07.01.2016'"));
    ASSERT_EQ(changed.rowCount(), 1) << problems.join(u'|').toStdString();
    EXPECT_EQ(changed.integer(0, 0), 2);

    QTest::keyClick(&w->grid(), Qt::Key_Delete);
    EXPECT_EQ(db->count(seed.table), 1) << problems.join(u'|').toStdString();
    EXPECT_EQ(w->rsStavke().rowCount(), 1);
    EXPECT_EQ(modes, (QList<int> { 1, 2, 4 }));
    EXPECT_TRUE(problems.isEmpty()) << problems.join(u'|').toStdString();
}

INSTANTIATE_TEST_SUITE_P(Dispatch, EveryBook, ::testing::ValuesIn(seeds()), seedName);
