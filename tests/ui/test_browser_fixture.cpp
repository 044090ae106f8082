#include "test_browser_fixture.h"

#include "books/BookKind.h"
#include "session/Session.h"
#include "support/Sandbox.h"

#include <cmath>

namespace knjige::test
{

void BrowserTest::SetUp()
{
    clearSettings();
    installHostServices({});
    db = std::make_unique<TestDatabase>(1, 2016);
}

void BrowserTest::TearDown()
{
    db.reset();
    installHostServices({});
}

void BrowserTest::addPrihRash(
    int company, int year, int rBroj, const QDate& datum, int vrsta, double iznos, double pdv, const QString& opis)
{
    db->insert("dbo.KnjPrihRashFBiH",
        { { "BrojPoduzeca", company }, { "RBroj", rBroj }, { "Datum", datum }, { "GodinaKnj", year },
            { "Isprava", QStringLiteral("D-%1").arg(rBroj) },
            { "Opis", opis.isEmpty() ? QStringLiteral("Stavka %1").arg(rBroj) : opis }, { "Vrsta", vrsta },
            { "Iznos", money(iznos) }, { "IznosPDV", money(pdv) } });
}

namespace
{

// Money of entry i: varied, now and then zero.
double amount(int i)
{
    return i % 9 == 0 ? 0 : double((i * 7919) % 100000) / 100.0 + 1;
}

} // namespace

db::RowChange::Values BrowserTest::entry(int book, int i, const db::RowChange::Values& more)
{
    const QString text = QStringLiteral("S%1-%2").arg(book).arg(i)
        + (i % 10 == 0 ? QStringLiteral(" dugački opis stavke koji se mora prelomiti u više redova ispisa")
                       : QString());
    const QVariant a = money(amount(i));
    const QString doc = QStringLiteral("D-%1").arg(i);
    auto kindOf = [i](std::initializer_list<int> kinds) { return *(kinds.begin() + i % int(kinds.size())); };
    db::RowChange::Values v = { { "BrojPoduzeca", 1 }, { "RBroj", i }, { "Datum", QDate(2016, 1, 1).addDays(i % 360) },
        { "GodinaKnj", 2016 }, { books::isAssetList(book) ? "Naziv" : "Opis", text } };
    switch (book) {
    case 96:
        v << db::RowChange::Values { { "Isprava", doc }, { "Vrsta", kindOf({ 11, 12, 13, 16, 17, 18, 19 }) },
            { "Iznos", a }, { "IznosPDV", money(std::round(amount(i) * 17 / 1.17) / 100) } };
        break;
    case 109:
        v << db::RowChange::Values { { "Isprava", doc },
            { "Vrsta", kindOf({ 5, 6, 7, 9, 10, 11, 12, 13, 14, 15, 16 }) }, { "Iznos", a } };
        break;
    case 97:
    case 102:
        v << db::RowChange::Values { { "SifKomit", 1001 }, { "Vrsta", kindOf({ 11, 12, 21, 22 }) }, { "Isprava", doc },
            { "Iznos", a }, { "RBrojKPR", i } };
        break;
    case 98:
    case 106:
        v << db::RowChange::Values { { "Isprava", doc }, { "IznosGot", a }, { "IznosCek", money(amount(i + 3)) } };
        break;
    case 99:
    case 100:
        v << db::RowChange::Values { { "Vrsta", kindOf({ 4, 5, 6, 7, 8 }) }, { "Iznos", a },
            { "IznosPDV", money(amount(i) / 10) } };
        break;
    case 101:
    case 105:
        v << db::RowChange::Values { { "Isprava", QString::number(i) }, { "NabVrijednost", money(amount(i) * 10) },
            { "KnjigVrijednost", money(amount(i) * 8) }, { "VijekTr", 2 + i % 8 } };
        break;
    case 125:
        v << db::RowChange::Values { { "BrojProd", 501 }, { "Iznos", a } };
        break;
    default:
        v << db::RowChange::Values { { "BrojProd", 501 }, { "Zaduzenje", a }, { "Razduzenje", money(amount(i + 1)) } };
    }
    for (const auto& column : more) {
        v.removeIf([&](const auto& c) { return c.first == column.first; });
        v << column;
    }
    return v;
}

void BrowserTest::add(int book, int i, const db::RowChange::Values& more)
{
    db->insert(books::findBook(book)->table, entry(book, i, more));
}

void BrowserTest::addPartner(int code, const QString& name)
{
    db->insert("dbo.Komitent", { { "SifKomit", code }, { "ImeKomit1", name } });
}

void BrowserTest::addCompany()
{
    db->insert("dbo.CONFIG",
        { { "BrojPoduzeca", 1 }, { "NazivFirme", "Obrt Šimić" }, { "Adresa", "Titova 3" }, { "PostBroj", "71000" },
            { "Mjesto", "Sarajevo" }, { "IdBroj", "4200000000001" } });
    addPartner(1001, "Partner d.o.o.");
    addPartner(501, "Maloprodaja Centar");
}

std::unique_ptr<browser::frmSifarnikKnj> BrowserTest::open(int kind, const QString& level)
{
    session().NivoPristupa = level;
    session().ImeOperatera = "Ana";
    auto w = std::make_unique<browser::frmSifarnikKnj>();
    w->setTipSifarnika(kind);
    w->Prikaži(0, {});
    return w;
}

QList<qint64> BrowserTest::rBrojevi(browser::frmSifarnikKnj& w)
{
    QList<qint64> out;
    const db::ResultSet& rs = w.rsStavke();
    const int f = rs.indexOf("RBroj");
    for (int r = 0; r < rs.rowCount(); ++r)
        out << rs.integer(r, f);
    return out;
}

std::shared_ptr<RecordingRights::Log> BrowserTest::installRights(bool mayOpen, QList<OperatorRights::Group> denied)
{
    auto rights = std::make_unique<RecordingRights>();
    rights->mayOpen = mayOpen;
    rights->denied = std::move(denied);
    auto log = rights->log;
    HostServices services;
    services.rights = std::move(rights);
    installHostServices(std::move(services));
    return log;
}

} // namespace knjige::test
