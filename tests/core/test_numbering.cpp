// The next ordinal number of every book (DefVarijabli::ZadnjiRBroj) on the embedded
// database: both SQL forms, the key columns it must respect, unknown kinds.
#include "books/BookKind.h"
#include "session/Session.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

using namespace knjige;
using knjige::test::TestDatabase;

namespace {

void row(TestDatabase& t, const BookKind& book, int company, int year, int rbroj, int prod = 0)
{
    RowChange::Values v { { "BrojPoduzeca", company }, { "GodinaKnj", year }, { "RBroj", rbroj },
                          { "Datum", QDate(year, 1, 1) } };
    if (isTradeBook(book.code))
        v.push_back({ "BrojProd", prod });
    t.insert(book.table, v);
}

} // namespace

TEST(Numbering, EmptyBookGivesZeroInBothForms)
{
    TestDatabase t;
    for (const BookKind& book : allBooks()) {
        EXPECT_EQ(DefVarijabli::ZadnjiRBroj(book.code, 3), 0) << book.code;
        const QString sql = DefVarijabli::ZadnjiRBrojSql(book.code, 1, 2016, 3);
        const ResultSet rs = t.query(sql);
        ASSERT_EQ(rs.rowCount(), 1);
        EXPECT_EQ(rs.field(0).type, FieldType::Integer);
        // The ISNULL form gives 0, the plain MAX form NULL: the routine treats both as 0.
        EXPECT_EQ(!rs.isNull(0, 0), sql.contains(QStringLiteral("ISNULL"))) << book.code;
    }
}

TEST(Numbering, HighestNumberOfTheCompanyYearAndSalesPointOnly)
{
    TestDatabase t;
    for (const BookKind& book : allBooks()) {
        if (t.count(book.table) > 0)
            continue;   // shared tables are filled once
        row(t, book, 1, 2016, 4, 3);
        row(t, book, 1, 2016, 9, 3);
        row(t, book, 2, 2016, 50, 3);   // other company
        row(t, book, 1, 2015, 60, 3);   // other year
        if (isTradeBook(book.code))
            row(t, book, 1, 2016, 70, 8);   // other sales point
    }
    for (const BookKind& book : allBooks())
        EXPECT_EQ(DefVarijabli::ZadnjiRBroj(book.code, 3), 9) << book.code;
}

TEST(Numbering, UnknownKindGivesZeroWithoutQuerying)
{
    TestDatabase t;
    EXPECT_TRUE(DefVarijabli::ZadnjiRBrojSql(103, 1, 2016).isEmpty());
    EXPECT_EQ(DefVarijabli::ZadnjiRBroj(103), 0);
    EXPECT_EQ(DefVarijabli::ZadnjiRBroj(0), 0);
}
