// The export for office programs: values, quotation, decimal marks, code pages, the
// checks before writing, and writing in pieces.
#include "output/CodePage.h"
#include "output/OfficeExport.h"
#include "support/Sandbox.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>

#include <gtest/gtest.h>

using namespace knjige;
using namespace knjige::output;

namespace {

const QString kLetters = QStringLiteral("ČĆĐŠŽ čćđšž");

ResultSet sampleRows()
{
    ResultSet rs({{"RBroj", FieldType::Integer}, {"Datum", FieldType::Date}, {"Opis", FieldType::Text},
                  {"Iznos", FieldType::Currency}, {"Stopa", FieldType::Decimal}, {"Zatvoreno", FieldType::Boolean},
                  {"I", FieldType::Text}});
    rs.appendRow();
    rs.setInteger(0, 1234567);
    rs.setDate(1, {2016, 3, 15});
    rs.setText(2, QStringLiteral("  Pazar; \"Centar\"  "));
    rs.setMoney(3, Money::parse(QStringLiteral("1234567.5")).value());
    rs.setReal(4, 0.125);
    rs.set(5, true);
    rs.setText(6, QString());
    rs.appendRow();   // a row of NULLs but the text
    rs.setText(2, kLetters);
    rs.appendRow();
    rs.setInteger(0, -3);
    rs.setDate(1, {2017, 12, 31});
    rs.setMoney(3, Money::fromWhole(-7));
    rs.setReal(4, -1000000.25);
    rs.set(5, false);
    return rs;
}

QByteArray exported(const ResultSet& rows, const ExportOptions& options, ExportResult* result)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    *result = writeOfficeExport(rows, options, buffer);
    return buffer.data();
}

// Takes what it is given until `capacity` bytes, then refuses; counts the calls.
class LimitedDevice final : public QIODevice {
public:
    explicit LimitedDevice(qint64 capacity) : m_capacity(capacity) { open(WriteOnly); }
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

TEST(OfficeExport, ValuesSeparatorsQuotationAndDecimalMarks)
{
    const QString header = QStringLiteral("RBroj%1Datum%1Opis%1Iznos%1Stopa%1Zatvoreno%1I\r\n");
    const QString quotedHeader = QStringLiteral("\"RBroj\"%1\"Datum\"%1\"Opis\"%1\"Iznos\"%1\"Stopa\"%1\"Zatvoreno\"%1\"I\"\r\n");
    struct Case {
        const char* separator;
        const char* decimal;
        bool quote;
        QString rows;
    };
    const Case cases[] = {
        {";", ",", true,
         QStringLiteral("1234567;15.03.16;\"  Pazar; \"\"Centar\"\"  \";1234567,5;0,125;1;\r\n"
                        ";;\"ČĆĐŠŽ čćđšž\";;;;\r\n"
                        "-3;31.12.17;;-7;-1000000,25;0;\r\n")},
        {";", ",", false,
         QStringLiteral("1234567;15.03.16;Pazar; \"Centar\";1234567,5;0,125;1;\r\n"
                        ";;ČĆĐŠŽ čćđšž;;;;\r\n"
                        "-3;31.12.17;;-7;-1000000,25;0;\r\n")},
        {",", ".", true,
         QStringLiteral("1234567,15.03.16,\"  Pazar; \"\"Centar\"\"  \",1234567.5,0.125,1,\r\n"
                        ",,\"ČĆĐŠŽ čćđšž\",,,,\r\n"
                        "-3,31.12.17,,-7,-1000000.25,0,\r\n")},
    };
    const ResultSet rows = sampleRows();
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
    EXPECT_EQ(toCp1250(kLetters + QStringLiteral("€„"), &unmappable),
              QByteArray("\xC8\xC6\xD0\x8A\x8E \xE8\xE6\xF0\x9A\x9E\x80\x84"));
    EXPECT_TRUE(unmappable.isEmpty());
    EXPECT_EQ(toCp1250(QStringLiteral("aЖ∑😀bЖ") + QChar(0xD800), &unmappable), QByteArray("a???b??"));
    EXPECT_EQ(unmappable, QStringLiteral("Ж∑😀") + QChar(0xD800));

    ResultSet rows = sampleRows();
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
    EXPECT_TRUE(note.contains(QStringLiteral("Ж и т о ∑")) && note.contains(QStringLiteral("retku 5"))) << note.toStdString();
}

TEST(OfficeExport, ChecksComeInTheirOrderAndTheProgramOnlyWhenItIsStarted)
{
    const QString program = QCoreApplication::applicationFilePath();
    struct Case {
        ExportFields fields;
        const char* message;
    };
    // The dialog's test runs every message in order; here what decides the program's checks.
    const Case cases[] = {
        {{"a.csv", ";", ",,", "", true}, "Znak za decimalnu točku za brojeve može biti točka ili zarez !"},
        {{"a.csv", ";", ".", QStringLiteral("nema-ovog-programa-9"), true}, "Uneseno ime EXE datoteke je neispravno !"},
        {{"a.csv", ";", ".", "/nema/ovog/programa", false}, ""},
        {{"a.csv", ";", ".", program, true}, ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(firstFailedCheck(c.fields), QString::fromUtf8(c.message)) << c.fields.program.toStdString();
    EXPECT_EQ(reportText(QStringLiteral("C:\\Export.csv"), 12),
              QStringLiteral("U datoteku: C:\\Export.csv prebačeno 12 zapisa u CSV formatu!"));
}

TEST(OfficeExport, WritesInPiecesAndStopsAtTheFirstRefusal)
{
    ResultSet rows({{"RBroj", FieldType::Integer}, {"Opis", FieldType::Text}});
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
