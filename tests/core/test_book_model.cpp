// The browser's grid model and rules: totals rows, formats, sorting, finding rows, the
// menu entries per kind and level, window geometry, and the grid as a workbook.
#include "ResultText.h"
#include "books/BookKind.h"
#include "browser/BookModel.h"
#include "browser/BrowserRules.h"
#include "browser/TextOrder.h"
#include "output/GridWorkbook.h"
#include "support/Sandbox.h"

#include <QAbstractItemModelTester>
#include <QFile>
#include <QLocale>
#include <QProcess>
#include <QStandardPaths>
#include <gtest/gtest.h>

using namespace knjige;

namespace
{

Money money(const char* text)
{
    return Money::parse(QString::fromLatin1(text)).value();
}

// The fields of the FBiH income and expense book's SELECT, typed as the server types them.
db::ResultSet incomeExpenseRows()
{
    const auto row = [](int rbroj, QDate datum, const char* opis, int vrsta, const QVariantList& amounts) {
        return QVariantList { rbroj, 2016, datum, QStringLiteral("D-%1").arg(rbroj), opis, vrsta,
            books::entryKindText(96, vrsta) }
        + amounts + QVariantList { QString() };
    };
    return test::resultSet({ { "RBroj", db::FieldType::Integer }, { "GodinaKnj", db::FieldType::Integer },
                               { "Datum", db::FieldType::Date }, { "Isprava", db::FieldType::Text },
                               { "Opis", db::FieldType::Text }, { "Vrsta", db::FieldType::Integer },
                               { "NazivVrste", db::FieldType::Text }, { "Prihodi", db::FieldType::Currency },
                               { "PDVPrihodi", db::FieldType::Currency }, { "Rashodi", db::FieldType::Currency },
                               { "PDVRashodi", db::FieldType::Currency }, { "I", db::FieldType::Text } },
        { row(1, { 2016, 1, 4 }, "Pazar", 11, { "1170.00", "170.00", "0", "0" }),
            row(2, { 2016, 1, 9 }, "banka", 12, { "2340.50", "340.07", "0", "0" }),
            row(3, { 2016, 2, 1 }, "Nabavka", 16, { "0", "0", "585.00", "85.00" }),
            row(4, { 2016, 2, 1 }, "Amortizacija", 19, { "0", "0", "1000000.25", "0" }) });
}

db::ResultSet assetRows()
{
    QList<QVariantList> rows;
    for (int i = 1; int vijek : { 5, 8, 4 }) {
        rows << QVariantList { i, QStringLiteral("Sredstvo %1").arg(i), QDate(2016, i, 1), {}, "1000", "800", vijek,
            QVariant::fromValue(Money::fromWhole(100).dividedBy(vijek)), 201.0 - i, 599.0 + i };
        ++i;
    }
    return test::resultSet(
        { { "RBroj", db::FieldType::Integer }, { "Naziv", db::FieldType::Text }, { "Datum", db::FieldType::Date },
            { "Isprava", db::FieldType::Text }, { "NabVrijednost", db::FieldType::Currency },
            { "KnjigVrijednost", db::FieldType::Currency }, { "VijekTr", db::FieldType::Integer },
            { "StopaAm", db::FieldType::Currency }, { "IznosAmort", db::FieldType::Decimal },
            { "NovaKnjigVrij", db::FieldType::Decimal }, { "I", db::FieldType::Text } },
        rows);
}

// One grid row as the person sees it: the row header, then every cell, each with a *
// when it is bold.
std::string shown(const browser::BookModel& m, int row)
{
    const auto bold = [](const QVariant& v) { return v.toBool() ? QStringLiteral("*") : QString(); };
    QStringList out { m.headerData(row, Qt::Vertical).toString()
        + bold(m.headerData(row, Qt::Vertical, browser::BookModel::BoldRole)) };
    for (int c = 0; c < m.columnCount(); ++c)
        out << m.displayText(row, c) + bold(m.data(m.index(row, c), browser::BookModel::BoldRole));
    return out.join(u'|').toStdString();
}

// One column of the entries, top to bottom.
std::string column(const browser::BookModel& m, int c)
{
    QStringList out;
    for (int r = 0; r < m.rowCount(); ++r)
        if (!m.isTotalsRow(r))
            out << m.displayText(r, c);
    return out.join(u',').toStdString();
}

} // namespace

// Which columns are summed is checked against the printed sums (PrintTest); here, that
// the model bolds exactly the catalogue's bold sums, the first always, and no others.
TEST(BookTotals, EveryBookBoldsItsFirstSumAndTheCataloguesOthers)
{
    EXPECT_TRUE(browser::totalsColumns(103).isEmpty());
    for (const books::BookKind& book : books::allBooks()) {
        const QVector<books::TotalsColumn> sums = browser::totalsColumns(book.code);
        ASSERT_FALSE(sums.isEmpty()) << book.code;
        EXPECT_TRUE(sums[0].bold) << book.code;
        QVector<db::Field> fields;
        for (int f = 0; f < sums.last().gridColumn; ++f)
            fields.append({ QString::number(f), db::FieldType::Currency });
        db::ResultSet rs(fields);
        rs.appendRow();
        for (int f = 0; f < rs.fieldCount(); ++f)
            rs.setMoney(f, Money::fromWhole(1));
        browser::BookModel m;
        m.setBookKind(book.code);
        m.setResultSet(rs);
        ASSERT_TRUE(m.isTotalsRow(0)) << book.code;
        for (int c = 1; c < m.columnCount(); ++c) {
            bool bold = false;
            for (const books::TotalsColumn& s : sums)
                bold = bold || (s.gridColumn == c + 1 && s.bold);
            EXPECT_EQ(m.data(m.index(0, c), browser::BookModel::BoldRole).toBool(), bold) << book.code << " " << c;
        }
    }
}

TEST(BookModel, LaysTheTotalsRowsAndHeaderClicksToggleTheSortWhichSurvivesAReload)
{
    browser::BookModel m;
    QAbstractItemModelTester tester(&m, QAbstractItemModelTester::FailureReportingMode::Fatal);
    m.setLocale(QLocale::c()); // a locale given explicitly is taken as it is
    m.setBookKind(96);
    m.setResultSet(incomeExpenseRows());
    ASSERT_EQ(m.rowCount(), 6);
    EXPECT_EQ(m.columnCount(), 12);
    // Grid columns 8 to 11 are model columns 7 to 10; only the first is bold.
    for (int row : { 0, 5 }) {
        EXPECT_TRUE(m.isTotalsRow(row));
        EXPECT_EQ(m.dataRow(row), -1);
        EXPECT_EQ(shown(m, row), "Ukupno:*||||||||3,510.50*|510.07|1,000,585.25|85.00|");
        EXPECT_TRUE(m.data(m.index(row, 3), browser::BookModel::TotalsRowRole).toBool());
    }
    EXPECT_EQ(m.total(8), money("3510.50"));
    EXPECT_FALSE(m.total(5).has_value());
    // Entries are rows 1 to 4 and never look like totals.
    EXPECT_EQ(m.dataRow(1), 0);
    EXPECT_EQ(m.dataRow(4), 3);
    EXPECT_EQ(m.modelRow(3), 4);
    EXPECT_EQ(shown(m, 1), "|1|2,016|04.01.16|D-1|Pazar|11|Prihod - Gotovina|1,170.00|170.00|0.00|0.00|");

    // The asset list sums the rate column too: 100/5 + 100/8 + 100/4 = 20 + 12.5 + 25.
    m.setBookKind(105);
    m.setResultSet(assetRows());
    ASSERT_EQ(m.rowCount(), 5);
    EXPECT_EQ(m.total(8), money("57.5"));
    EXPECT_EQ(shown(m, 4), "Ukupno:*|||||3,000.00*|2,400.00||57.50|597.00|1,803.00|");

    // No totals rows for an empty book or a kind without totals.
    m.setBookKind(96);
    m.setResultSet(db::ResultSet(incomeExpenseRows().fields()));
    EXPECT_EQ(m.rowCount(), 0);
    EXPECT_EQ(m.columnCount(), 12);
    m.setBookKind(0);
    m.setResultSet(incomeExpenseRows());
    EXPECT_EQ(m.rowCount(), 4);

    // Header clicks toggle the sort, which survives a reload and finds the row to return to.
    m.setBookKind(96);
    m.setResultSet(incomeExpenseRows());
    // Grid column 5 is field 4, Opis; letter case is ignored.
    const struct {
        int gridColumn;
        const char *expression, *opis;
    } clicks[] = {
        { 5, "[Opis] ASC", "Amortizacija,banka,Nabavka,Pazar" },
        { 5, "[Opis] DESC", "Pazar,Nabavka,banka,Amortizacija" },
        // Another column starts ascending; equal dates keep the order of before.
        { 3, "[Datum] ASC", "Pazar,banka,Nabavka,Amortizacija" },
        { 3, "[Datum] DESC", "Nabavka,Amortizacija,banka,Pazar" },
    };
    for (const auto& c : clicks) {
        EXPECT_EQ(m.headerSort(c.gridColumn).toStdString(), c.expression);
        EXPECT_EQ(column(m, 4), c.opis) << c.expression;
        EXPECT_EQ(m.sortOrderOf(c.gridColumn),
            QByteArray(c.expression).endsWith("ASC") ? Qt::AscendingOrder : Qt::DescendingOrder);
        EXPECT_FALSE(m.sortOrderOf(c.gridColumn == 5 ? 3 : 5).has_value());
    }
    // A fresh query keeps the expression; the totals stay where they are.
    m.setResultSet(incomeExpenseRows());
    EXPECT_EQ(m.sortExpression(), QStringLiteral("[Datum] DESC"));
    EXPECT_EQ(column(m, 4), "Nabavka,Amortizacija,banka,Pazar");
    EXPECT_EQ(shown(m, 0), shown(m, 5));
    EXPECT_EQ(m.total(10), money("1000585.25"));
    EXPECT_EQ(m.findRBroj(1), 3);
    EXPECT_EQ(m.findRBroj(99), -1);
    // Amounts sort as numbers, not as texts.
    m.headerSort(10);
    EXPECT_EQ(column(m, 9), "0.00,0.00,585.00,1,000,000.25");

    // Row, entries after the reload, the row then; at 4 of 4 the last entry was deleted.
    for (const auto& [row, count, after] :
        { std::array { -1, 4, 0 }, { 2, 4, 2 }, { 4, 4, 3 }, { 10, 1, 0 }, { 0, 0, -1 } })
        EXPECT_EQ(browser::BookModel::rowAfterReload(row, count), after) << row << " of " << count;

    m.setResultSet(db::ResultSet(incomeExpenseRows().fields()));
    m.setBookKind(105);
    m.setResultSet(assetRows());
    m.setLocale(QLocale(QLocale::Bosnian));
    m.sort(1, Qt::DescendingOrder);
    EXPECT_EQ(m.sortExpression(), QStringLiteral("[Naziv] DESC"));
    EXPECT_EQ(m.rowCount(), 5);
}

TEST(BookModel, FormatsEachFieldTypeWithTheWorkstationSeparators)
{
    // The second row has no date, text or quantity.
    const db::ResultSet rs = test::resultSet(
        { { "RBroj", db::FieldType::Integer }, { "Iznos", db::FieldType::Currency }, { "Datum", db::FieldType::Date },
            { "Opis", db::FieldType::Text }, { "Kol", db::FieldType::Decimal }, { "Ok", db::FieldType::Boolean } },
        { { 1234567, "-1234567.125", QDate(2016, 3, 15), "  tekst", 12.5, 1 }, { 7, "5", {}, {}, {}, 0 } });
    browser::BookModel m;
    m.setBookKind(0);
    m.setLocale(QLocale::c());
    m.setResultSet(rs);
    // Money half away from zero, as ROUND does; a check box shows no text.
    EXPECT_EQ(shown(m, 0), "|1,234,567|-1,234,567.13|15.03.16|  tekst|12.50|");
    EXPECT_EQ(shown(m, 1), "|7|5.00||||");
    m.setLocale(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(shown(m, 0), "|1.234.567|-1.234.567,13|15.03.16|  tekst|12,50|");

    const auto data = [&](int r, int c, int role) { return m.data(m.index(r, c), role); };
    const Qt::Alignment right = Qt::AlignRight | Qt::AlignVCenter, left = Qt::AlignLeft | Qt::AlignVCenter;
    const Qt::Alignment aligned[] = { right, right, left, left, right, Qt::AlignCenter };
    for (int c = 0; c < 6; ++c)
        EXPECT_EQ(data(0, c, Qt::TextAlignmentRole).value<Qt::Alignment>(), aligned[c]) << c;
    EXPECT_EQ(data(0, 5, Qt::CheckStateRole).toInt(), int(Qt::Checked));
    EXPECT_EQ(data(1, 5, Qt::CheckStateRole).toInt(), int(Qt::Unchecked));
    EXPECT_FALSE(data(0, 0, Qt::CheckStateRole).isValid());
    EXPECT_EQ(data(0, 1, browser::BookModel::FormatRole).toString(), QStringLiteral("#,##0.00"));
    EXPECT_EQ(data(0, 0, browser::BookModel::FormatRole).toString(), QStringLiteral("#,##0"));
    EXPECT_EQ(data(0, 2, browser::BookModel::FormatRole).toString(), QStringLiteral("dd.MM.yy"));
}

TEST(BookModel, NullsSortFirstAscendingAndTextsInTheBosnianAlphabet)
{
    db::ResultSet rs(
        { { "RBroj", db::FieldType::Integer }, { "Datum", db::FieldType::Date }, { "Opis", db::FieldType::Text } });
    // Entered out of order, one in lower case: C < Č < Ć < D < Đ < S < Š < Z < Ž, and
    // letter case does not move a word out of its letter.
    const char* entered[] = { "Žito", "Sol", "šećer", "Zebra", "Dalmacija", "Ćevapi", "Đurđa", "Cement", "Čelik" };
    const QDate dates[] = { QDate(2016, 5, 1), QDate(), QDate(2016, 1, 1) };
    for (int i = 0; i < 9; ++i) {
        rs.appendRow();
        rs.setInteger(0, i + 1);
        rs.setDate(1, i < 3 ? dates[i] : QDate(2016, 6, 1));
        rs.setText(2, QString::fromUtf8(entered[i]));
    }
    browser::BookModel m;
    m.setResultSet(rs);
    m.headerSort(3);
    EXPECT_EQ(column(m, 2), "Cement,Čelik,Ćevapi,Dalmacija,Đurđa,Sol,šećer,Zebra,Žito");
    m.headerSort(3);
    EXPECT_EQ(column(m, 2), "Žito,Zebra,šećer,Sol,Đurđa,Dalmacija,Ćevapi,Čelik,Cement");
    m.setSortExpression(QStringLiteral("[Datum] ASC"));
    EXPECT_EQ(column(m, 0), "2,3,1,4,5,6,7,8,9");
    m.setSortExpression(QStringLiteral("[Datum] DESC"));
    EXPECT_EQ(column(m, 0), "4,5,6,7,8,9,1,3,2");
    // A field the rows do not have: the query's order.
    m.setSortExpression(QStringLiteral("[Nema] ASC"));
    EXPECT_EQ(column(m, 0), "1,2,3,4,5,6,7,8,9");

    // Whichever keys a column gets, the alphabet's own or, for a letter outside it, the
    // collator's, the order is the collator's: two-letter letters in every case, digits,
    // signs, the empty text, beginnings longer than a key's first sixteen letters.
    const char* tricky[] = { "lja", "Lk", "LJUBAV", "ljubav", "nje", "Nk", "NJ", "džem", "dzz", "Džin", "đak", "dŽ",
        "a-b", "a b", "ab", "A1", "10", "9", "R-12", "R.12", "(x)", "", "stavka dugačka 000001", "Stavka dugačka 00000",
        "STAVKA DUGAČKA 000002", "šuma", "Sx", "ž", "Zz", "Ljiljan" };
    const QCollator collator = browser::textCollator();
    for (const bool foreign : { false, true }) {
        db::ResultSet texts({ { "Opis", db::FieldType::Text } });
        QStringList expected;
        for (const char* t : tricky)
            expected << QString::fromUtf8(t);
        if (foreign)
            expected << QStringLiteral("café");
        for (const QString& t : expected) {
            texts.appendRow();
            texts.setText(0, t);
        }
        QStringList descending = expected;
        std::stable_sort(expected.begin(), expected.end(),
            [&](const QString& a, const QString& b) { return collator.compare(a, b) < 0; });
        std::stable_sort(descending.begin(), descending.end(),
            [&](const QString& a, const QString& b) { return collator.compare(a, b) > 0; });
        browser::BookModel sorted;
        sorted.setResultSet(texts);
        sorted.headerSort(1);
        EXPECT_EQ(column(sorted, 0), expected.join(u',').toStdString()) << foreign;
        sorted.headerSort(1);
        EXPECT_EQ(column(sorted, 0), descending.join(u',').toStdString()) << foreign;
    }
}

TEST(BrowserRules, BulkDeletionAccessLevelsAndGeometryInTwips)
{
    // Which entries a book shows is its catalogue's, as the browser tests see them; only
    // level "2" adds the bulk deletion.
    EXPECT_TRUE(browser::menuVisibility(109, QStringLiteral("2")).brisPrikPod);
    for (const char* level : { "0", "1", "3", "20" })
        EXPECT_FALSE(browser::menuVisibility(109, QString::fromLatin1(level)).brisPrikPod) << level;
    EXPECT_FALSE(browser::menuVisibility(96, QStringLiteral("2")).brisPrikPod);

    // Levels are compared as text: "10" is below "3". Restrictions not given: not checked.
    for (const auto& [level, skips, restrictions] : { std::tuple { "0", false, "" }, { "", false, nullptr },
             { "1", false, "ubaci ista" }, { "2", false, "ubaci ista rekap" }, { "3", true, nullptr },
             { "5", true, "ubaci ista rekap" }, { "9", true, nullptr }, { "10", false, nullptr } }) {
        EXPECT_EQ(browser::levelSkipsRightsService(QString::fromLatin1(level)), skips) << level;
        const auto r = browser::levelRestrictions(QString::fromLatin1(level));
        const std::string got = std::string(r.ubaciZapis ? "ubaci" : "") + (r.istaStavka ? " ista" : "")
            + (r.rekapitulacija ? " rekap" : "");
        EXPECT_TRUE(!restrictions || got == restrictions) << level << ": " << got;
    }

    for (const auto& [twips, dpi, pixels] :
        { std::array { 9645, 96, 643 }, { 5800, 96, 387 }, { 3500, 96, 233 }, { 1440, 120, 120 } })
        EXPECT_EQ(browser::twipsToPixels(twips, dpi), pixels) << twips;
    EXPECT_EQ(browser::pixelsToTwips(643, 96), 9645);
    EXPECT_EQ(browser::pixelsToTwips(120, 120), 1440);
}

TEST(GridWorkbook, WritesTheWholeGridWithItsFixedCells)
{
    if (!output::GridWorkbook::available())
        GTEST_SKIP() << "built without the workbook writer";
    // The trade book of services: grid column 5 (Iznos) is summed.
    const db::ResultSet rs
        = test::resultSet({ { "RBroj", db::FieldType::Integer }, { "GodinaKnj", db::FieldType::Integer },
                              { "Datum", db::FieldType::Date }, { "Opis", db::FieldType::Text },
                              { "Iznos", db::FieldType::Currency }, { "I", db::FieldType::Text } },
            { { 1, 2016, QDate(2016, 3, 1), "Usluga čišćenja 1", "1000" },
                { 2, 2016, QDate(2016, 3, 2), "Usluga čišćenja 2", "2000" } });
    browser::BookModel m;
    m.setBookKind(125);
    m.setResultSet(rs);
    const QString path = test::scratchDir() + QStringLiteral("/PelunGrid.xls");
    QFile::remove(path);
    QString error;
    ASSERT_TRUE(output::GridWorkbook::write(m, path, &error)) << error.toStdString();
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.read(2), QByteArray("PK"));
    f.close();

    if (QStandardPaths::findExecutable(QStringLiteral("unzip")).isEmpty())
        return;
    auto part = [&](const QString& name) {
        QProcess unzip;
        unzip.start(QStringLiteral("unzip"), { QStringLiteral("-p"), path, name });
        unzip.waitForFinished();
        return QString::fromUtf8(unzip.readAllStandardOutput());
    };
    const QString strings = part(QStringLiteral("xl/sharedStrings.xml"));
    for (const char* text : { "Usluga čišćenja 2", ">Opis<", ">Ukupno:<" })
        EXPECT_TRUE(strings.contains(QString::fromUtf8(text))) << text;
    // Field names in row 1 from column B; the totals caption in the row-header column
    // above (A2) and below (A5) the entries, which have no row header; amounts and the
    // sum as numbers, not texts.
    const QString sheet = part(QStringLiteral("xl/worksheets/sheet1.xml"));
    for (const char* cell : { "r=\"B1\"", "r=\"A2\"", "r=\"A5\"", "<c r=\"F4\" s=\"", "<v>2000</v>", "<v>3000</v>" })
        EXPECT_TRUE(sheet.contains(QString::fromLatin1(cell))) << cell;
    EXPECT_FALSE(sheet.contains(QStringLiteral("r=\"A3\"")));
}
