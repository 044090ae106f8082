// The output layer without a painter: pages and carried sums, the values of the
// statutory forms' columns, the selection a printed book is read with, and the export
// for office programs (values, quotation, decimal marks, code pages, the checks before
// writing, writing in pieces).
#include "ResultText.h"
#include "books/BookKind.h"
#include "output/CodePage.h"
#include "output/OfficeExport.h"
#include "output/ReportHeader.h"
#include "output/ReportLayout.h"
#include "output/ReportPages.h"
#include "output/ReportQueries.h"
#include "support/Sandbox.h"
#include "support/TestDatabase.h"

#include <QBuffer>
#include <QFile>
#include <gtest/gtest.h>

using namespace knjige;
using namespace knjige::output::report;
using namespace knjige::output;

namespace
{

Money m(qint64 whole)
{
    return Money::fromWhole(whole);
}

const QString kLetters = QStringLiteral("ČĆĐŠŽ čćđšž");

db::ResultSet sampleRows()
{
    // A spreadsheet reads 15.03.30 as 1930; the second row is NULL but for the text.
    return test::resultSet(
        { { "RBroj", db::FieldType::Integer }, { "Datum", db::FieldType::Date }, { "Opis", db::FieldType::Text },
            { "Iznos", db::FieldType::Currency }, { "Stopa", db::FieldType::Decimal },
            { "Zatvoreno", db::FieldType::Boolean }, { "I", db::FieldType::Text } },
        { { 1234567, QDate(2030, 3, 15), "  Pazar; \"Centar\"  ", "1234567.5", 0.125, true, QString() },
            { {}, {}, kLetters }, { -3, QDate(9999, 12, 31), {}, "-7", -1000000.25, false } });
}

QByteArray exported(const db::ResultSet& rows, const ExportOptions& options, ExportResult* result)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    *result = writeOfficeExport(rows, options, buffer);
    return buffer.data();
}

// Takes what it is given until `capacity` bytes, then refuses; counts the calls.
class LimitedDevice final : public QIODevice
{
public:
    explicit LimitedDevice(qint64 capacity)
        : m_capacity(capacity)
    {
        open(WriteOnly);
    }
    QList<qint64> writes;

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char*, qint64 size) override
    {
        if ((m_taken += size) > m_capacity)
            setErrorString(QStringLiteral("Disk je pun"));
        writes << size;
        return m_taken > m_capacity ? -1 : size;
    }

private:
    qint64 m_capacity;
    qint64 m_taken = 0;
};

} // namespace

TEST(ReportPages, RowsFallOnPagesAndCarryTheirSums)
{
    struct Case {
        const char* what;
        int firstLines, otherLines;
        QVector<int> heights;
        QVector<std::pair<int, int>> pageStarts; // the row and line each page begins with
        bool donos = false; // the first page brings sums forward
        int closing = 0; // lines the last page needs below its totals
    };
    // The first page keeps one line for "Za prenos"; later pages also one for "Prenos".
    const Case cases[] = {
        { "no rows: one empty page", 5, 6, {}, { { 0, 0 } } },
        { "four rows fill the first page", 5, 6, { 1, 1, 1, 1 }, { { 0, 0 } } },
        { "a fifth row opens a page", 5, 6, { 1, 1, 1, 1, 1 }, { { 0, 0 }, { 4, 0 } } },
        { "later pages hold four", 5, 6, { 1, 1, 1, 1, 1, 1, 1, 1, 1 }, { { 0, 0 }, { 4, 0 }, { 8, 0 } } },
        { "a wrapped row that does not fit moves on whole", 5, 6, { 1, 1, 3, 1 }, { { 0, 0 }, { 2, 0 } } },
        { "a row taller than a page opens one and runs on", 5, 6, { 1, 9, 1 },
            { { 0, 0 }, { 1, 0 }, { 1, 4 }, { 1, 8 } } },
        { "a tall first row runs on from the first page", 5, 6, { 6, 1 }, { { 0, 0 }, { 0, 4 } } },
        { "a tall row ending at a page's foot", 5, 6, { 1, 8, 1 }, { { 0, 0 }, { 1, 0 }, { 1, 4 }, { 2, 0 } } },
        { "Donos takes a line of the first page", 5, 6, { 1, 1, 1, 1 }, { { 0, 0 }, { 3, 0 } }, true },
        { "a closing that fits stays", 5, 6, { 1, 1 }, { { 0, 0 } }, true, 1 },
        { "a closing that does not fit opens a page", 5, 6, { 1, 1, 1, 1, 1 }, { { 0, 0 }, { 4, 0 }, { 5, 0 } }, false,
            4 },
    };
    for (const Case& c : cases) {
        Paginator p(c.firstLines, c.otherLines, 2);
        const QVector<Money> donos = c.donos ? QVector<Money> { m(100), m(-7) } : QVector<Money> { m(0), m(0) };
        if (c.donos)
            p.bringForward(donos);
        p.closeWith(c.closing);
        QVector<QVector<Money>> values;
        for (int r = 0; r < c.heights.size(); ++r) {
            values.push_back({ m(r + 1), m(-10 * (r + 1)) });
            p.add(c.heights[r], values.last());
        }
        const QVector<Page> pages = p.finish();
        QVector<std::pair<int, int>> starts;
        for (const Page& page : pages)
            starts << std::pair(page.firstRow, page.firstLine);
        EXPECT_EQ(starts, c.pageStarts) << c.what;
        // Every line of every row once, no page over its room (the last one's closing
        // included), each row's amounts on the page of its first line, after Donos.
        QVector<int> printed(c.heights.size());
        QVector<Money> sum = donos;
        for (int i = 0; i < pages.size(); ++i) {
            const Page& page = pages[i];
            EXPECT_EQ(page.brought, sum) << c.what << " page " << i;
            int used = 0;
            for (int r = page.firstRow; r < page.endRow; ++r) {
                const int from = r == page.firstRow ? page.firstLine : 0;
                const int to = r == page.endRow - 1 && page.endLine > 0 ? page.endLine : c.heights[r];
                EXPECT_EQ(printed[r], from) << c.what << " row " << r;
                printed[r] = to;
                used += to - from;
                if (from == 0)
                    for (int k = 0; k < 2; ++k)
                        sum[k] += values[r][k];
            }
            EXPECT_LE(used + (i + 1 == pages.size() ? c.closing : 0), p.rowLines(i)) << c.what << " page " << i;
            EXPECT_EQ(page.carried, sum) << c.what << " page " << i;
        }
        EXPECT_EQ(printed, c.heights) << c.what;
    }
}

// Each column of the two income and expense forms takes exactly its entry kinds.
TEST(ReportLayouts, FormColumnsTakeTheirEntryKinds)
{
    struct Case {
        int book;
        int vrsta;
        QVector<QString> fields; // field values after Vrsta
        QMap<QString, qint64> expected; // column number -> whole amount; the others blank
    };
    const Case cases[] = {
        { 96, 12, { "Prihodi=117", "PDVPrihodi=17" }, { { "12", 117 }, { "14", 17 }, { "15", 100 } } },
        { 96, 13, { "Prihodi=50" }, { { "13", 50 }, { "15", 50 } } },
        { 96, 17, { "Rashodi=400", "PDVRashodi=0" }, { { "17", 400 }, { "21", 400 } } },
        { 96, 19, { "Rashodi=234", "PDVRashodi=34" }, { { "19", 234 }, { "20", 34 }, { "21", 200 } } },
        { 96, 14, {}, {} },
        { 109, 6, { "Iznos=80", "Prihodi=80" }, { { "6", 80 }, { "8", 80 } } },
        { 109, 12, { "Iznos=30", "Rashodi=30" }, { { "12", 30 }, { "17", 30 } } },
        { 109, 16, { "Iznos=25", "RashPPDOH=25" }, { { "16", 25 }, { "17", -25 } } },
    };
    for (const Case& c : cases) {
        const Layout layout = bookLayout(c.book);
        QVector<db::Field> fields = { { "RBroj", db::FieldType::Integer }, { "Datum", db::FieldType::Date },
            { "Isprava", db::FieldType::Text }, { "Opis", db::FieldType::Text }, { "Vrsta", db::FieldType::Integer } };
        for (const char* f : { "Prihodi", "PDVPrihodi", "Rashodi", "PDVRashodi", "Iznos", "RashPPDOH" })
            fields.push_back({ f, db::FieldType::Currency });
        db::ResultSet rs(fields);
        rs.appendRow();
        rs.setInteger(4, c.vrsta);
        for (const QString& v : c.fields)
            rs.setMoney(rs.indexOf(v.section(u'=', 0, 0)), m(v.section(u'=', 1).toLongLong()));
        QString error;
        const auto bound = BoundLayout::bind(layout, rs, &error);
        ASSERT_TRUE(bound) << error.toStdString();
        for (int col = 0; col < layout.columns.size(); ++col) {
            if (layout.columns[col].format != Format::Money)
                continue;
            const QString number = layout.columns[col].number;
            EXPECT_EQ(bound->money(rs, 0, col), m(c.expected.value(number)))
                << "book " << c.book << " kind " << c.vrsta << " column " << number.toStdString();
            EXPECT_EQ(bound->text(rs, 0, col, QLocale::c()).isEmpty(), !c.expected.contains(number));
        }
    }
    // The forms' numbering, and a field the rows lack named in the refusal.
    QStringList numbers;
    for (const Column& c : bookLayout(96).columns)
        numbers << c.number;
    EXPECT_EQ(numbers.join(u','), QStringLiteral("1,2,3,4,11,12,13,14,15,16,17,18,19,20,21"));
    QString error;
    EXPECT_FALSE(BoundLayout::bind(bookLayout(98), db::ResultSet({ { "RBroj", db::FieldType::Integer } }), &error));
    EXPECT_EQ(error, QStringLiteral("u podacima knjige nema polja Datum"));
    EXPECT_FALSE(bookLayout(103).isValid());
}

// Without a period or a shop a command's book is the book as it opens; with either, the
// filter the operator would set, without an upper bound when no period is given.
TEST(ReportQueries, TheBookACommandReads)
{
    const auto march = std::make_pair(QDate(2016, 3, 1), QDate(2016, 3, 31));
    struct Case {
        int book;
        std::optional<std::pair<QDate, QDate>> period;
        qint32 shop;
        const char* where;
        const char* description;
    };
    const Case cases[] = {
        { 96, std::nullopt, 0, " WHERE  K.Datum>='01.01.2016' AND K.GodinaKnj=2016 AND K.BrojPoduzeca=3", "" },
        { 125, std::nullopt, 0, " WHERE  K.Datum>='01.01.2016' AND K.GodinaKnj=2016 AND K.BrojPoduzeca=3", "" },
        { 98, march, 0,
            " WHERE K.BrojPoduzeca=3 AND  K.Datum>='03.01.2016' AND K.Datum<='03.31.2016' AND K.GodinaKnj=2016",
            "Period od 01.03.16 do 31.03.16" },
        { 126, std::make_pair(QDate(2016, 1, 1), QDate(2016, 12, 31)), 502,
            " WHERE K.BrojPoduzeca=3 AND  K.Datum>='01.01.2016' AND K.Datum<='12.31.2016' AND K.GodinaKnj=2016 AND  "
            "K.BrojProd=502",
            "Period od 01.01.16 do 31.12.16,Broj prod.: 502 Maloprodaja" },
        { 125, std::nullopt, 7,
            " WHERE K.BrojPoduzeca=3 AND  K.Datum>='01.01.2016' AND K.GodinaKnj=2016 AND  K.BrojProd=7",
            "Period od 01.01.16,Broj prod.: 7 Maloprodaja" },
    };
    for (const Case& c : cases) {
        const browser::BookQuery q
            = browser::commandQuery(c.book, 3, 2016, c.period, c.shop, QStringLiteral("Maloprodaja"));
        const browser::FilterState& s = q.filter;
        EXPECT_EQ(q.sql(), books::findBook(c.book)->selectSql + QString::fromUtf8(c.where) + " ORDER BY K.RBroj")
            << c.book;
        EXPECT_EQ(q.salesPoint(), c.shop);
        EXPECT_EQ(s.description, QString::fromUtf8(c.description)) << c.book;
        EXPECT_EQ(s.periodStart, c.period ? c.period->first : QDate(2016, 1, 1));
        EXPECT_EQ(s.periodEnd, c.period ? c.period->second : QDate(2016, 12, 31));
    }
}

TEST(ReportHeader, CompanyLinesFromWhateverTheConfigurationHolds)
{
    const db::ResultSet full = test::resultSet(
        { { "NazivFirme", db::FieldType::Text }, { "Adresa", db::FieldType::Text }, { "PostBroj", db::FieldType::Text },
            { "Mjesto", db::FieldType::Text }, { "IdBroj", db::FieldType::Text }, { "PDVBroj", db::FieldType::Text },
            { "Telefon", db::FieldType::Text } },
        { { "Obrt", "Titova 3", "71000", "Sarajevo", "4200000000001", "", "033 111 222" } });
    EXPECT_EQ(companyLines(full),
        QStringList({ QStringLiteral("Titova 3, 71000 Sarajevo"), QStringLiteral("ID broj: 4200000000001"),
            QStringLiteral("Tel: 033 111 222") }));
    db::ResultSet nameOnly({ { "NazivFirme", db::FieldType::Text } });
    EXPECT_TRUE(companyLines(nameOnly).isEmpty());
    EXPECT_EQ(salesPointLine(0, {}), QStringLiteral("Prodajno mjesto: sva"));
}

TEST(OfficeExport, ValuesSeparatorsQuotationAndDecimalMarks)
{
    const QString header = QStringLiteral("RBroj%1Datum%1Opis%1Iznos%1Stopa%1Zatvoreno%1I\r\n");
    const QString quotedHeader
        = QStringLiteral("\"RBroj\"%1\"Datum\"%1\"Opis\"%1\"Iznos\"%1\"Stopa\"%1\"Zatvoreno\"%1\"I\"\r\n");
    struct Case {
        const char* separator;
        const char* decimal;
        bool quote;
        QString rows;
    };
    const Case cases[] = {
        { ";", ",", true,
            QStringLiteral("1234567;15.03.2030;\"  Pazar; \"\"Centar\"\"  \";1234567,5;0,125;1;\r\n"
                           ";;\"ČĆĐŠŽ čćđšž\";;;;\r\n"
                           "-3;31.12.9999;;-7;-1000000,25;0;\r\n") },
        { ";", ",", false,
            QStringLiteral("1234567;15.03.2030;Pazar; \"Centar\";1234567,5;0,125;1;\r\n"
                           ";;ČĆĐŠŽ čćđšž;;;;\r\n"
                           "-3;31.12.9999;;-7;-1000000,25;0;\r\n") },
        { ",", ".", true,
            QStringLiteral("1234567,15.03.2030,\"  Pazar; \"\"Centar\"\"  \",1234567.5,0.125,1,\r\n"
                           ",,\"ČĆĐŠŽ čćđšž\",,,,\r\n"
                           "-3,31.12.9999,,-7,-1000000.25,0,\r\n") },
    };
    const db::ResultSet rows = sampleRows();
    for (const Case& c : cases) {
        ExportOptions o;
        o.separator = QString::fromLatin1(c.separator);
        o.decimalMark = QString::fromLatin1(c.decimal);
        o.quoteTexts = c.quote;
        o.encoding = TextEncoding::Utf8WithBom;
        ExportResult result;
        const QByteArray bytes = exported(rows, o, &result);
        const QString expected = (c.quote ? quotedHeader : header).arg(o.separator) + c.rows;
        EXPECT_EQ(bytes, "\xEF\xBB\xBF" + expected.toUtf8()) << c.separator << c.decimal << c.quote;
        EXPECT_EQ(result.rows, 3);
        EXPECT_TRUE(result.ok() && result.unmappable.isEmpty());
    }
}

TEST(OfficeExport, Windows1250IsByteExactAndReportsWhatItCannotHold)
{
    QString unmappable;
    EXPECT_EQ(output::toCp1250(kLetters + QStringLiteral("€„"), &unmappable),
        QByteArray("\xC8\xC6\xD0\x8A\x8E \xE8\xE6\xF0\x9A\x9E\x80\x84"));
    EXPECT_TRUE(unmappable.isEmpty());
    EXPECT_EQ(output::toCp1250(QStringLiteral("aЖ∑😀bЖ") + QChar(0xD800), &unmappable), QByteArray("a???b??"));
    EXPECT_EQ(unmappable, QStringLiteral("Ж∑😀") + QChar(0xD800));

    db::ResultSet rows = sampleRows();
    rows.appendRow();
    rows.setText(2, QStringLiteral("Жито ∑"));
    ExportResult result;
    ExportOptions o;
    const QByteArray bytes = exported(rows, o, &result);
    EXPECT_TRUE(bytes.contains(";\"\xC8\xC6\xD0\x8A\x8E \xE8\xE6\xF0\x9A\x9E\";"));
    EXPECT_TRUE(bytes.endsWith(";;\"???? ?\";;;;\r\n"));
    EXPECT_EQ(result.rows, 4);
    EXPECT_EQ(result.unmappable, QStringLiteral("Жито∑"));
    EXPECT_EQ(result.firstUnmappableLine, 5);
    const QString note = unmappableNote(result.unmappable, result.firstUnmappableLine);
    EXPECT_TRUE(note.contains(QStringLiteral("Ж и т о ∑")) && note.contains(QStringLiteral("retku 5")))
        << note.toStdString();
}

TEST(OfficeExport, ChecksComeInTheirOrderAndTheProgramOnlyWhenItIsStarted)
{
    // The dialog's test runs every message in order and a program that is there; here
    // what else decides the program's checks.
    const std::pair<ExportFields, const char*> cases[] = {
        { { "a.csv", ";", ",,", "", true }, "Znak za decimalnu točku za brojeve može biti točka ili zarez !" },
        { { "a.csv", ";", ".", QStringLiteral("nema-ovog-programa-9"), true },
            "Uneseno ime EXE datoteke je neispravno !" },
        { { "a.csv", ";", ".", "/nema/ovog/programa", false }, "" },
    };
    for (const auto& [fields, message] : cases)
        EXPECT_EQ(firstFailedCheck(fields), QString::fromUtf8(message)) << fields.program.toStdString();
}

TEST(OfficeExport, WritesInPiecesAndStopsAtTheFirstRefusal)
{
    db::ResultSet rows({ { "RBroj", db::FieldType::Integer }, { "Opis", db::FieldType::Text } });
    for (int i = 0; i < 20000; ++i) {
        rows.appendRow();
        rows.setInteger(0, i);
        rows.setText(1, QStringLiteral("Šećer stavka %1").arg(i));
    }
    LimitedDevice roomy(1 << 30);
    const ExportResult all = writeOfficeExport(rows, {}, roomy);
    EXPECT_TRUE(all.ok());
    EXPECT_EQ(all.rows, 20000);
    ASSERT_GT(roomy.writes.size(), 4);
    for (qint64 size : roomy.writes)
        EXPECT_LT(size, 80 * 1024);

    LimitedDevice small(100 * 1024);
    const ExportResult cut = writeOfficeExport(rows, {}, small);
    EXPECT_EQ(cut.error, QStringLiteral("Disk je pun"));
    EXPECT_LT(cut.rows, 20000);

    const ExportResult nowhere = exportToFile(rows, {}, test::scratchDir() + QStringLiteral("/nema/mape/a.csv"));
    EXPECT_TRUE(nowhere.error.contains(QStringLiteral("/nema/mape/a.csv"))) << nowhere.error.toStdString();
    EXPECT_FALSE(QFile::exists(test::scratchDir() + QStringLiteral("/nema")));
}
