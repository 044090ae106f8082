// Insertion at a position, both renumberings and the asset list's opening state on the
// embedded database, driven through the interaction seam: numbers, receivables links,
// book values carried, questions, messages, and all-or-nothing when a write fails.
#include "ResultText.h"
#include "books/BookKind.h"
#include "browser/OpeningState.h"
#include "browser/Renumbering.h"
#include "journal/Journal.h"
#include "session/Clock.h"
#include "session/Session.h"
#include "support/ScriptedInteraction.h"
#include "support/TestDatabase.h"

#include <QMap>
#include <algorithm>
#include <gtest/gtest.h>

using namespace knjige;
using namespace knjige::test;
using browser::renumber::sessionBook;

namespace
{

const QString kBook = QStringLiteral("dbo.KnjPrihRashFBiH");
const QString kEvid = QStringLiteral("dbo.KnjEvidPotrIObvFBiH");
const QString kKpr = QStringLiteral("RBrojKPR");

// Entries and receivables rows are told apart by their label, kept in Opis.
void entry(TestDatabase& t, const QString& table, int rbroj, const QDate& datum, int label, int prod = 0,
    int vrsta = 11, int company = 1)
{
    db::RowChange::Values v { { "BrojPoduzeca", company }, { "RBroj", rbroj }, { "Datum", datum },
        { "GodinaKnj", 2016 }, { "Opis", QString::number(label) } };
    if (table.contains(QStringLiteral("Trg")))
        v.append({ "BrojProd", prod });
    else if (!table.contains(QStringLiteral("Prometa")))
        v.append({ "Vrsta", vrsta });
    t.insert(table, v);
}

void link(TestDatabase& t, int rbroj, int kpr, int label)
{
    t.insert(kEvid,
        { { "BrojPoduzeca", 1 }, { "RBroj", rbroj }, { "Datum", QDate(2016, 5, 5) }, { "GodinaKnj", 2016 },
            { "SifKomit", 1 }, { "Vrsta", 11 }, { "Opis", QString::number(label) }, { "RBrojKPR", kpr } });
}

// label -> the column's value.
QMap<int, qint64> byLabel(TestDatabase& t, const QString& table, const QString& column = QStringLiteral("RBroj"))
{
    QMap<int, qint64> out;
    const db::ResultSet rs = t.query(QStringLiteral("SELECT Opis,") + column + QStringLiteral(" FROM ") + table);
    for (int r = 0; r < rs.rowCount(); ++r)
        out.insert(rs.text(r, 0).toInt(), rs.integer(r, 1));
    return out;
}

void asset(TestDatabase& t, int company, int year, int rbroj, const char* naziv, double nab, double knjig, int vijek)
{
    t.insert(QStringLiteral("dbo.KnjPopListaDugImovFBiH"),
        { { "BrojPoduzeca", company }, { "GodinaKnj", year }, { "RBroj", rbroj }, { "Naziv", QString::fromUtf8(naziv) },
            { "Datum", QDate(year, 6, 1) }, { "Isprava", "7" }, { "NabVrijednost", money(nab) },
            { "KnjigVrijednost", money(knjig) }, { "VijekTr", vijek } });
}

// "RBroj|Naziv|Datum|Isprava|KnjigVrijednost" of each row of 2017 above `from`.
std::string rows2017(TestDatabase& t, int from)
{
    return rowsText(
        t.query(QStringLiteral("SELECT RBroj,Naziv,Datum,Isprava,KnjigVrijednost FROM "
                               "dbo.KnjPopListaDugImovFBiH WHERE GodinaKnj=2017 AND RBroj>%1 ORDER BY RBroj")
                    .arg(from)));
}

} // namespace

TEST(Renumbering, InsertAtPositionShiftsEveryBookAndEverySalesPoint)
{
    TestDatabase t;
    for (const books::BookKind& book : books::allBooks()) {
        if (!browser::renumber::takesPart(book.code) || book.code == Knjiga::EvidPotObvRS
            || book.code == Knjiga::PrometaRS)
            continue; // one kind per table
        t.db().beginTransaction();
        for (int n = 1; n <= 10; ++n) {
            entry(t, book.table, n, QDate(2016, 3, n), n, 3);
            if (books::isTradeBook(book.code))
                entry(t, book.table, n, QDate(2016, 3, n), 100 + n, 8); // another sales point
        }
        entry(t, book.table, 7, QDate(2016, 3, 7), 1007, 3, 11, 2); // another company: stays
        t.db().commit();
        EXPECT_EQ(browser::renumber::insertAt(sessionBook(book.code, 3), 0).after, browser::renumber::After::Stay);
        ASSERT_EQ(browser::renumber::insertAt(sessionBook(book.code, 3), 5).after, browser::renumber::After::Reload)
            << book.code;
        const QMap<int, qint64> after = byLabel(t, book.table);
        for (int label : after.keys()) { // the blank entry's label is 0
            const int n = label % 100;
            EXPECT_EQ(after[label], label == 0 ? 5 : label > 1000 ? 7 : n < 5 ? n : n + 1) << book.code;
        }
        // The blank entry is found by the book's opening clause (its date went in as a
        // date) and an amount it does not name takes the column's default.
        const db::ResultSet blank = t.query(QStringLiteral("SELECT * FROM ") + book.table
            + " K WHERE  K.Datum>='01.01.2016' AND K.GodinaKnj=2016 AND K.RBroj=5 AND K.Opis=''");
        ASSERT_EQ(blank.rowCount(), 1) << book.code;
        EXPECT_EQ(blank.value(0, QStringLiteral("Datum")).toDate(), QDate(2016, 1, 1));
        if (const int iznos = blank.indexOf(QStringLiteral("Iznos")); iznos >= 0) {
            EXPECT_EQ(blank.field(iznos).type, db::FieldType::Currency);
            EXPECT_TRUE(!blank.isNull(0, iznos) && blank.money(0, iznos) == Money()) << book.code;
        }
        EXPECT_TRUE(!books::isTradeBook(book.code) || blank.value(0, "BrojProd").toInt() == 3);
    }
    EXPECT_EQ(browser::renumber::blankEntrySql({ 98, 2, 2017, 0 }, 7).toStdString(),
        "INSERT INTO dbo.KnjPrometaFBiH (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,OPIS,ISPRAVA,IZNOSGOT,IZNOSCEK) "
        "VALUES(2,7,'1.1.2017',2017,'','',0,0 )");
    EXPECT_EQ(browser::renumber::shiftSql({ 125, 2, 2017, 4 }, 7).toStdString(),
        "UPDATE dbo.TrgKnjUsluga SET RBROJ=RBROJ+1 WHERE GODINAKNJ=2017 AND BROJPODUZECA=2 AND RBroj>=7");
}

TEST(Renumbering, ByOrdinalAsksFromZeroAndMovesOnlyTheFirstLink)
{
    TestDatabase t;
    ScopedScript script;
    for (int n = 1; n <= 3; ++n)
        entry(t, kBook, n, QDate(2016, 2, n), n);
    EXPECT_EQ(browser::renumber::byOrdinal(sessionBook(96)).after, browser::renumber::After::Reload);
    ASSERT_EQ(script->messages.size(), 1) << "a book numbered from 1 is always asked about";
    EXPECT_EQ(script->messages[0].text, QStringLiteral("Želite li pokrenuti renumeraciju stavki ?"));
    EXPECT_EQ(script->messages[0].title, QStringLiteral("Renumeracija"));
    EXPECT_EQ(byLabel(t, kBook).values(), (QList<qint64> { 1, 2, 3 }));

    // 1,2,2,3 -> 1,2,3,4. Each change moves the first link holding the old number at
    // that moment: the link moved to 3 moves on to 4, and the one of old 3 stays.
    entry(t, kBook, 2, QDate(2016, 2, 9), 4);
    link(t, 1, 2, 1);
    link(t, 2, 2, 2);
    link(t, 3, 3, 3);
    script->answers = QQueue<Answer>({ Answer::No, Answer::Yes });
    browser::renumber::byOrdinal(sessionBook(96));
    EXPECT_EQ(byLabel(t, kBook).values(), (QList<qint64> { 1, 2, 3, 2 }));
    browser::renumber::byOrdinal(sessionBook(96));
    EXPECT_EQ(byLabel(t, kBook).values(), (QList<qint64> { 1, 2, 4, 3 }));
    EXPECT_EQ(byLabel(t, kEvid, kKpr).values(), (QList<qint64> { 4, 2, 3 }));
    // A "No" changes nothing and shows no progress; the two runs show their steps.
    ASSERT_EQ(script->progress.size(), 2);
    EXPECT_EQ(script->progress[1].texts, QStringList { QStringLiteral("Renumeracija: korak 2 od 2") });
}

TEST(Renumbering, ByDateEqualsTheRowByRowWalkWithFewStatements)
{
    TestDatabase t;
    ScopedScript script;
    // Duplicates, a 0, gaps, equal dates and kinds; links to numbers, to lifted
    // numbers, to nothing, and 0.
    unsigned seed = 7;
    const auto next = [&seed](unsigned m) { return (seed = seed * 1103515245u + 12345u) / 65536u % m; };
    t.db().beginTransaction();
    for (int i = 0; i < 400; ++i)
        entry(t, kBook, int(next(300)), QDate(2016, 1 + int(next(3)), 1 + int(next(5))), i, 0, 11 + int(next(2)));
    for (int i = 0; i < 150; ++i)
        link(t, i, int(next(4) == 0 ? browser::renumber::kOffset + next(300) : next(320)), i);
    t.db().commit();
    // The walk of the rows as the server orders them: links equal to a number move up
    // by the offset, then links equal to a lifted number take the row's place.
    const db::ResultSet order = t.query(browser::renumber::rowsSql(sessionBook(96), browser::renumber::dateOrder(96)));
    const int rb = order.indexOf(QStringLiteral("RBroj"));
    QMap<int, qint64> places;
    QList<qint64> links = byLabel(t, kEvid, kKpr).values();
    for (int r = 0; r < order.rowCount(); ++r) {
        places.insert(order.value(r, "Opis").toInt(), r + 1);
        std::replace(
            links.begin(), links.end(), order.integer(r, rb), order.integer(r, rb) + browser::renumber::kOffset);
    }
    for (int r = 0; r < order.rowCount(); ++r)
        std::replace(links.begin(), links.end(), order.integer(r, rb) + browser::renumber::kOffset, qint64(r + 1));
    const qint64 shared = t.query(QStringLiteral("SELECT COUNT(*) FROM dbo.KnjPrihRashFBiH K WHERE (SELECT COUNT(*) "
                                                 "FROM dbo.KnjPrihRashFBiH D WHERE D.RBroj=K.RBroj)>1"))
                              .integer(0, 0);

    script->answers.enqueue(Answer::Yes);
    const quint64 before = t.db().requestCount();
    EXPECT_EQ(browser::renumber::byDate(sessionBook(96)).after, browser::renumber::After::Reload);
    // One statement per row only for the rows that share their number.
    // (and a few for the journal's baseline and records).
    EXPECT_LE(t.db().requestCount() - before, quint64(30 + shared));
    EXPECT_EQ(byLabel(t, kBook), places);
    EXPECT_EQ(byLabel(t, kEvid, kKpr).values(), links);
    ASSERT_EQ(script->messages.size(), 1) << script->texts().join(u'\n').toStdString();
    EXPECT_EQ(script->messages[0].text,
        QStringLiteral("Želite li ažurirati redne brojeve, ali tako da budu složeni po "
                       "datumima dokumenata?\nPažljivo. Svi redni brojevi se mijenjaju!"));
    EXPECT_EQ(script->messages[0].defaultAnswer, Answer::No);
    ASSERT_EQ(script->progress.size(), 1);
    const ProgressRecord& steps = script->progress[0];
    EXPECT_EQ(steps.title, QStringLiteral("Renumeracija"));
    EXPECT_EQ(steps.texts, QStringList { QStringLiteral("Renumeracija: korak 3 od 3") });
    EXPECT_TRUE(steps.finished && !steps.cancellable);
}

TEST(Renumbering, ByDateInATradeBookTouchesOnlyItsSalesPoint)
{
    TestDatabase t;
    ScopedScript script;
    const QString usluge = QStringLiteral("dbo.TrgKnjUsluga");
    for (int prod : { 3, 8 }) {
        entry(t, usluge, 1, QDate(2016, 4, 1), prod * 10 + 1, prod);
        entry(t, usluge, 2, QDate(2016, 2, 1), prod * 10 + 2, prod);
    }
    script->answers = QQueue<Answer>({ Answer::No, Answer::Yes });
    EXPECT_EQ(browser::renumber::byDate(sessionBook(125, 3)).after, browser::renumber::After::Stay);
    EXPECT_EQ(byLabel(t, usluge), (QMap<int, qint64> { { 31, 1 }, { 32, 2 }, { 81, 1 }, { 82, 2 } }));
    browser::renumber::byDate(sessionBook(125, 3));
    EXPECT_EQ(byLabel(t, usluge), (QMap<int, qint64> { { 31, 2 }, { 32, 1 }, { 81, 1 }, { 82, 2 } }));
}

// A write that fails on one row, at each step: every number and link stays as it was,
// and the operator reads the step and the engine's own words.
TEST(Renumbering, AFailureAtAnyRowChangesNothing)
{
    const QString byDate = QStringLiteral("Desila se greška:  u ažuriranju broja knjige prihoda i rashoda: Namjerno");
    const QString byOrdinal = QStringLiteral("Desila se greška: u spremanju renumeriranih zapisa. Ponovite! Namjerno");
    const QList<std::pair<const char*, bool>> cases = {
        { "KnjPrihRashFBiH WHEN NEW.RBroj = 40", true },
        { "KnjEvidPotrIObvFBiH", true },
        { "KnjPrihRashFBiH WHEN NEW.RBroj = 50", false },
        { "KnjEvidPotrIObvFBiH", false },
    };
    TestDatabase t;
    t.db().beginTransaction();
    for (int i = 1; i <= 60; ++i)
        entry(t, kBook, i * 2 - (i == 20 ? 1 : 0), QDate(2016, 1 + i % 12, 1), i);
    entry(t, kBook, 2, QDate(2016, 9, 9), 99); // shares its number
    for (int i = 1; i <= 20; ++i)
        link(t, i, i * 2, i);
    t.db().commit();
    const QMap<int, qint64> rows = byLabel(t, kBook), links = byLabel(t, kEvid, kKpr);
    for (const auto& [trigger, date] : cases) {
        ScopedScript script;
        ASSERT_TRUE(t.db().executeNative(
            QStringLiteral("CREATE TRIGGER kvar BEFORE UPDATE ON %1 BEGIN SELECT RAISE(ABORT, 'Namjerno'); END")
                .arg(QLatin1String(trigger))));
        script->answers.enqueue(Answer::Yes);
        const browser::renumber::Outcome outcome
            = date ? browser::renumber::byDate(sessionBook(96)) : browser::renumber::byOrdinal(sessionBook(96));
        EXPECT_EQ(outcome.after, browser::renumber::After::Reload);
        EXPECT_EQ(byLabel(t, kBook), rows) << trigger;
        EXPECT_EQ(byLabel(t, kEvid, kKpr), links) << trigger;
        EXPECT_EQ(script->messages.size(), 1) << trigger;
        EXPECT_EQ(outcome.notice.text, date ? byDate : byOrdinal);
        EXPECT_EQ(outcome.notice.icon, Icon::Critical);
        ASSERT_TRUE(t.db().executeNative(QStringLiteral("DROP TRIGGER kvar")));
    }
}

TEST(OpeningState, CarriesWrittenDownAssetsNumberedAfterTheNewYearInTheOldOrder)
{
    TestDatabase t;
    ScopedScript script;
    clock::setToday(QDate(2017, 3, 1));
    t.db().beginTransaction();
    // Stored out of the order of their numbers.
    asset(t, 1, 2016, 3, "Kombi", 1000, 1000, 5); // 1000 - 200
    asset(t, 1, 2016, 1, "Bušilica", 1000, 150, 5); // 150 - 200: dropped
    asset(t, 1, 2016, 2, "Računar", 300, 300, 3); // 100/3 is 33: 300 - 99
    asset(t, 1, 2016, 4, "Otpisano", 500, 0, 5); // nothing left: dropped
    asset(t, 1, 2016, 5, "Sto", 100, 100, 4); // 100 - 25
    asset(t, 1, 2016, 6, "Nula", 1000, 200, 5); // 200 - 200: nothing left, dropped
    asset(t, 1, 2016, 7, "Alat", 999.99, 900.01, 8); // 100/8 is 12: 900.01 - 119.9988, to cents
    asset(t, 2, 2016, 1, "Tuđe", 100, 100, 4); // another company
    asset(t, 1, 2015, 9, "Staro", 100, 100, 4); // another year
    asset(t, 1, 2017, 7, "Već upisano", 10, 10, 1);
    t.db().commit();

    const browser::openingstate::Generated generated = browser::openingstate::generate(Knjiga::PopListaFBiH);
    EXPECT_TRUE(generated.made);
    clock::setToday({});
    // The journal of the new year keeps the rows the statement added.
    std::vector<journal::Record> chain;
    ASSERT_TRUE(journal::readChain(t.db(), 1, 2017, chain));
    ASSERT_EQ(chain.size(), 2u);
    EXPECT_EQ(chain[1].poslije.count(QStringLiteral("ISPRAVA=Poč.stanje iz 2016")), 4);
    EXPECT_EQ(script->texts(),
        (QStringList { "Već postoji knjiženje za godinu: 2017 ! Želite li zaista generirati "
                       "početna stanja za 2017 na osnovu stanja u godini: 2016?\nPažljivo, "
                       "moguće dupliranje podataka!" }));
    EXPECT_EQ(generated.notice.text, "Uspješno generirana početna stanja. Provjerite podatke!");
    EXPECT_EQ(generated.notice.icon, Icon::Information);
    EXPECT_EQ(rows2017(t, 7),
        "8|Računar|2017-01-01|Poč.stanje iz 2016|201; 9|Kombi|2017-01-01|Poč.stanje iz 2016|800; "
        "10|Sto|2017-01-01|Poč.stanje iz 2016|75; 11|Alat|2017-01-01|Poč.stanje iz 2016|780.01");
    EXPECT_EQ(browser::openingstate::insertSql(3, 2020).toStdString(),
        "INSERT INTO KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv,Datum,Isprava,NabVrijednost,"
        "KnjigVrijednost,VijekTr) SELECT BrojPoduzeca,2021,Naziv,'01.01.2021','Poč.stanje iz 2020',NabVrijednost,"
        "round(KnjigVrijednost-100/VijekTr*NabVrijednost/100,2),VijekTr FROM KnjPopListaDugImovFBiH WHERE "
        "GODINAKNJ=2020 AND BROJPODUZECA=3 AND KnjigVrijednost>0 AND "
        "round(KnjigVrijednost-100/VijekTr*NabVrijednost/100,2)>0");
}

TEST(OpeningState, RefusesAFutureYearAndCreatesNothingOnAServerError)
{
    TestDatabase t;
    ScopedScript script;
    asset(t, 1, 2016, 1, "Kombi", 1000, 1000, 5);
    asset(t, 1, 2016, 2, "Bez vijeka", 1000, 1000, 0);
    clock::setToday(QDate(2016, 12, 31));
    const browser::openingstate::Generated future = browser::openingstate::generate(Knjiga::PopListaRS);
    clock::setToday(QDate(2017, 1, 1));
    script->answers = QQueue<Answer>({ Answer::No, Answer::Yes });
    const browser::openingstate::Generated declined = browser::openingstate::generate(Knjiga::PopListaRS);
    const browser::openingstate::Generated failed = browser::openingstate::generate(Knjiga::PopListaRS);
    clock::setToday({});
    EXPECT_EQ(rows2017(t, 0), "");
    EXPECT_FALSE(future.made || declined.made || failed.made);
    ASSERT_EQ(script->messages.size(), 2) << "the two questions; the outcomes are the caller's to tell";
    EXPECT_EQ(future.notice.text,
        QStringLiteral("Nije moguće generirati početna stanja za 2017 jer ona još nije "
                       "nastupila!"));
    EXPECT_EQ(future.notice.icon, Icon::Exclamation);
    EXPECT_TRUE(declined.notice.text.isEmpty());
    EXPECT_TRUE(script->messages[0].text.startsWith(QStringLiteral("Želite li zaista"))) << "no warning: 2017 is empty";
    EXPECT_EQ(failed.notice.text,
        QStringLiteral("Desila se greška: u generiranju stanja. Ponovite postupak. "
                       "Greška: Divide by zero error encountered."));
}
