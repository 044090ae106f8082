#include "books/BookKind.h"
#include "books/DemoData.h"
#include "books/Schema.h"
#include "session/Database.h"
#include "session/Money.h"
#include "support/Sandbox.h"

#include <QDate>
#include <QFile>
#include <QSet>
#include <gtest/gtest.h>
#include <memory>

using namespace knjige;

namespace
{

// A new embedded database with the schema; the file is made empty first, since the
// data layer never creates a database it is only asked to open.
std::unique_ptr<Database> newDatabase(QString* error)
{
    const QString path = test::scratchDir() + QStringLiteral("/demo.db");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        *error = file.errorString();
        return nullptr;
    }
    file.close();
    auto db = std::make_unique<Database>();
    if (!db->connect(QStringLiteral("sqlite:") + path)) {
        *error = db->errorDescription();
        return nullptr;
    }
    if (!createSchema(*db, error))
        return nullptr;
    return db;
}

ResultSet read(Database& db, const QString& sql)
{
    ResultSet rs;
    EXPECT_TRUE(db.open(sql, rs)) << db.errorDescription().toStdString() << "\n" << sql.toStdString();
    return rs;
}

// The browser's own opening query of a book for the demo company.
QString browserSql(const BookKind& book, int year, qint32 shop = 0)
{
    QString sql = book.selectSql
        + QStringLiteral(" WHERE  K.Datum>='01.01.%1' AND K.GodinaKnj=%1 AND K.BrojPoduzeca=%2")
              .arg(year)
              .arg(demo::BrojPoduzeca);
    if (shop)
        sql += QStringLiteral(" AND K.BrojProd=%1").arg(shop);
    return sql + QStringLiteral(" ORDER BY K.RBroj");
}

QVector<qint32> shopsOf(const BookKind& book)
{
    return isTradeBook(book.code) ? QVector<qint32> { demo::Maloprodaja1, demo::Maloprodaja2 } : QVector<qint32> { 0 };
}

class DemoData : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        QString error;
        s_db = newDatabase(&error).release();
        if (s_db && !fillDemoData(*s_db, s_year, &error)) {
            delete s_db;
            s_db = nullptr;
        }
        s_error = error;
    }
    static void TearDownTestSuite()
    {
        delete s_db;
        s_db = nullptr;
    }
    void SetUp() override
    {
        if (!s_db)
            GTEST_SKIP() << "embedded database not available: " << s_error.toStdString();
    }
    Database& db() { return *s_db; }

    static inline Database* s_db = nullptr;
    static inline QString s_error;
    static inline const int s_year = QDate::currentDate().year();
};

} // namespace

TEST_F(DemoData, EveryBookShowsEntriesOfTheWorkingYear)
{
    for (const BookKind& book : allBooks())
        for (qint32 shop : shopsOf(book)) {
            const ResultSet rs = read(db(), browserSql(book, s_year, shop));
            EXPECT_GE(rs.rowCount(), 5) << book.code << " shop " << shop;
        }
}

TEST_F(DemoData, NumbersRunFromOneWithoutGapsInDateOrder)
{
    for (const BookKind& book : allBooks())
        for (qint32 shop : shopsOf(book)) {
            const ResultSet rs = read(db(), browserSql(book, s_year, shop));
            const int number = rs.indexOf(QStringLiteral("RBroj"));
            const int date = rs.indexOf(QStringLiteral("Datum"));
            ASSERT_GE(number, 0);
            ASSERT_GE(date, 0);
            for (int r = 0; r < rs.rowCount(); ++r) {
                EXPECT_EQ(rs.integer(r, number), r + 1) << book.code << " shop " << shop;
                EXPECT_EQ(rs.date(r, date).year(), s_year) << book.code;
                if (r > 0) {
                    EXPECT_LE(rs.date(r - 1, date), rs.date(r, date)) << book.code << " row " << r + 1;
                }
            }
        }
}

// Every receivables and liabilities entry names a partner of dbo.Komitent (so the
// browser's inner join shows all of them) and an FBiH entry of the same amount that
// settles it: invoices issued and their payments to income by bank, invoices
// received and their payments to purchases of goods.
TEST_F(DemoData, ReceivablesPointToExistingIncomeAndExpenseEntries)
{
    const QString where = QStringLiteral(" WHERE GodinaKnj=%1 AND BrojPoduzeca=1").arg(s_year);
    const ResultSet fbih = read(db(), QStringLiteral("SELECT RBroj,Vrsta,Iznos FROM dbo.KnjPrihRashFBiH") + where);
    QHash<qint64, std::pair<qint64, Money>> entries;
    for (int r = 0; r < fbih.rowCount(); ++r)
        entries.insert(fbih.integer(r, 0), { fbih.integer(r, 1), fbih.money(r, 2) });

    const ResultSet evid
        = read(db(), QStringLiteral("SELECT RBrojKPR,Vrsta,Iznos FROM dbo.KnjEvidPotrIObvFBiH") + where);
    QSet<qint64> kinds;
    for (int r = 0; r < evid.rowCount(); ++r) {
        const qint64 vrsta = evid.integer(r, 1);
        kinds.insert(vrsta);
        ASSERT_TRUE(entries.contains(evid.integer(r, 0))) << "RBrojKPR " << evid.integer(r, 0);
        const auto [linkedKind, amount] = entries.value(evid.integer(r, 0));
        EXPECT_EQ(linkedKind, vrsta < 20 ? 12 : 16);
        EXPECT_EQ(amount, evid.money(r, 2));
    }
    EXPECT_EQ(kinds, (QSet<qint64> { 11, 12, 21, 22 }));
    const ResultSet shown = read(db(), browserSql(*findBook(Knjiga::EvidPotObvFBiH), s_year));
    EXPECT_EQ(shown.rowCount(), evid.rowCount());
}

TEST_F(DemoData, VatIsTheSeventeenPercentContainedInTheAmount)
{
    const ResultSet rs = read(db(), QStringLiteral("SELECT Vrsta,Iznos,IznosPDV FROM dbo.KnjPrihRashFBiH"));
    QSet<qint64> kinds;
    for (int r = 0; r < rs.rowCount(); ++r) {
        const qint64 vrsta = rs.integer(r, 0);
        kinds.insert(vrsta);
        const Money iznos = rs.money(r, 1);
        const Money expected = (vrsta == 17 || vrsta == 18) ? Money() : (iznos * 17).dividedBy(117.0);
        EXPECT_EQ(rs.money(r, 2), expected) << "kind " << vrsta << " amount " << iznos.toString().toStdString();
        EXPECT_EQ(iznos.rounded(2), iznos) << "amounts have cents, no more";
    }
    EXPECT_EQ(kinds, (QSet<qint64> { 11, 12, 13, 16, 17, 18, 19 }));
}

TEST_F(DemoData, EveryEntryKindOfTheOtherBooksOccurs)
{
    const auto kindsIn = [this](const QString& sql) {
        QSet<qint64> kinds;
        const ResultSet rs = read(db(), sql);
        for (int r = 0; r < rs.rowCount(); ++r)
            kinds.insert(rs.integer(r, 0));
        return kinds;
    };
    EXPECT_EQ(kindsIn(QStringLiteral("SELECT Vrsta FROM dbo.KnjPrihRashDB")),
        (QSet<qint64> { 5, 6, 7, 9, 10, 11, 12, 13, 14, 15, 16 }));
    EXPECT_EQ(kindsIn(QStringLiteral("SELECT Vrsta FROM dbo.KnjPrihodaRS")), (QSet<qint64> { 4, 5, 6, 7, 8 }));
    EXPECT_EQ(
        kindsIn(QStringLiteral("SELECT Vrsta FROM dbo.KnjRashodaRS")), (QSet<qint64> { 4, 5, 6, 7, 8, 9, 10, 13 }));
}

// The asset list of the year before gives the opening state something to carry.
TEST_F(DemoData, AssetListsOfThisAndThePreviousYear)
{
    for (int year : { s_year - 1, s_year }) {
        const ResultSet rs = read(db(), browserSql(*findBook(Knjiga::PopListaFBiH), year));
        ASSERT_GE(rs.rowCount(), 3) << year;
        const int nab = rs.indexOf(QStringLiteral("NabVrijednost"));
        const int knjig = rs.indexOf(QStringLiteral("KnjigVrijednost"));
        const int vijek = rs.indexOf(QStringLiteral("VijekTr"));
        for (int r = 0; r < rs.rowCount(); ++r) {
            EXPECT_GT(rs.money(r, knjig), Money()) << year;
            EXPECT_LE(rs.money(r, knjig), rs.money(r, nab));
            EXPECT_GE(rs.integer(r, vijek), 2);
            EXPECT_LE(rs.integer(r, vijek), 10);
        }
    }
}

TEST_F(DemoData, TheFollowingYearStartsItsOwnNumbering)
{
    for (const BookKind* book : { findBook(Knjiga::PrihRashFBiH), findBook(Knjiga::PrometaFBiH) }) {
        const ResultSet rs = read(db(), browserSql(*book, s_year + 1));
        ASSERT_GE(rs.rowCount(), 1) << book->code;
        for (int r = 0; r < rs.rowCount(); ++r)
            EXPECT_EQ(rs.integer(r, 0), r + 1);
    }
}

TEST_F(DemoData, CompanyAndShopsAreKnown)
{
    const ResultSet config = read(db(), QStringLiteral("SELECT NazivFirme FROM dbo.CONFIG WHERE BROJPODUZECA=1"));
    ASSERT_EQ(config.rowCount(), 1);
    EXPECT_EQ(config.text(0, 0).trimmed(), demo::nazivFirme());
    const ResultSet shops = read(db(),
        QStringLiteral("SELECT ImeKomit1 FROM dbo.Komitent WHERE SifKomit IN (%1,%2) "
                       "ORDER BY SifKomit")
            .arg(demo::Maloprodaja1)
            .arg(demo::Maloprodaja2));
    ASSERT_EQ(shops.rowCount(), 2);
    EXPECT_TRUE(shops.text(0, 0).startsWith(QStringLiteral("Maloprodaja 1")));
}

// The texts fit the columns as the schema declares them, so the same rows can be
// written to SQL Server.
TEST_F(DemoData, TextsFitTheirColumns)
{
    const QStringList tables = { QStringLiteral("dbo.KnjPrihRashFBiH"), QStringLiteral("dbo.KnjPrihRashDB"),
        QStringLiteral("dbo.KnjPrihodaRS"), QStringLiteral("dbo.KnjRashodaRS"), QStringLiteral("dbo.KnjPrometaFBiH"),
        QStringLiteral("dbo.KnjEvidPotrIObvFBiH"), QStringLiteral("dbo.KnjPopListaDugImovFBiH"),
        QStringLiteral("dbo.TrgKnjUsluga"), QStringLiteral("dbo.TrgKnjKomisiona"), QStringLiteral("dbo.Komitent"),
        QStringLiteral("dbo.CONFIG") };
    for (const QString& table : tables) {
        const ResultSet rs = read(db(), QStringLiteral("SELECT * FROM ") + table);
        for (int c = 0; c < rs.fieldCount(); ++c) {
            const int width = textColumnWidth(table, rs.field(c).name);
            if (width <= 0)
                continue;
            for (int r = 0; r < rs.rowCount(); ++r) {
                EXPECT_LE(rs.text(r, c).size(), width) << table.toStdString() << "." << rs.field(c).name.toStdString()
                                                       << ": " << rs.text(r, c).toStdString();
            }
        }
    }
}

TEST_F(DemoData, TheSameYearGivesTheSameRows)
{
    QString error;
    auto other = newDatabase(&error);
    ASSERT_TRUE(other) << error.toStdString();
    ASSERT_TRUE(fillDemoData(*other, s_year, &error)) << error.toStdString();
    const QString sql = QStringLiteral("SELECT RBroj,Datum,Isprava,Opis,Vrsta,Iznos,IznosPDV FROM dbo.KnjPrihRashFBiH "
                                       "ORDER BY GodinaKnj,RBroj");
    const ResultSet a = read(db(), sql);
    const ResultSet b = read(*other, sql);
    ASSERT_EQ(a.rowCount(), b.rowCount());
    for (int r = 0; r < a.rowCount(); ++r)
        for (int c = 0; c < a.fieldCount(); ++c)
            ASSERT_EQ(a.text(r, c), b.text(r, c)) << "row " << r << " column " << c;
}

// One failing table leaves nothing behind: the company is not half made.
TEST(DemoDataFailure, LeavesNothingWhenATableIsMissing)
{
    QString error;
    auto db = newDatabase(&error);
    if (!db)
        GTEST_SKIP() << "embedded database not available: " << error.toStdString();
    ASSERT_TRUE(db->execute(QStringLiteral("DROP TABLE dbo.TrgKnjKomisiona"))) << db->errorDescription().toStdString();
    EXPECT_FALSE(fillDemoData(*db, 2024, &error));
    EXPECT_FALSE(error.isEmpty());
    ResultSet rs;
    ASSERT_TRUE(db->open(QStringLiteral("SELECT COUNT(*) AS N FROM dbo.CONFIG"), rs));
    EXPECT_EQ(rs.integer(0, 0), 0);
    ASSERT_TRUE(db->open(QStringLiteral("SELECT COUNT(*) AS N FROM dbo.KnjPrihRashFBiH"), rs));
    EXPECT_EQ(rs.integer(0, 0), 0);
}
