// The demo company of the working year: every book has entries numbered in date order,
// the amounts, kinds and links hold together, the texts fit their columns, the same
// year gives the same rows, and a failure leaves nothing behind.
#include "ResultText.h"
#include "books/BookKind.h"
#include "books/Schema.h"
#include "browser/BrowserRules.h"
#include "browser/FilterClause.h"
#include "demo/DemoData.h"
#include "journal/BookCheck.h"
#include "session/Clock.h"
#include "support/Sandbox.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

using namespace knjige;
using knjige::test::TestDatabase;

namespace
{

// The browser's own query of a book for the demo company: as it opens, or for one shop
// over the whole year.
QString browserSql(const books::BookKind& book, int year, qint32 shop = 0)
{
    const QDate from(year, 1, 1), to(year, 12, 31);
    return book.selectSql
        + (shop ? browser::periodFilter(book.code, from, to, demo::BrojPoduzeca, year, shop).where
                : browser::openingWhere(from, year, demo::BrojPoduzeca))
        + browser::orderBy();
}

class DemoData : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QString error;
        ASSERT_TRUE(demo::fillDemoData(t.db(), year, &error)) << error.toStdString();
    }
    TestDatabase t;
    const int year = clock::today().year();
};

} // namespace

// Each book, of each shop, has entries, and the book check finds nothing in it: numbers
// from one without a gap in date order, links that hold, no date before the year; the
// next year's turnover and income books number from one again.
TEST_F(DemoData, EveryBookHasEntriesThatPassTheBookCheckTheNextYearItsOwnAndTheSameYearTheSameRows)
{
    for (const books::BookKind& book : books::allBooks()) {
        const bool trade = books::isTradeBook(book.code);
        for (qint32 shop : trade ? QVector<qint32> { demo::Maloprodaja1, demo::Maloprodaja2 } : QVector<qint32> { 0 })
            EXPECT_GE(t.query(browserSql(book, year, shop)).rowCount(), 5) << book.code << " shop " << shop;
        const bool nextYear = book.code == Knjiga::PrihRashFBiH || book.code == Knjiga::PrometaFBiH;
        for (int y = year; y <= year + (nextYear ? 1 : 0); ++y) {
            if (y > year) {
                EXPECT_GE(t.query(browserSql(book, y)).rowCount(), 1) << book.code;
            }
            const auto report = journal::bookcheck::check(t.db(), { book.code, demo::BrojPoduzeca, qint16(y), 0 });
            EXPECT_EQ(report.status, journal::bookcheck::Report::Status::Clean) << book.code << " " << y << "\n"
                                                                                << report.text.toStdString();
        }
    }

    // The same year gives the same rows.
    const QString path = test::scratchDir() + QStringLiteral("/demo-again.db");
    QString error;
    db::Database other;
    ASSERT_TRUE(books::createEmbeddedDatabase(path, &error) && other.connect(path)) << error.toStdString();
    ASSERT_TRUE(demo::fillDemoData(other, year, &error)) << error.toStdString();
    const QString sql = QStringLiteral("SELECT RBroj,Datum,Isprava,Opis,Vrsta,Iznos,IznosPDV FROM dbo.KnjPrihRashFBiH "
                                       "ORDER BY GodinaKnj,RBroj");
    db::ResultSet b;
    ASSERT_TRUE(other.open(sql, b)) << other.errorDescription().toStdString();
    EXPECT_EQ(test::rowsText(t.query(sql)), test::rowsText(b));
}

// Every receivables and liabilities entry names a partner of dbo.Komitent (so the
// browser's inner join shows all of them) and an FBiH entry of the same amount that
// settles it: invoices issued and their payments to income by bank, invoices
// received and their payments to purchases of goods. VAT is the 17 % contained in
// the amount; every entry kind of every book occurs; the asset lists of this and the
// previous year give the opening state something to carry.
TEST_F(DemoData, AmountsKindsAndLinksHoldTogetherAndTextsFitTheirColumns)
{
    const QString where = QStringLiteral(" WHERE GodinaKnj=%1 AND BrojPoduzeca=1").arg(year);
    const db::ResultSet fbih
        = t.query(QStringLiteral("SELECT RBroj,Vrsta,Iznos,IznosPDV,GodinaKnj FROM dbo.KnjPrihRashFBiH"));
    QHash<qint64, std::pair<qint64, Money>> entries; // of the working year
    for (int r = 0; r < fbih.rowCount(); ++r) {
        const qint64 vrsta = fbih.integer(r, 1);
        const Money iznos = fbih.money(r, 2);
        if (fbih.integer(r, 4) == year)
            entries.insert(fbih.integer(r, 0), { vrsta, iznos });
        const Money vat = (vrsta == 17 || vrsta == 18) ? Money() : (iznos * 17).dividedBy(117.0);
        EXPECT_EQ(fbih.money(r, 3), vat) << "kind " << vrsta << " amount " << iznos.toString().toStdString();
        EXPECT_EQ(iznos.rounded(2), iznos) << "amounts have cents, no more";
    }
    const db::ResultSet evid
        = t.query(QStringLiteral("SELECT RBrojKPR,Vrsta,Iznos FROM dbo.KnjEvidPotrIObvFBiH") + where);
    for (int r = 0; r < evid.rowCount(); ++r) {
        ASSERT_TRUE(entries.contains(evid.integer(r, 0))) << "RBrojKPR " << evid.integer(r, 0);
        const auto [linkedKind, amount] = entries.value(evid.integer(r, 0));
        EXPECT_EQ(linkedKind, evid.integer(r, 1) < 20 ? 12 : 16);
        EXPECT_EQ(amount, evid.money(r, 2));
    }
    EXPECT_EQ(t.query(browserSql(*books::findBook(Knjiga::EvidPotObvFBiH), year)).rowCount(), evid.rowCount());

    const std::pair<const char*, const char*> kinds[] = { { "dbo.KnjPrihRashFBiH", "11|12|13|16|17|18|19" },
        { "dbo.KnjEvidPotrIObvFBiH", "11|12|21|22" }, { "dbo.KnjPrihRashDB", "5|6|7|9|10|11|12|13|14|15|16" },
        { "dbo.KnjPrihodaRS", "4|5|6|7|8" }, { "dbo.KnjRashodaRS", "4|5|6|7|8|9|10|13" } };
    for (const auto& [table, expected] : kinds)
        EXPECT_EQ(test::columnText(
                      t.query(QStringLiteral("SELECT DISTINCT Vrsta FROM %1 ORDER BY Vrsta").arg(table)), "Vrsta"),
            expected)
            << table;

    for (int y : { year - 1, year }) {
        const db::ResultSet rs = t.query(browserSql(*books::findBook(Knjiga::PopListaFBiH), y));
        ASSERT_GE(rs.rowCount(), 3) << y;
        const int nab = rs.indexOf(QStringLiteral("NabVrijednost")),
                  knjig = rs.indexOf(QStringLiteral("KnjigVrijednost"));
        const int vijek = rs.indexOf(QStringLiteral("VijekTr"));
        for (int r = 0; r < rs.rowCount(); ++r) {
            EXPECT_TRUE(rs.money(r, knjig) > Money() && rs.money(r, knjig) <= rs.money(r, nab)) << y << " row " << r;
            EXPECT_TRUE(rs.integer(r, vijek) >= 2 && rs.integer(r, vijek) <= 10) << y << " row " << r;
        }
    }

    // The texts fit the columns as the schema declares them, so the same rows can be
    // written to SQL Server; the company and its shops are known by name.
    for (const char* table : { "dbo.KnjPrihRashFBiH", "dbo.KnjPrihRashDB", "dbo.KnjPrihodaRS", "dbo.KnjRashodaRS",
             "dbo.KnjPrometaFBiH", "dbo.KnjEvidPotrIObvFBiH", "dbo.KnjPopListaDugImovFBiH", "dbo.TrgKnjUsluga",
             "dbo.TrgKnjKomisiona", "dbo.Komitent", "dbo.CONFIG" }) {
        const db::ResultSet rs = t.query(QStringLiteral("SELECT * FROM ") + QString::fromLatin1(table));
        for (int c = 0; c < rs.fieldCount(); ++c) {
            const int width = books::textColumnWidth(QString::fromLatin1(table), rs.field(c).name);
            for (int r = 0; width > 0 && r < rs.rowCount(); ++r)
                EXPECT_LE(rs.text(r, c).size(), width)
                    << table << "." << rs.field(c).name.toStdString() << ": " << rs.text(r, c).toStdString();
        }
    }
    const db::ResultSet config = t.query(QStringLiteral("SELECT NazivFirme FROM dbo.CONFIG WHERE BROJPODUZECA=1"));
    ASSERT_EQ(config.rowCount(), 1);
    EXPECT_EQ(config.text(0, 0).trimmed(), demo::nazivFirme());
    const db::ResultSet shops = t.query(QStringLiteral("SELECT ImeKomit1 FROM dbo.Komitent WHERE SifKomit IN (%1,%2) "
                                                       "ORDER BY SifKomit")
                                            .arg(demo::Maloprodaja1)
                                            .arg(demo::Maloprodaja2));
    ASSERT_EQ(shops.rowCount(), 2);
    EXPECT_TRUE(shops.text(0, 0).startsWith(QStringLiteral("Maloprodaja 1")));
}

// One failing table leaves nothing behind: the company is not half made.
TEST(DemoDataFailure, LeavesNothingWhenATableIsMissing)
{
    TestDatabase t;
    t.exec(QStringLiteral("DROP TABLE dbo.TrgKnjKomisiona"));
    QString error;
    EXPECT_FALSE(demo::fillDemoData(t.db(), 2024, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(t.count(QStringLiteral("dbo.CONFIG")), 0);
    EXPECT_EQ(t.count(QStringLiteral("dbo.KnjPrihRashFBiH")), 0);
}
