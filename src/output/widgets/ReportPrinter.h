#pragma once

#include "output/ReportHeader.h"
#include "output/ReportLayout.h"
#include "output/ReportPages.h"
#include "output/ReportQueries.h"

#include <QFont>
#include <QString>
#include <QVector>
#include <memory>
#include <optional>

class QIODevice;
class QPagedPaintDevice;
class QPainter;
class QPdfWriter;
class QPrinter;
class QWidget;

namespace knjige
{
class Progress;
} // namespace knjige

namespace knjige::output
{

class GlyphText;

// Prints one report on paper or into a PDF file: the header, the numbered column
// headings on every page, the rows with their texts wrapped whole into their columns,
// "Prenos" at the head of every page after the first, "Za prenos" at the foot of every
// page but the last and the totals at the end. A book printed for a period that
// continues its year opens with "Donos" and closes with the total to date, its pages
// carrying both; a book's last page ends with the date, signature and stamp block.
//
// Two passes over the rows: the first measures them and decides the pages (only page
// boundaries and sums are kept; a row's height is the line count of the very wrapping
// the second pass paints, so the sums carried match the rows printed), the second
// paints page after page, so a PDF writer hands each page on as it is done. The rows
// are read, never copied; rows given by reference must outlive the printer.
class ReportPrinter
{
public:
    ReportPrinter(report::Layout layout, report::Header header, const db::ResultSet& rows);
    // The same over rows of its own (a report read just for printing).
    ReportPrinter(report::Layout layout, report::Header header, db::ResultSet&& rows);
    ~ReportPrinter();
    ReportPrinter(const ReportPrinter&) = delete;
    ReportPrinter& operator=(const ReportPrinter&) = delete;

    // Before painting: what the period brings forward from the year before it.
    void bringForward(report::BroughtForward forward) { m_forward = std::move(forward); }

    // False, with *error naming the missing field, when the rows do not fit the layout.
    bool isReady(QString* error = nullptr) const;

    // Paints every page on the device as its page layout stands, showing the rows
    // measured and the pages painted. Returns the number of pages, 0 when nothing
    // could be painted or the person stopped it (offered only when `cancellable`).
    int paint(QPagedPaintDevice& device, bool cancellable = false);
    // The last paint was stopped by the person.
    bool cancelled() const { return m_cancelled; }
    // A4 in the layout's orientation, written to `path` (overwritten). Stopping is
    // offered where the old file would stay as it was. A long book going to a regular
    // file is painted in parts on several cores at once and the parts joined.
    bool writePdf(const QString& path, QString* error);
    // A PDF file of this many pages or more is painted in parts on several cores: Qt's
    // writer compresses and writes each page on the painting thread, nine tenths of a
    // long book's time. Below it, starting the threads and joining the parts would cost
    // more than they save.
    static constexpr int kParallelPdfPages = 64;
    // From how many pages on a PDF file is written in parts; 0 writes every book in one
    // piece. For the benchmark's side-by-side figures and the tests' short books; the
    // program keeps the default.
    static void setParallelPdfFrom(int pages);
    // The print preview with its print and page set-up buttons, run as a modal dialog
    // through the interaction seam.
    void preview(QWidget* parent);
    // Sets A4, the layout's orientation and the margins on a printer.
    void setUpPage(QPrinter& printer) const;

    // The pages of the last paint.
    const QVector<report::Page>& pages() const { return m_pages; }

private:
    struct Metrics;
    // A printer painting pages of this one's last paint on a device of its own.
    ReportPrinter(const ReportPrinter& whole, QPagedPaintDevice& device);
    void measure(QPagedPaintDevice& device);
    QVector<report::Page> paginate(Progress& progress);
    // Measured and paginated for the device: the progress for the painting, none when
    // nothing is to be painted.
    std::unique_ptr<Progress> layOut(QPagedPaintDevice& device, bool cancellable);
    // Pages [from, to) of the last paint, each reported to `painted` (with the count so
    // far), which stops the painting by returning false. False when not all were painted.
    template <typename Painted> bool paintPages(QPagedPaintDevice& device, int from, int to, Painted painted);
    // Every page, each shown on the progress; false when stopped or not painted.
    bool paintAll(QPagedPaintDevice& device, Progress& progress);
    void setUpPdf(QPdfWriter& writer) const;
    // The pages painted in parts, each on a thread of its own into a file beside `path`,
    // and joined into `out`; false with *error set when stopped or failed.
    bool writePdfInParts(Progress& progress, const QString& path, QIODevice& out, QString* error);
    int rowLines(int row, QVector<QStringList>* cells) const;
    void paintPage(QPainter& p, int index) const;
    qreal paintHead(QPainter* p, int index) const;
    qreal paintHeadings(QPainter& p, qreal y) const;
    void paintCell(QPainter& p, const GlyphText& font, const QString& text, int column, bool right, qreal y) const;
    void paintSums(QPainter& p, const QString& label, const QVector<Money>& sums, qreal y) const;
    struct Rules {
        qreal top, headingsBottom, rowsTop, rowsBottom, bottom;
    };
    void paintRules(QPainter& p, const Rules& at) const;
    void paintFoot(int index) const;
    void paintSignature(QPainter& p, qreal y) const;

    report::Layout m_layout;
    report::Header m_header;
    report::BroughtForward m_forward;
    std::optional<db::ResultSet> m_ownRows;
    const db::ResultSet& m_rows;
    std::optional<report::BoundLayout> m_bound;
    QString m_error;
    std::unique_ptr<Metrics> m_m;
    QVector<report::Page> m_pages;
    bool m_cancelled = false;
    // The cells of the row the last page ended in: a row running on over many pages is
    // wrapped once for all of them, not again on each.
    struct WrappedRow {
        int row = -1;
        int lines = 0;
        QVector<QStringList> cells;
    };
    mutable WrappedRow m_lastRow;
};

} // namespace knjige::output
