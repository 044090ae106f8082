#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QList>
#include <QPointF>
#include <QRawFont>
#include <QString>
#include <QStringList>
#include <limits>
#include <vector>

class QPainter;
class QPaintDevice;
class QPointF;

namespace knjige::output
{

// Text set straight from a font's glyph table, without shaping: the cells of a long
// book are hundreds of thousands of short Latin texts and numbers, and shaping each
// would take most of a print's time. Widths and drawing use the same advances, so a
// text measured to fit a column is drawn inside it. A text with a character the font
// has no glyph for (a letter of another script, a character outside the 16-bit range)
// is set by Qt with shaping and a fallback font instead, so it prints as typed.
class GlyphText
{
public:
    GlyphText() = default;
    // The font at its size on `device`, in the device's units.
    GlyphText(const QFont& font, const QPaintDevice& device);

    qreal width(QStringView text) const;
    // The advance of the character at `i`: a pair of surrogates advances by the whole
    // character at its first half and by nothing at its second.
    qreal advanceAt(QStringView text, qsizetype i) const;
    qreal advance(QChar c) const { return glyph(c.unicode()).advance; }
    qreal ascent() const { return m_raw.ascent(); }
    qreal lineSpacing() const { return m_raw.ascent() + m_raw.descent() + m_raw.leading(); }
    // Draws `text` with its left end at origin.x() and its baseline at origin.y().
    void draw(QPainter& painter, const QPointF& origin, QStringView text) const;
    // As draw, but kept and drawn with every other text kept by flush(): a page's cells
    // go to the printer as one text rather than one each, which is most of a long
    // book's printing time.
    void add(const QPointF& origin, QStringView text) const;
    void flush(QPainter& painter) const;

private:
    struct Glyph {
        quint32 index = 0;
        qreal advance = -1; // -1: not looked up yet
        bool fallback = false; // not in the font, or half of a surrogate pair
    };
    const Glyph& glyph(char16_t c) const;
    bool needsFallback(QStringView text) const;
    void drawFallback(QPainter& painter, const QPointF& origin, const QString& text) const;

    QFont m_font;
    QFontMetricsF m_metrics { QFont() };
    QRawFont m_raw;
    mutable std::vector<Glyph> m_glyphs; // by UTF-16 code unit
    mutable QList<quint32> m_keptIndexes;
    mutable QList<QPointF> m_keptPositions;
    mutable QList<std::pair<QPointF, QString>> m_keptFallbacks;
    mutable QHash<char32_t, qreal> m_pairAdvances;
};

// Lines of `text` (blanks and line breaks simplified) no wider than `width`: broken at
// blanks, a word wider than the column broken after its last character that fits (one
// at least); past `maxLines` the last line is cut and ends in an ellipsis. Every
// character is measured once or twice, so a text wraps in time proportional to its
// length however long its words are.
QStringList wrapText(
    const QString& text, qreal width, const GlyphText& font, int maxLines = std::numeric_limits<int>::max());

} // namespace knjige::output
