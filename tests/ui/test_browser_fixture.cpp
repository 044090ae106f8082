#include "test_browser_fixture.h"

#include "session/Session.h"
#include "support/Sandbox.h"

namespace knjige::test {

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

void BrowserTest::addPrihRash(int company, int year, int rBroj, const QDate& datum, int vrsta, double iznos,
                              double pdv, const QString& opis)
{
    db->insert(QStringLiteral("dbo.KnjPrihRashFBiH"),
               {{QStringLiteral("BrojPoduzeca"), company},
                {QStringLiteral("RBroj"), rBroj},
                {QStringLiteral("Datum"), datum},
                {QStringLiteral("GodinaKnj"), year},
                {QStringLiteral("Isprava"), QStringLiteral("D-%1").arg(rBroj)},
                {QStringLiteral("Opis"), opis.isEmpty() ? QStringLiteral("Stavka %1").arg(rBroj) : opis},
                {QStringLiteral("Vrsta"), vrsta},
                {QStringLiteral("Iznos"), money(iznos)},
                {QStringLiteral("IznosPDV"), money(pdv)}});
}

std::unique_ptr<frmSifarnikKnj> BrowserTest::open(int kind, const QString& level)
{
    session().NivoPristupa = level;
    session().ImeOperatera = QStringLiteral("Ana");
    auto w = std::make_unique<frmSifarnikKnj>();
    w->setTipSifarnika(kind);
    w->Prikaži(0, {});
    return w;
}

QList<qint64> BrowserTest::rBrojevi(frmSifarnikKnj& w)
{
    QList<qint64> out;
    const ResultSet& rs = w.rsStavke();
    const int f = rs.indexOf(QStringLiteral("RBroj"));
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
