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
    EXPECT_EQ(vrstaCode(" 5 - Prihod - Gotovina"), 5);
    EXPECT_EQ(vrstaCode("4 - Rashod - Materijalni troškovi"), 4);
    EXPECT_EQ(vrstaCode(QString()), 0);
    EXPECT_EQ(vrstaTexts(96).at(2), "13 - Prihod - Stvari i usluge");
    EXPECT_EQ(vrstaTexts(96).at(4), "17 - Rashod - Bruto plaće zaposlenika");
    EXPECT_EQ(vrstaTexts(109).at(10), "16 - Rashod - Rashodi PPDOH");
    EXPECT_EQ(vrstaTexts(100).at(3), "7 - Rashod - Sponzorstva i donacije do 2% primanja");
    EXPECT_TRUE(vrstaTexts(98).isEmpty());
}

TEST(EditorRules, ReadStatementsAndCaptionsAreTheSystemsTexts)
{
    EXPECT_EQ(readEntrySql(96, 2016, 1, 7),
        "SELECT * FROM dbo.KnjPrihRashFBiH WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 AND RBroj=7");
    EXPECT_EQ(readEntrySql(109, 2016, 1, 7),
        "SELECT * FROM dbo.KnjPrihRashDB WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 AND RBroj=7");
    EXPECT_EQ(readEntrySql(102, 2016, 3, 2),
        "SELECT * FROM dbo.KnjEvidPotrIObvFBiH WHERE GODINAKNJ=2016 AND BROJPODUZECA=3 AND RBroj=2");
    EXPECT_EQ(readEntrySql(101, 2016, 1, 1), readEntrySql(105, 2016, 1, 1));
    EXPECT_EQ(readEntrySql(106, 2016, 1, 1),
        "SELECT * FROM dbo.KnjPrometaFBiH WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 AND RBroj=1");
    EXPECT_EQ(readEntrySql(100, 2016, 1, 4),
        "SELECT * FROM dbo.KnjRashodaRS WHERE GODINAKNJ=2016 AND BROJPODUZECA=1 AND RBroj=4");
    // The year and the keyword touch in the trade books.
    EXPECT_EQ(readEntrySql(125, 2016, 1, 5, 2),
        "SELECT * FROM dbo.TrgKnjUsluga WHERE BROJPODUZECA=1 AND GODINAKNJ=2016AND BrojProd=2 AND RBroj=5");
    EXPECT_EQ(readEntrySql(126, 2016, 1, 5, 2),
        "SELECT * FROM dbo.TrgKnjKomisiona WHERE BROJPODUZECA=1 AND GODINAKNJ=2016AND BrojProd=2 AND RBroj=5");

    // The editors' own tests see the captions of new entries, changes and deletions of
    // the income and expense books; these are the rest.
    EXPECT_EQ(modeCaption(2, 97), "Izmjena stavke knjige evidencije Potraživanja i obveza");
    EXPECT_EQ(modeCaption(4, 105), "Brisanje stavke popisne liste dugotrajne imovine");
    EXPECT_EQ(modeCaption(2, 126), "Izmjena stavke trg.knjige komisione robe");
    EXPECT_EQ(modeCaption(3, 98), "Pretraživanje");
    EXPECT_EQ(modeCaption(7, 98), QString());
}

TEST(EditorRules, VatSearchPeriodAndTheReceivablesWarningBeforeARefusal)
{
    EXPECT_EQ(vatContained(-Money::fromWhole(100)), -Money::fromUnits(145299));
    const struct {
        QDate today;
        int year;
        QDate from, to;
    } periods[] = {
        // 10 January of the working year: from 11 December of the year before, to today.
        { { 2016, 1, 10 }, 2016, { 2015, 12, 11 }, { 2016, 1, 10 } },
        // A past working year pulls both dates back into it.
        { { 2017, 3, 15 }, 2016, { 2016, 1, 1 }, { 2016, 12, 31 } },
        // Early January: the start stays in the working year, the end is pulled back.
        { { 2017, 1, 5 }, 2016, { 2016, 12, 6 }, { 2016, 12, 31 } },
        // A working year after today's is left as computed.
        { { 2016, 6, 30 }, 2017, { 2016, 5, 31 }, { 2016, 6, 30 } },
    };
    for (const auto& p : periods)
        EXPECT_EQ(searchPeriod(p.today, p.year), std::make_pair(p.from, p.to)) << p.today.toString().toStdString();

    // The receivables warning on a missing link comes before the document check.
    const Findings f
        = checkEvid({ 1, QDate(2016, 2, 2), 1, "11 - Izdati racuni", 0, QString(), Money::fromWhole(1) }, 2016);
    ASSERT_EQ(f.size(), 2);
    EXPECT_TRUE(f[0].warning);
    EXPECT_EQ(f[1].text, "Mora se upisati isprava !");
    EXPECT_TRUE(refuses(f));
}

TEST(EditorRules, AnEntryReadByItsNumberIsTheOneTheListShows)
{
    ResultSet read({ { "RBroj", FieldType::Integer }, { "Datum", FieldType::Date }, { "Opis", FieldType::Text },
        { "Iznos", FieldType::Currency }, { "Vrsta", FieldType::Integer } });
    // The list names its kind column by text and shows the amount as an integer.
    ResultSet list({ { "RBroj", FieldType::Integer }, { "Vrsta", FieldType::Text }, { "Datum", FieldType::Date },
        { "Opis", FieldType::Text }, { "Iznos", FieldType::Integer }, { "Prihodi", FieldType::Currency } });
    const QDate first(2016, 3, 1), second(2016, 3, 2);
    for (const auto& [d, opis, iznos] :
        { std::tuple(first, "Prva", 10), { second, "Druga", 20 }, { second, "Druga", 30 } }) {
        read.appendRow();
        read.setInteger(0, 5);
        read.setDate(1, d);
        read.setText(2, opis);
        read.setMoney(3, Money::fromWhole(iznos));
        read.setInteger(4, 5);
    }
    for (const auto& [d, opis, iznos] :
        { std::tuple(second, "Druga", 30), { first, "Prva", 10 }, { second, "Druga", 20 } }) {
        list.appendRow();
        list.setInteger(0, 5);
        list.setText(1, "Prihod - Robe");
        list.setDate(2, d);
        list.setText(3, opis);
        list.setInteger(4, iznos);
        list.setNull(5);
    }
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
    EXPECT_EQ(one.text(0, 2), "Druga");
    EXPECT_EQ(one.date(0, 1), second);
}
