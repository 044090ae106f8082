// Generation of the DB book from the demo company's documents: every kind against
// the demo source (entries, numbers, kinds, amounts, cut texts), the checks and their
// order, the questions, and the failures with their messages.
#include "ResultText.h"
#include "books/BookKind.h"
#include "demo/DemoData.h"
#include "demo/DemoSources.h"
#include "generate/Generation.h"
#include "generate/SourceDatabase.h"
#include "journal/BookCheck.h"
#include "journal/Journal.h"
#include "journal/PeriodLock.h"
#include "session/Session.h"
#include "session/db/ConnectionString.h"
#include "support/ScriptedInteraction.h"
#include "support/TestDatabase.h"

#include <functional>
#include <gtest/gtest.h>

using namespace knjige;
using namespace knjige::generate;
using knjige::test::ScopedScript;
using knjige::test::TestDatabase;

namespace
{

// A run as the window makes it: the generation, then the message it ended with.
Rezultat izvedi(const Parametri& p)
{
    const Rezultat r = generiraj(p);
    tell(r.poruka);
    return r;
}

const QString kNone = QStringLiteral("/nema/takve/mape/izvor.db");

// A run over March 2016 for company 1, reading the embedded database at `path`.
Parametri march(int vrsta, const QString& path)
{
    Parametri p;
    p.vrsta = vrsta;
    p.od = QDate(2016, 3, 1);
    p.doDatuma = QDate(2016, 3, 31);
    p.brojPoduzeca = 1;
    p.godina = 2016;
    p.orgJed = QStringLiteral("1");
    p.supplier = QString::number(demo::CompensationSupplier);
    p.prima = QString::number(demo::Primatelj);
    p.operater = QStringLiteral("ana");
    p.izvor = QStringLiteral("sqlite:") + path;
    return p;
}

class Generation : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QString error;
        ASSERT_TRUE(demo::fillDemoData(t.db(), 2016, &error)) << error.toStdString();
        ASSERT_TRUE(demo::createSourceTables(t.db(), &error)) << error.toStdString();
        ASSERT_TRUE(demo::fillDemoSources(t.db(), 2016, { QStringLiteral("ana") }, &error)) << error.toStdString();
    }

    Parametri march(int vrsta) const { return ::march(vrsta, t.path()); }

    qint64 lastNumber()
    {
        return t.query("SELECT ISNULL(MAX(RBroj),0) FROM dbo.KnjPrihRashDB WHERE GodinaKnj=2016").integer(0, 0);
    }
    db::ResultSet entriesAfter(qint64 rBroj)
    {
        return t.query(QStringLiteral("SELECT RBroj,Datum,Isprava,Opis,Vrsta,Iznos FROM dbo.KnjPrihRashDB WHERE "
                                      "GodinaKnj=2016 AND RBroj>%1 ORDER BY RBroj")
                           .arg(rBroj));
    }

    TestDatabase t;
    ScopedScript script;
};

} // namespace

TEST_F(Generation, EveryKindAppendsOneNumberedEntryPerSourceRow)
{
    const QString range = QStringLiteral(" BETWEEN '03.01.2016' AND '03.31.2016'");
    const struct {
        int vrsta;
        QString place;
        QString expected; // count and sum of the source rows, read independently, before the range
        QList<int> kinds;
    } cases[] = {
        { DgpRacuni, {}, "SELECT COUNT(*),SUM(IznosIfakt) FROM Ifakture WHERE Vrsta='DGP' AND OrgJed=1 AND DatumIfakt",
            { 5 } },
        { UplateIzlaznih, {}, "SELECT COUNT(*),SUM(Iznos) FROM IFAKTUplate WHERE OrgJed=1 AND Datum", { 6 } },
        { UlazniRacuni, {}, "SELECT COUNT(*),SUM(IznosFakture) FROM KUF WHERE SifKomit=201 AND DatFakture", { 11 } },
        { UplateUlaznih, {},
            "SELECT COUNT(*),SUM(Iznos) FROM KUFUplate WHERE BrojKUFa IN (SELECT BrojKUFa FROM KUF WHERE "
            "SifKomit<>201) "
            "AND Datum",
            { 9, 10 } },
        { MatOtpremnice, "501",
            "SELECT COUNT(*),SUM(IznosOtprem+UkPorez) FROM dbo.MOtpremInt WHERE BrojSklad=501 AND ŠifraKom=101 AND "
            "DatumOtprem",
            { 9 } },
        { PosOtpremnice, {}, "SELECT COUNT(*),SUM(IznosPovr) FROM dbo.RIntOtprem WHERE ŠifraKom=101 AND DatumPovr",
            { 9 } },
        { PosPovrat, "502",
            "SELECT COUNT(*),-SUM(IznosPovr) FROM dbo.RIntOtprem WHERE BrojSklad=502 AND ŠifraKom=101 AND DatumPovr",
            { 9 } },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.vrsta);
        const db::ResultSet expected = t.query(c.expected + range);
        const int n = int(expected.integer(0, 0));
        ASSERT_GT(n, 1);
        const qint64 last = lastNumber();
        Parametri p = march(c.vrsta);
        p.shop = c.place;
        script->clear();
        ASSERT_TRUE(provjeri(p).refusal.isEmpty());
        EXPECT_EQ(izvedi(p).zapisano, n);
        EXPECT_EQ(script->texts().last(),
            QStringLiteral("Uspješno generirano %1 zapisa u knjigu prihoda i rashoda DB!").arg(n));
        EXPECT_TRUE(script->texts().contains(QStringLiteral("Postoje %1").arg(n) + opisVrste(c.vrsta).upitBroja));
        ASSERT_EQ(script->progress.size(), 1);
        EXPECT_EQ(script->progress[0].texts, QStringList { QStringLiteral("Generiranje: %1 od %1 zapisa").arg(n) });
        EXPECT_TRUE(script->progress[0].finished && !script->progress[0].cancellable);

        const db::ResultSet rs = entriesAfter(last);
        ASSERT_EQ(rs.rowCount(), n);
        Money sum;
        for (int r = 0; r < n; ++r) {
            EXPECT_EQ(rs.integer(r, 0), last + r + 1);
            EXPECT_TRUE(c.kinds.contains(int(rs.integer(r, 4)))) << rs.integer(r, 4);
            EXPECT_LE(rs.text(r, 2).size(), 20);
            EXPECT_GE(rs.date(r, 1), p.od);
            EXPECT_LE(rs.date(r, 1), p.doDatuma);
            if (c.vrsta == UplateUlaznih) // the payment's document closes the text and decides the kind
                EXPECT_EQ(rs.integer(r, 4), rs.text(r, 3).contains(QStringLiteral(" Upl.BL-")) ? 9 : 10)
                    << rs.text(r, 3).toStdString();
            else
                EXPECT_LE(rs.text(r, 3).size(), 30);
            sum += rs.money(r, 5);
        }
        EXPECT_EQ(sum, expected.money(0, 1));
    }
    // Each run is one journal record that explains its rows to the check; a closed March
    // refuses a run, and a run repeated after the unlock books its documents twice,
    // which the check names.
    std::vector<journal::Record> chain;
    ASSERT_TRUE(journal::readChain(t.db(), 1, 2016, chain));
    EXPECT_EQ(std::count_if(chain.begin(), chain.end(),
                  [](const journal::Record& r) { return r.radnja == journal::RecordKind::Generiranje; }),
        7);
    const auto findings = [this](const QString& text) {
        return journal::bookcheck::check(t.db(), { Knjiga::PrihRashDB, 1, 2016, 0 }).findings.filter(text);
    };
    EXPECT_EQ(findings(QStringLiteral("izvan programa")), QStringList());
    EXPECT_EQ(findings(QStringLiteral("proknjižen")), QStringList());
    QString error;
    ASSERT_TRUE(journal::periodlock::lock(t.db(), { Knjiga::PrihRashDB, 1, 2016, 0 }, QDate(2016, 3, 31), &error));
    // Writing the same documents again is what the operator asks for here.
    const auto writeAgain = [this] {
        script->clear();
        script->answers << Answer::Yes << Answer::Yes << Answer::Yes;
    };
    writeAgain();
    EXPECT_EQ(izvedi(march(DgpRacuni)).zapisano, 0);
    EXPECT_TRUE(script->texts().last().startsWith(QStringLiteral("Razdoblje knjige je zaključano do 31.03.2016. "
                                                                 "Generiranje bi upisalo stavke datirane ")));
    ASSERT_TRUE(
        journal::periodlock::unlock(t.db(), { Knjiga::PrihRashDB, 1, 2016, 0 }, QStringLiteral("Ponovo"), &error));
    writeAgain();
    const int again = izvedi(march(DgpRacuni)).zapisano;
    EXPECT_GT(again, 1);
    EXPECT_EQ(findings(QStringLiteral("proknjižen 2 puta")).size(), again);
}

// A second run over the same days, and a payment of last year's invoice: each is asked
// about, unanswered it is left out, and what is left out takes no number. What others
// write while the questions wait is seen before anything is written.
TEST_F(Generation, ASecondRunAndLastYearsInvoiceAreAskedAbout)
{
    for (const char* sql : { "INSERT INTO Ifakture VALUES (1,2016,'VP',7,10,'03.01.2016',0,100)",
             "INSERT INTO Ifakture VALUES (1,2015,'VP',7,90,'12.20.2015',0,40)",
             "INSERT INTO IFAKTUplate VALUES (1,10,2016,7,'VP','03.02.2016','IZV-1',60)",
             "INSERT INTO IFAKTUplate VALUES (1,90,2015,7,'VP','03.03.2016','IZV-2',40)",
             "INSERT INTO IFAKTUplate VALUES (1,10,2016,7,'VP','03.04.2016','IZV-3',40)" })
        t.exec(QString::fromUtf8(sql));
    Parametri p = march(UplateIzlaznih);
    p.orgJed = QStringLiteral("7");
    const auto again = [](int held) {
        return QStringLiteral("Od 3 zapisa za prijenos, %1 već postoje u knjizi prihoda i rashoda DB iz ranijeg "
                              "generiranja (isti datum, isprava, opis i iznos). Želite li ih ponovo upisati? Ako "
                              "odgovorite Ne, upisat će se samo ostali zapisi.")
            .arg(held);
    };
    const QString year
        = "Zapisi koji pripadaju drugoj godini knjige, a ne radnoj godini 2016:\n"
          "Uplata 7 d:IZV-2 (VP-7-90/2015), 03.03.16, godina 2015\n"
          "Upisali bi se u knjigu svoje godine pod rednim brojevima radne godine. Želite li ih izostaviti?";
    const std::string first = "1|2016|2016-03-02|Uplata 7 d:IZV-1|60; 2|2016|2016-03-04|Uplata 7 d:IZV-3|40";
    const std::string third = first
        + "; 3|2016|2016-03-02|Uplata 7 d:IZV-1|60; 4|2015|2016-03-03|Uplata 7 d:IZV-2|40; "
          "5|2016|2016-03-04|Uplata 7 d:IZV-3|40";
    const qint64 last = lastNumber();
    const QList<Answer> writeAgainButNotLastYear { Answer::Yes, Answer::Yes, Answer::Yes, Answer::Yes };
    const struct {
        QList<Answer> answers; // none: each question's default
        QStringList questions;
        int written;
        std::string book; // number after the book's last, year, date, document, amount
        QString meanwhile = {}; // run at the last question; %1: the book's last number before the runs
        QString end = {}; // empty: the success message
    } runs[] = {
        { {}, { year }, 2, first },
        { {}, { again(2), year }, 0, first },
        { { Answer::Yes, Answer::Yes, Answer::Yes, Answer::No }, { again(2), year }, 3, third },
        // A second run books the same payment while this one waits: nothing is written.
        { writeAgainButNotLastYear, { again(3), year }, 0, third + "; 1005|2016|2016-03-04|Uplata 7 d:IZV-3|40",
            "INSERT INTO dbo.KnjPrihRashDB SELECT BrojPoduzeca,RBroj+1000,Datum,GodinaKnj,Isprava,Opis,Vrsta,Iznos "
            "FROM dbo.KnjPrihRashDB WHERE RBroj=%1+5",
            "Dok je generiranje čekalo odgovor, isti zapisi upisani su u knjigu DB (drugo generiranje za isto "
            "razdoblje?). Ništa nije upisano; ponovite generiranje." },
        // Another entry takes the next number meanwhile: the run numbers on after it.
        { writeAgainButNotLastYear, { again(3), year }, 2,
            third
                + "; 1005|2016|2016-03-04|Uplata 7 d:IZV-3|40; 2001|2016|2016-03-02|Uplata 7 d:IZV-1|60; "
                  "2002|2016|2016-03-04|Uplata 7 d:IZV-3|40",
            "INSERT INTO dbo.KnjPrihRashDB VALUES (1,%1+2000,'03.09.2016',2016,'Drugi','Drugi',1,1)" },
    };
    for (const auto& run : runs) {
        script->clear();
        for (Answer a : run.answers)
            script->answers << a;
        script->onQuestion = [&](const Message& m) {
            if (m.text == year && !run.meanwhile.isEmpty())
                t.exec(run.meanwhile.arg(last));
        };
        EXPECT_EQ(izvedi(p).zapisano, run.written);
        const QString end = !run.end.isEmpty()
            ? run.end
            : QStringLiteral("Uspješno generirano %1 zapisa u knjigu prihoda i rashoda DB!").arg(run.written);
        EXPECT_EQ(script->texts(),
            QStringList({ pitanjePotvrde(p), "Postoje 3" + opisVrste(UplateIzlaznih).upitBroja }) + run.questions
                + QStringList { end });
        const db::ResultSet book = t.query(QStringLiteral("SELECT RBroj-%1,GodinaKnj,Datum,Isprava,Iznos FROM "
                                                          "dbo.KnjPrihRashDB WHERE Opis LIKE 'VP-7-%' ORDER BY RBroj")
                                               .arg(last));
        EXPECT_EQ(test::rowsText(book), run.book);
    }
    script->onQuestion = nullptr;
}

TEST_F(Generation, StopsWithTheMessageOfEachFailureNegatesReturnsAndNamesThePaymentsDocument)
{
    // An empty range, and a "No" to either question, write nothing.
    Parametri empty = march(UlazniRacuni);
    empty.od = empty.doDatuma = QDate(2016, 3, 7); // supplier 201 delivers every third day of the year
    const qint64 last = lastNumber();
    const Rezultat prazan = generiraj(empty);
    EXPECT_EQ(prazan.zapisano, 0);
    EXPECT_EQ(prazan.poruka.text, QStringLiteral("Ne postoje podaci u KUF-u za zadani filter!"));
    EXPECT_EQ(prazan.poruka.icon, Icon::Information);
    for (int no = 0; no < 2; ++no) {
        script->clear();
        if (no)
            script->answers << Answer::Yes;
        script->answers << Answer::No;
        EXPECT_EQ(izvedi(march(DgpRacuni)).zapisano, 0);
        EXPECT_EQ(script->messages.size(), no + 1);
    }

    // A source that cannot be opened: the kind's own message.
    const QStringList readErrors = { "Greška u čitanju podatka iz KIF-a!", "Greška u čitanju podatka iz uplata KIF-a!",
        "Greška u čitanju podatka iz KUF-a!", "Greška u čitanju podatka iz KUF-a!",
        "Greška u čitanju podatka iz int.otpremnica!" };
    for (int vrsta = 0; vrsta < readErrors.size(); ++vrsta) {
        Parametri p = march(vrsta);
        p.izvor = QStringLiteral("sqlite:") + kNone;
        script->clear();
        const Rezultat r = izvedi(p);
        EXPECT_FALSE(r.izvorOtvoren);
        EXPECT_EQ(script->texts(), QStringList({ pitanjePotvrde(p), readErrors[vrsta] }));
    }
    EXPECT_EQ(lastNumber(), last);

    // Returns are the shop notes negated.
    const qint64 start = last;
    ASSERT_EQ(izvedi(march(PosOtpremnice)).zapisano > 0, true);
    const qint64 middle = lastNumber();
    ASSERT_EQ(izvedi(march(PosPovrat)).zapisano, middle - start);
    const db::ResultSet plus = entriesAfter(start);
    const int n = int(middle - start);
    for (int r = 0; r < n; ++r) {
        for (int c : { 1, 2, 3, 4 })
            EXPECT_EQ(plus.text(r, c), plus.text(r + n, c));
        EXPECT_EQ(plus.money(r + n, 5), -plus.money(r, 5));
    }

    // A cut source text, with the payment's document after it and deciding the kind.
    t.exec("INSERT INTO KUF VALUES (1,2016,'UVOZNIKUF',1234567,2000000002,202,'03.15.2016',10)");
    t.exec("INSERT INTO KUFUplate VALUES (1,2000000002,2016,1234567,'UVOZNIKUF','03.21.2016','BL-77/16',4)");
    const qint64 before = lastNumber();
    Parametri p = march(UplateUlaznih);
    p.orgJed = QStringLiteral("1234567");
    EXPECT_EQ(izvedi(p).zapisano, 1);
    EXPECT_EQ(test::rowText(entriesAfter(before), 0),
        QString("%1|2016-03-21|KUF 1234567|UVOZNIKUF-1234567-2000000002/2 Upl.BL-77/16|9|4")
            .arg(before + 1)
            .toStdString());

    // An empty book starts at 1.
    t.exec("DELETE FROM dbo.KnjPrihRashDB");
    const int written = izvedi(march(MatOtpremnice)).zapisano;
    EXPECT_EQ(written, entriesAfter(0).rowCount());
    EXPECT_EQ(entriesAfter(0).integer(0, 0), 1);
}

TEST(GenerationChecks, RefusedInOrderBeforeAnyDatabaseAccess)
{
    ScopedScript script;
    session().reset();
    session().ConnString = kNone;
    Parametri base;
    base.od = base.doDatuma = QDate(2016, 5, 1);
    base.orgJed = QStringLiteral("1");
    base.supplier = base.prima = base.shop = QStringLiteral("501");
    const struct {
        int vrsta;
        std::function<void(Parametri&)> change;
        QString message; // empty: passes
    } cases[] = {
        { DgpRacuni, [](Parametri& p) { p.od = p.doDatuma.addDays(1), p.orgJed.clear(); },
            "Prvi datum veći od drugog!" },
        { UplateIzlaznih, [](Parametri& p) { p.orgJed = QStringLiteral("1a"); }, "Org.jedinica nije dobro upisana!" },
        { UlazniRacuni, [](Parametri& p) { p.supplier = QStringLiteral(" "); }, "Dobavljač nije upisan!" },
        { UplateUlaznih, [](Parametri& p) { p.supplier = QStringLiteral("1 OR 1=1"); },
            "Dobavljač nije dobro upisan!" },
        { MatOtpremnice, [](Parametri& p) { p.prima.clear(), p.shop.clear(); }, "Tko prima ili kupac nije upisan!" },
        { PosPovrat, [](Parametri& p) { p.orgJed = QStringLiteral("x"); }, {} },
        { PosOtpremnice, [](Parametri& p) { p.shop = QStringLiteral("5;"); },
            "Skladište/Maloprodaja nije dobro upisano!" },
    };
    for (const auto& c : cases) {
        Parametri p = base;
        p.vrsta = c.vrsta;
        c.change(p);
        const Check check = provjeri(p);
        EXPECT_EQ(check.refusal, c.message) << c.vrsta;
        EXPECT_TRUE(check.question.isEmpty()) << c.vrsta;
    }
    // An empty place asks first.
    base.vrsta = PosOtpremnice;
    base.shop.clear();
    const Check check = provjeri(base);
    EXPECT_TRUE(check.refusal.isEmpty());
    EXPECT_TRUE(check.question.startsWith(QStringLiteral("Skladište/Maloprodaja nije upisano! Generirat")));
    EXPECT_TRUE(script->texts().isEmpty()); // shown by the window, never by the checks
    session().reset();
}

TEST(GenerationTexts, StatementsQuestionsRightsAndTheSourceConnection)
{
    Parametri p = march(DgpRacuni, kNone);
    p.brojPoduzeca = 3;
    p.orgJed = QStringLiteral(" 7 ");
    EXPECT_EQ(izvorniUpit(p),
        "SELECT K.BrojPoduzeca,K.GodinaKnj,K.DatumIfakt,left('Pazar '+rtrim(cast(K.OrgJed as nvarchar(15))),20) "
        "as Isprava,left(K.Vrsta+'-'+cast(K.OrgJed as nvarchar(10))+'-'+cast(K.BrojIfakt as nvarchar(15))+'/'+"
        "cast(K.GodinaKnj as nvarchar(5)),30) as Opis,K.IznosIfakt as Iznos FROM Ifakture K  WHERE "
        "K.BrojPoduzeca=3 AND K.Vrsta='DGP' AND K.OrgJed=7 AND K.DATUMIFAKT >= '03.01.2016' AND "
        "K.DATUMIFAKT<='03.31.2016' AND K.GodinaKnj=2016 ORDER BY K.DatumIfakt");
    EXPECT_EQ(pitanjePotvrde(p),
        "Želite li generirati stavke knjige prihoda i rashoda za DB na temelju pologa pazara "
        "(DGP izl.računi) u perodu od 01.03.16 do 31.03.16 za org.jedinicu: 7 ?");
    p.vrsta = PosPovrat;
    p.prima = QStringLiteral("101");
    p.operater = QStringLiteral("o'Brien");
    EXPECT_TRUE(izvorniUpit(p).contains(" WHERE K.BrojPoduzeca=3 AND K.BROJSKLAD IN (SELECT CAST(PRAVO AS INTEGER) AS "
                                        "BROJSKLAD FROM PRAVA WHERE OPERATER='o''Brien' AND "
                                        "PROGRAM='MALOPROBJEKT')  AND K.ŠifraKom=101 AND K.DatumPovr >= '03.01.2016'"));
    EXPECT_EQ(pitanjePotvrde(p),
        "Želite li generirati stavke knjige prihoda i rashoda za DB na temelju POS internih "
        "otpremnica u perodu od 01.03.16 do 31.03.16 za sva skl./malopr. za koja ima pravo "
        "za TKO PRIMA 101 u negativnom iznosu (povrat) ?");
    EXPECT_TRUE(uvjetPrava(MatOtpremnice, QStringLiteral("ana")).endsWith("' AND PROGRAM='SKLADIŠTE') "));
    EXPECT_EQ(zadnjiBrojUpit(3, 2016),
        "SELECT MAX(D.RBroj) as Broj FROM dbo.KnjPrihRashDB D WHERE D.BrojPoduzeca=3 AND D.GodinaKnj=2016");

    // The source connection: the host's server and database with the password given.
    const IzvorPodataka host = hostSource(
        QStringLiteral("Provider=SQLOLEDB.1;Data Source=SRV\\POS;Initial Catalog=Firma;User ID=sa;Password=x"));
    EXPECT_EQ(host.server, QStringLiteral("SRV\\POS"));
    EXPECT_EQ(host.baza, QStringLiteral("Firma"));
    EXPECT_EQ(vezaIzvora(host, QStringLiteral("tajna")),
        "Provider=SQLOLEDB.1;Data Source=SRV\\POS;Initial Catalog=Firma;User ID=sa;Password=tajna");
    // A password that would end the string early comes back whole.
    const QString odd = QStringLiteral("a;b\"c' ");
    EXPECT_EQ(db::connectionValue(vezaIzvora(host, odd), QStringLiteral("Password")), odd);
    EXPECT_EQ(vezaIzvora({ QStringLiteral(" "), QStringLiteral("/tmp/izvor.db") }, odd), "sqlite:/tmp/izvor.db");
    EXPECT_EQ(hostSource(QStringLiteral("sqlite:/tmp/knjige.db")).baza, QStringLiteral("/tmp/knjige.db"));
}

// Each kind's source statement on hand-made source rows: texts built with + and casts
// and cut to 20 and 30 characters, the joins, the rights subquery, the types.
TEST(GenerationTexts, SourceStatementsReadExactlyTheirRows)
{
    TestDatabase t;
    QString error;
    ASSERT_TRUE(demo::createSourceTables(t.db(), &error)) << error.toStdString();
    for (const char* sql :
        { "INSERT INTO Ifakture VALUES (1,2016,'DGP',3,12345,'03.15.2016',0,250.5)",
            "INSERT INTO Ifakture VALUES (1,2016,'DGP',3,12346,'03.16.2016',0,100)",
            "INSERT INTO Ifakture VALUES (1,2016,'VP',3,1,'03.15.2016',0,1)",
            "INSERT INTO Ifakture VALUES (1,2016,'DGP',3,12347,'04.16.2016',0,100)", // after the range
            "INSERT INTO Ifakture VALUES (1,2016,'VELEPRODAJ',1234567,2000000001,'03.15.2016',0,10)",
            "INSERT INTO IFAKTUplate VALUES "
            "(1,2000000001,2016,1234567,'VELEPRODAJ','03.20.2016','IZVOD-2016-000123',7.5)",
            "INSERT INTO IFAKTUplate VALUES (1,2000000001,2016,1234567,'DGP','03.20.2016','X',1)", // no invoice
            "INSERT INTO KUF VALUES (1,2016,'KUF',2,77,500,'03.02.2016',99.99)",
            "INSERT INTO KUF VALUES (1,2016,'KUF',2,78,600,'03.03.2016',10)",
            "INSERT INTO KUFUplate VALUES (1,77,2016,2,'KUF','03.10.2016','UPL-1',50)",
            "INSERT INTO dbo.MOtpremInt VALUES (1,2016,4,15,900,'03.01.2016',100,17)",
            "INSERT INTO dbo.MOtpremInt VALUES (1,2016,5,16,900,'03.02.2016',50,8.5)", // no right
            "INSERT INTO dbo.RIntOtprem VALUES (1,2016,5,3,900,'03.05.2016',12.3456)",
            "INSERT INTO PRAVA VALUES ('ana','SKLADIŠTE','4')", "INSERT INTO PRAVA VALUES ('ana','MALOPROBJEKT','5')" })
        t.exec(QString::fromUtf8(sql));
    const std::string columns = "integer,integer,date,text,text,currency";
    const struct {
        int vrsta;
        const char *orgJed, *supplier;
        std::string types;
        std::string rows;
    } cases[] = {
        { DgpRacuni, "3", "", columns,
            "1|2016|2016-03-15|Pazar 3|DGP-3-12345/2016|250.5; 1|2016|2016-03-16|Pazar 3|DGP-3-12346/2016|100" },
        { UplateIzlaznih, "1234567", "", columns,
            "1|2016|2016-03-20|Uplata 1234567 d:IZV|VELEPRODAJ-1234567-2000000001/|7.5" },
        { UlazniRacuni, "2", "500", columns, "1|2016|2016-03-02|KUF 2|KUF-2-77/2016|99.99" },
        { UplateUlaznih, "2", "600", "integer,integer,date,text,text,text,currency",
            "1|2016|2016-03-10|UPL-1|KUF 2|KUF-2-77/2016|50" },
        { MatOtpremnice, "", "", columns + ",currency", "1|2016|2016-03-01|M.Int.otp. 900|4-15/2016|117|17" },
        { PosOtpremnice, "", "", columns, "1|2016|2016-03-05|P.Int.otp. 900|5-3/2016|12.3456" },
    };
    for (const auto& c : cases) {
        Parametri p = march(c.vrsta, t.path());
        p.orgJed = QString::fromLatin1(c.orgJed);
        p.supplier = QString::fromLatin1(c.supplier);
        p.prima = QStringLiteral("900");
        const db::ResultSet rs = t.query(izvorniUpit(p));
        EXPECT_EQ(test::fieldTypes(rs), c.types) << c.vrsta;
        EXPECT_EQ(test::rowsText(rs), c.rows) << c.vrsta;
    }
}
