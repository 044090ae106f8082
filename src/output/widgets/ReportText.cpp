#include "output/widgets/ReportText.h"

#include <QFont>
#include <QGlyphRun>
#include <QPaintDevice>
#include <QPainter>
#include <cmath>

namespace knjige::output
{

GlyphText::GlyphText(const QFont& font, const QPaintDevice& device)
    : m_font(font)
    , m_metrics(font, &device)
    , m_raw(QRawFont::fromFont(font))
    , m_glyphs(0x10000)
{
    m_raw.setPixelSize(font.pointSizeF() * device.logicalDpiY() / 72.0);
}

const GlyphText::Glyph& GlyphText::glyph(char16_t c) const
{
    Glyph& g = m_glyphs[c];
    if (g.advance >= 0)
        return g;
    if (QChar::isSurrogate(c)) {
        // Measured with its other half where a text holds it (advanceAt, width).
        g.fallback = true;
        g.advance = 0;
        return g;
    }
    const QList<quint32> index = m_raw.glyphIndexesForString(QString(QChar(c)));
    g.index = index.value(0);
    if (g.index == 0) {
        g.fallback = true;
        g.advance = m_metrics.horizontalAdvance(QChar(c));
        return g;
    }
    const QList<QPointF> advance = m_raw.advancesForGlyphIndexes(QList<quint32> { g.index });
    g.advance = advance.isEmpty() ? 0 : advance.first().x();
    return g;
}

qreal GlyphText::advanceAt(QStringView text, qsizetype i) const
{
    const QChar c = text[i];
    if (!c.isSurrogate())
        return glyph(c.unicode()).advance;
    if (c.isLowSurrogate())
        return 0; // counted with its first half
    // A first half without its second prints as the replacement character.
    if (i + 1 >= text.size() || !text[i + 1].isLowSurrogate())
        return m_metrics.horizontalAdvance(QChar(0xFFFD));
    const char32_t code = QChar::surrogateToUcs4(c, text[i + 1]);
    auto it = m_pairAdvances.find(code);
    if (it == m_pairAdvances.end())
        it = m_pairAdvances.insert(code, m_metrics.horizontalAdvance(text.mid(i, 2).toString()));
    return it.value();
}

bool GlyphText::needsFallback(QStringView text) const
{
    for (QChar c : text)
        if (glyph(c.unicode()).fallback)
            return true;
    return false;
}

void GlyphText::drawFallback(QPainter& painter, const QPointF& origin, const QString& text) const
{
    const QFont kept = painter.font();
    painter.setFont(m_font);
    painter.drawText(origin, text);
    painter.setFont(kept);
}

qreal GlyphText::width(QStringView text) const
{
    // One pass: every cell of a long book is measured here.
    qreal w = 0;
    for (QChar c : text) {
        const Glyph& g = glyph(c.unicode());
        if (g.fallback)
            return m_metrics.horizontalAdvance(text.toString());
        w += g.advance;
    }
    return w;
}

void GlyphText::draw(QPainter& painter, const QPointF& origin, QStringView text) const
{
    if (needsFallback(text)) {
        drawFallback(painter, origin, text.toString());
        return;
    }
    // Its own run: what add() keeps is drawn by flush() alone, under the painter's
    // transform of then.
    QList<quint32> indexes;
    QList<QPointF> positions;
    indexes.reserve(text.size());
    positions.reserve(text.size());
    qreal x = 0;
    for (QChar c : text) {
        const Glyph& g = glyph(c.unicode());
        indexes << g.index;
        positions << QPointF(std::round(x), 0);
        x += g.advance;
    }
    QGlyphRun run;
    run.setRawFont(m_raw);
    run.setGlyphIndexes(indexes);
    run.setPositions(positions);
    painter.drawGlyphRun(origin, run);
}

void GlyphText::add(const QPointF& origin, QStringView text) const
{
    // The PDF writer gives every glyph its own position, written out in full and then
    // compressed: a whole device unit (1/1200 inch on a PDF) is written in two or
    // three digits where a fraction took ten, and a blank, which leaves no mark, is
    // left out (text extraction reads a word's end from the gap).
    if (needsFallback(text)) {
        m_keptFallbacks.append({ origin, text.toString() });
        return;
    }
    const qreal y = std::round(origin.y());
    qreal x = origin.x();
    for (QChar c : text) {
        const Glyph& g = glyph(c.unicode());
        if (c != u' ') {
            m_keptIndexes << g.index;
            m_keptPositions << QPointF(std::round(x), y);
        }
        x += g.advance;
    }
}

void GlyphText::flush(QPainter& painter) const
{
    for (const auto& [origin, text] : std::as_const(m_keptFallbacks))
        drawFallback(painter, origin, text);
    m_keptFallbacks.clear();
    if (m_keptIndexes.isEmpty())
        return;
    QGlyphRun run;
    run.setRawFont(m_raw);
    run.setGlyphIndexes(m_keptIndexes);
    run.setPositions(m_keptPositions);
    painter.drawGlyphRun(QPointF(0, 0), run);
    m_keptIndexes.clear();
    m_keptPositions.clear();
}

QStringList wrapText(const QString& text, qreal width, const GlyphText& font, int maxLines)
{
    const QString plain = text.simplified();
    if (font.width(plain) <= width)
        return { plain };
    QStringList lines;
    qsizetype start = 0; // the line being filled: [start, end), `used` wide
    qsizetype end = 0;
    qreal used = 0;
    const auto takeLine = [&] { lines << plain.mid(start, end - start); };
    const qreal space = font.advance(u' ');
    const qsizetype size = plain.size();
    for (qsizetype i = 0; i < size;) {
        qsizetype j = i; // the word [i, j)
        qreal w = 0;
        for (; j < size && plain[j] != u' '; ++j)
            w += font.advanceAt(plain, j);
        if (end > start && used + space + w <= width) {
            end = j;
            used += space + w;
            i = j + 1;
            continue;
        }
        if (end > start)
            takeLine();
        // The word opens a line; one wider than the column is cut where the advances
        // add up past it, never inside a surrogate pair.
        start = i;
        used = 0;
        for (qsizetype k = i; k < j; ++k) {
            const qreal a = font.advanceAt(plain, k);
            if (k > start && used + a > width && !plain[k].isLowSurrogate()) {
                end = k;
                takeLine();
                start = k;
                used = 0;
            }
            used += a;
        }
        end = j;
        i = j + 1;
    }
    if (end > start)
        takeLine();
    if (lines.size() > maxLines) {
        lines.resize(maxLines);
        QString& last = lines.last();
        const QString ellipsis = QStringLiteral("…");
        const qreal room = width - font.width(ellipsis);
        qreal w = font.width(last);
        while (!last.isEmpty() && w > room) {
            // A pair of surrogates goes whole.
            const qsizetype n = last.size() >= 2 && last.back().isLowSurrogate() ? 2 : 1;
            w -= font.advanceAt(last, last.size() - n);
            last.chop(n);
        }
        last = last.trimmed() + ellipsis;
    }
    return lines;
}

} // namespace knjige::output
