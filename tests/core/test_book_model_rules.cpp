#include "browser/BookModel.h"
#include "browser/BrowserRules.h"
#include "output/GridWorkbook.h"
#include "support/Sandbox.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

using namespace knjige;

TEST(BrowserRules, OpeningWhereClauseHasNoUpperDateBound)
{
    EXPECT_EQ(browser::openingWhere(browser::periodStart(2016), 2016, 3),
              QStringLiteral(" WHERE  K.Datum>='01.01.2016' AND K.GodinaKnj=2016 AND K.BrojPoduzeca=3"));
    EXPECT_EQ(browser::orderBy(), QStringLiteral(" ORDER BY K.RBroj"));
    EXPECT_EQ(browser::periodStart(2016), QDate(2016, 1, 1));
    EXPECT_EQ(browser::periodEnd(2016), QDate(2016, 12, 31));
}

TEST(BrowserRules, BookSpecificMenuEntriesPerKind)
{
    auto shown = [](int kind, const char* level = "0") {
        const browser::MenuVisibility v = browser::menuVisibility(kind, QString::fromLatin1(level));
        QStringList out;
        if (v.rekapitulacija) out << QStringLiteral("rekap");
        if (v.istaStavka) out << QStringLiteral("ista");
        if (v.renumeracija) out << QStringLiteral("renum");
        if (v.renumeracijaPoDat) out << QStringLiteral("renumDat");
        if (v.ubaciZapis) out << QStringLiteral("ubaci");
        if (v.pocetnoStanje) out << QStringLiteral("pocetno");
        if (v.generiranje) out << QStringLiteral("gen");
        if (v.uvozIzvozPod) out << QStringLiteral("uvozIzvoz");
        if (v.brisPrikPod) out << QStringLiteral("brisPrik");
        return out.join(u' ');
    };
    EXPECT_EQ(shown(96), QStringLiteral("rekap ista renum renumDat ubaci"));
    for (int kind : {97, 98, 99, 100, 102, 106, 125, 126})
        EXPECT_EQ(shown(kind), QStringLiteral("ista renum renumDat ubaci")) << kind;
    EXPECT_EQ(shown(101), QStringLiteral("ista pocetno"));
    EXPECT_EQ(shown(105), QStringLiteral("ista pocetno"));
    EXPECT_EQ(shown(109), QStringLiteral("ista renum renumDat ubaci gen"));
    EXPECT_EQ(shown(109, "2"), QStringLiteral("ista renum renumDat ubaci gen brisPrik"));
    EXPECT_EQ(shown(109, "3"), QStringLiteral("ista renum renumDat ubaci gen"));
    EXPECT_EQ(shown(96, "2"), QStringLiteral("rekap ista renum renumDat ubaci"));
}

TEST(BrowserRules, AccessLevels)
{
    EXPECT_FALSE(browser::levelSkipsRightsService(QStringLiteral("0")));
    EXPECT_FALSE(browser::levelSkipsRightsService(QStringLiteral("2")));
    EXPECT_FALSE(browser::levelSkipsRightsService(QString()));
    EXPECT_TRUE(browser::levelSkipsRightsService(QStringLiteral("3")));
    EXPECT_TRUE(browser::levelSkipsRightsService(QStringLiteral("9")));
    EXPECT_FALSE(browser::levelSkipsRightsService(QStringLiteral("10")));   // compared as text

    const auto l0 = browser::levelRestrictions(QStringLiteral("0"));
    EXPECT_FALSE(l0.ubaciZapis || l0.istaStavka || l0.rekapitulacija);
    const auto l1 = browser::levelRestrictions(QStringLiteral("1"));
    EXPECT_TRUE(l1.ubaciZapis && l1.istaStavka);
    EXPECT_FALSE(l1.rekapitulacija);
    const auto l2 = browser::levelRestrictions(QStringLiteral("2"));
    EXPECT_TRUE(l2.ubaciZapis && l2.istaStavka && l2.rekapitulacija);
    const auto l5 = browser::levelRestrictions(QStringLiteral("5"));
    EXPECT_TRUE(l5.ubaciZapis && l5.istaStavka && l5.rekapitulacija);
}

TEST(BrowserRules, WindowGeometryIsKeptInTwips)
{
    EXPECT_EQ(browser::twipsToPixels(9645, 96), 643);
    EXPECT_EQ(browser::twipsToPixels(5800, 96), 387);
    EXPECT_EQ(browser::pixelsToTwips(643, 96), 9645);
    EXPECT_EQ(browser::twipsToPixels(3500, 96), 233);
    EXPECT_EQ(browser::twipsToPixels(1440, 120), 120);
    EXPECT_EQ(browser::pixelsToTwips(120, 120), 1440);
}

TEST(GridWorkbook, WritesTheWholeGridWithItsFixedCells)
{
    if (!GridWorkbook::available())
        GTEST_SKIP() << "built without the workbook writer";
    // The trade book of services: grid column 5 (Iznos) is summed.
    ResultSet rs({{"RBroj", FieldType::Integer}, {"GodinaKnj", FieldType::Integer}, {"Datum", FieldType::Date},
                  {"Opis", FieldType::Text}, {"Iznos", FieldType::Currency}, {"I", FieldType::Text}});
    for (int i = 1; i <= 2; ++i) {
        rs.appendRow();
        rs.setInteger(0, i);
        rs.setInteger(1, 2016);
        rs.setDate(2, QDate(2016, 3, i));
        rs.setText(3, QStringLiteral("Usluga čišćenja %1").arg(i));
        rs.setMoney(4, Money::fromWhole(1000 * i));
    }
    BookModel m;
    m.setBookKind(125);
    m.setResultSet(rs);
    const QString path = test::scratchDir() + QStringLiteral("/PelunGrid.xls");
    QFile::remove(path);
    QString error;
    ASSERT_TRUE(GridWorkbook::write(m, path, &error)) << error.toStdString();
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.read(2), QByteArray("PK"));
    f.close();

    if (QStandardPaths::findExecutable(QStringLiteral("unzip")).isEmpty())
        return;
    auto part = [&](const QString& name) {
        QProcess unzip;
        unzip.start(QStringLiteral("unzip"), {QStringLiteral("-p"), path, name});
        unzip.waitForFinished();
        return QString::fromUtf8(unzip.readAllStandardOutput());
    };
    const QString strings = part(QStringLiteral("xl/sharedStrings.xml"));
    EXPECT_TRUE(strings.contains(QStringLiteral("Usluga čišćenja 2")));
    EXPECT_TRUE(strings.contains(QStringLiteral(">Opis<")));
    const QString sheet = part(QStringLiteral("xl/worksheets/sheet1.xml"));
    EXPECT_TRUE(strings.contains(QStringLiteral(">Ukupno:<")));
    // Field names in row 1 from column B; the totals caption in the row-header column
    // above (A2) and below (A5) the entries, which have no row header; amounts and the
    // sum as numbers, not texts.
    EXPECT_TRUE(sheet.contains(QStringLiteral("r=\"B1\"")));
    EXPECT_TRUE(sheet.contains(QStringLiteral("r=\"A2\"")));
    EXPECT_FALSE(sheet.contains(QStringLiteral("r=\"A3\"")));
    EXPECT_TRUE(sheet.contains(QStringLiteral("r=\"A5\"")));
    EXPECT_TRUE(sheet.contains(QStringLiteral("<c r=\"F4\" s=\"")));
    EXPECT_TRUE(sheet.contains(QStringLiteral("<v>2000</v>")));
    EXPECT_TRUE(sheet.contains(QStringLiteral("<v>3000</v>")));
}
