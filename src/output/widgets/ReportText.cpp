#include "output/widgets/ReportText.h"

#include <QFont>
#include <QGlyphRun>
#include <QPaintDevice>
#include <QPainter>
#include <cmath>

namespace knjige::output
{

GlyphText::GlyphText(const QFont& font, const QPaintDevice& device)
    : m_raw(QRawFont::fromFont(font))
    , m_glyphs(0x10000)
{
    m_raw.setPixelSize(font.pointSizeF() * device.logicalDpiY() / 72.0);
}

const GlyphText::Glyph& GlyphText::glyph(char16_t c) const
{
    // A half of a surrogate pair has no glyph of its own: it stands as '?'.
    if (QChar::isSurrogate(c))
        c = u'?';
    Glyph& g = m_glyphs[c];
    if (g.advance < 0) {
        const QList<quint32> index = m_raw.glyphIndexesForString(QString(QChar(c)));
        g.index = index.value(0);
        const QList<QPointF> advance = m_raw.advancesForGlyphIndexes(QList<quint32> { g.index });
        g.advance = advance.isEmpty() ? 0 : advance.first().x();
    }
    return g;
}

qreal GlyphText::width(QStringView text) const
{
    qreal w = 0;
    for (QChar c : text)
        w += glyph(c.unicode()).advance;
    return w;
}

void GlyphText::draw(QPainter& painter, const QPointF& origin, QStringView text) const
{
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
            w += font.advance(plain[j]);
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
            const qreal a = font.advance(plain[k]);
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
            w -= font.advance(last.back());
            last.chop(1);
        }
        last = last.trimmed() + ellipsis;
    }
    return lines;
}

} // namespace knjige::output
