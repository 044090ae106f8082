#include "books/BookKind.h"
#include "editors/EditorRules.h"

#include <gtest/gtest.h>

using namespace knjige;
using namespace knjige::editors;

TEST(EditorRules, KindListsMapCodesToPositionsBothWays)
{
    for (int book : { 96, 109, 97, 102, 99, 100 }) {
        const QStringList texts = vrstaTexts(book);
        ASSERT_FALSE(texts.isEmpty()) << book;
        for (int i = 0; i < texts.size(); ++i)
            EXPECT_EQ(vrstaPosition(book, vrstaCode(texts[i])), i) << book << " " << texts[i].toStdString();
    }
    // The expense list RS jumps from 10 to 13; the DB list from 7 to 9.
    EXPECT_EQ(vrstaCode(vrstaTexts(100).at(6)), 10);
    EXPECT_EQ(vrstaCode(vrstaTexts(100).at(7)), 13);
    EXPECT_EQ(vrstaPosition(100, 11), -1);
    EXPECT_EQ(vrstaCode(QStringLiteral(" 5 - Prihod - Gotovina")), 5);
    EXPECT_EQ(vrstaCode(QStringLiteral("4 - Rashod - Materijalni troškovi")), 4);
    EXPECT_EQ(vrstaCode(QString()), 0);
    EXPECT_EQ(vrstaTexts(96).at(2), QStringLiteral("13 - Prihod - Stvari i usluge"));
    EXPECT_EQ(vrstaTexts(109).at(10), QStringLiteral("16 - Rashod - Rashodi PPDOH"));
    EXPECT_EQ(vrstaTexts(100).at(3), QStringLiteral("7 - Rashod - Sponzorstva i donacije do 2% primanja"));
    EXPECT_TRUE(vrstaTexts(98).isEmpty());
}

TEST(EditorRules, ReadStatementsAreTheSystemsTexts)
{
    EXPECT_EQ(readEntrySql(96, 2016, 1, 7),
        QStringLiteral("SELECT * FROM dbo.KnjPrihRashFBiH WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 AND RBroj=7"));
    EXPECT_EQ(readEntrySql(109, 2016, 1, 7),
        QStringLiteral("SELECT * FROM dbo.KnjPrihRashDB WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 AND RBroj=7"));
    EXPECT_EQ(readEntrySql(102, 2016, 3, 2),
        QStringLiteral("SELECT * FROM dbo.KnjEvidPotrIObvFBiH WHERE GODINAKNJ=2016 AND BROJPODUZECA=3 AND RBroj=2"));
    EXPECT_EQ(readEntrySql(101, 2016, 1, 1), readEntrySql(105, 2016, 1, 1));
    EXPECT_EQ(readEntrySql(106, 2016, 1, 1),
        QStringLiteral("SELECT * FROM dbo.KnjPrometaFBiH WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 AND RBroj=1"));
    EXPECT_EQ(readEntrySql(100, 2016, 1, 4),
        QStringLiteral("SELECT * FROM dbo.KnjRashodaRS WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 AND RBroj=4"));
    // The year and the keyword touch in the trade books.
    EXPECT_EQ(readEntrySql(125, 2016, 1, 5, 2),
        QStringLiteral(
            "SELECT * FROM dbo.TrgKnjUsluga WHERE BROJPODUZECA=1 AND GODINAKNJ=2016AND BrojProd=2 AND RBroj=5"));
    EXPECT_EQ(readEntrySql(126, 2016, 1, 5, 2),
        QStringLiteral(
            "SELECT * FROM dbo.TrgKnjKomisiona WHERE BROJPODUZECA=1 AND GODINAKNJ=2016AND BrojProd=2 AND RBroj=5"));
}

TEST(EditorRules, CaptionsPerModeAndBook)
{
    EXPECT_EQ(modeCaption(1, 96), QStringLiteral("Upis nove stavke knjige prihoda i rashoda"));
    EXPECT_EQ(modeCaption(2, 97), QStringLiteral("Izmjena stavke knjige evidencije Potraživanja i obveza"));
    EXPECT_EQ(modeCaption(4, 105), QStringLiteral("Brisanje stavke popisne liste dugotrajne imovine"));
    EXPECT_EQ(modeCaption(1, 100), QStringLiteral("Upis nove stavke knjige prihoda"));
    EXPECT_EQ(modeCaption(2, 126), QStringLiteral("Izmjena stavke trg.knjige komisione robe"));
    EXPECT_EQ(modeCaption(3, 98), QStringLiteral("Pretraživanje"));
    EXPECT_EQ(modeCaption(7, 98), QString());
    EXPECT_EQ(confirmCaption(3), QStringLiteral("Postavi filter"));
    EXPECT_EQ(confirmCaption(4), QStringLiteral("Obriši"));
}

TEST(EditorRules, VatContainedInAGrossAmount)
{
    EXPECT_EQ(vatContained(Money::fromWhole(100)), Money::fromUnits(145299));
    EXPECT_EQ(vatContained(Money::fromWhole(117)), Money::fromWhole(17));
    EXPECT_EQ(vatContained(-Money::fromWhole(100)), -Money::fromUnits(145299));
}

TEST(EditorRules, SearchPeriodAndNewEntryDate)
{
    // 10 January of the working year: from 11 December of the year before, to today.
    auto [from, to] = searchPeriod(QDate(2016, 1, 10), 2016);
    EXPECT_EQ(from, QDate(2015, 12, 11));
    EXPECT_EQ(to, QDate(2016, 1, 10));
    // A past working year pulls both dates back into it.
    std::tie(from, to) = searchPeriod(QDate(2017, 3, 15), 2016);
    EXPECT_EQ(from, QDate(2016, 1, 1));
    EXPECT_EQ(to, QDate(2016, 12, 31));
    // Early January: the start stays in the working year, the end is pulled back.
    std::tie(from, to) = searchPeriod(QDate(2017, 1, 5), 2016);
    EXPECT_EQ(from, QDate(2016, 12, 6));
    EXPECT_EQ(to, QDate(2016, 12, 31));
    // A working year after today's is left as computed.
    std::tie(from, to) = searchPeriod(QDate(2016, 6, 30), 2017);
    EXPECT_EQ(from, QDate(2016, 5, 31));
    EXPECT_EQ(to, QDate(2016, 6, 30));

    EXPECT_EQ(newEntryDate(QDate(2016, 5, 4), 2015), QDate(2015, 12, 31));
    EXPECT_EQ(newEntryDate(QDate(2016, 5, 4), 2016), QDate(2016, 5, 4));
}

TEST(EditorRules, ChecksStopAtTheFirstRefusalAndKeepWarnings)
{
    PrihRashInput in { 0, QDate(2015, 1, 1), QString(), QString(), Money() };
    // The number comes before the year, the year before everything else.
    EXPECT_EQ(checkPrihRash(in, 2016).last().focus, QStringLiteral("ubRBroj"));
    in.rbroj = 1;
    EXPECT_EQ(checkPrihRash(in, 2016).last().focus, QStringLiteral("dpDatum"));
    in.datum = QDate(2016, 1, 1);
    in.isprava = QStringLiteral("  ");
    EXPECT_EQ(checkPrihRash(in, 2016).last().text, QStringLiteral("Mora se upisati isprava !"));
    in.isprava = QStringLiteral("R-1");
    EXPECT_EQ(checkPrihRash(in, 2016).last().text, QStringLiteral("Mora se upisati šifra vrste knj.promjene!"));
    in.vrsta = QStringLiteral("11 - Prihod - Gotovina");
    EXPECT_EQ(checkPrihRash(in, 2016).last().text, QStringLiteral("Iznos mora biti različit od nule !"));
    in.iznos = -Money::fromWhole(5);
    const Findings negative = checkPrihRash(in, 2016);
    ASSERT_EQ(negative.size(), 1);
    EXPECT_TRUE(negative[0].warning);
    EXPECT_FALSE(refuses(negative));
    EXPECT_EQ(negative[0].title, QStringLiteral("Napomena"));

    // The receivables warning on a missing link comes before the document check.
    EvidInput e { 1, QDate(2016, 2, 2), 1, QStringLiteral("11 - Izdati racuni"), 0, QString(), Money::fromWhole(1) };
    const Findings f = checkEvid(e, 2016);
    ASSERT_EQ(f.size(), 2);
    EXPECT_TRUE(f[0].warning);
    EXPECT_EQ(f[1].text, QStringLiteral("Mora se upisati isprava !"));
    EXPECT_TRUE(refuses(f));

    // The turnover book refuses only a zero number.
    PrometInput p { -3, QDate(2016, 2, 2), QStringLiteral("D1"), Money(), Money::fromWhole(50) };
    EXPECT_TRUE(checkPromet(p, 2016).isEmpty());
    p.rbroj = 0;
    EXPECT_EQ(checkPromet(p, 2016).last().text, QStringLiteral("Morate upisati redni broj različit od 0!"));

    // Asset values: equal purchase and book value pass; a book value of 0 does not.
    PopisInput a { QDate(2016, 3, 1), QStringLiteral("1"), 5, Money::fromWhole(1000),
        Money::fromWhole(1000) };
    EXPECT_TRUE(checkPopis(a, 2016).isEmpty());
    a.knjigovodstvena = Money();
    const Findings zero = checkPopis(a, 2016);
    EXPECT_TRUE(refuses(zero));
    EXPECT_EQ(zero.last().title, QStringLiteral("Napomena"));
    EXPECT_EQ(zero.last().text, QStringLiteral("Unesena vrijednost je negativna ili 0 pažljivo !"));

    const Findings range = checkSearchPeriod(QDate(2016, 5, 2), QDate(2016, 5, 1));
    EXPECT_EQ(range.last().icon, Icon::None);
    EXPECT_EQ(range.last().text, QStringLiteral("Početni datum računa računa veći od konačnog. Ispravite!"));
}

TEST(EditorRules, AnEntryReadByItsNumberIsTheOneTheListShows)
{
    ResultSet read({ { QStringLiteral("RBroj"), FieldType::Integer }, { QStringLiteral("Datum"), FieldType::Date },
        { QStringLiteral("Opis"), FieldType::Text }, { QStringLiteral("Iznos"), FieldType::Currency },
        { QStringLiteral("Vrsta"), FieldType::Integer } });
    const auto addRead = [&](const QDate& d, const QString& opis, qint64 iznos) {
        read.appendRow();
        read.setInteger(0, 5);
        read.setDate(1, d);
        read.setText(2, opis);
        read.setMoney(3, Money::fromWhole(iznos));
        read.setInteger(4, 5);
    };
    addRead(QDate(2016, 3, 1), QStringLiteral("Prva"), 10);
    addRead(QDate(2016, 3, 2), QStringLiteral("Druga"), 20);
    addRead(QDate(2016, 3, 2), QStringLiteral("Druga"), 30);

    // The list names its kind column by text and shows the amount as an integer.
    ResultSet list({ { QStringLiteral("RBroj"), FieldType::Integer }, { QStringLiteral("Vrsta"), FieldType::Text },
        { QStringLiteral("Datum"), FieldType::Date }, { QStringLiteral("Opis"), FieldType::Text },
        { QStringLiteral("Iznos"), FieldType::Integer }, { QStringLiteral("Prihodi"), FieldType::Currency } });
    const auto addListed = [&](const QString& opis, qint64 iznos) {
        list.appendRow();
        list.setInteger(0, 5);
        list.setText(1, QStringLiteral("Prihod - Robe"));
        list.setDate(2, opis == QStringLiteral("Prva") ? QDate(2016, 3, 1) : QDate(2016, 3, 2));
        list.setText(3, opis);
        list.setInteger(4, iznos);
        list.setNull(5);
    };
    addListed(QStringLiteral("Druga"), 30);
    addListed(QStringLiteral("Prva"), 10);
    addListed(QStringLiteral("Druga"), 20);

    EXPECT_EQ(matchingRow(read, &list, 0), 2);
    EXPECT_EQ(matchingRow(read, &list, 1), 0);
    EXPECT_EQ(matchingRow(read, &list, 2), 1);
    // Without a list row the first is taken; without candidates there is none.
    EXPECT_EQ(matchingRow(read, nullptr, -1), 0);
    EXPECT_EQ(matchingRow(read, &list, -1), 0);
    EXPECT_EQ(matchingRow(ResultSet(read.fields()), &list, 0), -1);

    const ResultSet one = singleRow(read, 2);
    ASSERT_EQ(one.rowCount(), 1);
    EXPECT_EQ(one.money(0, 3), Money::fromWhole(30));
    EXPECT_EQ(one.text(0, 2), QStringLiteral("Druga"));
    EXPECT_EQ(one.date(0, 1), QDate(2016, 3, 2));
}
