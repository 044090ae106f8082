#include "output/widgets/ReportText.h"

#include <QFont>
#include <QGlyphRun>
#include <QPaintDevice>
#include <QPainter>

namespace knjige
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
    QList<quint32> indexes;
    QList<QPointF> positions;
    indexes.reserve(text.size());
    positions.reserve(text.size());
    qreal x = 0;
    for (QChar c : text) {
        const Glyph& g = glyph(c.unicode());
        indexes << g.index;
        positions << QPointF(x, 0);
        x += g.advance;
    }
    QGlyphRun run;
    run.setRawFont(m_raw);
    run.setGlyphIndexes(indexes);
    run.setPositions(positions);
    painter.drawGlyphRun(origin, run);
}

QStringList wrapText(const QString& text, qreal width, const GlyphText& font, int maxLines)
{
    const QString plain = text.simplified();
    if (font.width(plain) <= width)
        return { plain };
    QStringList lines;
    QString line;
    for (QString word : plain.split(u' ', Qt::SkipEmptyParts)) {
        const QString candidate = line.isEmpty() ? word : line + u' ' + word;
        if (font.width(candidate) <= width) {
            line = candidate;
            continue;
        }
        if (!line.isEmpty())
            lines << line;
        while (word.size() > 1 && font.width(word) > width) {
            qsizetype n = word.size() - 1;
            while (n > 1 && font.width(QStringView(word).left(n)) > width)
                --n;
            lines << word.left(n);
            word = word.mid(n);
        }
        line = word;
    }
    if (!line.isEmpty())
        lines << line;
    if (lines.size() > maxLines) {
        lines.resize(maxLines);
        QString& last = lines.last();
        const QString ellipsis = QStringLiteral("…");
        while (!last.isEmpty() && font.width(last + ellipsis) > width)
            last.chop(1);
        last = last.trimmed() + ellipsis;
    }
    return lines;
}

} // namespace knjige
