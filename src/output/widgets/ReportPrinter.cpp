#include "output/widgets/ReportPrinter.h"

#include "browser/BookModel.h"
#include "output/OutputFile.h"
#include "output/widgets/PdfJoin.h"
#include "output/widgets/PrintMemory.h"
#include "output/widgets/ReportText.h"
#include "session/Failure.h"
#include "session/Interaction.h"
#include "session/Workstation.h"
#include "session/db/DatabaseFiles.h"
#include "session/widgets/QuietFileIcons.h"

#include <QDir>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QLocale>
#include <QPageLayout>
#include <QPaintEngine>
#include <QPainter>
#include <QPdfWriter>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QTemporaryFile>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace knjige::output
{
namespace
{

constexpr qreal kBodyPoints = 8.0;
constexpr qreal kLeastBodyPoints = 5.0;
constexpr qreal kMarginMm = 10.0;
// Body lines the signature block takes below the totals: a gap, the lines for date,
// stamp and signature, the caption under the signature.
constexpr int kSignatureLines = 4;
// Parts at most: beyond four the join and the rows' reading take the time saved.
constexpr int kMostPdfParts = 4;
int parallelPdfFrom = ReportPrinter::kParallelPdfPages;

QFont font(qreal points, bool bold = false)
{
    QFont f;
    // Arial where there is one (Windows); its metric twin or a narrow sans elsewhere,
    // so the wide books keep a readable size.
    f.setFamilies({ QStringLiteral("Arial"), QStringLiteral("Liberation Sans"), QStringLiteral("DejaVu Sans Condensed"),
        QStringLiteral("DejaVu Sans") });
    f.setStyleHint(QFont::SansSerif);
    f.setPointSizeF(points);
    f.setBold(bold);
    return f;
}

} // namespace

struct ReportPrinter::Metrics {
    QPaintDevice* device = nullptr;
    QRectF page;
    QFont body, small, company, title;
    GlyphText text, bold, heading, number, foot;
    QVector<qreal> x; // left edge of each column; the last is the table's right edge
    qreal pad = 0;
    qreal line = 0;
    qreal headingsHeight = 0;
    QVector<QStringList> headingLines;
    QLocale locale;

    qreal width(int column) const { return x[column + 1] - x[column] - 2 * pad; }
};

ReportPrinter::ReportPrinter(report::Layout layout, report::Header header, const db::ResultSet& rows)
    : m_layout(std::move(layout))
    , m_header(std::move(header))
    , m_rows(rows)
{
    m_bound = report::BoundLayout::bind(m_layout, m_rows, &m_error);
    if (!m_layout.isValid())
        m_error = QStringLiteral("knjiga nema izgleda za ispis");
}

ReportPrinter::ReportPrinter(report::Layout layout, report::Header header, db::ResultSet&& rows)
    : m_layout(std::move(layout))
    , m_header(std::move(header))
    , m_ownRows(std::move(rows))
    , m_rows(*m_ownRows)
{
    m_bound = report::BoundLayout::bind(m_layout, m_rows, &m_error);
    if (!m_layout.isValid())
        m_error = QStringLiteral("knjiga nema izgleda za ispis");
}

ReportPrinter::ReportPrinter(const ReportPrinter& whole, QPagedPaintDevice& device)
    : m_layout(whole.m_layout)
    , m_header(whole.m_header)
    , m_forward(whole.m_forward)
    , m_rows(whole.m_rows)
    , m_bound(whole.m_bound)
    , m_pages(whole.m_pages)
{
    measure(device);
}

ReportPrinter::~ReportPrinter() = default;

void ReportPrinter::setParallelPdfFrom(int pages)
{
    parallelPdfFrom = pages;
}

bool ReportPrinter::isReady(QString* error) const
{
    const bool ready = m_bound && m_layout.isValid();
    if (!ready && error)
        *error = m_error;
    return ready;
}

void ReportPrinter::setUpPage(QPrinter& printer) const
{
    printer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4),
        m_layout.orientation == report::Orientation::Landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
        QMarginsF(kMarginMm, kMarginMm, kMarginMm, kMarginMm), QPageLayout::Millimeter));
}

// Fonts and columns for the device's page: the body font shrinks until the columns'
// least widths fit, and the width left over goes to the long texts.
void ReportPrinter::measure(QPagedPaintDevice& device)
{
    auto m = std::make_unique<Metrics>();
    m->device = &device;
    m->page = QRectF(0, 0, device.width(), device.height());
    const auto& columns = m_layout.columns;
    qreal points = kBodyPoints;
    const auto least = [&](const GlyphText& body) {
        const qreal digit = body.width(u"0");
        qreal w = 0;
        for (const report::Column& c : columns)
            w += (c.width + 1.2) * digit;
        return w;
    };
    if (const qreal need = least(GlyphText(font(points), device)); need > m->page.width())
        points = std::max(kLeastBodyPoints, points * m->page.width() / need * 0.98);
    m->body = font(points);
    m->small = font(std::max(points * 0.9, 6.5));
    m->company = font(11, true);
    m->title = font(13, true);
    m->text = GlyphText(m->body, device);
    m->bold = GlyphText(font(points, true), device);
    m->heading = GlyphText(font(points * 0.95, true), device);
    m->number = GlyphText(font(points * 0.85), device);
    m->foot = GlyphText(m->small, device);
    m->locale = componentLocale();

    const qreal digit = m->text.width(u"0");
    m->pad = digit * 0.6;
    m->line = m->text.lineSpacing() * 1.12;
    QVector<qreal> widths;
    int stretch = 0;
    qreal used = 0;
    for (const report::Column& c : columns) {
        widths << c.width * digit + 2 * m->pad;
        used += widths.last();
        stretch += c.stretch;
    }
    const qreal spare = std::max<qreal>(0, m->page.width() - used);
    for (int i = 0; i < columns.size(); ++i)
        widths[i] += stretch > 0 ? spare * columns[i].stretch / stretch : spare / columns.size();
    m->x = { 0 };
    for (qreal w : widths)
        m->x << m->x.last() + w;

    m->headingLines.clear();
    int most = 1;
    for (int i = 0; i < columns.size(); ++i) {
        QStringList lines;
        for (const QString& part : columns[i].heading.split(u'\n'))
            lines += wrapText(part, widths[i] - 2 * m->pad, m->heading, 3);
        m->headingLines << lines;
        most = std::max(most, int(lines.size()));
    }
    m->headingsHeight = most * m->heading.lineSpacing() + m->number.lineSpacing() + 3 * m->pad;
    m_m = std::move(m);
}

int ReportPrinter::rowLines(int row, QVector<QStringList>* cells) const
{
    const Metrics& m = *m_m;
    int lines = 1;
    if (cells)
        cells->resize(m_layout.columns.size());
    for (int c = 0; c < m_layout.columns.size(); ++c) {
        const bool isText = m_layout.columns[c].format == report::Format::Text;
        // Only texts wrap: measuring a row reads nothing else.
        if (!isText && !cells)
            continue;
        const QString text = m_bound->text(m_rows, row, c, m.locale);
        if (!isText || text.isEmpty()) {
            if (cells)
                (*cells)[c] = text.isEmpty() ? QStringList() : QStringList { text };
            continue;
        }
        // Whole, however many lines it takes: a printed book is the record, and a text
        // cut short on paper is a text changed.
        const QStringList wrapped = wrapText(text, m.width(c), m.text);
        lines = std::max(lines, int(wrapped.size()));
        if (cells)
            (*cells)[c] = wrapped;
    }
    return lines;
}

QVector<report::Page> ReportPrinter::paginate(Progress& progress)
{
    const Metrics& m = *m_m;
    const qreal foot = m.page.bottom() - m.foot.lineSpacing() * 1.5;
    const auto linesBelow = [&](qreal top) { return int((foot - top - m.headingsHeight) / m.line); };
    const QVector<int>& summed = m_bound->summed();
    report::Paginator paginator(
        linesBelow(paintHead(nullptr, 0)), linesBelow(paintHead(nullptr, 1)), int(summed.size()));
    if (m_forward.continues)
        paginator.bringForward(m_forward.sums);
    paginator.closeWith((m_forward.continues ? 1 : 0) + (m_layout.signature ? kSignatureLines : 0));
    QVector<Money> values(summed.size());
    for (int r = 0; r < m_rows.rowCount(); ++r) {
        for (int i = 0; i < summed.size(); ++i)
            values[i] = m_bound->money(m_rows, r, summed[i]);
        paginator.add(rowLines(r, nullptr), values);
        if (!progress.advance(r + 1)) {
            m_cancelled = true;
            return {};
        }
    }
    return paginator.finish();
}

std::unique_ptr<Progress> ReportPrinter::layOut(QPagedPaintDevice& device, bool cancellable)
{
    m_pages.clear();
    m_lastRow = {};
    m_cancelled = false;
    if (!isReady())
        return nullptr;
    auto progress = interaction().startProgress({ QStringLiteral("Ispis"),
        QStringLiteral("Priprema ispisa: %1 od %2 redova"), m_rows.rowCount(), cancellable });
    measure(device);
    m_pages = paginate(*progress);
    if (m_cancelled)
        return nullptr;
    progress->restart(QStringLiteral("Ispis: stranica %1 od %2"), m_pages.size());
    return progress;
}

template <typename Painted> bool ReportPrinter::paintPages(QPagedPaintDevice& device, int from, int to, Painted painted)
{
    QPainter p;
    if (!p.begin(&device))
        return false;
    p.setPen(QPen(Qt::black, 0));
    bool going = true;
    for (int i = from; i < to && going; ++i) {
        if (i > from)
            device.newPage();
        paintPage(p, i);
        going = painted(i - from + 1);
    }
    p.end();
    return going;
}

bool ReportPrinter::paintAll(QPagedPaintDevice& device, Progress& progress)
{
    const KeptFreedMemory kept;
    const bool whole = paintPages(device, 0, int(m_pages.size()), [&](int done) {
        m_cancelled = !progress.advance(done);
        return !m_cancelled;
    });
    if (!whole)
        m_pages.clear();
    return whole;
}

int ReportPrinter::paint(QPagedPaintDevice& device, bool cancellable)
{
    const auto progress = layOut(device, cancellable);
    return progress && paintAll(device, *progress) ? int(m_pages.size()) : 0;
}

void ReportPrinter::paintPage(QPainter& p, int index) const
{
    const Metrics& m = *m_m;
    const report::Page& page = m_pages[index];
    const qreal top = paintHead(&p, index);
    const qreal headingsBottom = paintHeadings(p, top);
    qreal y = headingsBottom;
    if (index > 0 || m_forward.continues) {
        paintSums(p, index > 0 ? QStringLiteral("Prenos:") : QStringLiteral("Donos:"), page.brought, y);
        y += m.line;
    }
    const qreal rowsTop = y;
    for (int r = page.firstRow; r < page.endRow; ++r) {
        if (m_lastRow.row != r) {
            m_lastRow.lines = rowLines(r, &m_lastRow.cells);
            m_lastRow.row = r;
        }
        const int lines = m_lastRow.lines;
        const QVector<QStringList>& cells = m_lastRow.cells;
        // A row taller than a page prints here only the lines the paginator gave this page.
        const int from = r == page.firstRow ? page.firstLine : 0;
        const int to = r == page.endRow - 1 && page.endLine > 0 ? page.endLine : lines;
        for (int c = 0; c < cells.size(); ++c) {
            const bool right = m_layout.columns[c].format == report::Format::Money
                || m_layout.columns[c].format == report::Format::Whole;
            for (int l = from; l < std::min(to, int(cells[c].size())); ++l)
                paintCell(p, m.text, cells[c][l], c, right, y + (l - from) * m.line);
        }
        y += (to - from) * m.line;
    }
    const bool last = index == m_pages.size() - 1;
    if (!last) {
        paintSums(p, QStringLiteral("Za prenos:"), page.carried, y);
    } else {
        // The period's own totals; what was brought forward comes back in the total to date.
        QVector<Money> period = page.carried;
        for (int i = 0; i < period.size() && i < m_pages.first().brought.size(); ++i)
            period[i] -= m_pages.first().brought[i];
        paintSums(p, QStringLiteral("Ukupno:"), period, y);
        if (m_forward.continues) {
            y += m.line;
            paintSums(p, m_forward.totalLabel, page.carried, y);
        }
    }
    if (last && m_layout.signature)
        paintSignature(p, y + m.line);
    paintFoot(index);
    for (const GlyphText* font : { &m.heading, &m.number, &m.text, &m.bold, &m.foot })
        font->flush(p);
    paintRules(p, { top, headingsBottom, rowsTop, y, y + m.line });
}

// One line of a cell, its top at `y`. Texts were wrapped to fit; a number wider than
// its column is drawn narrower, never into the next column.
void ReportPrinter::paintCell(
    QPainter& p, const GlyphText& font, const QString& text, int column, bool right, qreal y) const
{
    const Metrics& m = *m_m;
    const qreal baseline = y + (m.line - font.lineSpacing()) / 2 + font.ascent();
    const qreal room = m.width(column);
    const qreal w = font.width(text);
    if (!right || w <= room) {
        font.add(QPointF(right ? m.x[column + 1] - m.pad - w : m.x[column] + m.pad, baseline), text);
        return;
    }
    // The transform alone is put back: a whole restore of the painter makes the PDF
    // writer state its pen again.
    const QTransform before = p.worldTransform();
    p.translate(m.x[column] + m.pad, baseline);
    p.scale(room / w, 1);
    font.draw(p, QPointF(0, 0), text);
    p.setWorldTransform(before);
}

// The head of a page; with no painter only its height. The first page carries the
// whole heading of the book, the others a line naming it.
qreal ReportPrinter::paintHead(QPainter* p, int index) const
{
    const Metrics& m = *m_m;
    const qreal width = m.page.width();
    qreal y = 0;
    auto line = [&](const QString& text, const QFont& f, Qt::Alignment align, const QString& right = {}) {
        const qreal h = QFontMetricsF(f, m.device).lineSpacing();
        if (p && (!text.isEmpty() || !right.isEmpty())) {
            p->setFont(f);
            p->drawText(QRectF(0, y, width, h), align | Qt::AlignVCenter, text);
            if (!right.isEmpty()) {
                p->setFont(m.small);
                p->drawText(QRectF(0, y, width, h), Qt::AlignRight | Qt::AlignVCenter, right);
            }
        }
        y += h;
    };
    const QString pageText = report::pageLine(index + 1, std::max<int>(1, int(m_pages.size())));
    if (index > 0) {
        const QString form = m_header.form.isEmpty() ? QString() : QStringLiteral("  —  ") + m_header.form;
        line(m_header.company + QStringLiteral("  —  ") + m_header.title + form, m.small, Qt::AlignLeft, pageText);
        return y + m.pad;
    }
    line(m_header.company, m.company, Qt::AlignLeft, pageText);
    for (const QString& l : m_header.companyLines)
        line(l, m.small, Qt::AlignLeft);
    y += m.line * 0.5;
    line(m_header.title, m.title, Qt::AlignHCenter, m_header.form);
    if (!m_header.period.isEmpty())
        line(m_header.period, m.body, Qt::AlignHCenter);
    line(m_header.filter, m.small, Qt::AlignLeft, m_header.salesPoint);
    return y + m.pad;
}

qreal ReportPrinter::paintHeadings(QPainter& p, qreal y) const
{
    const Metrics& m = *m_m;
    const qreal numbersTop = y + m.headingsHeight - m.number.lineSpacing() - m.pad;
    p.drawLine(QPointF(m.x.first(), y), QPointF(m.x.last(), y));
    for (int c = 0; c < m_layout.columns.size(); ++c) {
        const QStringList& lines = m.headingLines[c];
        qreal top = numbersTop - m.pad - lines.size() * m.heading.lineSpacing();
        for (const QString& l : lines) {
            const qreal x = (m.x[c] + m.x[c + 1] - m.heading.width(l)) / 2;
            m.heading.add(QPointF(x, top + m.heading.ascent()), l);
            top += m.heading.lineSpacing();
        }
        const QString& n = m_layout.columns[c].number;
        m.number.add(QPointF((m.x[c] + m.x[c + 1] - m.number.width(n)) / 2, numbersTop + m.number.ascent()), n);
    }
    p.drawLine(QPointF(m.x.first(), numbersTop), QPointF(m.x.last(), numbersTop));
    const qreal bottom = y + m.headingsHeight;
    p.drawLine(QPointF(m.x.first(), bottom), QPointF(m.x.last(), bottom));
    return bottom;
}

void ReportPrinter::paintSums(QPainter& p, const QString& label, const QVector<Money>& sums, qreal y) const
{
    const Metrics& m = *m_m;
    const QVector<int>& summed = m_bound->summed();
    p.drawLine(QPointF(m.x.first(), y), QPointF(m.x.last(), y));
    m.bold.add(QPointF(m.x[0] + m.pad, y + (m.line - m.bold.lineSpacing()) / 2 + m.bold.ascent()), label);
    for (int i = 0; i < summed.size() && i < sums.size(); ++i)
        paintCell(p, m.bold, browser::formatMoney(sums[i], m.locale), summed[i], true, y);
    p.drawLine(QPointF(m.x.first(), y + m.line), QPointF(m.x.last(), y + m.line));
}

// The columns' rules, from the headings down to the page's last line. The labels of
// the summary lines run across the columns before the first sum, so those columns'
// rules stop at the summary lines.
void ReportPrinter::paintRules(QPainter& p, const Rules& at) const
{
    const Metrics& m = *m_m;
    const QVector<int>& summed = m_bound->summed();
    const int labelEnd = summed.isEmpty() ? int(m.x.size()) - 1 : summed.first();
    for (int i = 0; i < m.x.size(); ++i) {
        const QPointF top(m.x[i], at.top);
        if (i == 0 || i >= labelEnd) {
            p.drawLine(top, QPointF(m.x[i], at.bottom));
            continue;
        }
        p.drawLine(top, QPointF(m.x[i], at.headingsBottom));
        p.drawLine(QPointF(m.x[i], at.rowsTop), QPointF(m.x[i], at.rowsBottom));
    }
}

// Where the book is closed: the date, the stamp ("M.P.") and the responsible person's
// signature, each on its line, below the last totals.
void ReportPrinter::paintSignature(QPainter& p, qreal y) const
{
    const Metrics& m = *m_m;
    const qreal width = m.x.last();
    const qreal rule = y + 2.5 * m.line; // the lines written on
    const qreal baseline = rule - m.pad;
    const QString date = QStringLiteral("Datum:");
    m.text.add(QPointF(0, baseline), date);
    p.drawLine(QPointF(m.text.width(date) + m.pad, rule), QPointF(width * 0.28, rule));
    const QString stamp = QStringLiteral("M.P.");
    m.bold.add(QPointF((width - m.bold.width(stamp)) / 2, baseline), stamp);
    p.drawLine(QPointF(width * 0.64, rule), QPointF(width, rule));
    const QString caption = QStringLiteral("Potpis odgovorne osobe");
    m.foot.add(QPointF(width * 0.82 - m.foot.width(caption) / 2, rule + m.pad + m.foot.ascent()), caption);
}

void ReportPrinter::paintFoot(int index) const
{
    const Metrics& m = *m_m;
    const qreal baseline = m.page.bottom() - m.foot.lineSpacing() + m.foot.ascent();
    m.foot.add(QPointF(0, baseline), report::printedLine(m_header.printed, m_header.operatorName));
    const QString page = report::pageLine(index + 1, int(m_pages.size()));
    m.foot.add(QPointF(m.page.width() - m.foot.width(page), baseline), page);
}

void ReportPrinter::setUpPdf(QPdfWriter& writer) const
{
    writer.setCreator(QStringLiteral("Knjige"));
    writer.setTitle(m_header.title);
    writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4),
        m_layout.orientation == report::Orientation::Landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
        QMarginsF(kMarginMm, kMarginMm, kMarginMm, kMarginMm), QPageLayout::Millimeter));
}

bool ReportPrinter::writePdf(const QString& path, QString* error)
{
    if (!isReady(error))
        return false;
    output::OutputFile file(path);
    if (!file.open()) {
        *error = QStringLiteral("datoteku %1 nije moguće napraviti: %2").arg(path, file.errorString());
        return false;
    }
    {
        // Measures the pages in any case; paints them only when they are not painted in parts.
        QPdfWriter writer(&file.device());
        setUpPdf(writer);
        // Parts are written beside the file and dropped when stopped: only where the
        // file grows beside the old one (not a device, a pipe or the standard output).
        const bool beside = file.cancelLeavesNoTrace();
        const auto progress = layOut(writer, beside);
        error->clear();
        const bool inParts = progress && beside && canJoinPdfs() && parallelPdfFrom > 0
            && m_pages.size() >= parallelPdfFrom && QThread::idealThreadCount() > 1;
        const bool painted = progress
            && (inParts ? writePdfInParts(*progress, path, file.device(), error) : paintAll(writer, *progress));
        if (!painted) {
            if (error->isEmpty())
                *error = m_cancelled ? QStringLiteral("ispis u datoteku %1 je prekinut").arg(path)
                                     : QStringLiteral("ispis u datoteku %1 nije uspio").arg(path);
            file.cancel();
            return false;
        }
    }
    if (!file.commit()) {
        *error = QStringLiteral("datoteku %1 nije moguće spremiti: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

// The pages are independent once laid out (the carried sums are the pagination's), so
// each part is painted by a printer of its own on its own writer, by the very code that
// paints them one after another. This thread only shows the pages painted and passes
// the person's stop on to the painters.
bool ReportPrinter::writePdfInParts(Progress& progress, const QString& path, QIODevice& out, QString* error)
{
    const int pageCount = int(m_pages.size());
    const int partCount = std::min({ QThread::idealThreadCount(), kMostPdfParts, pageCount });
    const QFileInfo target(path);
    struct Part {
        QTemporaryFile file;
        int from = 0;
        int to = 0;
        bool painted = false;
    };
    std::vector<std::unique_ptr<Part>> parts;
    for (int k = 0; k < partCount; ++k) {
        auto part = std::make_unique<Part>();
        part->file.setFileTemplate(QDir(target.absolutePath()).filePath(QLatin1Char('.') + target.fileName()));
        part->from = pageCount * k / partCount;
        part->to = pageCount * (k + 1) / partCount;
        if (!part->file.open()) {
            *error = QStringLiteral("datoteku %1 nije moguće napraviti: %2").arg(path, part->file.errorString());
            return false;
        }
        parts.push_back(std::move(part));
    }
    const KeptFreedMemory kept;
    std::atomic<int> pagesDone { 0 };
    std::atomic<bool> stop { false };
    std::mutex mutex;
    std::condition_variable ended;
    int running = 0;
    bool allStarted = true;
    std::vector<std::thread> threads;
    for (const auto& part : parts) {
        const auto paintPart = [&, p = part.get()] {
            {
                QPdfWriter writer(&p->file);
                setUpPdf(writer);
                ReportPrinter printer(*this, writer);
                p->painted = printer.paintPages(writer, p->from, p->to, [&](int) {
                    pagesDone.fetch_add(1, std::memory_order_relaxed);
                    return !stop.load(std::memory_order_relaxed);
                });
            }
            const std::lock_guard lock(mutex);
            --running;
            ended.notify_one();
        };
        const std::lock_guard lock(mutex);
        try {
            threads.emplace_back(paintPart);
            ++running;
        } catch (const std::system_error&) {
            // No thread to be had: the part stays unpainted and the others are stopped.
            stop = true;
            allStarted = false;
            break;
        }
    }
    int shown = 0;
    std::unique_lock lock(mutex);
    for (bool over = false; !over;) {
        over = ended.wait_for(lock, std::chrono::milliseconds(25), [&] { return running == 0; });
        lock.unlock();
        // Every page shown as it would be one after another, so a stop asked at a page
        // is seen at that page.
        for (const int now = pagesDone.load(std::memory_order_relaxed); shown < now && !stop;)
            stop = !progress.advance(++shown);
        lock.lock();
    }
    lock.unlock();
    for (std::thread& t : threads)
        t.join();
    m_cancelled = stop && allStarted;
    QStringList names;
    for (const auto& part : parts) {
        if (!part->painted)
            break;
        if (!part->file.flush() || part->file.error() != QFileDevice::NoError) {
            *error = QStringLiteral("datoteku %1 nije moguće spremiti: %2").arg(path, part->file.errorString());
            break;
        }
        names << part->file.fileName();
    }
    QString why;
    if (m_cancelled || names.size() < partCount || !joinPdfs(names, out, &why)) {
        const auto* file = qobject_cast<const QFileDevice*>(&out);
        if (file && file->error() != QFileDevice::NoError)
            *error = QStringLiteral("datoteku %1 nije moguće spremiti: %2").arg(path, why);
        else if (!why.isEmpty())
            *error = QStringLiteral("ispis u datoteku %1 nije uspio: %2").arg(path, why);
        m_pages.clear();
        return false;
    }
    return true;
}

void ReportPrinter::preview(QWidget* parent)
{
    QPrinter printer(QPrinter::HighResolution);
    setUpPage(printer);
    printer.setDocName(m_header.title);
    QPrintPreviewDialog dialog(&printer, parent);
    dialog.setObjectName(QStringLiteral("frmPregledIspisa"));
    dialog.setWindowTitle(m_header.title);
    dialog.resize(1000, 760);
    // The printer dialog's "print to file" may name the database; its painter would
    // truncate the file the moment it begins.
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog, [this, &dialog](QPrinter* target) {
        if (target->outputFormat() == QPrinter::PdfFormat && db::isOpenDatabaseFile(target->outputFileName())) {
            warn(failureText(db::openDatabaseRefusal(target->outputFileName())));
            return;
        }
        // Pages for the screen may be given up (the preview closes); a job for the
        // printer, once begun, goes out whole.
        const bool onScreen = target->paintEngine() && target->paintEngine()->type() == QPaintEngine::Picture;
        paint(*target, onScreen);
        if (m_cancelled && onScreen)
            QTimer::singleShot(0, &dialog, &QDialog::reject);
    });
    // The printer button opens the toolkit's printer dialog, whose file name completer
    // lists folders on its own.
    const QuietFileDialogs quiet;
    interaction().exec(dialog);
}

} // namespace knjige::output
