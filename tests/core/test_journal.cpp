// The change journal, the book check and the closed period, on small books made to
// show each thing they must see.
#include "books/BookKind.h"
#include "browser/OpeningState.h"
#include "browser/Renumbering.h"
#include "journal/BookCheck.h"
#include "journal/Journal.h"
#include "journal/PeriodLock.h"
#include "session/Clock.h"
#include "session/Session.h"
#include "support/ScriptedInteraction.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

using namespace knjige;
using namespace knjige::test;
using browser::renumber::sessionBook;

namespace
{

const QString kBook = QStringLiteral("dbo.KnjPrihRashFBiH");

void entry(TestDatabase& t, int rbroj, const QDate& datum, const QString& isprava, double iznos = 10, int tip = 96)
{
    t.insert(tip == 96 ? kBook : QStringLiteral("dbo.KnjPrihRashDB"),
        { { "BrojPoduzeca", 1 }, { "RBroj", rbroj }, { "Datum", datum }, { "GodinaKnj", 2016 }, { "Isprava", isprava },
            { "Opis", isprava + QStringLiteral(" opis") }, { "Vrsta", 11 }, { "Iznos", money(iznos) } });
}

void receivable(TestDatabase& t, int rbroj, int kpr)
{
    t.insert(QStringLiteral("dbo.KnjEvidPotrIObvFBiH"),
        { { "BrojPoduzeca", 1 }, { "RBroj", rbroj }, { "Datum", QDate(2016, 5, 5) }, { "GodinaKnj", 2016 },
            { "SifKomit", 1 }, { "Vrsta", 11 }, { "Opis", QString::number(rbroj) }, { "RBrojKPR", kpr } });
}

journal::bookcheck::Report check(TestDatabase& t, int tip)
{
    return journal::bookcheck::check(t.db(), { tip, 1, 2016, 0 });
}

std::vector<journal::Record> chain(TestDatabase& t, qint16 year = 2016)
{
    std::vector<journal::Record> out;
    EXPECT_TRUE(journal::readChain(t.db(), 1, year, out));
    return out;
}

QStringList actions(const std::vector<journal::Record>& records)
{
    QStringList out;
    for (const journal::Record& r : records)
        out << QString::number(r.tip) + u' ' + r.radnja;
    return out;
}

} // namespace

// Insertion, both renumberings and the opening state each leave their record after
// the baselines; the check then follows the numbers through them, sees the links the
// insertion moved, and finds a journal record changed, removed or slipped in.
TEST(Journal, EveryWritePathJournalsAndTheChainShowsTampering)
{
    TestDatabase t;
    ScopedScript script;
    entry(t, 1, QDate(2016, 1, 5), "A");
    entry(t, 2, QDate(2016, 1, 9), "B");
    entry(t, 4, QDate(2016, 1, 7), "C");
    receivable(t, 1, 2);
    t.insert(QStringLiteral("dbo.KnjPopListaDugImovFBiH"),
        { { "BrojPoduzeca", 1 }, { "GodinaKnj", 2016 }, { "RBroj", 1 }, { "Naziv", "Kombi" },
            { "Datum", QDate(2016, 1, 1) }, { "Isprava", "7" }, { "NabVrijednost", money(1000) },
            { "KnjigVrijednost", money(1000) }, { "VijekTr", 5 } });

    script->answers.enqueue(Answer::Yes);
    EXPECT_EQ(browser::renumber::byOrdinal(sessionBook(96)).after, browser::renumber::After::Reload); // 4 -> 3
    EXPECT_EQ(browser::renumber::insertAt(sessionBook(96), 2).after,
        browser::renumber::After::Reload); // B, C to 3, 4; the link stays at 2
    script->answers.enqueue(Answer::Yes);
    EXPECT_EQ(browser::renumber::byDate(sessionBook(96)).after, browser::renumber::After::Reload); // blank, A, C, B
    clock::setToday(QDate(2017, 3, 1));
    script->answers.enqueue(Answer::Yes);
    EXPECT_TRUE(browser::openingstate::generate(Knjiga::PopListaFBiH).made);
    clock::setToday({});

    const std::vector<journal::Record> records = chain(t);
    EXPECT_EQ(actions(records),
        (QStringList { "96 osnova", "97 osnova", "96 renumeracija", "96 umetanje", "96 renumeracija", "97 veze" }));
    EXPECT_EQ(records[2].poslije, "4>3\n");
    EXPECT_EQ(records[5].poslije, "=2>1\n");
    EXPECT_EQ(actions(chain(t, 2017)), (QStringList { "105 osnova", "105 početna stanja" }));
    EXPECT_EQ(t.count(QStringLiteral("dbo.KnjDnevnik")), 8);

    // The journal explains every number; the receivable's link now points at the blank
    // entry the insertion put where its document was.
    const journal::bookcheck::Report book = check(t, 96);
    EXPECT_EQ(book.status, journal::bookcheck::Report::Status::Clean) << book.text.toStdString();
    EXPECT_EQ(check(t, 97).findings,
        QStringList {
            "stavka 1: veza je pomjerena na drugi dokument. Data je za stavku 4 (09.01.2016, \"B\", \"B opis\"), "
            "a sada pokazuje na stavku 1 (01.01.2016, \"\", \"\")." });

    const QList<std::pair<QStringList, QString>> tampering = {
        { { "UPDATE KnjDnevnik SET Poslije='5>3' WHERE Redni=3" },
            "Lanac dnevnika je prekinut kod zapisa 3 (renumeracija, " },
        { { "DELETE FROM KnjDnevnik WHERE Redni=4" },
            "Lanac dnevnika je prekinut: nedostaje zapis 4 (sljedeći je 5)." },
        { { "UPDATE KnjDnevnik SET Redni=Redni+10 WHERE Redni>=4 AND GodinaKnj=2016",
              "INSERT INTO KnjDnevnik SELECT BrojPoduzeca,GodinaKnj,4,TipKnjige,BrojProd,Vrijeme,Operater,Radnja,RBroj,"
              "Prije,Poslije,Hash FROM KnjDnevnik WHERE Redni=3 AND GodinaKnj=2016" },
            "Lanac dnevnika je prekinut kod zapisa 4 (renumeracija, " },
        { { "UPDATE KnjDnevnik SET Redni=Redni+10 WHERE Redni>=4 AND GodinaKnj=2016" },
            "Lanac dnevnika je prekinut: nedostaje zapis 4 (sljedeći je 14)." },
    };
    for (const auto& [statements, finding] : tampering) {
        ASSERT_TRUE(t.db().beginTransaction());
        for (const QString& sql : statements)
            ASSERT_TRUE(t.db().executeNative(sql)) << t.db().errorDescription().toStdString();
        const journal::bookcheck::Report r = check(t, 96);
        EXPECT_EQ(r.status, journal::bookcheck::Report::Status::Findings);
        ASSERT_FALSE(r.findings.isEmpty()) << finding.toStdString();
        EXPECT_TRUE(r.findings.front().startsWith(finding)) << r.findings.front().toStdString();
        ASSERT_TRUE(t.db().rollback());
    }
}

// A failure after the book's own statements leaves neither the change nor its record.
TEST(Journal, AFailedRecordUndoesTheChange)
{
    TestDatabase t;
    ScopedScript script;
    entry(t, 1, QDate(2016, 1, 5), "A");
    entry(t, 3, QDate(2016, 1, 2), "B");
    ASSERT_TRUE(journal::ensureBaseline(t.db(), { 96, 1, 2016, 0 }, nullptr));
    ASSERT_TRUE(t.db().executeNative(QStringLiteral("CREATE TRIGGER kvar BEFORE INSERT ON KnjDnevnik WHEN NEW.Redni > "
                                                    "2 BEGIN SELECT RAISE(ABORT, 'Namjerno'); END")));
    const QList<std::function<browser::renumber::Outcome()>> paths = {
        [] { return browser::renumber::insertAt(sessionBook(96), 1); },
        [&] {
            script->answers.enqueue(Answer::Yes);
            return browser::renumber::byOrdinal(sessionBook(96));
        },
        [&] {
            script->answers.enqueue(Answer::Yes);
            return browser::renumber::byDate(sessionBook(96));
        },
    };
    Notice last;
    for (const auto& path : paths) {
        last = path().notice;
        EXPECT_EQ(t.count(kBook), 2);
        EXPECT_EQ(t.query(QStringLiteral("SELECT SUM(RBroj) FROM dbo.KnjPrihRashFBiH")).integer(0, 0), 4);
        EXPECT_EQ(t.count(QStringLiteral("dbo.KnjDnevnik")), 2); // the baselines of 96 and 97
    }
    EXPECT_TRUE(last.text.endsWith(QStringLiteral("Namjerno"))) << last.text.toStdString();
}

// Each finding of the check, on a book made to have exactly that one.
TEST(BookCheck, EachFindingOnASmallBookMadeToHaveIt)
{
    struct Case {
        int tip;
        std::function<void(TestDatabase&)> make;
        QString finding;
    };
    const QDate jan(2016, 1, 5);
    const QList<Case> cases = {
        { 96, [&](TestDatabase& t) { entry(t, 1, jan, "A"), entry(t, 2, jan, "B"); }, {} },
        { 96, [&](TestDatabase& t) { entry(t, 1, jan, "A"), entry(t, 3, jan, "B"); }, "Nedostaje redni broj 2." },
        { 96, [&](TestDatabase& t) { entry(t, 1, jan, "A"), entry(t, 5, jan, "B"); },
            "Nedostaju redni brojevi 2 do 4." },
        { 96, [&](TestDatabase& t) { entry(t, 1, jan, "A"), entry(t, 1, jan, "B"); }, "Redni broj 1 se ponavlja." },
        { 96, [&](TestDatabase& t) { entry(t, 0, jan, "A"), entry(t, 1, jan, "B"); }, "Redni broj 0 je manji od 1." },
        { 96, [&](TestDatabase& t) { entry(t, 1, jan, "A"), entry(t, 2, QDate(2016, 1, 2), "B"); },
            "Stavka 2 (02.01.2016) je datirana prije stavke 1 (05.01.2016): redni brojevi ne prate datume "
            "dokumenata." },
        { 96, [&](TestDatabase& t) { entry(t, 1, QDate(2015, 12, 31), "A"); },
            "stavka 1 je datirana 31.12.2015, prije godine knjige." },
        { 96, [&](TestDatabase& t) { entry(t, 1, jan, "A", 900e12), entry(t, 2, jan, "B", 900e12); },
            "Zbir stupca Iznos prelazi opseg novčanog iznosa." },
        { 97, [&](TestDatabase& t) { entry(t, 1, jan, "A"), receivable(t, 1, 7); },
            "stavka 1 je vezana za stavku 7 knjige prihoda i rashoda, koja ne postoji." },
        { 109, [&](TestDatabase& t) { entry(t, 1, jan, "KIF 1", 10, 109), entry(t, 2, jan, "KIF 1", 10, 109); },
            "Dokument \"KIF 1\" je proknjižen 2 puta (stavke 1, 2)." },
        { 105,
            [&](TestDatabase& t) {
                for (int year : { 2015, 2016 })
                    t.insert(QStringLiteral("dbo.KnjPopListaDugImovFBiH"),
                        { { "BrojPoduzeca", 1 }, { "GodinaKnj", year }, { "RBroj", 1 }, { "Naziv", "Kombi" },
                            { "Datum", year == 2015 ? QDate(2015, 6, 1) : QDate(2016, 1, 1) },
                            { "Isprava", year == 2015 ? QStringLiteral("7") : QStringLiteral("Poč.stanje iz 2015") },
                            { "NabVrijednost", money(1000) }, { "KnjigVrijednost", money(year == 2015 ? 1000 : 800) },
                            { "VijekTr", 5 } });
            },
            "stavka 1 (\"Kombi\"): početno stanje 800 razlikuje se od stanja na kraju 2015. godine 883.33." },
        { 96,
            [&](TestDatabase& t) {
                entry(t, 1, jan, "A"), entry(t, 2, jan, "B"), entry(t, 3, jan, "C");
                ASSERT_TRUE(journal::ensureBaseline(t.db(), { 96, 1, 2016, 0 }, nullptr));
                t.exec(QStringLiteral("UPDATE dbo.KnjPrihRashFBiH SET Opis='Drugo', Iznos=11 WHERE RBroj=2"));
            },
            "Promijenjena izvan programa: stavka 2: IZNOS: \"10\" → \"11\"; OPIS: \"B opis\" → \"Drugo\"." },
        { 96,
            [&](TestDatabase& t) {
                entry(t, 1, jan, "A"), entry(t, 2, jan, "B");
                ASSERT_TRUE(journal::ensureBaseline(t.db(), { 96, 1, 2016, 0 }, nullptr));
                t.exec(QStringLiteral("DELETE FROM dbo.KnjPrihRashFBiH WHERE RBroj=2"));
                entry(t, 2, jan, "X");
                entry(t, 3, jan, "Y");
                t.exec(QStringLiteral("DELETE FROM dbo.KnjPrihRashFBiH WHERE RBroj=3"));
            },
            "Promijenjena izvan programa: stavka 2: ISPRAVA: \"B\" → \"X\"; OPIS: \"B opis\" → \"X opis\"." },
    };
    for (const Case& c : cases) {
        TestDatabase t;
        c.make(t);
        const journal::bookcheck::Report r = check(t, c.tip);
        EXPECT_EQ(r.findings, c.finding.isEmpty() ? QStringList() : QStringList { c.finding }) << r.text.toStdString();
        EXPECT_EQ(r.status,
            c.finding.isEmpty() ? journal::bookcheck::Report::Status::Clean
                                : journal::bookcheck::Report::Status::Findings);
    }
    // Without the journal's table the book still checks, and says it has no journal.
    TestDatabase t;
    t.exec(QStringLiteral("DROP TABLE dbo.KnjDnevnik"));
    entry(t, 1, jan, "A");
    const journal::bookcheck::Report r = check(t, 96);
    EXPECT_EQ(r.status, journal::bookcheck::Report::Status::Clean);
    EXPECT_TRUE(r.text.contains(QStringLiteral("Knjiga nema dnevnik promjena"))) << r.text.toStdString();

    // A book over one baseline record's rows is fingerprinted in several records, all
    // of them read back: a change outside the program in the last one is named.
    TestDatabase big;
    ASSERT_TRUE(big.db().executeNative(
        QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) INSERT INTO "
                       "KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Opis,Vrsta,Iznos,IznosPDV) SELECT "
                       "1,i,'2016-01-05',2016,'D-'||i,'O',11,10,0 FROM n")
            .arg(journal::kBaselineRows + 1)))
        << big.db().errorDescription().toStdString();
    ASSERT_TRUE(journal::ensureBaseline(big.db(), { 96, 1, 2016, 0 }, nullptr));
    EXPECT_EQ(actions(chain(big)), (QStringList { "96 osnova", "96 osnova", "97 osnova" }));
    EXPECT_EQ(check(big, 96).status, journal::bookcheck::Report::Status::Clean);
    big.exec(QStringLiteral("UPDATE dbo.KnjPrihRashFBiH SET Opis='X' WHERE RBroj=%1").arg(journal::kBaselineRows + 1));
    EXPECT_EQ(check(big, 96).findings,
        QStringList { QStringLiteral("Promijenjena izvan programa: stavka %1: OPIS: \"O\" → \"X\".")
                          .arg(journal::kBaselineRows + 1) });
    // A long section keeps the findings it shows and counts the rest.
    big.exec(QStringLiteral("UPDATE dbo.KnjPrihRashFBiH SET Datum='2015-12-31' WHERE RBroj<=250"));
    const journal::bookcheck::Report many = check(big, 96);
    EXPECT_EQ(many.count, 501);
    EXPECT_EQ(many.findings.size(), 400);
    for (const char* line : { "  ... i još 51.\n", "  ... i još 50.\n", "\nUkupno nalaza: 501\n" })
        EXPECT_TRUE(many.text.contains(QString::fromUtf8(line))) << line;
}

// A closed period: each write path refuses with the lock's date, and an unlock (with
// its reason journaled) lets the same change through.
TEST(PeriodLock, RefusesEveryWritePathAndAnUnlockLetsThrough)
{
    TestDatabase t;
    ScopedScript script;
    entry(t, 1, QDate(2016, 1, 5), "A");
    entry(t, 2, QDate(2016, 3, 2), "B");
    entry(t, 3, QDate(2016, 1, 20), "C");
    session().NivoPristupa = journal::periodlock::kLevel;
    QString error;
    ASSERT_TRUE(journal::periodlock::lock(t.db(), { 96, 1, 2016, 0 }, QDate(2016, 1, 31), &error))
        << error.toStdString();
    EXPECT_FALSE(journal::periodlock::lock(t.db(), { 96, 1, 2016, 0 }, QDate(2016, 1, 10), &error));
    EXPECT_EQ(error, "Knjiga je već zaključana do 31.01.2016. Raniji datum traži otključavanje s razlogom.");
    const QString prefix = QStringLiteral("Razdoblje knjige je zaključano do 31.01.2016. ");
    const QList<std::pair<std::function<browser::renumber::Outcome()>, QString>> paths = {
        { [] { return browser::renumber::insertAt(sessionBook(96), 3); },
            "Ubačena stavka bila bi datirana 01.01.2016, a stavke iza nje dobile bi nove redne brojeve." },
        { [&] {
             script->answers.enqueue(Answer::Yes);
             return browser::renumber::byDate(sessionBook(96));
         },
            "Renumeracija bi promijenila redni broj stavke 3 datirane 20.01.2016." },
        { [&] {
             t.exec(QStringLiteral("UPDATE dbo.KnjPrihRashFBiH SET RBroj=4 WHERE RBroj=3"));
             script->answers.enqueue(Answer::Yes);
             return browser::renumber::byOrdinal(sessionBook(96));
         },
            "Renumeracija bi promijenila redni broj stavke 4 datirane 20.01.2016." },
    };
    for (const auto& [path, refusal] : paths) {
        const browser::renumber::Outcome outcome = path();
        EXPECT_EQ(outcome.after, browser::renumber::After::Stay);
        EXPECT_EQ(outcome.notice.text, prefix + refusal);
    }
    EXPECT_EQ(journal::periodlock::refuseDates(t.db(), { 96, 1, 2016, 0 }, { QDate(2016, 2, 1), QDate(2016, 1, 31) }),
        prefix + "Stavka datirana 31.01.2016 ne može se mijenjati ni brisati.");
    EXPECT_EQ(t.query(QStringLiteral("SELECT SUM(RBroj) FROM dbo.KnjPrihRashFBiH")).integer(0, 0), 7);

    EXPECT_FALSE(journal::periodlock::unlock(t.db(), { 96, 1, 2016, 0 }, QStringLiteral(" "), &error));
    ASSERT_TRUE(journal::periodlock::unlock(t.db(), { 96, 1, 2016, 0 }, QStringLiteral("Ispravka"), &error));
    EXPECT_EQ(browser::renumber::insertAt(sessionBook(96), 3).after, browser::renumber::After::Reload);
    const std::vector<journal::Record> records = chain(t);
    EXPECT_EQ(actions(records),
        (QStringList { "96 osnova", "97 osnova", "96 zaključavanje", "96 otključavanje", "96 umetanje" }));
    EXPECT_EQ(records[3].prije + u'|' + records[3].poslije, "DO=2016-01-31|RAZLOG=Ispravka");
}

// Book 96's renumberings move the receivables' links to its numbers: a linked entry in
// the receivables book's closed period stops both, and nothing moves.
TEST(PeriodLock, AReceivablesLinkInTheClosedPeriodStopsARenumbering)
{
    TestDatabase t;
    ScopedScript script;
    entry(t, 1, QDate(2016, 6, 5), "A");
    entry(t, 3, QDate(2016, 6, 1), "C");
    receivable(t, 1, 3);
    session().NivoPristupa = journal::periodlock::kLevel;
    QString error;
    ASSERT_TRUE(journal::periodlock::lock(t.db(), { 97, 1, 2016, 0 }, QDate(2016, 5, 31), &error))
        << error.toStdString();
    const std::function<browser::renumber::Outcome(const browser::renumber::Book&)> paths[]
        = { browser::renumber::byOrdinal, browser::renumber::byDate };
    for (const auto& path : paths) {
        script->answers.enqueue(Answer::Yes);
        EXPECT_EQ(path(sessionBook(96)).notice.text,
            "Razdoblje knjige je zaključano do 31.05.2016. Renumeracija bi promijenila vezu stavke 1 knjige "
            "evid.potr.i obveza datirane 05.05.2016.");
    }
    EXPECT_EQ(t.query(QStringLiteral("SELECT SUM(RBroj) FROM dbo.KnjPrihRashFBiH")).integer(0, 0), 4);
    EXPECT_EQ(t.query(QStringLiteral("SELECT RBrojKPR FROM dbo.KnjEvidPotrIObvFBiH")).integer(0, 0), 3);
}
