// Printed books read back from the PDF (poppler's pdftotext): header, every row once,
// the sums carried from page to page, the totals against the browser's "Ukupno:" row,
// the print command's PDF against the window's, the recapitulation and the preview.
#include "books/BookKind.h"
#include "browser/widgets/BrowserPrint.h"
#include "host/HostRights.h"
#include "host/PrintCommand.h"
#include "output/ReportLayout.h"
#include "output/ReportQueries.h"
#include "output/widgets/ReportPrinter.h"
#include "output/widgets/ReportText.h"
#include "session/Session.h"
#include "support/Sandbox.h"
#include "test_browser_fixture.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QProcess>
#include <QRegularExpression>

using namespace knjige;
using namespace knjige::test;

namespace
{

constexpr int kRows = 140;
// Two rows whose texts used to be cut: one of 100 characters, which ended in "…" after
// three lines, and one as long as the column holds without a blank. A text of 10,000
// characters, taller than a page, is no column's: the wrapping itself takes that one.
constexpr int kLongRow = 7;
constexpr int kUnbrokenRow = 23;
constexpr int kUnbrokenStored = 90;
constexpr int kUnbroken = 10000;
constexpr const char* kLongText
    = "Nabavka robe po računu 17 od dobavljača Partner d.o.o. Sarajevo, isporuka u skladište, KRAJ07";

// The PDF's text page by page, laid out as printed.
QStringList pdfPages(const QString& pdf)
{
    QProcess p;
    p.start("pdftotext", { "-layout", pdf, "-" });
    if (!p.waitForFinished(20000) || p.exitCode() != 0) {
        ADD_FAILURE() << "pdftotext (poppler-utils, scripts/setup) could not read " << pdf.toStdString();
        return {};
    }
    QStringList pages = QString::fromUtf8(p.readAllStandardOutput()).split(u'\f');
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty())
        pages.removeLast();
    return pages;
}

// The amounts of the summary line that starts with `label`, in column order; nothing
// when the page has no such line. Every amount has two decimals, whatever the marks.
// Sums are kept to four decimals and printed to two, half away from zero: compare them
// printed; not `shown`, the line is missing.
std::optional<QVector<Money>> printed(QVector<Money> sums, bool shown = true)
{
    if (!shown)
        return std::nullopt;
    for (Money& m : sums) {
        const qint64 whole = (std::abs(m.units()) + 50) / 100 * 100;
        m = Money::fromUnits(m.isNegative() ? -whole : whole);
    }
    return sums;
}

std::optional<QVector<Money>> sumsOn(const QString& page, const QString& label)
{
    static const QRegularExpression amount("-?\\d{1,3}(?:[.,\\x{a0}]\\d{3})*[.,]\\d{2}");
    for (const QString& line : page.split(u'\n')) {
        if (!line.trimmed().startsWith(label))
            continue;
        QVector<Money> out;
        for (const auto& m : amount.globalMatch(line.mid(line.indexOf(label) + label.size()))) {
            QString digits = m.captured(0);
            digits.remove(QRegularExpression("[^-\\d]"));
            out << Money::fromUnits(digits.toLongLong() * 100);
        }
        return out;
    }
    return std::nullopt;
}

QString withoutPrintTime(const QStringList& pages)
{
    return pages.join(u'\f').remove(QRegularExpression("Ispisano: [^\\n]*"));
}

class PrintTest : public BrowserTest
{
protected:
    // `earlier` entries more, dated 1 January: the part of the year before a period
    // that starts on the 2nd.
    void fill(int book, int rows, int earlier = 0)
    {
        addCompany();
        db::TransactionGuard t(db->db());
        for (int i = rows + 1; i <= rows + earlier; ++i)
            add(book, i, { { "Datum", QDate(2016, 1, 1) } });
        const char* text = books::isAssetList(book) ? "Naziv" : "Opis";
        for (int i = 1; i <= rows; ++i) {
            db::RowChange::Values more;
            if (i == kLongRow)
                more = { { text, QStringLiteral("S%1-%2 ").arg(book).arg(i) + QString::fromUtf8(kLongText) } };
            if (i == kUnbrokenRow)
                more = { { text, QStringLiteral("S%1-%2 ").arg(book).arg(i) + QString(kUnbrokenStored, u'W') } };
            add(book, i, more);
        }
        t.commit();
    }
};

// The report's totals that make up each of the browser's "Ukupno:" columns: the
// income and expense forms split them by entry kind; elsewhere a column is its field.
QVector<std::pair<QString, int>> partsOf(int book, const QString& field, const output::report::Layout& layout)
{
    using P = QVector<std::pair<QString, int>>;
    static const QMap<QString, P> fbih = { { "Prihodi", { { "11", 1 }, { "12", 1 }, { "13", 1 } } },
        { "PDVPrihodi", { { "14", 1 } } }, { "Rashodi", { { "16", 1 }, { "17", 1 }, { "18", 1 }, { "19", 1 } } },
        { "PDVRashodi", { { "20", 1 } } } };
    static const QMap<QString, P> db = { { "Prihodi", { { "5", 1 }, { "6", 1 }, { "7", 1 } } },
        { "Rashodi", { { "9", 1 }, { "10", 1 }, { "11", 1 }, { "12", 1 }, { "13", 1 }, { "14", 1 }, { "15", 1 } } },
        { "RashPPDOH", { { "16", 1 } } }, { "Dobit", { { "8", 1 }, { "17", -1 } } } };
    if (book == 96)
        return fbih.value(field);
    if (book == 109)
        return db.value(field);
    for (const output::report::Column& c : layout.columns)
        if (c.sums && c.terms.size() == 1 && c.terms[0].field.compare(field, Qt::CaseInsensitive) == 0)
            return { { c.number, 1 } };
    return {};
}

// The printed sums of a book, summed apart from the report by plain SQL over its table
// for company 1 in 2016, from the first date to `upTo` ("mm.dd.yyyy").
std::optional<QVector<Money>> sumsInTable(TestDatabase& db, int book, const QString& upTo)
{
    const QString v = "sum(case when Vrsta=%1 then Iznos else 0 end)";
    const QString pdv = "sum(case when Vrsta between %1 and %2 then IznosPDV else 0 end)";
    const QString net = "sum(case when Vrsta between %1 and %2 then Iznos-IznosPDV else 0 end)";
    static const QMap<int, QStringList> columns = {
        { 96,
            { v.arg(11), v.arg(12), v.arg(13), pdv.arg(11).arg(13), net.arg(11).arg(13), v.arg(16), v.arg(17),
                v.arg(18), v.arg(19), pdv.arg(16).arg(19), net.arg(16).arg(19) } },
        { 106, { "sum(IznosGot)", "sum(IznosCek)" } },
    };
    if (!columns.contains(book))
        return std::nullopt;
    const db::ResultSet rs = db.query("SELECT " + columns[book].join(',') + " FROM " + books::findBook(book)->table
        + " WHERE BrojPoduzeca=1 AND GodinaKnj=2016 AND Datum<='" + upTo + "'");
    QVector<Money> out;
    for (int f = 0; f < rs.fieldCount(); ++f)
        out << rs.money(0, f);
    return out;
}

} // namespace

// A text wraps whole, every line within the column: words at blanks, a word wider than
// the column after its last character that fits.
TEST(ReportText, TextsWrapWholeWithinTheirColumn)
{
    const QImage device(8, 8, QImage::Format_RGB32);
    const output::GlyphText font(QFont(), device);
    const qreal width = font.advance(u'W') * 30.5;
    const QString unbroken(kUnbroken, u'W');
    const QString words = QStringLiteral("S96-7 ") + QString::fromUtf8(kLongText);
    struct Case {
        QString text;
        qsizetype lines;
    };
    // Characters outside the 16-bit range (the font's own, and one it lacks) are
    // measured whole and never split between lines.
    const QString astral = QString::fromUtf8("Šećer😀𝐀").repeated(25);
    for (const Case& c : { Case { unbroken, (kUnbroken + 29) / 30 }, Case { words, 0 },
             Case { "ab " + unbroken + " cd", 1 + (kUnbroken + 29) / 30 }, Case { astral, 0 } }) {
        const QStringList lines = output::wrapText(c.text, width, font);
        if (c.lines)
            EXPECT_EQ(lines.size(), c.lines);
        else
            EXPECT_GT(lines.size(), 1);
        for (const QString& line : lines)
            EXPECT_TRUE(font.width(line) <= width && line == line.trimmed() && !line.front().isLowSurrogate())
                << line.toStdString();
        EXPECT_EQ(lines.join(QString()).remove(u' '), QString(c.text).remove(u' '));
    }
    // Such a character prints as itself, not as the question marks of its two halves.
    QImage drawn[2];
    const QString texts[2] = { QString::fromUtf8("😀"), QStringLiteral("??") };
    for (int i = 0; i < 2; ++i) {
        drawn[i] = QImage(60, 30, QImage::Format_RGB32);
        drawn[i].fill(Qt::white);
        QPainter painter(&drawn[i]);
        font.draw(painter, QPointF(4, 24), texts[i]);
    }
    EXPECT_NE(drawn[0], drawn[1]);
}

TEST_F(PrintTest, EveryBookPrintsEveryRowOnceWithItsCarriedSumsAndTheBrowsersTotals)
{
    const QString dir = scratchDir();
    for (const books::BookKind& book : books::allBooks()) {
        SCOPED_TRACE(book.code);
        db.reset(); // the old one resets the session when it goes
        db = std::make_unique<TestDatabase>(1, 2016);
        // Half the books print for a period from 2 January, which continues the year
        // from entries of the 1st; the trade books print for one shop.
        const bool filtered = book.code % 2 == 0;
        fill(book.code, kRows, filtered ? 3 : 0);
        auto w = open(book.code);
        const qint32 shop = books::isTradeBook(book.code) ? 501 : 0;
        std::optional<std::pair<QDate, QDate>> period;
        if (filtered)
            period = std::make_pair(QDate(2016, 1, 2), QDate(2016, 12, 31));
        else if (shop) // as the print command reads a shop without a period
            period = std::make_pair(QDate(2016, 1, 1), QDate(2016, 12, 31));
        w->setQuery(browser::commandQuery(book.code, 1, 2016, period, shop, "Maloprodaja Centar"));
        w->OsvjeziZapise();
        ASSERT_EQ(w->rsStavke().rowCount(), kRows);

        const QString pdf = dir + QStringLiteral("/knjiga%1.pdf").arg(book.code);
        const auto printer = browser::bookReport(*w);
        QString error;
        // The window's books are painted in parts, joined; the print command's below in
        // one piece, and the two read the same.
        output::ReportPrinter::setParallelPdfFrom(2);
        // Stopped halfway, in the measuring or in the painting, the file stays as it was
        // and no part is left beside it.
        if (book.code < 100) {
            ASSERT_TRUE(writeFile(pdf, "staro"));
            script->progress.clear();
            script->cancelAt
                = book.code == 96 ? QStringLiteral("Priprema ispisa: 70 od") : QStringLiteral("Ispis: stranica 2 od");
            EXPECT_FALSE(printer->writePdf(pdf, &error));
            EXPECT_TRUE(printer->cancelled());
            EXPECT_EQ(error, QStringLiteral("ispis u datoteku %1 je prekinut").arg(pdf));
            EXPECT_EQ(readFile(pdf), "staro");
            const QStringList parts = QDir(dir).entryList({ ".knjiga*" }, QDir::Files | QDir::Hidden);
            EXPECT_TRUE(parts.isEmpty()) << parts.join(u' ').toStdString();
            ASSERT_EQ(script->progress.size(), 1);
            EXPECT_TRUE(script->progress[0].cancelled && script->progress[0].finished);
            EXPECT_EQ(script->progress[0].texts.size(), book.code == 96 ? 1 : 2);
            EXPECT_EQ(script->progress[0].texts.last(),
                book.code == 96 ? QStringLiteral("Priprema ispisa: 70 od 140 redova")
                                : QStringLiteral("Ispis: stranica 2 od %1").arg(script->progress[0].total));
        }
        script->progress.clear();
        ASSERT_TRUE(printer->writePdf(pdf, &error)) << error.toStdString();
        output::ReportPrinter::setParallelPdfFrom(output::ReportPrinter::kParallelPdfPages);
        const QStringList pages = pdfPages(pdf);
        ASSERT_GE(pages.size(), 3);
        ASSERT_EQ(pages.size(), printer->pages().size());
        ASSERT_EQ(script->progress.size(), 1);
        EXPECT_EQ(script->progress[0].title, QStringLiteral("Ispis"));
        EXPECT_TRUE(script->progress[0].cancellable && !script->progress[0].cancelled);
        EXPECT_EQ(script->progress[0].texts,
            QStringList({ QStringLiteral("Priprema ispisa: 140 od 140 redova"),
                QStringLiteral("Ispis: stranica %1 od %1").arg(pages.size()) }));

        // The head of the book and the page numbers.
        const QString& first = pages.first();
        for (const QString& expected : QStringList { "Obrt Šimić", "Titova 3, 71000 Sarajevo", "ID broj: 4200000000001",
                 book.caption, filtered ? "Period od 02.01.2016 do 31.12.2016" : "Period od 01.01.2016 do 31.12.2016",
                 browser::filterLine(w->query().filter.description) })
            EXPECT_TRUE(first.contains(expected)) << expected.toStdString();
        EXPECT_EQ(first.contains("Prodajno mjesto: 501 Maloprodaja Centar"), shop != 0);
        // The Federation's forms by their names, the closing block on the last page only.
        static const QMap<int, QString> forms = { { 96, "Obrazac KPR-1041" }, { 98, "Obrazac KP-1042" },
            { 105, "Obrazac PLDI-1043" }, { 97, "Obrazac EPO-1044" } };
        EXPECT_EQ(first.count("Obrazac"), forms.contains(book.code) ? 1 : 0);
        EXPECT_TRUE(first.contains(forms.value(book.code)));
        for (const char* closing : { "Datum:", "M.P.", "Potpis odgovorne osobe" }) {
            EXPECT_TRUE(pages.last().contains(closing)) << closing;
            EXPECT_FALSE(first.contains(closing)) << closing;
        }
        for (int p = 0; p < pages.size(); ++p) {
            EXPECT_TRUE(pages[p].contains(QStringLiteral("Strana %1 od %2").arg(p + 1).arg(pages.size()))) << p;
            EXPECT_TRUE(pages[p].contains(QStringLiteral("Ispisano: ") + QDate::currentDate().toString("dd.MM.yyyy")));
            EXPECT_TRUE(pages[p].contains("operater: Ana"));
        }

        // Every row once, and the page it is on.
        const db::ResultSet& rs = w->rsStavke();
        QMap<int, int> pageOf;
        const QRegularExpression marker(QStringLiteral("\\bS%1-(\\d+)\\b").arg(book.code));
        for (int p = 0; p < pages.size(); ++p)
            for (const auto& m : marker.globalMatch(pages[p])) {
                const int id = m.captured(1).toInt();
                EXPECT_FALSE(pageOf.contains(id)) << "row " << id << " printed twice";
                pageOf[id] = p;
            }
        EXPECT_EQ(pageOf.size(), kRows);
        // Long texts whole: the 100 characters to their last word, the unbroken one to
        // its last letter, no "…" anywhere.
        const QString all = pages.join(u'\f');
        EXPECT_TRUE(all.contains(QStringLiteral("KRAJ07")));
        EXPECT_EQ(all.count(u'W'), kUnbrokenStored);
        EXPECT_FALSE(all.contains(QStringLiteral("…")));

        // Each page brings forward the rows of the pages before it and hands on its own.
        const auto bound
            = output::report::BoundLayout::bind(output::report::bookLayout(book.code, w->BrojProd()), rs, &error);
        ASSERT_TRUE(bound);
        const QVector<int>& summed = bound->summed();
        // A period from the 2nd brings forward the 1st, asset lists excepted, and ends
        // with the total to date: for 96 and 106 both against plain SQL over the table.
        const bool continues = filtered && !books::isAssetList(book.code);
        QVector<Money> running(summed.size());
        if (continues) {
            const db::ResultSet earlier
                = db->query(book.selectSql + " WHERE K.BrojPoduzeca=1 AND K.GodinaKnj=2016 AND K.Datum<'01.02.2016'"
                    + (shop ? QStringLiteral(" AND K.BrojProd=501") : QString()));
            const auto b = output::report::BoundLayout::bind(bound->layout(), earlier, &error);
            ASSERT_TRUE(b && earlier.rowCount() == 3);
            for (int r = 0; r < earlier.rowCount(); ++r)
                for (int i = 0; i < summed.size(); ++i)
                    running[i] += b->money(earlier, r, summed[i]);
        }
        const QVector<Money> brought = running;
        EXPECT_EQ(sumsOn(first, "Donos:"), printed(running, continues));
        if (const auto before = sumsInTable(*db, book.code, "01.01.2016"); continues && before) {
            EXPECT_EQ(printed(running), printed(*before));
        }
        const int rbroj = rs.indexOf("RBroj");
        for (int p = 0; p < pages.size(); ++p) {
            const bool last = p + 1 == pages.size();
            EXPECT_EQ(sumsOn(pages[p], "Prenos:"), printed(running, p > 0)) << "page " << p + 1;
            for (int r = 0; r < rs.rowCount(); ++r)
                if (pageOf.value(int(rs.integer(r, rbroj)), -1) == p)
                    for (int i = 0; i < summed.size(); ++i)
                        running[i] += bound->money(rs, r, summed[i]);
            EXPECT_EQ(sumsOn(pages[p], "Za prenos:"), printed(running, !last)) << "page " << p + 1;
        }
        const auto toDate = sumsOn(pages.last(), "Ukupno od 01.01.2016 do 31.12.2016:");
        EXPECT_EQ(toDate, printed(running, continues));
        if (const auto inTable = sumsInTable(*db, book.code, "12.31.2016"); continues && inTable) {
            EXPECT_EQ(toDate, printed(*inTable));
        }
        for (int i = 0; i < running.size(); ++i)
            running[i] -= brought[i];
        const auto totals = sumsOn(pages.last(), "Ukupno:");
        ASSERT_TRUE(totals);
        EXPECT_EQ(*totals, printed(running));

        // The totals add up to the browser's "Ukupno:" row, column by column.
        QMap<QString, Money> byNumber;
        for (int i = 0; i < summed.size() && i < totals->size(); ++i)
            byNumber[bound->layout().columns[summed[i]].number] = (*totals)[i];
        for (const books::TotalsColumn& tc : browser::totalsColumns(book.code)) {
            const QString field = rs.field(tc.gridColumn - 1).name;
            const auto parts = partsOf(book.code, field, bound->layout());
            ASSERT_FALSE(parts.isEmpty()) << "the printed book lacks the total of " << field.toStdString();
            Money sum;
            for (const auto& [number, sign] : parts)
                sum += sign < 0 ? -byNumber.value(number) : byNumber.value(number);
            EXPECT_EQ(sum, w->model().total(tc.gridColumn)->rounded(2)) << field.toStdString();
        }

        // The print command asks the rights the window asks: Edin may open book 96 but
        // not print it, and may not open the others; rights that cannot be read allow nothing.
        const QString cliPdf = dir + QStringLiteral("/cli%1.pdf").arg(book.code);
        const auto as = [&](const char* op) {
            return QStringList { QString::number(book.code), "--db", db->path(), "--company", "1", "--year", "2016",
                "--operator", op, "--pdf", cliPdf };
        };
        EXPECT_EQ(host::runPrint(as("Edin")), 1) << "no dbo.PRAVA";
        expectOneError(script->messages, "Prava operatera nije moguće pročitati iz tablice dbo.PRAVA");
        script->clear();
        db->exec(host::PravaRights::createSql());
        for (const char* right : { "96", "96.1" })
            db->insert("dbo.PRAVA", { { "OPERATER", "Edin" }, { "PROGRAM", "KNJIGE" }, { "PRAVO", right } });
        EXPECT_EQ(host::runPrint(as("Edin")), 1);
        EXPECT_FALSE(QFileInfo::exists(cliPdf));
        // The print command writes the same report as the window.
        QStringList args = as("Ana");
        if (filtered)
            args << "--period"
                 << "02.01.2016-31.12.2016";
        if (shop)
            args << "--prod" << QString::number(shop);
        ASSERT_EQ(host::runPrint(args), 0);
        EXPECT_EQ(withoutPrintTime(pdfPages(cliPdf)), withoutPrintTime(pages));
    }
    EXPECT_TRUE(script->messages.isEmpty()) << script->texts().join(u'\n').toStdString();
}

TEST_F(PrintTest, RecapitulationByEntryKindOfTheFilteredRowsAndThePreviews)
{
    addCompany();
    addPrihRash(1, 2016, 1, { 2016, 1, 5 }, 11, 999, 145); // before the period
    addPrihRash(1, 2016, 2, { 2016, 2, 1 }, 17, 400);
    addPrihRash(1, 2016, 3, { 2016, 2, 10 }, 11, 117, 17);
    addPrihRash(1, 2016, 4, { 2016, 3, 5 }, 11, 234, 34);
    addPrihRash(1, 2016, 5, { 2016, 3, 20 }, 12, 50);
    addPrihRash(1, 2016, 6, { 2016, 3, 31 }, 19, 58.5, 8.5);
    addPrihRash(1, 2016, 7, { 2016, 4, 1 }, 19, 10); // after it
    addPrihRash(2, 2016, 8, { 2016, 3, 1 }, 11, 5000); // another company
    auto w = open(96);
    w->setQuery(browser::commandQuery(96, 1, 2016, std::make_pair(QDate(2016, 2, 1), QDate(2016, 3, 31))));

    int previews = 0;
    int previewPages = 0;
    QString previewTitle;
    script->onDialog = [&](QDialog& dialog) {
        auto* preview = qobject_cast<QPrintPreviewDialog*>(&dialog);
        if (!preview)
            return 0;
        ++previews;
        previewTitle = preview->windowTitle();
        preview->show();
        QApplication::processEvents();
        previewPages = preview->findChild<QPrintPreviewWidget*>()->pageCount();
        preview->reject();
        return 0;
    };
    w->menuItem("mnuRekapKnjPrihRash")->trigger();
    EXPECT_EQ(previews, 1);
    EXPECT_EQ(previewTitle, "REKAPITULACIJA KNJIGE PRIHODA I RASHODA");
    EXPECT_EQ(previewPages, 1);
    EXPECT_EQ(db->db().lastSql(),
        "SELECT TOP 100 PERCENT K.Vrsta,CASE K.Vrsta WHEN 11 THEN 'Prihod u gotovini' WHEN 12 THEN 'Prihodi "
        "preko bank.računa' WHEN 13 THEN 'Prihod u stvarima i usl' WHEN 16 THEN 'Rashod za nabavku rob/mat' "
        "WHEN 17 THEN 'Rashod za bruto plaće' WHEN 18 THEN 'Rashod za plaćene dop p.' WHEN 19 THEN 'Ostali "
        "rashodi' END As Naziv,SUM(CASE WHEN K.Vrsta>=11 AND K.Vrsta<=13 THEN K.Iznos ELSE 0 END) AS "
        "Prihod,SUM(CASE WHEN K.Vrsta>=11 AND K.Vrsta<=13 THEN K.IznosPDV ELSE 0 END) AS PDVPrihod,SUM(CASE "
        "WHEN K.Vrsta>=16 AND K.Vrsta<=19 THEN K.Iznos ELSE 0 END) AS Rashod,SUM(CASE WHEN K.Vrsta>=16 AND "
        "K.Vrsta<=19 THEN K.IznosPDV ELSE 0 END) AS PDVRashod FROM dbo.KnjPrihRashFBiH K  WHERE "
        "K.BrojPoduzeca=1 AND  K.Datum>='02.01.2016' AND K.Datum<='03.31.2016' AND K.GodinaKnj=2016 GROUP "
        "BY K.Vrsta ORDER BY K.Vrsta");

    const QString pdf = scratchDir() + QStringLiteral("/rekapitulacija.pdf");
    QString error;
    ASSERT_TRUE(browser::recapitulationReport(*w)->writePdf(pdf, &error)) << error.toStdString();
    const QStringList pages = pdfPages(pdf);
    ASSERT_EQ(pages.size(), 1);
    for (const char* head :
        { "Obrt Šimić", "REKAPITULACIJA KNJIGE PRIHODA I RASHODA", "Filter : Period od 01.02.16 do 31.03.16" })
        EXPECT_TRUE(pages[0].contains(QString::fromUtf8(head))) << head;
    // Hand sums of February and March: kind 11 = 117 + 234 with VAT 17 + 34, and so on.
    const QString names[]
        = { "Prihod u gotovini", "Prihodi preko bank.računa", "Rashod za bruto plaće", "Ostali rashodi", "Ukupno:" };
    const QVector<Money> expected[] = { { Money::fromWhole(351), Money::fromWhole(51) }, { Money::fromWhole(50) },
        { Money::fromWhole(400) }, { Money::fromUnits(585000), Money::fromUnits(85000) },
        { Money::fromWhole(401), Money::fromWhole(51), Money::fromUnits(4585000), Money::fromUnits(85000) } };
    QString lines = pages[0];
    lines.replace(QRegularExpression("(?m)^\\s*\\d+\\s+"), QString()); // the kind's code
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(sumsOn(lines, names[i]), std::optional<QVector<Money>>(expected[i])) << names[i].toStdString();

    // Print (command 6) previews the book in its layout.
    previews = 0;
    w->mnu_Click(6);
    EXPECT_EQ(previews, 1);
    EXPECT_EQ(previewTitle, books::findBook(96)->caption);
    EXPECT_EQ(previewPages, 1);

    // A condition the database refuses: the data layer's words, no preview.
    change(*w, [](browser::BookQuery& q) { q.filter.where = " WHERE K.Nema=1"; });
    script->clear();
    w->Rekapitulacija();
    EXPECT_EQ(previews, 1);
    expectOneError(script->messages, "Desila se greška: ");
}
