#include "browser/TextOrder.h"

#include <QLocale>
#include <algorithm>
#include <array>
#include <cstring>

namespace knjige::browser
{

QCollator textCollator()
{
    auto make = [](QLocale::Language language) {
        QCollator c { QLocale(language) };
        c.setCaseSensitivity(Qt::CaseInsensitive);
        return c;
    };
    // Where the collation data has no Bosnian tailoring the Croatian one, which has the
    // same alphabet, stands in. Only a tailoring makes Č and Ž letters of their own; the
    // root order takes them for C and Z with an accent, which "Ča" before "Cz" would show.
    static const bool bosnianKnown = [&make] {
        const QCollator bs = make(QLocale::Bosnian);
        return bs.compare(QStringLiteral("Ča"), QStringLiteral("Cz")) > 0
            && bs.compare(QStringLiteral("Ža"), QStringLiteral("Zz")) > 0;
    }();
    return make(bosnianKnown ? QLocale::Bosnian : QLocale::Croatian);
}

namespace
{

// The alphabet's own keys: each character (or letter of two characters, "lj") its
// rank in the collator's order, equal for the forms that differ in case only. The
// ranks are read off the collator, then checked against it on words that tell the
// letters apart; where anything disagrees the collator's own keys are used.
class Alphabet
{
public:
    static const Alphabet& instance()
    {
        static const Alphabet alphabet;
        return alphabet;
    }
    bool usable() const { return m_usable; }

    // Appends the key of a UTF-8 text; false when it holds a character not ranked.
    bool append(QByteArrayView utf8, std::vector<quint8>& out) const
    {
        const auto* p = reinterpret_cast<const quint8*>(utf8.data());
        const auto* end = p + utf8.size();
        while (p < end) {
            char32_t ch = *p++;
            if (ch >= 0x80) {
                if ((ch & 0xe0) != 0xc0 || p == end || (*p & 0xc0) != 0x80)
                    return false;
                ch = ((ch & 0x1f) << 6) | (*p++ & 0x3f);
            }
            if (ch >= kChars || !m_rank[ch])
                return false;
            if (p < end && *p < 0x80) {
                const quint8 pair = m_pair[pairIndex(ch, *p)];
                if (pair) {
                    out.push_back(pair);
                    ++p;
                    continue;
                }
            }
            // "dž": the second letter is two bytes.
            if (p + 1 < end && *p == 0xc5 && (p[1] == 0xbe || p[1] == 0xbd)) {
                const quint8 pair = m_pair[pairIndex(ch, p[1] == 0xbe ? 0x17e : 0x17d)];
                if (pair) {
                    out.push_back(pair);
                    p += 2;
                    continue;
                }
            }
            out.push_back(m_rank[ch]);
        }
        return true;
    }

private:
    static constexpr char32_t kChars = 0x180;
    // Pairs are looked up by first letter (d, l, n in either case) and second.
    static int pairIndex(char32_t first, char32_t second)
    {
        int f = 0;
        switch (first) {
        case u'd':
            f = 0;
            break;
        case u'D':
            f = 1;
            break;
        case u'l':
            f = 2;
            break;
        case u'L':
            f = 3;
            break;
        case u'n':
            f = 4;
            break;
        case u'N':
            f = 5;
            break;
        default:
            return 0;
        }
        switch (second) {
        case u'j':
            return 1 + f * 4;
        case u'J':
            return 2 + f * 4;
        case 0x17e:
            return 3 + f * 4;
        case 0x17d:
            return 4 + f * 4;
        default:
            return 0;
        }
    }

    Alphabet()
    {
        const QCollator collator = textCollator();
        QStringList tokens;
        for (char16_t ch = 0x20; ch < 0x7f; ++ch)
            tokens << QString(QChar(ch));
        for (char16_t ch : u"\u010c\u010d\u0106\u0107\u0110\u0111\u0160\u0161\u017d\u017e")
            if (ch)
                tokens << QString(QChar(ch));
        // A character the collator ignores has no rank: texts with it take its keys.
        tokens.removeIf([&](const QString& t) { return collator.compare(t + u'a', QStringLiteral("a")) == 0; });
        // Two-letter letters, in each form of case. A pair is a letter of its own when
        // it sorts after its first letter followed by the letter next after its second.
        // When its second is the last letter of all, only a comparison with its other
        // forms can tell: the forms that are letters sort after those that are not (and
        // where all forms are alike, both readings give the same order).
        auto byOrder = [&](const QString& a, const QString& b) { return collator.compare(a, b) < 0; };
        std::stable_sort(tokens.begin(), tokens.end(), byOrder);
        QStringList pairs;
        for (const char16_t* pair : { u"d\u017e", u"lj", u"nj" }) {
            const QString letters = QString::fromUtf16(pair);
            QStringList forms;
            for (const QString& first : { letters.left(1), letters.left(1).toUpper() })
                for (const QString& second : { letters.mid(1), letters.mid(1).toUpper() })
                    forms << first + second;
            for (const QString& form : forms) {
                const QString one = form.left(1);
                const auto next = std::find_if(tokens.cbegin(), tokens.cend(),
                    [&](const QString& t) { return collator.compare(t, form.mid(1)) > 0; });
                const bool letter = next != tokens.cend()
                    ? collator.compare(form, one + *next) > 0
                    : std::any_of(forms.cbegin(), forms.cend(),
                        [&](const QString& other) { return collator.compare(form, other) > 0; });
                if (letter)
                    pairs << form;
            }
        }
        tokens << pairs;
        std::stable_sort(tokens.begin(), tokens.end(), byOrder);
        int rank = 0;
        for (int i = 0; i < tokens.size(); ++i) {
            if (i == 0 || collator.compare(tokens[i - 1], tokens[i]) != 0)
                ++rank;
            if (rank > 255)
                return;
            const QString& t = tokens[i];
            if (t.size() == 1)
                m_rank[t[0].unicode()] = quint8(rank);
            else
                m_pair[pairIndex(t[0].unicode(), t[1].unicode())] = quint8(rank);
        }
        m_usable = agreesWith(collator);
    }

    // Every pair of the probe words in the same order by both.
    bool agreesWith(const QCollator& collator) const
    {
        static const char16_t* const words[] = { u"", u" ", u"a b", u"ab", u"a-b", u"a1", u"1a", u"10", u"9", u"lja",
            u"lk", u"lj", u"Lj", u"LJ", u"lJ", u"lz", u"nja", u"nk", u"Nj", u"dža", u"dz", u"dzz", u"Dž", u"DŽ", u"dŽ",
            u"đ", u"Đa", u"e", u"c", u"č", u"Č", u"ć", u"Ćz", u"s", u"š", u"Šećer stavka 1", u"šećer stavka 10", u"Sol",
            u"sol", u"zebra", u"Žito", u"z", u"ž", u"R-12", u"R 12", u"R.12", u"(a)", u"a'", u"a\"", u"_", u"~", u"Z",
            u"@x", u"x&y" };
        QStringList probes;
        for (const char16_t* w : words)
            probes << QString::fromUtf16(w);
        std::vector<std::vector<quint8>> keys(probes.size());
        for (int i = 0; i < probes.size(); ++i)
            if (!append(probes[i].toUtf8(), keys[i]))
                return false;
        for (int i = 0; i < probes.size(); ++i)
            for (int j = 0; j < probes.size(); ++j) {
                const int own = keys[i] < keys[j] ? -1 : (keys[j] < keys[i] ? 1 : 0);
                const int theirs = collator.compare(probes[i], probes[j]);
                if ((own < 0) != (theirs < 0) || (own > 0) != (theirs > 0))
                    return false;
            }
        return true;
    }

    std::array<quint8, kChars> m_rank {};
    std::array<quint8, 1 + 6 * 4> m_pair {};
    bool m_usable = false;
};

} // namespace

TextSortKeys::TextSortKeys(const db::ResultSet& rows, int column, const std::vector<int>& position)
{
    const int n = rows.rowCount();
    const Alphabet& alphabet = Alphabet::instance();
    m_own = alphabet.usable();
    if (m_own) {
        m_prefix.assign(n, Prefix {});
        m_start.assign(n, 0);
        m_length.assign(n, 0);
        std::vector<quint8> key;
        for (int r = 0; r < n && m_own; ++r) {
            key.clear();
            if (!rows.isNull(r, column))
                m_own = alphabet.append(rows.utf8(r, column), key);
            const int i = position[r];
            Prefix& prefix = m_prefix[i];
            for (size_t k = 0; k < 16; ++k) {
                quint64& half = k < 8 ? prefix.high : prefix.low;
                half = (half << 8) | (k < key.size() ? key[k] : 0);
            }
            m_start[i] = qint64(m_rest.size());
            if (key.size() > 16) {
                m_length[i] = qint64(key.size() - 16);
                m_rest.insert(m_rest.end(), key.begin() + 16, key.end());
            }
        }
        if (m_own)
            return;
        m_prefix = {};
        m_start = {};
        m_length = {};
        m_rest = {};
    }
    const QCollator collator = textCollator();
    m_collator.resize(n, collator.sortKey(QString()));
    for (int r = 0; r < n; ++r)
        if (!rows.isNull(r, column))
            m_collator[position[r]] = collator.sortKey(rows.text(r, column));
}

void TextSortKeys::order(std::vector<int>& positions, bool descending) const
{
    if (!m_own) {
        std::stable_sort(positions.begin(), positions.end(), [&](int a, int b) {
            const int c = compare(a, b);
            return c != 0 ? (descending ? c > 0 : c < 0) : a < b;
        });
        return;
    }
    // The first bytes beside the position: most comparisons end there, in memory
    // read in order.
    struct Item {
        Prefix prefix;
        int position;
    };
    std::vector<Item> items;
    items.reserve(positions.size());
    for (int p : positions)
        items.push_back({ m_prefix[p], p });
    std::sort(items.begin(), items.end(), [&](const Item& a, const Item& b) {
        if (!(a.prefix == b.prefix))
            return descending ? b.prefix < a.prefix : a.prefix < b.prefix;
        const int c = compare(a.position, b.position);
        return c != 0 ? (descending ? c > 0 : c < 0) : a.position < b.position;
    });
    for (size_t i = 0; i < items.size(); ++i)
        positions[i] = items[i].position;
}

int TextSortKeys::compare(int a, int b) const
{
    if (!m_own)
        return m_collator[a].compare(m_collator[b]);
    if (!(m_prefix[a] == m_prefix[b]))
        return m_prefix[a] < m_prefix[b] ? -1 : 1;
    const qint64 la = m_length[a];
    const qint64 lb = m_length[b];
    if (la > 0 && lb > 0)
        if (const int c = std::memcmp(m_rest.data() + m_start[a], m_rest.data() + m_start[b], size_t(std::min(la, lb))))
            return c;
    return la < lb ? -1 : (la > lb ? 1 : 0);
}

} // namespace knjige::browser
