// The asset list's opening state of the next year: what is carried and at what book
// value, the numbers the new rows take, the refusal, the warning and the failure.
#include "books/BookKind.h"
#include "browser/OpeningState.h"
#include "session/Clock.h"
#include "session/Session.h"
#include "support/ScriptedInteraction.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

using namespace knjige;
using namespace knjige::test;

namespace
{

void asset(TestDatabase& t, int company, int year, int rbroj, const char* naziv, double nab, double knjig, int vijek)
{
    t.insert(QStringLiteral("dbo.KnjPopListaDugImovFBiH"),
        { { "BrojPoduzeca", company }, { "GodinaKnj", year }, { "RBroj", rbroj }, { "Naziv", QString::fromUtf8(naziv) },
            { "Datum", QDate(year, 6, 1) }, { "Isprava", "7" }, { "NabVrijednost", money(nab) },
            { "KnjigVrijednost", money(knjig) }, { "VijekTr", vijek } });
}

// "RBroj Naziv Datum Isprava KnjigVrijednost" of each row of 2017 above `from`.
std::string rows2017(TestDatabase& t, int from)
{
    const ResultSet rs = t.query(QStringLiteral("SELECT RBroj,Naziv,Datum,Isprava,KnjigVrijednost FROM "
                                                "dbo.KnjPopListaDugImovFBiH WHERE GodinaKnj=2017 AND RBroj>%1 ORDER BY "
                                                "RBroj")
                                     .arg(from));
    QStringList out;
    for (int r = 0; r < rs.rowCount(); ++r)
        out << QStringLiteral("%1 %2 %3 %4 %5")
                   .arg(
                       rs.text(r, 0), rs.text(r, 1), rs.date(r, 2).toString(Qt::ISODate), rs.text(r, 3), rs.text(r, 4));
    return out.join(u'|').toStdString();
}

} // namespace

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

    EXPECT_TRUE(openingstate::generate(Knjiga::PopListaFBiH));
    clock::setToday({});
    EXPECT_EQ(t.db().lastSql(), openingstate::insertSql(1, 2016));
    EXPECT_EQ(script->texts(),
        (QStringList { "Već postoji knjiženje za godinu: 2017 ! Želite li zaista generirati "
                       "početna stanja za 2017 na osnovu stanja u godini: 2016?\nPažljivo, "
                       "moguće dupliranje podataka!",
            "Uspješno generirana početna stanja. Provjerite podatke!" }));
    EXPECT_EQ(script->messages.value(1).icon, Icon::Information);
    EXPECT_EQ(rows2017(t, 7),
        "8 Računar 2017-01-01 Poč.stanje iz 2016 201|9 Kombi 2017-01-01 Poč.stanje iz 2016 800|"
        "10 Sto 2017-01-01 Poč.stanje iz 2016 75|11 Alat 2017-01-01 Poč.stanje iz 2016 780.01");
    EXPECT_EQ(openingstate::insertSql(3, 2020).toStdString(),
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
    EXPECT_FALSE(openingstate::generate(Knjiga::PopListaRS));
    clock::setToday(QDate(2017, 1, 1));
    script->answers = QQueue<Answer>({ Answer::No, Answer::Yes });
    EXPECT_FALSE(openingstate::generate(Knjiga::PopListaRS));
    EXPECT_FALSE(openingstate::generate(Knjiga::PopListaRS));
    clock::setToday({});
    EXPECT_EQ(rows2017(t, 0), "");
    ASSERT_EQ(script->messages.size(), 4);
    EXPECT_EQ(script->messages[0].text,
        QStringLiteral("Nije moguće generirati početna stanja za 2017 jer ona još nije "
                       "nastupila!"));
    EXPECT_EQ(script->messages[0].icon, Icon::Exclamation);
    EXPECT_TRUE(script->messages[1].text.startsWith(QStringLiteral("Želite li zaista"))) << "no warning: 2017 is empty";
    EXPECT_EQ(script->messages[3].text,
        QStringLiteral("Desila se greška: u generiranju stanja. Ponovite postupak. "
                       "Greška: Divide by zero error encountered."));
}
