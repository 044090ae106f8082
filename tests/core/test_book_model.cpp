#include "books/BookKind.h"
#include "browser/BookModel.h"

#include <QAbstractItemModelTester>
#include <QLocale>

#include <gtest/gtest.h>

using namespace knjige;

namespace {

Money money(const char* text) { return Money::parse(QString::fromLatin1(text)).value(); }

// The fields of the FBiH income and expense book's SELECT, typed as the server types
// them.
ResultSet incomeExpenseRows()
{
    ResultSet rs({{"RBroj", FieldType::Integer},     {"GodinaKnj", FieldType::Integer},
                  {"Datum", FieldType::Date},        {"Isprava", FieldType::Text},
                  {"Opis", FieldType::Text},         {"Vrsta", FieldType::Integer},
                  {"NazivVrste", FieldType::Text},   {"Prihodi", FieldType::Currency},
                  {"PDVPrihodi", FieldType::Currency}, {"Rashodi", FieldType::Currency},
                  {"PDVRashodi", FieldType::Currency}, {"I", FieldType::Text}});
    struct Row {
        int rbroj;
        QDate datum;
        const char* opis;
        int vrsta;
        const char* prihodi;
        const char* pdvPrihodi;
        const char* rashodi;
        const char* pdvRashodi;
    };
    const Row rows[] = {
        {1, {2016, 1, 4}, "Pazar", 11, "1170.00", "170.00", "0", "0"},
        {2, {2016, 1, 9}, "banka", 12, "2340.50", "340.07", "0", "0"},
        {3, {2016, 2, 1}, "Nabavka", 16, "0", "0", "585.00", "85.00"},
        {4, {2016, 2, 1}, "Amortizacija", 19, "0", "0", "1000000.25", "0"},
    };
    for (const Row& r : rows) {
        rs.appendRow();
        rs.setInteger(0, r.rbroj);
        rs.setInteger(1, 2016);
        rs.setDate(2, r.datum);
        rs.setText(3, QStringLiteral("D-%1").arg(r.rbroj));
        rs.setText(4, QString::fromLatin1(r.opis));
        rs.setInteger(5, r.vrsta);
        rs.setText(6, entryKindText(96, r.vrsta));
        rs.setMoney(7, money(r.prihodi));
        rs.setMoney(8, money(r.pdvPrihodi));
        rs.setMoney(9, money(r.rashodi));
        rs.setMoney(10, money(r.pdvRashodi));
        rs.setText(11, QString());
    }
    return rs;
}

ResultSet assetRows()
{
    ResultSet rs({{"RBroj", FieldType::Integer},        {"Naziv", FieldType::Text},
                  {"Datum", FieldType::Date},           {"Isprava", FieldType::Text},
                  {"NabVrijednost", FieldType::Currency}, {"KnjigVrijednost", FieldType::Currency},
                  {"VijekTr", FieldType::Integer},      {"StopaAm", FieldType::Currency},
                  {"IznosAmort", FieldType::Decimal},   {"NovaKnjigVrij", FieldType::Decimal},
                  {"I", FieldType::Text}});
    const int vijek[] = {5, 8, 4};
    for (int i = 0; i < 3; ++i) {
        rs.appendRow();
        rs.setInteger(0, i + 1);
        rs.setText(1, QStringLiteral("Sredstvo %1").arg(i + 1));
        rs.setDate(2, QDate(2016, 1 + i, 1));
        rs.setMoney(4, Money::fromWhole(1000));
        rs.setMoney(5, Money::fromWhole(800));
        rs.setInteger(6, vijek[i]);
        rs.setMoney(7, Money::fromWhole(100).dividedBy(vijek[i]));
        rs.setReal(8, 200.0 - i);
        rs.setReal(9, 600.0 + i);
    }
    return rs;
}

QString rowHeader(const BookModel& m, int row) { return m.headerData(row, Qt::Vertical).toString(); }

} // namespace

TEST(BookTotals, EachKindSumsItsOwnColumnsWithItsOwnBoldCells)
{
    auto layout = [](int kind) {
        QStringList out;
        for (const TotalsColumn& c : totalsColumns(kind))
            out << QString::number(c.gridColumn) + (c.bold ? QStringLiteral("b") : QString());
        return out.join(u' ');
    };
    EXPECT_EQ(layout(96), QStringLiteral("8b 9 10 11"));
    EXPECT_EQ(layout(109), QStringLiteral("8b 9 10 11"));
    EXPECT_EQ(layout(97), QStringLiteral("8b 9b 10b 11b"));
    EXPECT_EQ(layout(102), QStringLiteral("8b 9b 10b 11b"));
    EXPECT_EQ(layout(98), QStringLiteral("6b 7b"));
    EXPECT_EQ(layout(106), QStringLiteral("7b 8b"));
    EXPECT_EQ(layout(99), QStringLiteral("5b 6"));
    EXPECT_EQ(layout(100), QStringLiteral("5b 6"));
    EXPECT_EQ(layout(101), QStringLiteral("5b 6 8 9 10"));
    EXPECT_EQ(layout(105), QStringLiteral("5b 6 8 9 10"));
    EXPECT_EQ(layout(125), QStringLiteral("5b"));
    EXPECT_EQ(layout(126), QStringLiteral("5b 6b"));
    EXPECT_TRUE(totalsColumns(103).isEmpty());
}

TEST(BookModel, LaysTheTotalsRowAboveAndBelowTheEntries)
{
    BookModel m;
    m.setLocale(QLocale::c());
    m.setBookKind(96);
    m.setResultSet(incomeExpenseRows());
    ASSERT_EQ(m.rowCount(), 6);
    EXPECT_EQ(m.columnCount(), 12);
    for (int row : {0, 5}) {
        EXPECT_TRUE(m.isTotalsRow(row));
        EXPECT_EQ(m.dataRow(row), -1);
        EXPECT_EQ(rowHeader(m, row), QStringLiteral("Ukupno:"));
        EXPECT_TRUE(m.headerData(row, Qt::Vertical, BookModel::BoldRole).toBool());
        // Grid columns 8 to 11 are model columns 7 to 10.
        EXPECT_EQ(m.displayText(row, 7), QStringLiteral("3,510.50"));
        EXPECT_EQ(m.displayText(row, 8), QStringLiteral("510.07"));
        EXPECT_EQ(m.displayText(row, 9), QStringLiteral("1,000,585.25"));
        EXPECT_EQ(m.displayText(row, 10), QStringLiteral("85.00"));
        EXPECT_TRUE(m.data(m.index(row, 7), BookModel::BoldRole).toBool());
        EXPECT_FALSE(m.data(m.index(row, 8), BookModel::BoldRole).toBool());
        EXPECT_FALSE(m.data(m.index(row, 10), BookModel::BoldRole).toBool());
        EXPECT_TRUE(m.data(m.index(row, 3), BookModel::TotalsRowRole).toBool());
        EXPECT_EQ(m.displayText(row, 0), QString());   // not summed
        EXPECT_EQ(m.displayText(row, 4), QString());
    }
    EXPECT_EQ(m.total(8), money("3510.50"));
    EXPECT_FALSE(m.total(5).has_value());
    // Entries are rows 1 to 4 and never look like totals.
    EXPECT_EQ(m.dataRow(1), 0);
    EXPECT_EQ(m.dataRow(4), 3);
    EXPECT_EQ(m.modelRow(3), 4);
    EXPECT_EQ(rowHeader(m, 2), QString());
    EXPECT_FALSE(m.data(m.index(2, 7), BookModel::BoldRole).toBool());
    EXPECT_EQ(m.displayText(1, 4), QStringLiteral("Pazar"));
}

TEST(BookModel, AssetListTotalsIncludeTheRateColumn)
{
    BookModel m;
    m.setLocale(QLocale::c());
    m.setBookKind(105);
    m.setResultSet(assetRows());
    ASSERT_EQ(m.rowCount(), 5);
    // 100/5 + 100/8 + 100/4 = 20 + 12.5 + 25
    EXPECT_EQ(m.total(8), money("57.5"));
    EXPECT_EQ(m.displayText(0, 7), QStringLiteral("57.50"));
    EXPECT_EQ(m.displayText(4, 4), QStringLiteral("3,000.00"));
    EXPECT_EQ(m.displayText(4, 5), QStringLiteral("2,400.00"));
    EXPECT_EQ(m.displayText(4, 8), QStringLiteral("597.00"));
    EXPECT_EQ(m.displayText(4, 9), QStringLiteral("1,803.00"));
    EXPECT_EQ(m.displayText(4, 6), QString());   // VijekTr is not summed
    EXPECT_TRUE(m.data(m.index(0, 4), BookModel::BoldRole).toBool());
    EXPECT_FALSE(m.data(m.index(0, 7), BookModel::BoldRole).toBool());
}

TEST(BookModel, NoTotalsRowsForAnEmptyBookOrAKindWithoutTotals)
{
    BookModel m;
    m.setBookKind(96);
    ResultSet empty = incomeExpenseRows();
    empty = ResultSet(empty.fields());
    m.setResultSet(empty);
    EXPECT_EQ(m.rowCount(), 0);
    EXPECT_EQ(m.columnCount(), 12);
    EXPECT_FALSE(m.hasTotalsRows());

    m.setBookKind(0);
    m.setResultSet(incomeExpenseRows());
    EXPECT_EQ(m.rowCount(), 4);
    EXPECT_FALSE(m.isTotalsRow(0));
    EXPECT_EQ(m.dataRow(0), 0);
}

TEST(BookModel, FormatsEachFieldTypeWithTheWorkstationSeparators)
{
    ResultSet rs({{"RBroj", FieldType::Integer}, {"Iznos", FieldType::Currency}, {"Datum", FieldType::Date},
                  {"Opis", FieldType::Text}, {"Kol", FieldType::Decimal}, {"Ok", FieldType::Boolean}});
    rs.appendRow();
    rs.setInteger(0, 1234567);
    rs.setMoney(1, money("-1234567.125"));
    rs.setDate(2, QDate(2016, 3, 15));
    rs.setText(3, QStringLiteral("  tekst"));
    rs.setReal(4, 12.5);
    rs.setInteger(5, 1);
    rs.appendRow();
    rs.setInteger(0, 7);
    rs.setMoney(1, Money::fromWhole(5));
    rs.setInteger(5, 0);

    BookModel m;
    m.setBookKind(0);
    m.setLocale(QLocale::c());
    m.setResultSet(rs);
    EXPECT_EQ(m.displayText(0, 0), QStringLiteral("1,234,567"));
    EXPECT_EQ(m.displayText(0, 1), QStringLiteral("-1,234,567.13")) << "half away from zero, as ROUND does";
    EXPECT_EQ(m.displayText(1, 1), QStringLiteral("5.00"));
    EXPECT_EQ(m.displayText(0, 2), QStringLiteral("15.03.16"));
    EXPECT_EQ(m.displayText(0, 3), QStringLiteral("  tekst"));
    EXPECT_EQ(m.displayText(0, 4), QStringLiteral("12.50"));
    EXPECT_EQ(m.displayText(1, 2), QString());   // NULL date
    EXPECT_EQ(m.displayText(1, 0), QStringLiteral("7"));

    m.setLocale(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(m.displayText(0, 0), QStringLiteral("1.234.567"));
    EXPECT_EQ(m.displayText(0, 1), QStringLiteral("-1.234.567,13"));

    const auto align = [&](int c) { return m.data(m.index(0, c), Qt::TextAlignmentRole).value<Qt::Alignment>(); };
    EXPECT_EQ(align(0), Qt::AlignRight | Qt::AlignVCenter);
    EXPECT_EQ(align(1), Qt::AlignRight | Qt::AlignVCenter);
    EXPECT_EQ(align(4), Qt::AlignRight | Qt::AlignVCenter);
    EXPECT_EQ(align(2), Qt::AlignLeft | Qt::AlignVCenter);
    EXPECT_EQ(align(3), Qt::AlignLeft | Qt::AlignVCenter);
    EXPECT_EQ(align(5), Qt::Alignment(Qt::AlignCenter));

    EXPECT_EQ(m.data(m.index(0, 5), Qt::CheckStateRole).toInt(), int(Qt::Checked));
    EXPECT_EQ(m.data(m.index(1, 5), Qt::CheckStateRole).toInt(), int(Qt::Unchecked));
    EXPECT_EQ(m.displayText(0, 5), QString());
    EXPECT_FALSE(m.data(m.index(0, 0), Qt::CheckStateRole).isValid());

    EXPECT_EQ(m.data(m.index(0, 1), BookModel::FormatRole).toString(), QStringLiteral("#,##0.00"));
    EXPECT_EQ(m.data(m.index(0, 0), BookModel::FormatRole).toString(), QStringLiteral("#,##0"));
    EXPECT_EQ(m.data(m.index(0, 2), BookModel::FormatRole).toString(), QStringLiteral("dd.MM.yy"));
}

TEST(BookModel, HeaderClicksToggleAscendingDescendingAndTheSortSurvivesAReload)
{
    BookModel m;
    m.setBookKind(96);
    m.setResultSet(incomeExpenseRows());
    auto opisOrder = [&] {
        QStringList out;
        for (int r = 1; r <= 4; ++r)
            out << m.displayText(r, 4);
        return out.join(u',');
    };
    // Grid column 5 is field 4, Opis.
    EXPECT_EQ(m.headerSort(5), QStringLiteral("[Opis] ASC"));
    EXPECT_EQ(opisOrder(), QStringLiteral("Amortizacija,banka,Nabavka,Pazar"));   // letter case ignored
    EXPECT_EQ(m.sortOrderOf(5), Qt::AscendingOrder);
    EXPECT_EQ(m.headerSort(5), QStringLiteral("[Opis] DESC"));
    EXPECT_EQ(opisOrder(), QStringLiteral("Pazar,Nabavka,banka,Amortizacija"));
    EXPECT_EQ(m.sortOrderOf(5), Qt::DescendingOrder);
    EXPECT_FALSE(m.sortOrderOf(3).has_value());
    EXPECT_EQ(m.headerSort(5), QStringLiteral("[Opis] ASC"));
    EXPECT_EQ(opisOrder(), QStringLiteral("Amortizacija,banka,Nabavka,Pazar"));
    // Another column starts ascending.
    m.headerSort(5);
    EXPECT_EQ(m.headerSort(3), QStringLiteral("[Datum] ASC"));

    // Equal dates keep the query's order, whichever sorts came before.
    EXPECT_EQ(opisOrder(), QStringLiteral("Pazar,banka,Nabavka,Amortizacija"));
    EXPECT_EQ(m.headerSort(3), QStringLiteral("[Datum] DESC"));
    EXPECT_EQ(opisOrder(), QStringLiteral("Nabavka,Amortizacija,banka,Pazar"));

    // A fresh query keeps the expression; the totals stay where they are.
    m.setResultSet(incomeExpenseRows());
    EXPECT_EQ(m.sortExpression(), QStringLiteral("[Datum] DESC"));
    EXPECT_EQ(opisOrder(), QStringLiteral("Nabavka,Amortizacija,banka,Pazar"));
    EXPECT_EQ(m.displayText(0, 7), m.displayText(5, 7));
    EXPECT_EQ(m.total(10), money("1000585.25"));

    // Amounts sort as numbers, not as texts.
    m.headerSort(10);
    EXPECT_EQ(m.displayText(1, 9), QStringLiteral("0.00"));
    EXPECT_EQ(m.displayText(3, 9), QStringLiteral("585.00"));
    EXPECT_EQ(m.displayText(4, 9), QStringLiteral("1,000,000.25"));
}

TEST(BookModel, NullsSortFirstAscendingAndLastDescending)
{
    ResultSet rs({{"RBroj", FieldType::Integer}, {"Datum", FieldType::Date}});
    const QDate dates[] = {QDate(2016, 5, 1), QDate(), QDate(2016, 1, 1)};
    for (int i = 0; i < 3; ++i) {
        rs.appendRow();
        rs.setInteger(0, i + 1);
        rs.setDate(1, dates[i]);
    }
    BookModel m;
    m.setResultSet(rs);
    m.setSortExpression(QStringLiteral("[Datum] ASC"));
    EXPECT_EQ(m.resultSet().integer(0, 0), 2);
    EXPECT_EQ(m.resultSet().integer(1, 0), 3);
    m.setSortExpression(QStringLiteral("[Datum] DESC"));
    EXPECT_EQ(m.resultSet().integer(0, 0), 1);
    EXPECT_EQ(m.resultSet().integer(2, 0), 2);
    // A field the rows do not have: the query's order.
    m.setSortExpression(QStringLiteral("[Nema] ASC"));
    EXPECT_EQ(m.resultSet().integer(0, 0), 1);
    EXPECT_EQ(m.resultSet().integer(2, 0), 3);
}

TEST(BookModel, FindsTheEntryToReturnToAndPlacesTheCurrentRowAfterAReload)
{
    BookModel m;
    m.setBookKind(96);
    m.setResultSet(incomeExpenseRows());
    m.headerSort(5);
    EXPECT_EQ(m.findRBroj(1), 3);   // "Pazar" sorts last
    EXPECT_EQ(m.findRBroj(99), -1);

    EXPECT_EQ(BookModel::rowAfterReload(-1, 4), 0);
    EXPECT_EQ(BookModel::rowAfterReload(2, 4), 2);
    EXPECT_EQ(BookModel::rowAfterReload(4, 4), 3);    // the last entry was deleted
    EXPECT_EQ(BookModel::rowAfterReload(10, 1), 0);
    EXPECT_EQ(BookModel::rowAfterReload(0, 0), -1);
}

TEST(BookModel, PassesTheItemModelTester)
{
    BookModel m;
    QAbstractItemModelTester tester(&m, QAbstractItemModelTester::FailureReportingMode::Fatal);
    m.setBookKind(96);
    m.setResultSet(incomeExpenseRows());
    m.headerSort(5);
    m.headerSort(5);
    m.setResultSet(ResultSet(incomeExpenseRows().fields()));
    m.setBookKind(105);
    m.setResultSet(assetRows());
    m.setLocale(QLocale(QLocale::Bosnian));
    m.sort(1, Qt::DescendingOrder);
    EXPECT_EQ(m.sortExpression(), QStringLiteral("[Naziv] DESC"));
    EXPECT_EQ(m.rowCount(), 5);
}

TEST(BookModel, TextsSortInTheBosnianAlphabet)
{
    // Entered out of order, one in lower case: C < Č < Ć < D < Đ < S < Š < Z < Ž, and
    // letter case does not move a word out of its letter.
    const char* entered[] = {"Žito", "Sol", "šećer", "Zebra", "Dalmacija", "Ćevapi", "Đurđa", "Cement", "Čelik"};
    ResultSet rs({{"RBroj", FieldType::Integer}, {"Opis", FieldType::Text}});
    int rBroj = 0;
    for (const char* opis : entered) {
        rs.appendRow();
        rs.setInteger(0, ++rBroj);
        rs.setText(1, QString::fromUtf8(opis));
    }
    BookModel m;
    m.setResultSet(rs);
    auto order = [&m] {
        QStringList out;
        for (int r = 0; r < m.entryCount(); ++r)
            out << m.resultSet().text(r, 1);
        return out.join(u',');
    };
    m.headerSort(2);
    EXPECT_EQ(order(), QStringLiteral("Cement,Čelik,Ćevapi,Dalmacija,Đurđa,Sol,šećer,Zebra,Žito"));
    m.headerSort(2);
    EXPECT_EQ(order(), QStringLiteral("Žito,Zebra,šećer,Sol,Đurđa,Dalmacija,Ćevapi,Čelik,Cement"));
}
