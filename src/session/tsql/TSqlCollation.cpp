#include "session/tsql/TSqlCollation.h"

#include <QChar>
#include <QString>
#include <array>
#include <cstring>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace knjige::tsql
{
namespace
{

// --- characters ---

// The next character of UTF-8 text; a byte that starts no valid sequence is a
// character of its own (in the surrogate range, where no decoded text lands).
char32_t decode(const unsigned char*& p, const unsigned char* end)
{
    const unsigned lead = *p++;
    if (lead < 0x80)
        return lead;
    const int extra = lead >= 0xF8 ? -1 : lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : -1;
    if (extra < 0)
        return 0xDC00 + lead;
    char32_t value = lead & (0x3Fu >> extra);
    for (int i = 0; i < extra; ++i) {
        if (p == end || (*p & 0xC0) != 0x80)
            return 0xDC00 + lead;
        value = (value << 6) | (*p++ & 0x3Fu);
    }
    return value;
}

char32_t fold(char32_t c)
{
    if (c < 0x80)
        return c >= 'A' && c <= 'Z' ? c + 32 : c;
    return QChar::toCaseFolded(c);
}

constexpr char32_t kLetters = 0x100; // primary weights of a-z start here, 8 apart
constexpr char32_t kOthers = 0x10000; // everything else after the letters, by code point
constexpr char32_t kTableSize = 0x250; // Latin-1 and Latin Extended-A/B: weights from a table

constexpr char32_t letter(char c)
{
    return kLetters + char32_t(c - 'a') * 8;
}

// The primary weight of a case-folded character: what the collation orders by
// before it looks at accents.
char32_t primary(char32_t c)
{
    static const std::array<char32_t, kTableSize> table = [] {
        std::array<char32_t, kTableSize> t {};
        for (char32_t ch = 0; ch < kTableSize; ++ch) {
            if (ch >= 'a' && ch <= 'z') {
                t[ch] = letter(char(ch));
            } else if (ch < 0x80) {
                t[ch] = ch;
            } else {
                // Accented letters weigh as their base letter; their accent is the
                // secondary difference.
                const QString d = QChar::decomposition(ch);
                const char32_t base = d.isEmpty() ? 0 : fold(d.at(0).unicode());
                t[ch] = base >= 'a' && base <= 'z' ? letter(char(base)) : kOthers + ch;
            }
        }
        // The letters of the alphabet that follow their base letter.
        t[0x10D] = letter('c') + 2; // č
        t[0x107] = letter('c') + 4; // ć
        t[0x111] = letter('d') + 4; // đ
        t[0x161] = letter('s') + 2; // š
        t[0x17E] = letter('z') + 2; // ž
        return t;
    }();
    return c < kTableSize ? table[c] : kOthers + c;
}

// Orders two case-folded characters: primary weight, then the character itself.
int compareChar(char32_t a, char32_t b)
{
    if (a == b)
        return 0;
    const char32_t pa = primary(a), pb = primary(b);
    if (pa != pb)
        return pa < pb ? -1 : 1;
    return a < b ? -1 : 1;
}

std::size_t withoutTrailingBlanks(const char* s, std::size_t n)
{
    while (n > 0 && s[n - 1] == ' ')
        --n;
    return n;
}

void decodeFolded(const char* s, std::size_t n, std::u32string& out)
{
    out.resize(n); // never more characters than bytes
    const auto* p = reinterpret_cast<const unsigned char*>(s);
    const auto* end = p + n;
    std::size_t count = 0;
    while (p < end)
        out[count++] = fold(decode(p, end));
    out.resize(count);
}

// --- LIKE patterns ---

struct Item {
    enum class Kind : unsigned char { Char, Any, Many, Set };
    Kind kind = Kind::Char;
    bool negated = false;
    char32_t c = 0;
    std::size_t first = 0, count = 0; // Set: its ranges
};

struct Pattern {
    std::vector<Item> items;
    std::vector<std::pair<char32_t, char32_t>> ranges;
    std::string source;
    char32_t escape = 0;

    bool matchesOne(const Item& item, char32_t c) const
    {
        switch (item.kind) {
        case Item::Kind::Char:
            return item.c == c;
        case Item::Kind::Any:
            return true;
        case Item::Kind::Many:
            return false;
        case Item::Kind::Set:
            break;
        }
        bool in = false;
        for (std::size_t i = item.first; i < item.first + item.count && !in; ++i) {
            const auto& [lo, hi] = ranges[i];
            in = lo == hi ? c == lo : compareChar(lo, c) <= 0 && compareChar(c, hi) <= 0;
        }
        return in != item.negated;
    }

    // One character matches each item but %, so one backtracking point suffices.
    bool matches(const std::u32string& text) const
    {
        std::size_t t = 0, p = 0, starP = std::string::npos, starT = 0;
        while (t < text.size()) {
            if (p < items.size() && items[p].kind == Item::Kind::Many) {
                starP = p++;
                starT = t;
            } else if (p < items.size() && matchesOne(items[p], text[t])) {
                ++p;
                ++t;
            } else if (starP != std::string::npos) {
                p = starP + 1;
                t = ++starT;
            } else {
                return false;
            }
        }
        while (p < items.size() && items[p].kind == Item::Kind::Many)
            ++p;
        return p == items.size();
    }
};

// Reads "[...]" starting at `open`; returns the index after the ']' or `open` when
// the bracket never closes (it is then a plain '[').
std::size_t readSet(const std::u32string& s, std::size_t open, Pattern& out)
{
    std::size_t i = open + 1;
    Item item;
    item.kind = Item::Kind::Set;
    if (i < s.size() && s[i] == U'^') {
        item.negated = true;
        ++i;
    }
    item.first = out.ranges.size();
    for (; i < s.size() && s[i] != U']'; ++i) {
        if (i + 2 < s.size() && s[i + 1] == U'-' && s[i + 2] != U']') {
            out.ranges.emplace_back(s[i], s[i + 2]);
            i += 2;
        } else {
            out.ranges.emplace_back(s[i], s[i]);
        }
    }
    if (i >= s.size()) {
        out.ranges.resize(item.first);
        return open;
    }
    item.count = out.ranges.size() - item.first;
    out.items.push_back(item);
    return i + 1;
}

Pattern compile(const char* pattern, std::size_t length, char32_t escape)
{
    Pattern out;
    out.source.assign(pattern, length);
    out.escape = escape;
    std::u32string s;
    decodeFolded(pattern, length, s);
    for (std::size_t i = 0; i < s.size();) {
        const char32_t c = s[i];
        Item item;
        if (escape && c == fold(escape) && i + 1 < s.size()) {
            item.c = s[i + 1];
            i += 2;
        } else if (c == U'%') {
            item.kind = Item::Kind::Many;
            ++i;
            if (!out.items.empty() && out.items.back().kind == Item::Kind::Many)
                continue;
        } else if (c == U'_') {
            item.kind = Item::Kind::Any;
            ++i;
        } else if (c == U'[') {
            const std::size_t next = readSet(s, i, out);
            if (next != i) {
                i = next;
                continue;
            }
            item.c = c;
            ++i;
        } else {
            item.c = c;
            ++i;
        }
        out.items.push_back(item);
    }
    return out;
}

// --- the engine's hooks ---

int collate(void*, int aLength, const void* a, int bLength, const void* b)
{
    return compareText(
        static_cast<const char*>(a), std::size_t(aLength), static_cast<const char*>(b), std::size_t(bLength));
}

void deletePattern(void* p)
{
    delete static_cast<Pattern*>(p);
}

void like(sqlite3_context* ctx, int argc, sqlite3_value** argv)
{
    for (int i = 0; i < argc; ++i)
        if (sqlite3_value_type(argv[i]) == SQLITE_NULL) {
            sqlite3_result_null(ctx);
            return;
        }
    const auto* pattern = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
    const auto patternLength = std::size_t(sqlite3_value_bytes(argv[0]));
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(argv[1]));
    const auto textLength = std::size_t(sqlite3_value_bytes(argv[1]));
    if (!pattern || !text) {
        sqlite3_result_error_nomem(ctx);
        return;
    }
    if (patternLength
        > std::size_t(sqlite3_limit(sqlite3_context_db_handle(ctx), SQLITE_LIMIT_LIKE_PATTERN_LENGTH, -1))) {
        sqlite3_result_error(ctx, "LIKE or GLOB pattern too complex", -1);
        return;
    }
    char32_t escape = 0;
    if (argc == 3) {
        const auto* e = reinterpret_cast<const unsigned char*>(sqlite3_value_text(argv[2]));
        const int n = sqlite3_value_bytes(argv[2]);
        const unsigned char* p = e;
        if (e && n > 0)
            escape = decode(p, e + n);
        if (!e || n == 0 || p != e + n) {
            sqlite3_result_error(ctx, "ESCAPE expression must be a single character", -1);
            return;
        }
    }
    // The pattern is compiled once per statement and kept with its argument.
    auto* compiled = static_cast<Pattern*>(sqlite3_get_auxdata(ctx, 0));
    if (!compiled || compiled->escape != escape || compiled->source.size() != patternLength
        || std::memcmp(compiled->source.data(), pattern, patternLength) != 0) {
        compiled = new Pattern(compile(pattern, patternLength, escape));
        sqlite3_set_auxdata(ctx, 0, compiled, deletePattern);
        compiled = static_cast<Pattern*>(sqlite3_get_auxdata(ctx, 0));
        if (!compiled) { // the engine could not keep it and has deleted it
            sqlite3_result_int(ctx, likeMatch(pattern, patternLength, text, textLength, escape));
            return;
        }
    }
    thread_local std::u32string folded;
    decodeFolded(text, textLength, folded);
    sqlite3_result_int(ctx, compiled->matches(folded) ? 1 : 0);
}

} // namespace

int compareText(const char* a, std::size_t aLength, const char* b, std::size_t bLength)
{
    aLength = withoutTrailingBlanks(a, aLength);
    bLength = withoutTrailingBlanks(b, bLength);
    if (aLength == bLength && std::memcmp(a, b, aLength) == 0)
        return 0;
    const auto* pa = reinterpret_cast<const unsigned char*>(a);
    const auto* pb = reinterpret_cast<const unsigned char*>(b);
    const auto* endA = pa + aLength;
    const auto* endB = pb + bLength;
    int accents = 0; // the first difference of accents, which counts only when the letters agree
    while (pa < endA || pb < endB) {
        const char32_t ca = pa < endA ? fold(decode(pa, endA)) : U' ';
        const char32_t cb = pb < endB ? fold(decode(pb, endB)) : U' ';
        if (ca == cb)
            continue;
        const char32_t wa = primary(ca), wb = primary(cb);
        if (wa != wb)
            return wa < wb ? -1 : 1;
        if (accents == 0)
            accents = ca < cb ? -1 : 1;
    }
    return accents;
}

bool likeMatch(
    const char* pattern, std::size_t patternLength, const char* text, std::size_t textLength, char32_t escape)
{
    const Pattern compiled = compile(pattern, patternLength, escape);
    std::u32string folded;
    decodeFolded(text, textLength, folded);
    return compiled.matches(folded);
}

bool registerCollation(sqlite3* db)
{
    const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    return sqlite3_create_collation_v2(db, "tsql_ci_as", SQLITE_UTF8, nullptr, collate, nullptr) == SQLITE_OK
        && sqlite3_create_function_v2(db, "like", 2, flags, nullptr, like, nullptr, nullptr, nullptr) == SQLITE_OK
        && sqlite3_create_function_v2(db, "like", 3, flags, nullptr, like, nullptr, nullptr, nullptr) == SQLITE_OK;
}

} // namespace knjige::tsql
